"""Record files as Parquet, for engines that read columns.

`python -m surveydata to-parquet ARCHIVE -o DIR` writes a file for each stretch of each record file,
such as `DIR/file=valley_drive.rec/part-00000000000000000000.parquet`. The number is the offset of
the stretch. Folder names are percent-encoded, as readers of partitioned folders expect: the
partition column `file` has the name of the record file.

A Parquet file is written under a temporary name and renamed when it is complete. If a run was
killed, the next one keeps complete files that were made from the same bytes.
"""

from __future__ import annotations

import os
import time
from concurrent.futures import ThreadPoolExecutor, as_completed
from pathlib import Path
from typing import TYPE_CHECKING, Any, NamedTuple
from urllib.parse import quote

import pyarrow as pa
import pyarrow.parquet as pq

from . import _core, _records
from ._stores import Stretch, cut, list_files, source_of

if TYPE_CHECKING:
    from collections.abc import Callable, Iterable, Sequence

STRETCH = 64 << 20
"""The bytes of record files that a Parquet file is made of."""

_ROWS_IN_GROUP = 131_072
_VERSION = "1"
"""The version of the layout: files of another version are rewritten."""


class Progress(NamedTuple):
    """The progress of a conversion, and finally its result."""

    stretches: int
    """Of all files."""
    stretches_done: int
    stretches_kept: int
    """Of those done, how many existed before."""
    size: int
    """Of all record files, in bytes."""
    size_done: int
    size_kept: int
    files: int
    rows: int
    """In the stretches that are done."""
    left_out: int
    """Frames with a block that does not fit, in the stretches that are done."""
    seconds: float


def to_parquet(
    archive: str | os.PathLike[str] | Iterable[str | os.PathLike[str]],
    folder: str | os.PathLike[str],
    columns: Sequence[str] | None = None,
    *,
    pattern: str = "*.rec",
    stretch: int = STRETCH,
    workers: int | None = None,
    report: Callable[[Progress], None] | None = None,
) -> Progress:
    """Writes the measurements of record files to a folder of Parquet files.

    `archive` is a path or fsspec URL of a file or folder, or several of them; `folder` is a local
    path. Rows have `columns` from `columns()`, all by default, with their units and descriptions as
    metadata of the fields. `stretch` is the number of bytes of a record file in one Parquet file.
    `workers` is the number of threads, each of which writes one file at a time; by default the
    number of processors. `report` is called after each stretch, by the thread that called this
    function.

    Existing stretches in `folder` are kept if the name, the size and the modification time of the
    record file, the columns and the stretch are the same; those of a changed file are written
    again. Partitions of files that are not in the archive stay unchanged.

    Raises BlockingIOError while another run writes to `folder`, ValueError if two files have the
    same name, and an OSError if a file cannot be read or written.
    """
    names = [info.name for info in _records.columns()] if columns is None else list(columns)
    _records._check_names(names)
    begin = time.monotonic()
    files = list(list_files(archive, pattern))
    if len({file.name for file in files}) != len(files):
        raise ValueError("two record files have the same name: name a folder that has both")
    stretches = list(cut(files, stretch))
    progress = Progress(
        len(stretches), 0, 0, sum(file.size for file in files), 0, 0, len(files), 0, 0, 0.0
    )
    target = Path(folder)
    target.mkdir(parents=True, exist_ok=True)
    lock = _lock(target)
    try:
        jobs = [(one, _path_of(target, one), _marks_of(one, names, stretch)) for one in stretches]
        _remove_strangers({path for _, path, _ in jobs})
        missing = []
        for one, path, marks in jobs:
            found = _find(path, marks)
            if found is None:
                missing.append((one, path, marks))
                continue
            progress = _add(progress, one, *found, begin)._replace(
                stretches_kept=progress.stretches_kept + 1, size_kept=progress.size_kept + one.size
            )
        if report is not None:
            report(progress)
        pool = ThreadPoolExecutor(workers or os.cpu_count() or 1)
        try:
            running = {pool.submit(_write, *job, names): job[0] for job in missing}
            for future in as_completed(running):
                progress = _add(progress, running[future], *future.result(), begin)
                if report is not None:
                    report(progress)
        finally:
            pool.shutdown(cancel_futures=True)
    finally:
        os.close(lock)
    return progress._replace(seconds=time.monotonic() - begin)


def _add(progress: Progress, one: Stretch, rows: int, left_out: int, begin: float) -> Progress:
    return progress._replace(
        stretches_done=progress.stretches_done + 1,
        size_done=progress.size_done + one.size,
        rows=progress.rows + rows,
        left_out=progress.left_out + left_out,
        seconds=time.monotonic() - begin,
    )


def _lock(folder: Path) -> int:
    """A lock that is held until it is closed, or until the process ends for any reason."""
    import fcntl

    lock = os.open(folder, os.O_RDONLY)
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError as error:
        os.close(lock)
        raise BlockingIOError(
            error.errno, "another run writes to this folder", str(folder)
        ) from None
    return lock


def _path_of(folder: Path, one: Stretch) -> Path:
    return folder / f"file={quote(one.file.name, safe=' ')}" / f"part-{one.begin:020}.parquet"


def _marks_of(one: Stretch, names: list[str], stretch: int) -> dict[str, str]:
    """What a Parquet file was made from, as its footer records it."""
    return {
        "surveydata.layout": _VERSION,
        "surveydata.version": _core.VERSION,
        "surveydata.file": one.file.name,
        "surveydata.file_size": str(one.file.size),
        "surveydata.file_version": one.file.version,
        "surveydata.begin": str(one.begin),
        "surveydata.end": str(one.end),
        "surveydata.stretch": str(stretch),
        "surveydata.columns": ",".join(names),
    }


def _remove_strangers(paths: set[Path]) -> None:
    """Removes unfinished files and other stretches from the partitions that are written."""
    for partition in {path.parent for path in paths}:
        partition.mkdir(exist_ok=True)
        for path in partition.iterdir():
            if path.suffix == ".tmp" or (path.suffix == ".parquet" and path not in paths):
                path.unlink()


def _find(path: Path, marks: dict[str, str]) -> tuple[int, int] | None:
    """The numbers of rows and of left-out frames, if the file was made from the same."""
    try:
        footer = pq.read_metadata(path)
    except (FileNotFoundError, pa.ArrowInvalid):
        return None
    found = {key.decode(): value.decode() for key, value in (footer.metadata or {}).items()}
    if any(found.get(key) != value for key, value in marks.items()):
        return None
    return footer.num_rows, int(found["surveydata.left_out"])


def _options(names: list[str]) -> dict[str, Any]:
    """The encodings of columns: dictionaries if values repeat, deltas if they ascend."""
    types = {info.name: info.type for info in _records.columns()}
    ascending = {name for name in names if name == "offset"}
    times = {name for name in names if name.endswith(("_gps", "_utc")) and types[name] == "text"}
    encoding = dict.fromkeys(ascending, "DELTA_BINARY_PACKED")
    encoding |= dict.fromkeys(times, "DELTA_BYTE_ARRAY")
    repeating = [
        name if types[name] != "list of uint16" else f"{name}.list.element"
        for name in names
        if name not in encoding and types[name] not in ("bool", "float64")
    ]
    return {
        "compression": "zstd",
        "compression_level": 1,
        "use_dictionary": repeating,
        "column_encoding": encoding,
    }


def _write(one: Stretch, path: Path, marks: dict[str, str], names: list[str]) -> tuple[int, int]:
    source = source_of(one.file)
    reader = _records._open(source, one.begin, one.end)
    beside = path.with_name(f".{path.name}.tmp")
    rows = 0
    with pq.ParquetWriter(beside, _schema(names), **_options(names)) as writer:
        while (batch := reader.read(names, _ROWS_IN_GROUP)) is not None:
            writer.write_table(pa.table(_records._table([batch], names, 0, [], False)))
            rows += batch.rows
        _records._check(reader, source)
        writer.add_key_value_metadata(marks | {"surveydata.left_out": str(reader.left_out)})
    with beside.open("rb") as file:
        os.fsync(file.fileno())
    beside.replace(path)
    return rows, reader.left_out


def _schema(names: list[str]) -> pa.Schema:
    return pa.table(_records.read_records(b"", names)).schema
