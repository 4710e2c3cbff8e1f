import itertools
import os
import signal
import time
from collections.abc import Callable, Iterator
from pathlib import Path
from typing import Any

import dask
import dask.array as da
import numpy as np
import pandas as pd
import pyarrow as pa
import pytest
import surveydata.dask as sdd
from distributed import Client, LocalCluster
from fsspec.implementations.memory import MemoryFileSystem

import surveydata as sd

WEEK = 7 * 24 * 3600 * 1000


@pytest.fixture(autouse=True)
def in_this_process() -> Iterator[None]:
    with dask.config.set(scheduler="synchronous"):
        yield


def type_of(arrow: pa.DataType) -> Any:
    return pd.StringDtype("pyarrow") if arrow == pa.large_string() else pd.ArrowDtype(arrow)


def expected_frame(folder: Path, **options: Any) -> pd.DataFrame:
    frames = []
    for path in sorted(folder.glob("*.rec")):
        table = pa.table(sd.read_records(path, **options))
        name = pa.array([path.name] * len(table), pa.large_string())
        frames.append(table.append_column("file", name).to_pandas(types_mapper=type_of))
    return pd.concat(frames, ignore_index=True)


def with_times(sample: bytes, first: int, step: int, last: int | None = None) -> bytes:
    """The measurements of a sample at times `first`, `first + step`, ... in ms of GPS time; the
    last one is at `last` of its week.
    """
    frames = bytearray(sample)
    table = sd.read_records(sample, ["offset", "size"])
    for row, (offset, size) in enumerate(zip(table["offset"], table["size"], strict=True)):
        begin, end = int(offset), int(offset) + int(size)
        week, of_week = divmod(first + row * step, WEEK)
        if last is not None and row == len(table) - 1:
            of_week = last
        frames[begin + 5 : begin + 7] = week.to_bytes(2, "little")
        frames[begin + 7 : begin + 11] = of_week.to_bytes(4, "little")
        total = -sum(frames[begin + 2 : end - 2]) & 0xFFFF
        frames[end - 2 : end] = total.to_bytes(2, "little")
    assert len(sd.read_records(bytes(frames), ["size"])) == len(table)
    return bytes(frames)


def in_order(frame: pd.DataFrame) -> pd.DataFrame:
    return frame.sort_values(["file", "offset"]).reset_index(drop=True)


def test_every_value(drives: Path) -> None:
    expected = expected_frame(drives)
    for blocksize in (120_000, "1 MiB"):
        frame = sdd.read_records(drives, blocksize=blocksize)
        assert frame.npartitions == (24 if blocksize == 120_000 else 5)
        found = frame.compute()
        assert list(found.columns) == [info.name for info in sd.columns()] + ["file"]
        pd.testing.assert_frame_equal(in_order(found), expected)


def test_the_description_fits_the_partitions(drives: Path) -> None:
    for index in ("time_gps", None):
        frame = sdd.read_records(drives, blocksize=500_000, index=index)  # type: ignore[arg-type]
        for part in frame.partitions:
            values = part.compute()
            assert values.dtypes.to_dict() == frame._meta.dtypes.to_dict()
            assert values.index.name == frame._meta.index.name == index
            assert values.index.dtype == frame._meta.index.dtype


def test_paths_of_stores(drives: Path) -> None:
    store = MemoryFileSystem()
    store.put(str(drives) + "/", "/dask/", recursive=True)
    try:
        urls = [f"memory://dask/{path.name}" for path in sorted(drives.iterdir())]
        found = sdd.read_records(urls, ["offset", "pdop"], blocksize=90_000).compute()
    finally:
        store.rm("/dask", recursive=True)
    expected = expected_frame(drives, columns=["offset", "pdop"])
    pd.testing.assert_frame_equal(in_order(found), expected)


def test_only_columns_that_are_used_are_read(drives: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    frame = sdd.read_records(drives, blocksize="1 MiB")
    read: list[list[str]] = []
    original = sd._records.read_records

    def noted(source: Any, columns: list[str], **options: Any) -> Any:
        read.append(list(columns))
        return original(source, columns, **options)

    monkeypatch.setattr(sd._records, "read_records", noted)
    mean = frame["pdop"].mean().compute()
    assert read == [["pdop", "gps_week", "time_of_week"]] * 5
    assert mean == pytest.approx(expected_frame(drives)["pdop"].mean(), rel=1e-12)
    read.clear()
    count = frame["file"].value_counts().compute()
    assert read == [["gps_week", "time_of_week"]] * 5
    assert count["desert.rec"] == 380


def test_divisions_where_times_allow(tmp_path: Path, samples: list[bytes]) -> None:
    start = 2_000 * WEEK + WEEK - 100_000  # continues into the next week
    valley = samples[0]
    (tmp_path / "a.rec").write_bytes(with_times(valley, start + 414_000, 500))
    (tmp_path / "b.rec").write_bytes(with_times(valley, start, 1_000))
    (tmp_path / "c.rec").write_bytes(b"")
    frame = sdd.read_records(tmp_path, blocksize=30_000)
    assert frame.known_divisions
    assert frame.npartitions == 8
    whole = frame.compute()
    assert whole.index.is_monotonic_increasing
    assert list(whole["file"].unique()) == ["b.rec", "a.rec"]
    first = pd.Timestamp("1980-01-06") + pd.Timedelta(start, "ms")
    assert frame.divisions[0] == whole.index[0] == first
    assert frame.divisions[-1] == whole.index[-1]
    pd.testing.assert_index_equal(
        whole.index, pd.DatetimeIndex(sd_times(whole), name="time_gps"), exact=False
    )
    parts = [part.compute() for part in frame.partitions]
    for part, begin, end in zip(parts, frame.divisions[:-1], frame.divisions[1:], strict=True):
        assert begin == part.index[0]
        assert part.index[-1] < end or part is parts[-1]
    piece = frame.loc[first + pd.Timedelta("100s") : first + pd.Timedelta("200s")]
    assert piece.npartitions < 4
    assert len(piece.compute()) == 101


def sd_times(frame: pd.DataFrame) -> pd.Series:
    return pd.to_datetime(frame["time_gps"].astype(str))


@pytest.mark.parametrize("case", ["overlap", "same time", "backwards", "absent"])
def test_no_divisions_otherwise(tmp_path: Path, samples: list[bytes], case: str) -> None:
    start = 2_000 * WEEK
    a = with_times(samples[0], start, 1_000)
    b = with_times(samples[1], start + 1_000_000, 1_000)
    if case == "overlap":
        b = with_times(samples[1], start + 100_000, 1_000)
    elif case == "same time":
        b = with_times(samples[1], start + 413_000, 1_000)
    elif case == "backwards":
        b = with_times(samples[1], start + 1_000_000, -1)
    (tmp_path / "a.rec").write_bytes(a)
    (tmp_path / "b.rec").write_bytes(b)
    if case == "absent":
        (tmp_path / "b.rec").write_bytes(with_times(b, start + 1_000_000, 1_000, last=WEEK))
    frame = sdd.read_records(tmp_path, blocksize="1 MiB")
    assert not frame.known_divisions
    found = frame.compute()
    assert list(found["file"].unique()) == ["a.rec", "b.rec"]
    assert found.index.isna().sum() == (case == "absent")


def test_without_times(drives: Path, tmp_path: Path) -> None:
    frame = sdd.read_records(drives, ["pdop"], blocksize="1 MiB", index=None)
    assert not frame.known_divisions
    expected = expected_frame(drives, columns=["pdop"])
    pd.testing.assert_frame_equal(frame.compute().reset_index(drop=True), expected)
    (tmp_path / "empty.rec").write_bytes(b"")
    assert len(sdd.read_records(tmp_path).compute()) == 0


def test_what_cannot_be_read(drives: Path, tmp_path: Path) -> None:
    with pytest.raises(FileNotFoundError):
        sdd.read_records(tmp_path / "none.rec")
    with pytest.raises(FileNotFoundError):
        sdd.read_records(tmp_path)
    with pytest.raises(KeyError, match="hdob"):
        sdd.read_records(drives, ["hdob"])
    with pytest.raises(ValueError, match="index"):
        sdd.read_records(drives, index="offset")  # type: ignore[arg-type]


def door() -> sd.RectangularArea:
    return sd.RectangularArea([390, 25], [75, 110], unit="gon", hz_step=0.1, v_step=0.1)


def test_contains_over_arrays() -> None:
    area = door()
    random = np.random.default_rng(1)
    hz, v = random.uniform(0, 400, 10_000), random.uniform(0, 200, 10_000)
    expected = area.contains(hz, v)
    assert 100 < expected.sum() < 9_900
    inside = sdd.contains(area, da.from_array(hz, 3_000), da.from_array(v, 3_000))
    assert inside.dtype == bool
    assert inside.chunks == ((3_000, 3_000, 3_000, 1_000),)
    assert (inside.compute() == expected).all()
    in_degrees = sdd.contains(
        area, da.from_array(hz * 0.9, 999), da.from_array(v * 0.9, 999), "deg"
    )
    assert (in_degrees.compute() == area.contains(hz * 0.9, v * 0.9, "deg")).all()
    grid = sdd.contains(area, da.from_array(hz[:, None], 4_000), da.from_array(v[:30], 7))
    assert grid.shape == (10_000, 30)
    assert (grid.compute() == area.contains(hz[:, None], v[:30])).all()
    level = sdd.contains(area, da.from_array(hz, 3_000), 100.0)
    assert (level.compute() == area.contains(hz, 100.0)).all()


# ----- Processes


@pytest.mark.filterwarnings("default")
def test_a_worker_killed_in_the_middle_changes_nothing(
    tmp_path: Path, make_archive: Callable[[int], Path]
) -> None:
    archive = make_archive(8_000_000)
    marks = tmp_path / "marks"
    marks.mkdir()
    frame = sdd.read_records(archive, blocksize=200_000, index=None)

    def slowly(frame: pd.DataFrame, folder: str) -> pd.DataFrame:
        """Records that a partition was started, and by which process."""
        (Path(folder) / f"{os.getpid()}-{time.monotonic_ns()}").touch()
        time.sleep(0.1)
        sums = frame.select_dtypes("number").astype("float64").sum()
        return pd.DataFrame([{"rows": len(frame), **sums}])

    slow = frame.map_partitions(slowly, str(marks), meta=slowly(frame._meta, str(marks)))
    expected = slow.compute(scheduler="synchronous")
    assert len(expected) == 41
    for mark in marks.iterdir():
        mark.unlink()
    with (
        LocalCluster(
            n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None
        ) as cluster,
        Client(cluster) as client,
    ):
        processes = {nanny.pid for nanny in cluster.workers.values()}
        assert len(processes) == 2
        result = client.compute(slow)
        while len(list(marks.iterdir())) < 10:
            assert result.status == "pending"
            time.sleep(0.01)
        victim = min(processes)
        os.kill(victim, signal.SIGKILL)
        found = result.result(timeout=120)
        began = [int(path.name.split("-")[0]) for path in sorted_by_time(marks)]
        client.wait_for_workers(2, timeout=60)
        assert victim not in {nanny.pid for nanny in cluster.workers.values()}
    assert victim in began
    assert len(began) > 41, "the partitions of the process were read again"
    assert len(set(began) - processes) <= 1
    pd.testing.assert_frame_equal(
        found.reset_index(drop=True), expected.reset_index(drop=True), check_exact=True
    )


def sorted_by_time(marks: Path) -> list[Path]:
    return sorted(marks.iterdir(), key=lambda path: int(path.name.split("-")[1]))


def test_stretches_of_any_size_give_the_same(drives: Path) -> None:
    frames = [
        in_order(sdd.read_records(drives, ["offset", "vector_x"], blocksize=size).compute())
        for size in (20_001, 64_000, 10**9)
    ]
    for one, other in itertools.pairwise(frames):
        pd.testing.assert_frame_equal(one, other)
