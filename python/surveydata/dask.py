"""Archives as Dask data frames, with a partition for each stretch of a record file, which any
worker can read on its own; and areas for Dask arrays of directions.
"""

from __future__ import annotations

import itertools
from typing import TYPE_CHECKING, Any, Literal, NamedTuple

import dask
import dask.array
import dask.dataframe
import dask.utils
import numpy as np
import pandas as pd
import pyarrow as pa

from . import _records
from ._stores import Stretch, cut, list_files, source_of
from ._times import gps_times

if TYPE_CHECKING:
    import os
    from collections.abc import Iterable, Sequence

    from ._areas import Area, Unit

_TIME = ["gps_week", "time_of_week"]


class _Times(NamedTuple):
    """The times of a stretch."""

    rows: int
    first: np.datetime64
    last: np.datetime64
    ascending: bool
    """Whether the times ascend and none is absent."""


def read_records(
    paths: str | os.PathLike[str] | Iterable[str | os.PathLike[str]],
    columns: Sequence[str] | None = None,
    *,
    blocksize: int | str = "64 MiB",
    index: Literal["time_gps"] | None = "time_gps",
    pattern: str = "*.rec",
) -> Any:
    """The measurements of record files as a Dask data frame.

    `paths` are paths or fsspec URLs of files or folders, which every worker must reach. A partition
    has the measurements that begin in a stretch of `blocksize` bytes of a file. The columns are
    `columns` from `surveydata.columns()`, all by default, and `file`, the name of the file. They
    have Arrow types, except texts, which have the pandas type. Workers read only the columns that
    are used.

    With the index "time_gps", GPS time in milliseconds, the workers first read the times:
    partitions without rows are left out, the others are ordered by their first time, and the
    divisions are known if times ascend in each file and no partition begins before the previous one
    has ended. Otherwise partitions are in the order of the paths. With None the index of each
    partition counts from 0, and nothing is read before it is needed.

    The data frame describes the current files: create a new one after they have changed.
    """
    names = [info.name for info in _records.columns()] if columns is None else list(columns)
    _records._check_names(names)
    if index not in ("time_gps", None):
        raise ValueError("the index is 'time_gps' or None")
    stretches = list(cut(list_files(paths, pattern), dask.utils.parse_bytes(blocksize)))
    if not stretches:
        raise FileNotFoundError(f"no file {pattern} in {paths}")
    divisions = None
    if index is not None:
        stretches, divisions = _in_order(stretches)
    return dask.dataframe.from_map(
        _read,
        stretches,
        columns=[*names, "file"],
        meta=_frame(_records.read_records(b"", _wanted(names, index)), names, "", index),
        divisions=divisions,
        label="read-records",
        index=index,
    )


def _wanted(names: list[str], index: str | None) -> list[str]:
    return [*names, *(name for name in _TIME if index is not None and name not in names)]


def _read(stretch: Stretch, columns: list[str], index: str | None) -> pd.DataFrame:
    names = [name for name in columns if name != "file"]
    wanted = _wanted(names, index)
    # At least one column, for the number of rows.
    table = _records.read_records(
        source_of(stretch.file), wanted or ["size"], start=stretch.begin, end=stretch.end
    )
    return _frame(table, names, stretch.file.name, index)[columns]


def _frame(
    table: _records.RecordTable, names: list[str], file: str, index: str | None
) -> pd.DataFrame:
    arrow = pa.table(table).select(names)
    rows = len(table)
    arrow = arrow.append_column("file", pa.repeat(pa.scalar(file, pa.large_string()), rows))
    frame: pd.DataFrame = arrow.to_pandas(types_mapper=_type_of)
    if index is not None:
        frame.index = pd.DatetimeIndex(_times_of(table), name=index)
    return frame


def _type_of(arrow: Any) -> Any:
    """The types of Dask data frames: Arrow types, except the pandas type for texts."""
    return pd.StringDtype("pyarrow") if pa.types.is_large_string(arrow) else pd.ArrowDtype(arrow)


def _times_of(table: _records.RecordTable) -> Any:
    return gps_times(*(table.column(name).values for name in _TIME))


def _look(stretch: Stretch) -> _Times:
    table = _records.read_records(
        source_of(stretch.file), _TIME, start=stretch.begin, end=stretch.end
    )
    times = _times_of(table)
    if len(times) == 0:
        return _Times(0, np.datetime64("NaT"), np.datetime64("NaT"), True)
    ascending = not np.isnat(times).any() and bool((times[1:] >= times[:-1]).all())
    return _Times(len(times), times[0], times[-1], ascending)


def _in_order(stretches: list[Stretch]) -> tuple[list[Stretch], tuple[pd.Timestamp, ...] | None]:
    """The stretches with rows, and the divisions if they are known."""
    look = dask.delayed(_look)
    times = dask.compute(*(look(stretch) for stretch in stretches))
    found = [(stretch, time) for stretch, time in zip(stretches, times, strict=True) if time.rows]
    if not found:
        return stretches[:1], None
    if not all(time.ascending for _, time in found):
        return [stretch for stretch, _ in found], None
    ordered = sorted(found, key=lambda pair: pair[1].first)
    if any(time.last >= after.first for (_, time), (_, after) in itertools.pairwise(ordered)):
        return [stretch for stretch, _ in found], None
    divisions = [time.first for _, time in ordered] + [ordered[-1][1].last]
    return [stretch for stretch, _ in ordered], tuple(pd.Timestamp(time) for time in divisions)


def contains(area: Area, hz: Any, v: Any, unit: Unit | None = None) -> Any:
    """Whether directions are inside `area`, as `Area.contains`, for Dask arrays or numbers that
    broadcast against each other. The result is a Dask array of their shape; each block is computed
    by the worker that holds it.
    """
    return dask.array.map_blocks(
        _contains, hz, v, area=area, unit=unit, dtype=np.bool_, meta=np.empty((0,), np.bool_)
    )


def _contains(hz: Any, v: Any, area: Area, unit: Unit | None) -> Any:
    return np.asarray(area.contains(hz, v, unit))
