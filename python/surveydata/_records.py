"""Record files of GNSS measurements as tables.

A table has a row for each measurement and a column for each of its fields: `columns()` lists them
with their types, units and meanings. Values are those that the getters of the library return; if
a getter returns nothing, the value is absent.
"""

from __future__ import annotations

import errno
import os
from collections.abc import Iterable
from pathlib import Path
from typing import TYPE_CHECKING, Any, NamedTuple, TypeAlias

import numpy as np

from . import _core
from ._stores import StoreFile, is_url, list_files, open_url

if TYPE_CHECKING:
    from collections.abc import Callable, Iterator, Sequence

    import pandas
    from numpy.typing import NDArray

Source: TypeAlias = Any
"""A path or URL of a file or of a folder, bytes, a binary file object, or an iterable of these."""

BATCH_ROWS = 65_536
_LARGEST_BATCH = 1 << 20
_BYTES_OF_A_ROW = 192
"""An estimate for frames in a file; only the sizes of batches depend on it."""


class ColumnInfo(NamedTuple):
    """The description of a column."""

    name: str
    type: str
    """ "bool", "uint8", ... "float64", "text" or "list of uint16"."""
    unit: str
    """Empty if the values have none."""
    can_be_absent: bool
    description: str


class Column(NamedTuple):
    """The values of a column, one for each row."""

    values: NDArray[Any]
    """Texts and lists are in an array of objects. Absent values are 0, False or None."""
    valid: NDArray[np.bool_] | None
    """Whether a row has a value; None if all rows have one."""


class DamageTable(NamedTuple):
    """The parts of a file that are not whole measurements, by ascending offset within each kind."""

    offset: NDArray[np.uint64]
    size: NDArray[np.uint64]
    """In bytes; for a damaged header the size that it announces."""
    kind: NDArray[np.object_]
    """ "gap", "other record", or what is wrong with a measurement."""
    record_type: NDArray[np.uint8]
    """0 for a gap."""


def columns() -> list[ColumnInfo]:
    """All columns in order. Look them up by name: later versions may have more."""
    return [ColumnInfo(*column) for column in _core.columns()]


_DTYPES = {
    name: np.dtype(name)
    for name in ("uint8", "uint16", "uint32", "uint64", "int32", "float32", "float64")
}
_INFOS = {info.name: info for info in columns()}
FIXED_WIDTH = tuple(
    name for name, info in _INFOS.items() if info.type in _DTYPES or info.type == "bool"
)
"""The columns that NumPy can hold without Python objects: numbers and flags."""

PICTURE = ("gps_week", "time_of_week", "hdop", "vdop", "total_first", "total_second")
"""The columns that the picture of a table shows."""


def _bits(packed: NDArray[np.uint8], count: int) -> NDArray[np.bool_]:
    return np.unpackbits(packed, count=count, bitorder="little").view(np.bool_)


class RecordTable:
    """Measurements as columns. A table never changes.

    It implements the Arrow PyCapsule protocol: `pyarrow.table(table)`, `polars.DataFrame(table)`
    and `duckdb.sql("from table")` read its memory without copying it.
    """

    __slots__ = ("_batches", "_left_out", "_names", "_sources", "_times_after_expiry")

    def __init__(self) -> None:
        raise TypeError("tables are made by read_records and iter_batches")

    _batches: list[_core.BatchCore]
    _names: list[str]
    _left_out: int
    _sources: list[tuple[Source, int]]
    _times_after_expiry: bool

    def __len__(self) -> int:
        return sum(batch.rows for batch in self._batches)

    @property
    def columns(self) -> list[str]:
        """The names of the columns."""
        return list(self._names)

    @property
    def left_out(self) -> int:
        """The number of frames left out because a block does not fit; `find_damage` lists them."""
        return self._left_out

    @property
    def has_times_after_expiry(self) -> bool:
        """Whether a time in UTC is after the expiry of the library's table of leap seconds."""
        return self._times_after_expiry

    @property
    def sources(self) -> list[tuple[Source, int]]:
        """The files that were read, in order, with the number of rows from each."""
        return list(self._sources)

    def column(self, name: str) -> Column:
        """The values of a column with their validity.

        Arrays of numbers are views of the table's memory if the table is one batch.
        """
        if name not in self._names:
            raise KeyError(f"the table has no column {name!r}")
        return self._columns([self._names.index(name)])[0]

    def _columns(self, places: Sequence[int]) -> list[Column]:
        bools = [batch.bools(places) for batch in self._batches]
        columns = []
        for i, at in enumerate(places):
            kind = _INFOS[self._names[at]].type
            parts: list[NDArray[Any]] = []
            valid: list[NDArray[np.bool_]] = []
            has_absent = any(batch.absent(at) for batch in self._batches)
            for batch, unpacked in zip(self._batches, bools, strict=True):
                flags, present = unpacked[i]
                parts.append(self._values(batch, at, kind) if flags is None else flags)
                if has_absent:
                    valid.append(np.ones(batch.rows, np.bool_) if present is None else present)
            if not parts:
                empty = np.bool_ if kind == "bool" else np.object_
                parts = [np.empty(0, _DTYPES.get(kind, empty))]
            values = parts[0] if len(parts) == 1 else np.concatenate(parts)
            if not has_absent:
                columns.append(Column(values, None))
            else:
                columns.append(
                    Column(values, valid[0] if len(valid) == 1 else np.concatenate(valid))
                )
        return columns

    @staticmethod
    def _values(batch: _core.BatchCore, at: int, kind: str) -> NDArray[Any]:
        values = batch.values(at)
        if kind in _DTYPES:
            numbers: NDArray[Any] = values.view(_DTYPES[kind])
            return numbers[: batch.rows]
        ends = batch.offsets(at).view(np.int64)[: batch.rows + 1].tolist()
        objects = np.empty(batch.rows, np.object_)
        valid = [True] * batch.rows
        if batch.absent(at):
            valid = _bits(batch.validity(at), batch.rows).tolist()
        if kind == "text":
            data = values.tobytes()
            for row in range(batch.rows):
                if valid[row]:
                    objects[row] = data[ends[row] : ends[row + 1]].decode()
        else:
            entries = values.view(np.uint16)
            for row in range(batch.rows):
                if valid[row]:
                    objects[row] = entries[ends[row] : ends[row + 1]]
        return objects

    def __getitem__(self, name: str) -> np.ma.MaskedArray[Any, Any] | NDArray[Any]:
        """The values of a column; absent values are masked."""
        values, valid = self.column(name)
        return values if valid is None else np.ma.MaskedArray(values, mask=~valid)

    def to_numpy(self) -> dict[str, Column]:
        """All columns with their validity.

        If the table is one batch, the arrays of numbers are views of its memory, and those of flags
        and validity share a separate block. An array keeps its whole block in memory.
        """
        columns = self._columns(range(len(self._names)))
        return dict(zip(self._names, columns, strict=True))

    def to_pandas(self) -> pandas.DataFrame:
        """A data frame; needs pandas and pyarrow (the extra `pandas`)."""
        import pyarrow

        frame: pandas.DataFrame = pyarrow.table(self).to_pandas()
        return frame

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        """The batches as a stream of the Arrow C stream interface, any number of times.

        A requested schema is ignored, as the protocol allows. Fields have the metadata
        "description" and, if they have one, "unit". Those in UTC also name the source of the leap
        seconds.
        """
        del requested_schema
        return _core.arrow_stream(self._names, self._batches)

    def filter(self, keep: NDArray[np.bool_]) -> RecordTable:
        """The rows for which `keep` is true."""
        keep = np.asarray(keep)
        if keep.size and keep.dtype.kind not in "bO":  # not numbers: they could be indices
            raise TypeError(f"expected one bool for each row, not {keep.dtype}")
        keep = np.ascontiguousarray(keep, dtype=np.bool_)
        if keep.shape != (len(self),):
            raise ValueError(f"expected one bool for each of the {len(self)} rows")
        batches, sources, begin = [], [], 0
        for batch in self._batches:
            batches.append(batch.filter(keep[begin : begin + batch.rows]))
            begin += batch.rows
        begin = 0
        for source, rows in self._sources:
            sources.append((source, int(keep[begin : begin + rows].sum())))
            begin += rows
        kept = [batch for batch in batches if batch.rows]
        return _table(kept, self._names, self._left_out, sources, self._times_after_expiry)

    def svg(self, title: str = "") -> str:
        """The picture of the program's `surveydata record plot`, as an SVG document: dilutions of
        precision and satellites over time.

        The default title is the name of the file. Raises ValueError if the table lacks a column of
        `PICTURE` or has no rows.
        """
        if missing := [name for name in PICTURE if name not in self._names]:
            raise ValueError(f"the picture needs the column {missing[0]!r}")
        if not title:
            sources = [source for source, _ in self._sources]
            named = len(sources) == 1 and isinstance(sources[0], str | os.PathLike)
            title = Path(sources[0]).name if named else f"{len(sources)} sources"
        picture = _core.draw_records(self._batches, title)
        if picture is None:
            raise ValueError("there is no measurement to draw")
        return picture

    def _repr_svg_(self) -> str | None:
        drawable = len(self) != 0 and set(PICTURE) <= set(self._names)
        return self.svg() if drawable else None

    def __repr__(self) -> str:
        rows = len(self)
        return f"<RecordTable: {rows} row{'s' if rows != 1 else ''}, {len(self._names)} columns>"


def _table(
    batches: list[_core.BatchCore],
    names: list[str],
    left_out: int,
    sources: list[tuple[Source, int]],
    times_after_expiry: bool,
) -> RecordTable:
    table = object.__new__(RecordTable)
    table._batches = batches
    table._names = names
    table._left_out = left_out
    table._sources = sources
    table._times_after_expiry = times_after_expiry
    return table


# ----- Sources


def _is_bytes(source: object) -> bool:
    if isinstance(source, np.ndarray) and source.dtype.kind in "OUT":
        return False  # paths
    try:
        memoryview(source).release()  # type: ignore[arg-type]
    except TypeError:
        return False
    return True


def _each_source(source: Source, pattern: str) -> Iterator[Source]:
    if is_url(source):
        for file in list_files(source, pattern):
            yield open_url(file.path)
    elif isinstance(source, str | os.PathLike):
        path = Path(source)
        if path.is_dir():
            yield from sorted(file for file in path.glob(pattern) if file.is_file())
        else:
            yield path
    elif _is_bytes(source) or hasattr(source, "read"):
        yield source
    elif isinstance(source, Iterable):
        for part in source:
            yield from _each_source(part, pattern)
    else:
        raise TypeError(
            "expected a path, bytes, a binary file object or an iterable of these, "
            f"not {type(source).__name__}"
        )


def _reader_of(file: Any) -> tuple[Callable[[int, memoryview], int], int]:
    """A function that reads a file object from its current position, and the size from there."""
    if not file.seekable():
        return lambda _offset, memory: _read_into(file, memory), 2**64 - 1
    start = file.tell()
    size = file.seek(0, os.SEEK_END) - start

    def read_at(offset: int, memory: memoryview) -> int:
        file.seek(start + offset)
        return _read_into(file, memory)

    return read_at, max(size, 0)


def _read_into(file: Any, memory: memoryview) -> int:
    data = file.read(len(memory))
    if data is None:
        raise BlockingIOError(errno.EAGAIN, "the file object has no bytes yet")
    if len(data) > len(memory):
        raise ValueError("the file object has returned more bytes than requested")
    memory[: len(data)] = data
    return len(data)


def check_stretch(start: int | None, end: int | None) -> int:
    """The offset where a stretch begins."""
    begin = start or 0
    if begin < 0 or (end is not None and end < 0):
        raise ValueError("start and end are offsets in bytes, not below 0")
    if max(begin, end or 0) >= 2**64:
        raise ValueError("start and end are offsets in bytes, below 2^64")
    return begin


def _open(source: Source, start: int | None, end: int | None) -> _core.ReaderCore:
    begin = check_stretch(start, end)
    if isinstance(source, Path):
        reader = _core.ReaderCore.open_file(os.fspath(source), begin, end)
    elif _is_bytes(source):
        reader = _core.ReaderCore.open_bytes(source, begin, end)
    else:
        if not source.seekable() and (begin != 0 or end is not None):
            raise ValueError("a file object that cannot seek can only be read as a whole")
        if isinstance(source, StoreFile):
            source.expect(end)
        reader = _core.ReaderCore.open_source(*_reader_of(source), begin, end)
    _check(reader, source)
    return reader


def _check(reader: _core.ReaderCore, source: Source) -> None:
    """Raises the exception for the state of the reader, if it is a failure."""
    state = reader.state
    if state == _core.ReaderState.OPEN:
        return
    if state == _core.ReaderState.NO_STRETCHES:
        raise ValueError("a pipe can only be read as a whole")
    number = {
        _core.ReaderState.NO_SUCH_FILE: errno.ENOENT,
        _core.ReaderState.NO_PERMISSION: errno.EACCES,
    }.get(state, errno.EIO)
    raise OSError(number, os.strerror(number), str(source))


# ----- Reading


def read_records(
    source: Source,
    columns: Sequence[str] | None = None,
    where: Callable[[RecordTable], NDArray[np.bool_]] | None = None,
    start: int | None = None,
    end: int | None = None,
    *,
    pattern: str = "*.rec",
) -> RecordTable:
    """The measurements of record files as one table.

    `source` is a path, bytes (anything with the buffer protocol), a binary file object, which is
    read from its current position, a folder, of which the files that match `pattern` are read in
    the order of their names, the URL of a file or folder that fsspec opens
    ("s3://bucket/drive.rec"), or an iterable of these. Sources are never written.

    `columns` are names from `columns()`, all by default. `where` is called with tables of some of
    the rows and returns which of them to keep. `start` and `end` are offsets in bytes: the table
    has the records that begin in [start, end) of each file, the same as if the file was read from
    its start. The tables of adjacent stretches therefore together give that of the whole file.

    Other threads can run during the call. Raises an OSError if a source cannot be read, KeyError
    for an unknown column, and ValueError for a stretch of a pipe.
    """
    batches: list[_core.BatchCore] = []
    sources: list[tuple[Source, int]] = []
    left_out, times_after_expiry = 0, False
    names = _names_of(columns)
    for part in _each_source(source, pattern):
        rows = 0
        reader = _open(part, start, end)
        # The columns of a table in one batch become NumPy arrays without a copy.
        size = min(reader.size, 2**64 if end is None else end) - (start or 0)
        batch_rows = min(max(size // _BYTES_OF_A_ROW, BATCH_ROWS), _LARGEST_BATCH)
        if where is not None or size >= 2**63:  # a pipe
            batch_rows = BATCH_ROWS
        for table in batches_of(reader, part, names, where, batch_rows):
            batches.extend(table._batches)
            rows += len(table)
        left_out += reader.left_out
        times_after_expiry |= reader.has_times_after_expiry
        sources.append((part, rows))
    return _table(batches, names, left_out, sources, times_after_expiry)


def iter_batches(
    source: Source,
    columns: Sequence[str] | None = None,
    where: Callable[[RecordTable], NDArray[np.bool_]] | None = None,
    start: int | None = None,
    end: int | None = None,
    *,
    pattern: str = "*.rec",
    rows: int = BATCH_ROWS,
) -> Iterator[RecordTable]:
    """The same in tables of at most `rows` rows, and at most 2^20, one at a time. The memory does
    not depend on the sizes of the files. A table has rows of only one file.
    """
    names = _names_of(columns)
    if rows < 1:
        raise ValueError("a batch has at least one row")
    return _iterate(source, names, where, start, end, pattern, min(rows, _LARGEST_BATCH))


def _iterate(
    source: Source,
    names: list[str],
    where: Callable[[RecordTable], NDArray[np.bool_]] | None,
    start: int | None,
    end: int | None,
    pattern: str,
    rows: int,
) -> Iterator[RecordTable]:
    for part in _each_source(source, pattern):
        yield from batches_of(_open(part, start, end), part, names, where, rows)


def _names_of(columns: Sequence[str] | None) -> list[str]:
    if isinstance(columns, str):
        raise TypeError(f"columns is a list of names: [{columns!r}]")
    names = list(_INFOS) if columns is None else list(columns)
    _check_names(names)
    return names


def _check_names(names: list[str]) -> None:
    for name in names:
        if name not in _INFOS:
            raise KeyError(f"there is no column {name!r}; surveydata.columns() lists them")
    if len(set(names)) != len(names):
        raise ValueError("a column is named twice")


def batches_of(
    reader: _core.ReaderCore,
    source: Source,
    names: list[str],
    where: Callable[[RecordTable], NDArray[np.bool_]] | None,
    rows: int = BATCH_ROWS,
) -> Iterator[RecordTable]:
    """The rest of a reader as tables."""
    left_out = 0
    while (batch := reader.read(names, rows)) is not None:
        new = reader.left_out - left_out
        left_out = reader.left_out
        table = _table([batch], names, new, [(source, batch.rows)], reader.has_times_after_expiry)
        if where is not None:
            table = table.filter(np.ma.filled(where(table), False))
        if len(table):
            yield table
    _check(reader, source)


def find_damage(
    source: Source,
    start: int | None = None,
    end: int | None = None,
    *,
    others: bool = False,
) -> DamageTable:
    """The gaps, damaged headers and bad frames of one file, and with `others` also the records of
    other types.

    A gap is a run of bytes that do not belong to a record. A damaged header in it has the magic,
    the type and a possible length of a measurement, but does not begin a whole frame. The kind
    "runs into next record" may also be random bytes.
    """
    parts = list(_each_source(source, "*.rec"))
    if len(parts) != 1:
        raise ValueError(f"expected one file, not {len(parts)}")
    (part,) = parts
    reader = _open(part, start, end)
    found = reader.find_damage(others)
    _check(reader, part)
    offset, size, kind, record_type = zip(*found, strict=True) if found else ((), (), (), ())
    return DamageTable(
        np.array(offset, np.uint64),
        np.array(size, np.uint64),
        np.array(kind, np.object_),
        np.array(record_type, np.uint8),
    )


def append(path: str | os.PathLike[str], records: Any) -> None:
    """Append `records`, the bytes of whole records of any type, to a file, which is created if it
    does not exist.

    Existing content is never overwritten: if writing fails, the file is truncated to its previous
    size. Raises ValueError for bytes that are not whole records, and OSError with the library's
    reason for all other failures. Only one writer may append at a time.
    """
    outcome = _core.append(os.fspath(path), records)
    if outcome == _core.AppendOutcome.DONE:
        return
    reason = _core.append_text(outcome)
    if outcome == _core.AppendOutcome.NO_RECORDS:
        raise ValueError(reason)
    number = {
        _core.AppendOutcome.NO_SUCH_FILE: errno.ENOENT,
        _core.AppendOutcome.NO_PERMISSION: errno.EACCES,
    }.get(outcome, errno.EIO)
    raise OSError(number, reason, os.fspath(path))
