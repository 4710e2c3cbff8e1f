"""Archives as a data source of Spark, with a partition for each stretch of a record file; and areas
as functions of columns.

    surveydata.spark.register(spark)
    frame = spark.read.format("surveydata").load("/archive/2026")
    frame.where("time_gps >= '2026-03-01' and pdop < 4").groupBy("file").count()

Every executor needs this package, and must reach the files under the same paths or fsspec URLs.
"""

from __future__ import annotations

import contextlib
import operator
import re
from typing import TYPE_CHECKING, Any, ClassVar

import numpy as np
import pyarrow as pa
import pyarrow.compute as pc
from pyspark.sql import datasource, types
from pyspark.sql.functions import arrow_udf
from pyspark.sql.pandas.types import to_arrow_schema

from . import _records
from ._stores import Stretch, cut, list_files, source_of
from ._times import gps_times

if TYPE_CHECKING:
    import datetime
    from collections.abc import Callable, Iterable, Iterator, Sequence

    from numpy.typing import NDArray
    from pyspark.sql import SparkSession

    from ._areas import Area, Unit

    _Comparison = Callable[[Any, Any], Any]

BLOCKSIZE = 64 << 20
"""The bytes of a record file that make a partition, by default."""

_ROWS_IN_BATCH = 16_384

# Spark's integers are signed: unsigned ones get the next larger type. An offset in a file fits a
# signed 64-bit integer.
_TYPES: dict[str, types.DataType] = {
    "bool": types.BooleanType(),
    "uint8": types.ShortType(),
    "uint16": types.IntegerType(),
    "uint32": types.LongType(),
    "uint64": types.LongType(),
    "int32": types.IntegerType(),
    "float32": types.FloatType(),
    "float64": types.DoubleType(),
    "text": types.StringType(),
    "list of uint16": types.ArrayType(types.IntegerType(), False),
}

# GPS time has no leap seconds, so Spark's timestamps without a time zone represent it exactly. UTC
# stays a text: timestamps have no second 60.
_TIMES = {
    "time_gps": ("gps_week", "time_of_week"),
    "extra_time_gps": ("extra_gps_week", "extra_time_of_week"),
}


def register(spark: SparkSession, *, push_filters: bool = False) -> None:
    """Registers the format "surveydata" with a session.

    The format has the options `columns` (names separated by commas, all by default), `blocksize`
    (bytes of a record file in a partition, 67,108,864 by default), `pattern` (which files of a
    folder to read, "*.rec" by default), and `from` and `to`: only measurements at or after the
    first GPS time and before the second one, in ISO 8601 ("2026-03-01T06:00:00"); those without a
    valid time are left out. The source applies them before it passes rows to Spark.

    With `push_filters`, Spark itself pushes filters on `file` and `time_gps` down to the source.
    Spark up to 4.3 keeps such filters with the data frame. A later query of the same frame without
    a filter then misses rows, and so does a query that uses the frame twice, for example a union of
    two parts of it: load a data frame for each use. The session's setting
    `spark.sql.python.filterPushdown.enabled` becomes true.
    """
    if push_filters:
        spark.conf.set("spark.sql.python.filterPushdown.enabled", "true")
    spark.dataSource.register(_FilteringSource if push_filters else RecordSource)


def contains(area: Area, unit: Unit | None = None) -> Callable[..., Any]:
    """A function of two columns, Hz and V: whether directions are inside `area`, as
    `Area.contains`. Null if Hz or V is null.

    `frame.withColumn("inside", contains(area)("hz", "v"))`. It needs PySpark 4.1.
    """

    def inside(hz: pa.Array, v: pa.Array) -> pa.Array:
        there = pc.and_(hz.is_valid(), v.is_valid())
        answers = area.contains(_as_doubles(hz), _as_doubles(v), unit)
        return pc.if_else(there, pa.array(answers), pa.scalar(None, pa.bool_()))

    # Spark derives the kind of the function from its annotations, which must be types, not strings.
    inside.__annotations__ = {"hz": pa.Array, "v": pa.Array, "return": pa.Array}
    function: Callable[..., Any] = arrow_udf(inside, types.BooleanType())
    return function


def _as_doubles(values: pa.Array) -> NDArray[np.float64]:
    filled = pc.fill_null(values.cast(pa.float64()), np.nan)
    doubles: NDArray[np.float64] = filled.to_numpy(zero_copy_only=False)
    return doubles


def _field_of(info: _records.ColumnInfo) -> types.StructField:
    spark = types.TimestampNTZType() if info.name in _TIMES else _TYPES[info.type]
    metadata = {"comment": info.description}
    if info.unit and info.name not in _TIMES:
        metadata["unit"] = info.unit
    return types.StructField(info.name, spark, info.can_be_absent, metadata)


class _Partition(datasource.InputPartition):
    def __init__(self, stretch: Stretch) -> None:
        super().__init__(stretch)
        self.stretch = stretch


def _is_one_of(value: Any, values: Any) -> bool:
    return value in values


def _is_there(times: Any, _: object) -> Any:
    return ~np.isnat(times)


def _always(_value: object, _other: object) -> bool:
    return True


_COMPARISONS: dict[type, _Comparison] = {
    datasource.EqualTo: operator.eq,
    datasource.GreaterThan: operator.gt,
    datasource.GreaterThanOrEqual: operator.ge,
    datasource.LessThan: operator.lt,
    datasource.LessThanOrEqual: operator.le,
}
_OF_TIMES = {**_COMPARISONS, datasource.IsNotNull: _is_there}
# Spark orders texts by their UTF-8 bytes, which is the order of code points, as in Python.
_OF_TEXTS: dict[type, _Comparison] = {
    **_COMPARISONS,
    datasource.In: _is_one_of,
    datasource.IsNotNull: _always,
    datasource.StringContains: operator.contains,
    datasource.StringEndsWith: str.endswith,
    datasource.StringStartsWith: str.startswith,
}


class RecordReader(datasource.DataSourceReader):
    """Reads stretches."""

    def __init__(self, schema: types.StructType, path: str, pattern: str, blocksize: int) -> None:
        self._schema = schema
        self._names = [field.name for field in schema.fields if field.name != "file"]
        self._path = path
        self._pattern = pattern
        self._blocksize = blocksize
        self._file_filters: list[tuple[_Comparison, Any]] = []
        self._time_filters: list[tuple[_Comparison, Any]] = []

    def partitions(self) -> Sequence[datasource.InputPartition]:
        """One for each stretch of the files that pass the filters."""
        files = [
            file
            for file in list_files(self._path, self._pattern)
            if all(compare(file.name, value) for compare, value in self._file_filters)
        ]
        return [_Partition(stretch) for stretch in cut(files, self._blocksize)]

    def read(self, partition: datasource.InputPartition) -> Iterator[pa.RecordBatch]:
        """The rows of a stretch."""
        if not isinstance(partition, _Partition):
            return  # without partitions, Spark passes its own
        stretch = partition.stretch
        names = list(self._names)
        for column, parts in _TIMES.items():
            if column in names or (column == "time_gps" and self._time_filters):
                names += [name for name in parts if name not in names]
        names = [name for name in names if name not in _TIMES]
        where = self._is_wanted if self._time_filters else None
        schema = to_arrow_schema(self._schema)
        for table in _records.iter_batches(
            source_of(stretch.file),
            names or ["size"],
            where,
            start=stretch.begin,
            end=stretch.end,
            rows=_ROWS_IN_BATCH,
        ):
            yield self._batch(table, schema, stretch.file.name)

    def _is_wanted(self, table: _records.RecordTable) -> Any:
        times, keep = _times_in(table, "time_gps"), np.ones(len(table), np.bool_)
        for compare, value in self._time_filters:
            keep &= compare(times, value)  # false for NaT
        return keep

    def _batch(self, table: _records.RecordTable, schema: pa.Schema, file: str) -> pa.RecordBatch:
        arrow = pa.table(table)
        arrays = [
            pa.array(_times_in(table, name)) if name in _TIMES else arrow[name].combine_chunks()
            for name in self._names
        ]
        arrays.append(pa.repeat(pa.scalar(file), len(table)))
        arrays = [array.cast(kind) for array, kind in zip(arrays, schema.types, strict=True)]
        return pa.RecordBatch.from_arrays(arrays, schema=schema)


def _times_in(table: _records.RecordTable, name: str) -> Any:
    week, time_of_week = (table.column(part) for part in _TIMES[name])
    times = gps_times(week.values, time_of_week.values)
    for valid in (week.valid, time_of_week.valid):
        if valid is not None:
            times[~valid] = np.datetime64("NaT")
    return times


def _time_of(value: datetime.datetime | None) -> np.datetime64:
    return np.datetime64("NaT") if value is None else np.datetime64(value, "us")


def _time_in(option: str, text: str) -> np.datetime64:
    # NumPy also takes numbers, names such as "now", and times with an offset, which it drops.
    if re.fullmatch(r"\d{4}-\d\d-\d\d([T ]\d\d:\d\d(:\d\d(\.\d{1,6})?)?)?", text):
        with contextlib.suppress(ValueError):
            return np.datetime64(text, "us")
    raise ValueError(f"option {option}: {text} is not a GPS time such as 2026-03-01T06:00:00")


class RecordSource(datasource.DataSource):
    """The format "surveydata"."""

    _reader: ClassVar[type[RecordReader]] = RecordReader

    @classmethod
    def name(cls) -> str:
        """The name of the format in `spark.read.format`."""
        return "surveydata"

    def schema(self) -> types.StructType:
        """The columns with units and descriptions, and the column `file`."""
        chosen = self.options.get("columns")
        infos = {info.name: info for info in _records.columns()}
        names = list(infos) if chosen is None else [name.strip() for name in chosen.split(",")]
        _records._check_names(names)
        fields = [_field_of(infos[name]) for name in names]
        return types.StructType([*fields, types.StructField("file", types.StringType(), False)])

    def reader(self, schema: types.StructType) -> RecordReader:
        """A reader of the files that the options select."""
        if "path" not in self.options:
            raise ValueError("name the archive: load(path)")
        blocksize = int(self.options.get("blocksize", BLOCKSIZE))
        pattern = self.options.get("pattern", "*.rec")
        reader = self._reader(schema, self.options["path"], pattern, blocksize)
        for name, compare in (("from", operator.ge), ("to", operator.lt)):
            if name in self.options:
                reader._time_filters.append((compare, _time_in(name, self.options[name])))
        return reader


class _FilteringReader(RecordReader):
    def pushFilters(  # noqa: N802  (Spark defines the name)
        self, filters: Sequence[datasource.Filter]
    ) -> Iterable[datasource.Filter]:
        """Keeps filters on the file and on the time, and leaves the others to Spark."""
        for one in filters:
            column, value = getattr(one, "attribute", None), getattr(one, "value", None)
            if column == ("file",) and type(one) in _OF_TEXTS:
                self._file_filters.append((_OF_TEXTS[type(one)], value))
            elif column == ("time_gps",) and type(one) in _OF_TIMES:
                self._time_filters.append((_OF_TIMES[type(one)], _time_of(value)))
            else:
                yield one


class _FilteringSource(RecordSource):
    _reader = _FilteringReader
