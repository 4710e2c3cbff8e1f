import signal
import struct
import subprocess
import sys
import time
from collections import Counter
from collections.abc import Callable
from pathlib import Path
from typing import Any
from urllib.parse import unquote

import duckdb
import polars
import pyarrow as pa
import pyarrow.dataset as ds
import pyarrow.parquet as pq
import pytest

import surveydata as sd
from surveydata import __main__, parquet


def expected_rows(folder: Path, **options: Any) -> pa.Table:
    """All rows by file and offset, with the name of the file as the last column."""
    tables = []
    for path in sorted(folder.glob("*.rec")):
        table = pa.table(sd.read_records(path, **options))
        tables.append(table.append_column("file", pa.array([path.name] * len(table), pa.string())))
    return in_order(pa.concat_tables(tables))


def in_order(table: pa.Table) -> pa.Table:
    return table.sort_by([("file", "ascending"), ("offset", "ascending")]).combine_chunks()


def plain(table: pa.Table, like: pa.Table) -> pa.Table:
    """With the types of `like`, if the reader returns other types for the same values."""
    return in_order(table.select(like.column_names).cast(like.schema))


def assert_same(found: pa.Table, expected: pa.Table) -> None:
    assert found.num_rows == expected.num_rows
    for name in expected.column_names:
        assert found[name].to_pylist() == expected[name].to_pylist(), name


def read(folder: Path) -> pa.Table:
    return ds.dataset(folder, partitioning="hive").to_table()


@pytest.fixture(scope="module")
def converted(drives: Path, tmp_path_factory: pytest.TempPathFactory) -> Path:
    folder = tmp_path_factory.mktemp("parquet") / "out"
    progress = parquet.to_parquet(drives, folder, stretch=150_000, workers=2)
    assert progress.stretches == progress.stretches_done == len(list(folder.glob("*/*.parquet")))
    assert progress.stretches_kept == progress.left_out == 0
    assert progress.size == progress.size_done == sum(f.stat().st_size for f in drives.iterdir())
    assert progress.rows == expected_rows(drives).num_rows
    return folder


def test_read_back_by_pyarrow(drives: Path, converted: Path) -> None:
    expected = expected_rows(drives)
    assert expected.num_rows > 10_000
    assert_same(plain(read(converted), expected), expected)


def test_read_back_by_polars(drives: Path, converted: Path) -> None:
    expected = expected_rows(drives)
    found = polars.scan_parquet(converted, hive_partitioning=True).collect()
    assert_same(plain(found.to_arrow(), expected), expected)


def test_read_back_by_duckdb(drives: Path, converted: Path) -> None:
    expected = expected_rows(drives)
    found = duckdb.sql(
        f"from read_parquet('{converted}/*/*.parquet', hive_partitioning = true)"
    ).to_arrow_table()
    assert_same(plain(found, expected), expected)


def test_schema_has_units_and_types(converted: Path) -> None:
    schema = ds.dataset(converted, partitioning="hive").schema
    whole = pa.table(sd.read_records(b"")).schema
    assert schema.names == [*whole.names, "file"]
    for info in sd.columns():
        field = schema.field(info.name)
        assert field.type == whole.field(info.name).type
        assert field.metadata[b"description"].decode() == info.description
        assert field.metadata.get(b"unit", b"").decode() == info.unit


def test_a_stretch_is_a_file_under_the_name_of_its_source(drives: Path, converted: Path) -> None:
    names = {unquote(path.name).removeprefix("file=") for path in converted.iterdir()}
    assert names == {path.name for path in drives.glob("*.rec")}
    for source in drives.glob("*.rec"):
        parts = [
            p for p in converted.glob("*/*") if unquote(p.parent.name) == f"file={source.name}"
        ]
        begins = range(0, max(source.stat().st_size, 1), 150_000)
        assert sorted(p.name for p in parts) == [f"part-{begin:020}.parquet" for begin in begins]
        for part in parts:
            begin = int(part.stem.removeprefix("part-"))
            offsets = pq.read_table(part, columns=["offset"], partitioning=None)[
                "offset"
            ].to_pylist()
            assert all(begin <= offset < begin + 150_000 for offset in offsets)


def test_a_second_run_writes_nothing(drives: Path, converted: Path) -> None:
    before = {path: path.stat() for path in converted.glob("*/*")}
    progress = parquet.to_parquet(drives, converted, stretch=150_000)
    assert progress.stretches_kept == progress.stretches == len(before)
    assert progress.size_kept == progress.size_done == progress.size
    assert progress.rows == read(converted).num_rows
    assert {path: path.stat() for path in converted.glob("*/*")} == before


def test_columns_and_workers(drives: Path, tmp_path: Path) -> None:
    names = ["offset", "list_entries", "time_utc", "hdop", "status_bit_0"]
    expected = expected_rows(drives, columns=names)
    for workers in (1, 3):
        parquet.to_parquet(drives, tmp_path / str(workers), names, stretch=90_000, workers=workers)
        found = read(tmp_path / str(workers))
        assert set(found.column_names) == {*names, "file"}
        assert_same(plain(found, expected), expected)
    with pytest.raises(KeyError, match="no column"):
        parquet.to_parquet(drives, tmp_path / "none", ["hdob"])
    assert not (tmp_path / "none").exists()


def test_frames_left_out_are_counted_also_those_that_were_there(
    tmp_path: Path, samples: list[bytes]
) -> None:
    # Only magic, length, type and checksum: the frame has no room for times.
    damaged = struct.pack("<HHBH", 44700, 5, 113, -(5 + 113) & 0xFFFF)
    (tmp_path / "a.rec").write_bytes(samples[0] + damaged + samples[1] + damaged)
    for kept in (0, 1):
        progress = parquet.to_parquet(tmp_path / "a.rec", tmp_path / "out")
        assert (progress.left_out, progress.stretches_kept) == (2, kept)
        assert progress.rows == 414 + 380


def test_a_changed_file_is_written_anew(tmp_path: Path, samples: list[bytes]) -> None:
    archive, out = tmp_path / "archive", tmp_path / "out"
    archive.mkdir()
    (archive / "a.rec").write_bytes(samples[0] * 5)
    (archive / "b.rec").write_bytes(samples[1])
    parquet.to_parquet(archive, out, stretch=100_000)
    for content in (samples[0] * 6, samples[1]):  # it grows, it shrinks
        (archive / "a.rec").write_bytes(content)
        progress = parquet.to_parquet(archive, out, stretch=100_000)
        assert progress.stretches_kept == 1  # b.rec
        expected = expected_rows(archive)
        assert_same(plain(read(out), expected), expected)


def test_other_stretches_and_columns_replace_what_is_there(drives: Path, tmp_path: Path) -> None:
    for stretch, columns in ((100_000, None), (170_000, None), (170_000, ["offset", "pdop"])):
        progress = parquet.to_parquet(drives, tmp_path, columns, stretch=stretch)
        assert progress.stretches_kept == 0
        expected = expected_rows(drives, columns=columns)
        found = read(tmp_path)
        assert set(found.column_names) == set(expected.column_names)
        assert_same(plain(found, expected), expected)


def test_what_is_not_whole_is_written_anew(drives: Path, tmp_path: Path) -> None:
    parquet.to_parquet(drives / "valley.rec", tmp_path, stretch=500_000)
    parts = sorted(tmp_path.glob("*/*.parquet"))
    parts[1].write_bytes(parts[1].read_bytes()[:-10])
    parts[2].write_bytes(b"")
    parts[3].unlink()
    (parts[0].parent / ".part-1.parquet.tmp").write_bytes(b"begun")
    progress = parquet.to_parquet(drives / "valley.rec", tmp_path, stretch=500_000)
    assert progress.stretches - progress.stretches_kept == 3
    assert sorted(tmp_path.glob("*/*")) == parts
    assert read(tmp_path).num_rows == 20 * 414


def test_two_runs_into_one_folder(drives: Path, tmp_path: Path) -> None:
    errors: list[BaseException] = []

    def again(_: parquet.Progress) -> None:
        with pytest.raises(BlockingIOError, match="another run") as error:
            parquet.to_parquet(drives, tmp_path)
        errors.append(error.value)

    parquet.to_parquet(drives, tmp_path, report=again)
    assert len(errors) == 6  # before the first stretch and after each


def test_names_are_not_confused(tmp_path: Path, samples: list[bytes]) -> None:
    for name, sample in zip(("2020", "2021"), samples, strict=True):
        (tmp_path / name).mkdir()
        (tmp_path / name / "drive.rec").write_bytes(sample)
    with pytest.raises(ValueError, match="same name"):
        parquet.to_parquet([tmp_path / "2020", tmp_path / "2021"], tmp_path / "out")
    parquet.to_parquet(tmp_path, tmp_path / "out", pattern="**/*.rec")
    counts = Counter(read(tmp_path / "out")["file"].to_pylist())
    assert counts == {"2020/drive.rec": 414, "2021/drive.rec": 380}


# ----- Killed


def test_killed_at_every_step_it_goes_on_where_it_was(drives: Path, tmp_path: Path) -> None:
    expected = expected_rows(drives)
    script = Path(__file__).with_name("killed_runs.py")
    command = [sys.executable, "-P", str(script), str(drives), str(tmp_path / "out")]
    output = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    runs = [[int(number) for number in line.split()] for line in output.splitlines()]
    signals, whole, rows = zip(*runs, strict=True)
    assert set(signals[:-1]) == {signal.SIGKILL}
    assert signals[-1] == 0
    assert len(runs) > 20
    assert list(whole) == sorted(whole), "complete files are kept"
    assert len(set(whole)) > 10
    assert max(rows) == rows[-1] == expected.num_rows
    assert_same(plain(read(tmp_path / "out"), expected), expected)
    assert not list((tmp_path / "out").glob("*/.*"))


def test_killed_from_outside(tmp_path: Path, make_archive: Callable[[int], Path]) -> None:
    archive = make_archive(6_000_000)
    command = [sys.executable, "-P", "-m", "surveydata", "to-parquet", str(archive)]
    command += ["-o", str(tmp_path / "out"), "--stretch", "100kB"]
    for parts in (1, 5, 20):
        process = subprocess.Popen(command, stderr=subprocess.DEVNULL)
        while process.poll() is None and len(list(tmp_path.glob("out/*/*.parquet"))) < parts:
            time.sleep(0.001)
        process.kill()
        process.wait()
    result = subprocess.run(command, capture_output=True, text=True, check=True)
    expected = expected_rows(archive)
    assert result.stderr.startswith(f"{expected.num_rows:,} measurements of 1 file in 62 Parquet")
    assert_same(plain(read(tmp_path / "out"), expected), expected)


# ----- The command


def test_the_command_says_what_it_did(
    drives: Path, tmp_path: Path, capsys: pytest.CaptureFixture[str]
) -> None:
    out = str(tmp_path / "out")
    for kept in (0, 5):
        assert __main__.main(["to-parquet", str(drives), "-o", out]) == 0
        printed = capsys.readouterr()
        assert printed.out == ""
        rows = expected_rows(drives).num_rows
        assert printed.err.startswith(
            f"{rows:,} measurements of 5 files in 5 Parquet files, {kept} of them present before; "
            "0 frames left out; "
        )


def test_progress_on_a_terminal(
    drives: Path, tmp_path: Path, capsys: pytest.CaptureFixture[str], monkeypatch: Any
) -> None:
    monkeypatch.setattr(sys.stderr, "isatty", lambda: True, raising=False)
    assert __main__.main(["to-parquet", str(drives), "-o", str(tmp_path / "out")]) == 0
    shown = capsys.readouterr().err.split("\r")
    assert [line.split(" stretches")[0] for line in shown[1:]] == [f"{n} of 5" for n in range(6)]


@pytest.mark.parametrize(
    ("arguments", "code", "message"),
    [
        (["none.rec", "-o", "out"], 3, "No such file"),
        (["{drives}", "-o", "{drives}/valley.rec"], 3, "File exists"),
        (["{drives}", "-o", "out", "--columns", "hdob"], 2, "no column 'hdob'"),
        (["{drives}", "{drives}", "-o", "out"], 2, "same name"),
    ],
)
def test_what_cannot_be_done(
    drives: Path,
    tmp_path: Path,
    capsys: pytest.CaptureFixture[str],
    monkeypatch: pytest.MonkeyPatch,
    arguments: list[str],
    code: int,
    message: str,
) -> None:
    monkeypatch.chdir(tmp_path)
    filled = [argument.format(drives=drives) for argument in arguments]
    assert __main__.main(["to-parquet", *filled]) == code
    assert message in capsys.readouterr().err


@pytest.mark.parametrize(
    "arguments",
    [
        [],
        ["to-parquet"],
        ["to-parquet", "a", "-o", "b", "--stretch", "0"],
        ["to-parquet", "a", "-o", "b", "--workers", "0"],
        ["to-parquet", "a", "-o", "b", "--stretch", "1TB"],
    ],
)
def test_wrong_usage(arguments: list[str], capsys: pytest.CaptureFixture[str]) -> None:
    with pytest.raises(SystemExit) as error:
        __main__.main(arguments)
    assert error.value.code == 2
    assert "usage: python -m surveydata" in capsys.readouterr().err


def test_sizes() -> None:
    sizes = [__main__._size(text) for text in ("17", "2kB", "64MB", "3GB")]
    assert sizes == [17, 2_000, 64_000_000, 3_000_000_000]
