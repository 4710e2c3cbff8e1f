import contextlib
import errno
import gc
import io
import itertools
import json
import mmap
import os
import random
import shutil
import subprocess
import sys
import threading
from collections.abc import Callable
from pathlib import Path
from typing import Any

import duckdb
import numpy as np
import pandas as pd
import polars
import pyarrow as pa
import pytest
from hypothesis import given
from hypothesis import strategies as st

import surveydata as sd

SAMPLES = ["valley_drive", "desert_highway"]
COUNTS = {"valley_drive": 414, "desert_highway": 380}


def expected(data: Path, name: str) -> list[dict[str, Any]]:
    lines = (data / f"{name}.expected.jsonl").read_text(encoding="utf-8").splitlines()
    return [json.loads(line) for line in lines]


def as_text(units: str) -> str | None:
    """Unpaired surrogates become U+FFFD; an empty text is absent."""
    text = units.encode("utf-16", "surrogatepass").decode("utf-16", "replace")
    return text or None


def single(number: float) -> float:
    return float(np.float32(number))


def row_of(line: dict[str, Any]) -> dict[str, Any]:
    """The row that follows from a line by the README of the samples."""
    got, has = line["getters"], line["measurement"]
    is_set = lambda bit: has["setMask"] & bit != 0  # noqa: E731
    pair = lambda name: got[name] or (None, None)  # noqa: E731
    dops = got["dops"] or dict.fromkeys(("hdop", "vdop", "tdop", "pdop", "gdop"))
    antenna = has["antennaHeight"]
    extra = has["extraTime"] if has["extraTimeCount"] else (None, None)
    row: dict[str, Any] = {
        "offset": line["offset"],
        "size": line["size"],
        "name": as_text(line["info"]["name"]),
        "number": line["info"]["number"],
        "kind_zero": line["info"]["flags"] & 1 != 0,
        "kind_non_zero": line["info"]["flags"] & 2 != 0,
        "gps_week": has["timeA"][0],
        "time_of_week": has["timeA"][1],
        "time_b_of_week": has["timeB"],
        "extra_gps_week": extra[0],
        "extra_time_of_week": extra[1],
        "word_16": has["word16"] if is_set(0x20) else None,
        "flag_a": has["flagA"] != 0,
        "flag_e": has["flagE"] != 0,
        "antenna_height": single(antenna["height"]) if is_set(0x2) else None,
        "antenna_is_vertical": antenna["isVertical"] if is_set(0x2) else None,
        "value_h": has["valueH"] if is_set(0x100) else None,
        "value_i": has["valueI"] if is_set(0x200) else None,
        "list_head": has["listBlock"]["head"] if is_set(0x400) else None,
        "list_entries": has["listBlock"]["entries"] if is_set(0x400) else None,
        **{f"value_{key}": has[f"value{key.upper()}"] for key in "bdfg"},
        "value_c": has["valueC"] or None,
        **{f"text_{key}": as_text(has[f"text{key.upper()}"]) for key in "abcd"},
        **{f"status_bit_{i}": got["statusBits"][i] for i in range(4)},
        **{f"system_{i}_used": got[f"system{i}Used"] for i in (1, 2, 3)},
        "value_0": has["values"][0] if has["valueCount"] > 0 else None,
        "value_1": has["values"][1] if has["valueCount"] > 1 else None,
    }
    for name, column in (("total", "total"), *((f"system{i}", f"system_{i}") for i in (1, 2, 3))):
        row[f"{column}_first"], row[f"{column}_second"] = pair(f"{name}Pair")
    for axis, value in zip("xyz", has["vector"], strict=True):
        row[f"vector_{axis}"] = value if is_set(0x10) else None
    for name in ("hdop", "vdop", "tdop", "pdop", "gdop"):  # not available if below 0
        row[name] = None if dops[name] is None or dops[name] < 0 else dops[name]
    return row


# Texts of times have a separate test; the others are not in frames.
NOT_IN_THE_LINES = {
    "time_gps",
    "time_utc",
    "extra_time_gps",
    "extra_time_utc",
    "antenna_horizontal_offset",
    "antenna_vertical_height",
}


@pytest.mark.parametrize("name", SAMPLES)
def test_every_value_of_the_samples(data: Path, name: str) -> None:
    table = sd.read_records(data / f"{name}.rec")
    lines = expected(data, name)
    assert len(table) == len(lines) == COUNTS[name]
    rows = [row_of(line) for line in lines]
    assert set(rows[0]) == set(table.columns) - NOT_IN_THE_LINES
    frame = pa.table(table)
    for column in rows[0]:
        wanted = [row[column] for row in rows]
        values, valid = table.column(column)
        if column in ("list_entries",):
            got = [None if value is None else value.tolist() for value in values]
        else:
            got = values.tolist()
        if valid is not None:
            got = [value if there else None for value, there in zip(got, valid, strict=True)]
        assert got == wanted, column
        assert frame.column(column).to_pylist() == wanted, column


def test_times_follow_from_weeks(data: Path) -> None:
    table = sd.read_records(
        data / "valley_drive.rec", ["gps_week", "time_of_week", "time_gps", "time_utc"]
    )
    start = np.datetime64("1980-01-06T00:00:00.000", "ms")
    weeks, times = table.column("gps_week").values, table.column("time_of_week").values
    moments = start + (weeks.astype(np.int64) * 604_800_000 + times).astype("timedelta64[ms]")
    assert table["time_gps"].tolist() == [str(moment) for moment in moments]
    leap = np.timedelta64(18, "s")
    assert table["time_utc"].tolist() == [str(m - leap) for m in moments]
    assert not table.has_times_after_expiry


# ----- Sources


def same(a: sd.RecordTable, b: sd.RecordTable) -> bool:
    return bool(pa.table(a).combine_chunks().equals(pa.table(b).combine_chunks()))


class OneByOne(io.RawIOBase):
    """A stream that cannot seek and returns fewer bytes than requested."""

    def __init__(self, data: bytes) -> None:
        self._left = data

    def read(self, size: int = -1) -> bytes:
        part, self._left = self._left[: min(size, 777)], self._left[min(size, 777) :]
        return part

    def readable(self) -> bool:
        return True

    def seekable(self) -> bool:
        return False


def test_every_kind_of_source_gives_the_same(data: Path) -> None:
    path = data / "valley_drive.rec"
    content = path.read_bytes()
    whole = sd.read_records(path)
    with path.open("rb") as file, path.open("rb") as raw:
        mapped = mmap.mmap(raw.fileno(), 0, access=mmap.ACCESS_READ)
        sources = [
            str(path),
            content,
            bytearray(content),
            memoryview(content),
            np.frombuffer(content, np.uint8),
            mapped,
            io.BytesIO(content),
            file,
            OneByOne(content),
        ]
        for source in sources:
            assert same(sd.read_records(source), whole), type(source)
        mapped.close()
    with pytest.raises(ValueError, match="gaps"):
        sd.read_records(memoryview(content)[::2])
    with pytest.raises(TypeError, match="not int"):
        sd.read_records(5)
    with pytest.raises(TypeError):
        sd.read_records(io.StringIO("text"))


def test_a_file_object_is_read_from_where_it_is(data: Path) -> None:
    content = (data / "valley_drive.rec").read_bytes()
    file = io.BytesIO(b"x" * 1000 + content)
    file.seek(1000)
    assert same(sd.read_records(file), sd.read_records(content))


def test_folders_and_several_files(data: Path, tmp_path: Path) -> None:
    for name in SAMPLES:
        shutil.copy(data / f"{name}.rec", tmp_path)
    (tmp_path / "notes.txt").write_text("no record")
    (tmp_path / "sub.rec").mkdir()
    table = sd.read_records(tmp_path, ["offset", "hdop"])
    assert [(path.name, rows) for path, rows in table.sources] == [
        ("desert_highway.rec", 380),
        ("valley_drive.rec", 414),
    ]
    both = [data / f"{name}.rec" for name in sorted(SAMPLES)]
    assert same(table, sd.read_records(both, ["offset", "hdop"]))
    assert len(sd.read_records(tmp_path, ["offset"], pattern="v*")) == 414
    assert len(sd.read_records([])) == 0
    assert sum(len(batch) for batch in sd.iter_batches(tmp_path, rows=100)) == 794
    first = table.filter(np.arange(794) < 390)
    assert [rows for _, rows in first.sources] == [380, 10]


@given(
    cuts=st.lists(st.integers(0, 95_000), max_size=6),
    damage=st.lists(st.integers(0, 94_000), max_size=6),
)
def test_stretches_join_to_the_whole(cuts: list[int], damage: list[int]) -> None:
    content = bytearray((Path(__file__).parents[2] / "tests/data/valley_drive.rec").read_bytes())
    for place in damage:
        content[place] ^= 0x55
    ends = [0, *sorted(cuts), None]
    parts = [
        sd.read_records(bytes(content), ["offset", "name"], start=begin, end=end)
        for begin, end in itertools.pairwise(ends)
    ]
    whole = sd.read_records(bytes(content), ["offset", "name"])
    offsets = np.concatenate([part.column("offset").values for part in parts])
    assert offsets.tolist() == whole.column("offset").values.tolist()
    assert sum(part.left_out for part in parts) == whole.left_out


def test_what_cannot_be_read(data: Path, tmp_path: Path) -> None:
    with pytest.raises(FileNotFoundError) as none:
        sd.read_records(tmp_path / "none.rec")
    assert none.value.filename == str(tmp_path / "none.rec")
    with pytest.raises(FileNotFoundError):
        next(sd.iter_batches(tmp_path / "none.rec"))
    with pytest.raises(KeyError, match="'pdob'"):
        sd.read_records(data / "valley_drive.rec", ["pdob"])
    with pytest.raises(KeyError, match="'pdob'"):
        sd.iter_batches(data / "valley_drive.rec", ["pdob"])
    with pytest.raises(ValueError, match="twice"):
        sd.read_records(data / "valley_drive.rec", ["hdop", "hdop"])
    with pytest.raises(ValueError, match="not below 0"):
        sd.read_records(data / "valley_drive.rec", start=-1)
    with pytest.raises(ValueError, match="below 2"):
        sd.read_records(data / "valley_drive.rec", end=2**64)
    with pytest.raises(ValueError, match="at least one row"):
        sd.iter_batches(data / "valley_drive.rec", rows=0)
    with pytest.raises(ValueError, match="as a whole"):
        sd.read_records(OneByOne(b""), start=5)
    if os.geteuid() != 0:
        secret = tmp_path / "secret.rec"
        secret.touch(mode=0)
        with pytest.raises(PermissionError):
            sd.read_records(secret)


@pytest.mark.skipif(not Path("/proc/self/mem").exists(), reason="Linux")
def test_a_file_that_cannot_be_read_raises() -> None:
    # The first page of a process is not mapped.
    for read in (sd.read_records, sd.find_damage, lambda path: list(sd.iter_batches(path))):
        with pytest.raises(OSError, match=os.strerror(errno.EIO)):
            read("/proc/self/mem")


def test_a_pipe_is_read_as_a_whole(data: Path, tmp_path: Path) -> None:
    pipe = tmp_path / "pipe.rec"
    os.mkfifo(pipe)
    content = (data / "valley_drive.rec").read_bytes()
    writer = threading.Thread(target=pipe.write_bytes, args=(content,))
    writer.start()
    table = sd.read_records(pipe)
    writer.join()
    assert len(table) == 414

    def write_until_nobody_reads() -> None:
        with contextlib.suppress(BrokenPipeError):
            pipe.write_bytes(content)

    writer = threading.Thread(target=write_until_nobody_reads)
    writer.start()
    with pytest.raises(ValueError, match="as a whole"):
        sd.read_records(pipe, start=5)
    writer.join()


def test_an_exception_of_a_file_object_comes_through() -> None:
    class Fails(io.BytesIO):
        def read(self, _size: int | None = -1) -> bytes:
            raise OSError(errno.EIO, "the cable")

    with pytest.raises(OSError, match="the cable"):
        sd.read_records(Fails(b"x" * 100))

    class Interrupted(io.BytesIO):
        def read(self, _size: int | None = -1) -> bytes:
            raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        sd.read_records(Interrupted(b"x" * 100))

    class TooMuch(io.BytesIO):
        def read(self, size: int | None = -1) -> bytes:
            return b"x" * ((size or 0) + 1)

    with pytest.raises(ValueError, match="more bytes than requested"):
        sd.read_records(TooMuch(b"x" * 100))

    class NotReady(OneByOne):
        def read(self, _size: int = -1) -> bytes:
            return None  # type: ignore[return-value]

    with pytest.raises(BlockingIOError):
        sd.read_records(NotReady(b""))


def test_names_of_files_are_those_of_python(data: Path, tmp_path: Path) -> None:
    content = (data / "valley_drive.rec").read_bytes()
    path = tmp_path / os.fsdecode(b"S\xfcd.rec")  # not UTF-8
    path.write_bytes(content)
    whole = sd.read_records(content)
    assert same(sd.read_records(path), whole)
    assert same(sd.read_records(tmp_path), whole)
    sd.append(path, content[854:894])
    sd.append(os.fsencode(path), content[854:894])
    assert len(sd.read_records(str(path))) == 416
    assert sd.set_record(path, 960, number=4321)
    assert sd.set_records(path, number=4321).alike >= 1
    assert list(tmp_path.iterdir()) == [path]
    for refused in (
        lambda name: sd.read_records(name),
        lambda name: sd.append(name, content[854:894]),
        lambda name: sd.set_record(name, 960, number=1),
        lambda name: sd.set_records(name, number=1),
    ):
        with pytest.raises(ValueError, match="null byte"):
            refused(f"{path}\0x")
    with pytest.raises(FileNotFoundError):
        sd.read_records(tmp_path / os.fsdecode(b"\xfc.rec"))


def test_arrays_of_paths_are_paths(data: Path) -> None:
    names = [str(data / f"{name}.rec") for name in SAMPLES]
    whole = sd.read_records(names, ["offset"])
    assert len(whole) == 794
    for array in (np.array(names), np.array(names, dtype=object)):
        assert same(sd.read_records(array, ["offset"]), whole)
    with pytest.raises(TypeError, match=r"\['pdop'\]"):
        sd.read_records(names[0], "pdop")
    with pytest.raises(ValueError, match="expected one file, not 2"):
        sd.find_damage(names)


def test_a_file_object_cannot_keep_the_memory_of_the_reader() -> None:
    class Fails(io.BytesIO):
        def read(self, _size: int | None = -1) -> bytes:
            raise OSError(errno.EIO, "the cable")

    with pytest.raises(OSError, match="the cable") as failure:
        sd.read_records(Fails(b"x" * 100))
    memories = []
    place = failure.value.__traceback__
    while place is not None:
        memories += [m for m in place.tb_frame.f_locals.values() if isinstance(m, memoryview)]
        place = place.tb_next
    assert memories
    for memory in memories:
        with pytest.raises(ValueError, match="released"):
            bytes(memory)


# ----- Tables


def test_a_batch_has_a_limit(data: Path) -> None:
    for rows in (2**61, 2**61 + 1, 2**64):  # sizes in bytes would exceed 64 bits
        (table,) = sd.iter_batches(data / "valley_drive.rec", ["offset"], rows=rows)
        assert len(table) == 414


def test_rows_are_kept_by_bools(data: Path) -> None:
    table = sd.read_records(data / "valley_drive.rec", ["offset", "name"])
    for numbers in (np.arange(414), np.full(414, np.nan), np.full(414, "False")):
        with pytest.raises(TypeError, match="one bool for each row"):
            table.filter(numbers)
    keep = np.arange(414) % 3 == 0
    odd = (keep * np.uint8(6)).view(np.bool_)  # true, but not 1
    for same_rows in (keep, odd, keep.tolist(), keep.astype(object)):
        assert same(table.filter(same_rows), table.filter(keep))
        assert len(table.filter(same_rows)) == 138


CHILDREN = """
import os, signal, sys, threading
import surveydata as sd

content = open(sys.argv[1], "rb").read() * 40
def work():
    while True:
        del_at_once = [sd.read_records(content, sd.FIXED_WIDTH) for _ in range(8)]
for _ in range(2):
    threading.Thread(target=work, daemon=True).start()
for _ in range(5):
    child = os.fork()
    if child == 0:
        signal.alarm(60)
        os._exit(len(sd.read_records(content, sd.FIXED_WIDTH)) != 40 * 414)
    assert os.waitpid(child, 0)[1] == 0
os._exit(0)
"""


def test_child_processes_read_while_threads_read(data: Path) -> None:
    path = data / "valley_drive.rec"
    subprocess.run([sys.executable, "-P", "-c", CHILDREN, path], check=True)


def test_batches_join_to_the_table(data: Path) -> None:
    path = data / "valley_drive.rec"
    whole = sd.read_records(path)
    for rows in (1, 7, 8, 414, 10_000):
        tables = list(sd.iter_batches(path, rows=rows))
        assert [len(table) for table in tables[:-1]] == [rows] * (len(tables) - 1)
        assert (
            pa.concat_tables(pa.table(t) for t in tables)
            .combine_chunks()
            .equals(pa.table(whole).combine_chunks())
        )


def test_long_texts_end_a_batch_early_and_are_whole(data: Path) -> None:
    frame = sd.read_records(data / "valley_drive.rec", ["offset", "size", "text_b"])
    longest = int(np.argmax([len(text or "") for text in frame.column("text_b").values]))
    offset, size = (int(frame.column(name).values[longest]) for name in ("offset", "size"))
    record = (data / "valley_drive.rec").read_bytes()[offset : offset + size]
    text = frame.column("text_b").values[longest]
    tables = list(sd.iter_batches(record * 1000, ["text_b"], rows=4))
    assert sum(len(table) for table in tables) == 1000
    assert all(value == text for table in tables for value in table.column("text_b").values)


def test_where_keeps_what_it_says(data: Path) -> None:
    path = data / "valley_drive.rec"
    whole = pa.table(sd.read_records(path))
    some = sd.read_records(path, where=lambda table: table["pdop"] < 1.5)
    values, valid = sd.read_records(path).column("pdop")
    assert valid is not None
    keep = (values < 1.5) & valid
    assert 0 < keep.sum() < 414
    assert pa.table(some).combine_chunks().equals(whole.filter(pa.array(keep)).combine_chunks())
    assert some.sources[0][1] == len(some) == keep.sum()
    nothing = sd.read_records(path, where=lambda table: np.zeros(len(table), bool))
    assert len(nothing) == 0
    assert pa.table(nothing).schema.equals(whole.schema)
    assert all(column.values.size == 0 for column in nothing.to_numpy().values())
    with pytest.raises(ValueError, match="414 rows"):
        sd.read_records(path).filter(np.ones(3, bool))


@given(seed=st.integers(0, 10_000))
def test_filtering_is_that_of_arrow(seed: int) -> None:
    table = sd.read_records(Path(__file__).parents[2] / "tests/data/valley_drive.rec")
    rng = random.Random(seed)
    chance = rng.random()
    keep = np.array([rng.random() < chance for _ in range(len(table))])
    filtered = pa.table(table.filter(keep))
    filtered.validate(full=True)
    assert filtered.combine_chunks().equals(pa.table(table).filter(pa.array(keep)).combine_chunks())


def test_other_libraries_read_it(data: Path) -> None:
    table = sd.read_records(data / "valley_drive.rec")
    pa.table(table).validate(full=True)
    assert polars.DataFrame(table).shape == (414, 60)
    names = polars.DataFrame(table)["name"].to_list()
    assert names == pa.table(table).column("name").to_pylist()
    pandas_frame = table.to_pandas()
    assert pandas_frame.shape == (414, 60)
    table_ = table  # DuckDB finds the variable by its name
    assert len(table_) == 414
    assert pandas_frame["hdop"].isna().sum() == pa.table(table).column("hdop").null_count
    (row,) = duckdb.sql('select count(*), count(hdop), min("offset") from table_').fetchall()
    assert row == (414, 414 - pandas_frame["hdop"].isna().sum(), 854)


def test_other_libraries_share_the_memory_of_the_table(data: Path) -> None:
    table = sd.read_records(data / "valley_drive.rec")
    address = lambda values: values.__array_interface__["data"][0]  # noqa: E731
    offsets = address(table.column("offset").values)
    (chunk,) = pa.table(table).column("offset").chunks
    assert chunk.buffers()[1].address == offsets
    assert address(polars.DataFrame(table)["offset"].to_numpy(allow_copy=False)) == offsets
    frame = pa.table(table).to_pandas(types_mapper=pd.ArrowDtype)
    (chunk,) = frame["offset"].array.__arrow_array__().chunks
    assert chunk.buffers()[1].address == offsets


def test_schema_has_units_and_meanings(data: Path) -> None:
    schema = pa.table(sd.read_records(data / "valley_drive.rec")).schema
    for info in sd.columns():
        field = schema.field(info.name)
        metadata = dict(field.metadata)
        assert metadata.pop(b"description") == info.description.encode()
        assert metadata.pop(b"unit", b"") == info.unit.encode()
        assert (b"leap_seconds" in metadata) == info.name.endswith("_utc")
        assert field.nullable == info.can_be_absent
        kind = {"text": "large_string", "list of uint16": "large_list<item: uint16 not null>"}
        assert str(field.type).replace("float", "float") in (
            kind.get(info.type, info.type),
            {"float32": "float", "float64": "double"}.get(info.type, ""),
        )
    assert schema.field("antenna_height").metadata[b"unit"] == b"m"
    assert b"leap_seconds_expire" in schema.metadata


def test_arrays_outlive_their_table(data: Path) -> None:
    content = (data / "valley_drive.rec").read_bytes()
    offsets = [line["offset"] for line in expected(data, "valley_drive")]
    table = sd.read_records(content, ["offset", "name"])
    values = table.column("offset").values
    arrow = pa.table(table)
    stream = table.__arrow_c_stream__()  # never consumed
    del table
    gc.collect()
    assert values.tolist() == offsets
    assert not values.flags.writeable
    assert arrow.column("offset").to_pylist() == offsets
    del stream
    gc.collect()
    part = arrow.column("name").chunk(0)
    del arrow
    gc.collect()
    assert len(part.to_pylist()) == 414


BATCHES_OF_A_LARGE_FILE = """
import resource, sys
import surveydata as sd

class Repeated:  # a stream that is in memory once
    def __init__(self, data, times):
        self.data, self.left, self.at = data, times, 0
    def seekable(self):
        return False
    def read(self, size):
        if self.left == 0:
            return b""
        part = self.data[self.at : self.at + size]
        self.at += len(part)
        if self.at == len(self.data):
            self.left, self.at = self.left - 1, 0
        return part

data = open(sys.argv[1], "rb").read()
def peak(times):
    rows = sum(len(table) for table in sd.iter_batches(Repeated(data, times), rows=1000))
    assert rows == 414 * times, rows
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
few = peak(20)
print(peak(1000) - few)
"""


def test_batches_take_memory_for_one_batch(data: Path) -> None:
    path = data / "valley_drive.rec"
    grown = subprocess.run(
        [sys.executable, "-P", "-c", BATCHES_OF_A_LARGE_FILE, path],
        check=True,
        capture_output=True,
        text=True,
    ).stdout
    # In KiB; 92,000 KiB were read.
    assert int(grown) < 8_000


def test_a_table_says_what_it_is(data: Path) -> None:
    table = sd.read_records(data / "valley_drive.rec", ["hdop", "flag_a"])
    assert repr(table) == "<RecordTable: 414 rows, 2 columns>"
    assert table.columns == ["hdop", "flag_a"]
    assert isinstance(table["hdop"], np.ma.MaskedArray)
    assert not isinstance(table["flag_a"], np.ma.MaskedArray)
    assert set(table.to_numpy()) == {"hdop", "flag_a"}
    with pytest.raises(KeyError, match="no column 'vdop'"):
        table["vdop"]
    with pytest.raises(TypeError, match="made by read_records"):
        sd.RecordTable()
    assert set(sd.FIXED_WIDTH) < {info.name for info in sd.columns()}
    assert "name" not in sd.FIXED_WIDTH
    assert "hdop" in sd.FIXED_WIDTH


def test_other_threads_run_while_records_are_read(
    data: Path, steps_beside: Callable[[Callable[[], object]], int]
) -> None:
    content = (data / "valley_drive.rec").read_bytes() * 500
    assert steps_beside(lambda: sd.read_records(content, sd.FIXED_WIDTH)) > 1000


def test_several_threads_read_at_once(data: Path) -> None:
    path = data / "valley_drive.rec"
    whole = sd.read_records(path)
    tables: list[Any] = [None] * 4

    def read(i: int) -> None:
        tables[i] = sd.read_records(path)

    threads = [threading.Thread(target=read, args=(i,)) for i in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert all(same(table, whole) for table in tables)


# ----- Damage


@pytest.mark.parametrize("name", SAMPLES)
def test_gaps_and_other_records_are_those_of_the_index(data: Path, name: str) -> None:
    index = json.loads((data / f"{name}.index.json").read_text())
    damage = sd.find_damage(data / f"{name}.rec", others=True)
    rows = list(zip(*(column.tolist() for column in damage), strict=True))
    others = [(row[0], row[1], row[3]) for row in rows if row[2] == "other record"]
    assert others == [(entry["offset"], entry["size"], entry["type"]) for entry in index["others"]]
    gaps = [row[:2] for row in rows if row[2] == "gap"]
    assert gaps == [(entry["offset"], entry["size"]) for entry in index["padding"]]
    assert len(sd.find_damage(data / f"{name}.rec").offset) == len(rows) - len(others)


def test_damage_has_its_reason(data: Path) -> None:
    content = bytearray((data / "valley_drive.rec").read_bytes())
    lines = expected(data, "valley_drive")
    content[lines[5]["offset"] + 12] ^= 1
    damage = sd.find_damage(bytes(content[: lines[9]["offset"] + 20]))
    found = {
        int(at): kind for at, kind in zip(damage.offset, damage.kind, strict=True) if kind != "gap"
    }
    assert found[lines[5]["offset"]] == "wrong checksum"
    assert found[lines[9]["offset"]].startswith("cut")
    table = sd.read_records(bytes(content), ["offset"])
    assert len(table) == 413
    empty = sd.find_damage(b"")
    assert [column.size for column in empty] == [0, 0, 0, 0]


def seal(frame: bytearray) -> bytes:
    """Stores length and checksum of a frame; docs/record_frames.md has the rule."""
    frame[2:4] = (len(frame) - 2).to_bytes(2, "little")
    frame[-2:] = (-sum(frame[2:-2]) % 65_536).to_bytes(2, "little")
    return bytes(frame)


def test_frames_with_a_block_that_does_not_fit_are_left_out_and_counted(data: Path) -> None:
    line = expected(data, "valley_drive")[0]
    content = (data / "valley_drive.rec").read_bytes()
    frame = bytearray(content[line["offset"] : line["offset"] + line["size"]])
    assert seal(frame.copy()) == bytes(frame)
    whole = bytes(frame)
    bad = seal(frame[:-6])  # the last block is truncated
    table = sd.read_records(whole + bad + whole, ["offset"])
    assert table.column("offset").values.tolist() == [0, len(whole) + len(bad)]
    assert table.left_out == 1
    damage = sd.find_damage(whole + bad + whole)
    assert damage.offset.tolist() == [len(whole)]
    assert damage.size.tolist() == [len(bad)]
    assert damage.record_type.tolist() == [113]
    assert "block" in damage.kind[0]
    tables = list(sd.iter_batches(bad + whole + bad + whole, ["offset"], rows=1))
    assert [table.left_out for table in tables] == [1, 1]
    assert sd.read_records([bad + whole, whole, bad], ["offset"]).left_out == 2


# ----- Appending


def test_append_adds_whole_records(data: Path, tmp_path: Path) -> None:
    lines = expected(data, "valley_drive")
    content = (data / "valley_drive.rec").read_bytes()
    frames = [content[line["offset"] : line["offset"] + line["size"]] for line in lines[:3]]
    path = tmp_path / "new.rec"
    sd.append(path, frames[0])
    sd.append(str(path), bytearray(frames[1] + frames[2]))
    assert path.read_bytes() == b"".join(frames)
    for refused in (frames[0][:-1], b"x", frames[0] + b"x"):
        with pytest.raises(ValueError, match="record"):
            sd.append(path, refused)
    assert path.read_bytes() == b"".join(frames)
    with pytest.raises(FileNotFoundError):
        sd.append(tmp_path / "none" / "new.rec", frames[0])
    with pytest.raises(OSError, match="open") as folder:
        sd.append(tmp_path, frames[0])
    assert folder.value.filename == str(tmp_path)


# ----- Pictures


WITHOUT_ROOM = """
import os, resource, signal, sys
import surveydata as sd

signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
path = sys.argv[1]
size = os.path.getsize(path)
resource.setrlimit(resource.RLIMIT_FSIZE, (size + 100, resource.RLIM_INFINITY))
try:
    sd.append(path, open(sys.argv[2], "rb").read())
except OSError as error:
    print(error.errno)
"""


def test_append_that_fails_leaves_the_file_as_it_was(data: Path, tmp_path: Path) -> None:
    path = tmp_path / "full.rec"
    shutil.copy(data / "valley_drive.rec", path)
    content = (data / "desert_highway.rec").read_bytes()
    offset, size = (expected(data, "desert_highway")[0][name] for name in ("offset", "size"))
    (tmp_path / "record").write_bytes(content[offset : offset + size] * 100)
    command = [sys.executable, "-c", WITHOUT_ROOM, str(path), str(tmp_path / "record")]
    output = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    assert output == f"{errno.EIO}\n"
    assert path.read_bytes() == (data / "valley_drive.rec").read_bytes()


def test_the_picture_of_a_table_is_the_programs(data: Path) -> None:
    table = sd.read_records(data / "valley_drive.rec")
    picture = (data.parents[1] / "docs" / "pictures" / "valley_drive.svg").read_text()
    assert table.svg() == picture
    assert table._repr_svg_() == picture
    few = sd.read_records(data / "valley_drive.rec", sd.PICTURE)
    assert few.svg() == picture
    parts = sd.read_records(
        (data / "valley_drive.rec").read_bytes(), where=lambda rows: rows["offset"] > 0
    )
    assert parts.svg("valley_drive.rec") == picture


def test_what_cannot_be_drawn(data: Path) -> None:
    table = sd.read_records(data / "valley_drive.rec", ["hdop"])
    assert table._repr_svg_() is None
    with pytest.raises(ValueError, match="needs the column 'gps_week'"):
        table.svg()
    empty = sd.read_records(b"")
    assert empty._repr_svg_() is None
    with pytest.raises(ValueError, match="no measurement to draw"):
        empty.svg()
    several = sd.read_records([data / "valley_drive.rec", data / "desert_highway.rec"])
    assert "2 sources" in several.svg()


def test_the_size_of_batches_does_not_change_a_table(data: Path) -> None:
    content = (data / "valley_drive.rec").read_bytes()
    table = sd.read_records(content * 300)  # in one batch
    assert len(table._batches) == 1
    assert len(table) == 300 * 414
    values, _ = table.column("pdop")
    assert values.base is not None
    one, valid = sd.read_records(content).column("pdop")
    assert values.tolist() == one.tolist() * 300
    _, all_valid = table.column("pdop")
    assert valid is not None
    assert all_valid is not None
    assert all_valid.tolist() == valid.tolist() * 300
    pa.table(table).validate(full=True)


def test_memory_is_reused_when_no_array_refers_to_it(data: Path) -> None:
    contents = [
        (data / f"{name}.rec").read_bytes() * 40 for name in ("valley_drive", "desert_highway")
    ]
    kept = sd.read_records(contents[0], sd.FIXED_WIDTH).to_numpy()
    expected = {name: (values.copy(), valid) for name, (values, valid) in kept.items()}
    for _ in range(3):
        for content in contents:
            sd.read_records(content, sd.FIXED_WIDTH).to_numpy()
            assert 0 < sd._core.spare_bytes() <= 256 << 20
    for name, (values, valid) in expected.items():
        assert np.array_equal(kept[name].values, values, equal_nan=values.dtype.kind == "f"), name
        assert kept[name].valid is valid
    again = sd.read_records(contents[0], sd.FIXED_WIDTH).to_numpy()
    for name, (values, valid) in again.items():
        assert np.array_equal(values, expected[name][0], equal_nan=values.dtype.kind == "f"), name
        assert np.array_equal(valid, expected[name][1]), name


def test_little_memory_is_kept(data: Path) -> None:
    # Blocks of 14 MB, more of them than are kept.
    content = (data / "valley_drive.rec").read_bytes() * 160
    tables = [sd.read_records(content, sd.FIXED_WIDTH) for _ in range(24)]
    before = sd._core.spare_bytes()
    del tables
    assert before < sd._core.spare_bytes() <= 256 << 20
