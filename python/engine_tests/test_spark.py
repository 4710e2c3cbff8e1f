"""One session on a cluster of two executors for all tests, because it is slow to start."""

import datetime
import os
import sys
import zipfile
from collections.abc import Callable, Iterator
from pathlib import Path
from typing import Any

import numpy as np
import pyarrow as pa
import pytest
import surveydata.spark
from pyspark.sql import DataFrame, SparkSession, types
from pyspark.sql import functions as F  # noqa: N812  (the usual name)

import surveydata as sd

pytestmark = pytest.mark.filterwarnings("default")

EPOCH = datetime.datetime(1980, 1, 6)


@pytest.fixture(scope="module")
def spark(tmp_path_factory: pytest.TempPathFactory) -> Iterator[SparkSession]:
    work = tmp_path_factory.mktemp("spark")
    os.environ |= {
        "PYSPARK_PYTHON": sys.executable,
        "SPARK_LOCAL_HOSTNAME": "localhost",
        "SPARK_WORKER_DIR": str(work / "workers"),
    }
    settings = {
        "spark.driver.memory": "1g",
        "spark.executor.memory": "1g",
        "spark.local.dir": str(work / "local"),
        "spark.sql.session.timeZone": "Asia/Tokyo",  # results must not depend on it
        "spark.sql.shuffle.partitions": "2",
        "spark.sql.warehouse.dir": str(work / "warehouse"),
        "spark.ui.enabled": "false",
    }
    builder = SparkSession.builder.master("local-cluster[2,1,1024]").appName("surveydata")
    for name, value in settings.items():
        builder = builder.config(name, value)
    session = builder.getOrCreate()
    session.sparkContext.setLogLevel("ERROR")
    surveydata.spark.register(session)
    yield session
    session.stop()


@pytest.fixture
def pushing(spark: SparkSession) -> Iterator[SparkSession]:
    surveydata.spark.register(spark, push_filters=True)
    yield spark
    spark.conf.unset("spark.sql.python.filterPushdown.enabled")
    surveydata.spark.register(spark)


def load(spark: SparkSession, path: object, **options: object) -> DataFrame:
    reader = spark.read.format("surveydata")
    for name, value in options.items():
        reader = reader.option(name, str(value))
    return reader.load(str(path))


def expected_rows(folder: Path) -> list[dict[str, Any]]:
    rows = []
    for path in sorted(folder.glob("*.rec")):
        for row in pa.table(sd.read_records(path)).to_pylist():
            for name in ("time_gps", "extra_time_gps"):
                if row[name] is not None:
                    row[name] = datetime.datetime.fromisoformat(row[name])
            rows.append({**row, "file": path.name})
    return rows


def in_order(frame: DataFrame) -> list[dict[str, Any]]:
    return [row.asDict() for row in frame.orderBy("file", "offset").collect()]


def partitions(frame: DataFrame) -> int:
    return frame.rdd.getNumPartitions()


def test_every_value_of_the_samples(spark: SparkSession, data: Path) -> None:
    frame = load(spark, data, blocksize=30_000)
    assert partitions(frame) == 4 + 3
    expected = expected_rows(data)
    assert len(expected) == 414 + 380
    found = in_order(frame)
    assert len(found) == len(expected)
    for name in expected[0]:
        assert [row[name] for row in found] == [row[name] for row in expected], name


def test_both_executors_work(spark: SparkSession, data: Path) -> None:
    def where(batches: Iterator[pa.RecordBatch]) -> Iterator[pa.RecordBatch]:
        for batch in batches:
            yield pa.RecordBatch.from_pydict({"process": [os.getppid()], "rows": [len(batch)]})

    frame = load(spark, data, blocksize=10_000, columns="size")
    assert partitions(frame) == 18
    found = frame.mapInArrow(where, "process long, rows long").collect()
    assert sum(row.rows for row in found) == 794
    assert len({row.process for row in found}) == 2


def test_types_and_units(spark: SparkSession, data: Path) -> None:
    schema = load(spark, data).schema
    infos = {info.name: info for info in sd.columns()}
    assert schema.names == [*infos, "file"]
    kinds = {
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
    for name, info in infos.items():
        time = name in ("time_gps", "extra_time_gps")
        assert schema[name].dataType == (types.TimestampNTZType() if time else kinds[info.type])
        assert schema[name].nullable == info.can_be_absent
        assert schema[name].metadata["comment"] == info.description
        assert schema[name].metadata.get("unit", "") == info.unit


def test_largest_values_survive(spark: SparkSession, drives: Path) -> None:
    """The widened types hold the largest 16-bit and 32-bit values."""
    frame = load(spark, drives, pattern="desert.rec")
    for name in ("value_b", "word_16", "total_first", "size", "offset"):
        (row,) = frame.agg(F.max(name), F.min(name)).collect()
        values = sd.read_records(drives / "desert.rec", [name])[name]
        assert list(row) == [values.max(), values.min()]


def test_columns_and_an_empty_file(spark: SparkSession, drives: Path) -> None:
    frame = load(spark, drives, columns="pdop, offset", blocksize=200_000)
    assert frame.columns == ["pdop", "offset", "file"]
    counts = {row["file"]: row["count"] for row in frame.groupBy("file").count().collect()}
    expected = {p.name: len(sd.read_records(p, ["size"])) for p in drives.glob("*.rec")}
    assert counts == {name: count for name, count in expected.items() if count}
    assert frame.where("pdop is null").count() == sum(
        int(np.ma.count_masked(sd.read_records(p)["pdop"])) for p in drives.glob("*.rec")
    )


def test_a_zip_file(spark: SparkSession, data: Path, tmp_path: Path) -> None:
    with zipfile.ZipFile(tmp_path / "a.zip", "w") as archive:
        for path in data.glob("*.rec"):
            archive.write(path, path.name)
    frame = load(spark, f"zip://::{tmp_path}/a.zip", columns="offset", blocksize=30_000)
    expected = [(row["file"], row["offset"]) for row in expected_rows(data)]
    assert [(row["file"], row["offset"]) for row in in_order(frame)] == expected


FILE_FILTERS = (
    ("file = 'valley_drive.rec'", {"valley_drive.rec"}, 4),
    ("file > 'e' and file like 'valley%'", {"valley_drive.rec"}, 4),
    ("file like '%way.rec'", {"desert_highway.rec"}, 3),
    ("file in ('desert_highway.rec', 'none.rec')", {"desert_highway.rec"}, 3),
    ("file like '%e%'", {"valley_drive.rec", "desert_highway.rec"}, 7),
    ("file = 'none.rec'", set(), 0),
    ("file != 'valley_drive.rec'", {"desert_highway.rec"}, 7),
)


def test_filters_on_the_file_leave_out_partitions(pushing: SparkSession, data: Path) -> None:
    for condition, files, parts in FILE_FILTERS:
        chosen = load(pushing, data, columns="offset", blocksize=30_000).where(condition)
        assert {row["file"] for row in chosen.select("file").collect()} == files, condition
        assert max(partitions(chosen), 1) == max(parts, 1), condition


def time_filters(rows: list[dict[str, Any]]) -> list[tuple[str, Callable[[Any], bool]]]:
    times = sorted(row["time_gps"] for row in rows if row["time_gps"] is not None)
    low, high = times[len(times) // 4], times[len(times) // 2]
    return [
        (f"time_gps >= timestamp_ntz'{low}'", lambda t: t >= low),
        (f"time_gps > timestamp_ntz'{low}'", lambda t: t > low),
        (f"time_gps < timestamp_ntz'{high}'", lambda t: t < high),
        (f"time_gps <= timestamp_ntz'{high}'", lambda t: t <= high),
        (f"time_gps = timestamp_ntz'{high}'", lambda t: t == high),
        (f"time_gps between '{low}' and '{high}'", lambda t: low <= t <= high),
        ("time_gps is not null", lambda _: True),
    ]


def test_filters_on_the_time(pushing: SparkSession, data: Path) -> None:
    rows = expected_rows(data)
    for condition, keep in time_filters(rows):
        chosen = load(pushing, data, columns="offset,time_gps", blocksize=50_000).where(condition)
        expected = [row["offset"] for row in rows if row["time_gps"] and keep(row["time_gps"])]
        assert 0 < len(expected) <= len(rows)
        assert [row["offset"] for row in in_order(chosen)] == expected, condition
    missing = load(pushing, data, columns="offset,time_gps").where("time_gps is null").count()
    assert missing == sum(row["time_gps"] is None for row in rows)


def test_filters_are_left_to_the_source(pushing: SparkSession, data: Path) -> None:
    """Spark does not repeat the filters of the source, and applies all others."""
    frame = load(pushing, data, columns="offset,time_gps,pdop")
    chosen = frame.where("time_gps > timestamp_ntz'2000-01-01' and file > 'a' and pdop < 3")
    plan = chosen._jdf.queryExecution().executedPlan().toString()
    (condition,) = [line for line in plan.splitlines() if "Filter " in line]
    assert "pdop" in condition
    assert "time_gps" not in condition
    assert "file" not in condition


def test_queries_of_one_data_frame(spark: SparkSession, data: Path) -> None:
    rows = expected_rows(data)
    frame = load(spark, data, columns="offset,time_gps", blocksize=30_000)
    assert frame.where("file = 'none.rec'").count() == 0
    assert frame.count() == len(rows)
    assert frame.where("file = 'valley_drive.rec'").count() == 414
    assert frame.where("file = 'valley_drive.rec' or offset >= 0").count() == len(rows)
    condition, keep = time_filters(rows)[0]
    expected = sum(row["time_gps"] is not None and keep(row["time_gps"]) for row in rows)
    assert frame.where(condition).count() == expected


def test_spark_keeps_filters_of_the_query_before(pushing: SparkSession, data: Path) -> None:
    """The reason why filters are not pushed down by default. If this fails, Spark is fixed."""
    frame = load(pushing, data, columns="offset")
    assert frame.where("file = 'valley_drive.rec'").count() == 414
    assert frame.count() == 414


def test_spark_mixes_filters_of_one_query(pushing: SparkSession, data: Path) -> None:
    """The reason why always adding a filter would not help. If this fails, Spark is fixed."""
    frame = load(pushing, data, columns="offset")
    first = frame.where("file = 'valley_drive.rec'")
    both = first.union(frame.where("file = 'desert_highway.rec'"))
    assert both.select("file").distinct().count() == 1


def test_options_for_times(spark: SparkSession, data: Path) -> None:
    """They restrict the data frame, so that all its queries agree."""
    rows = [row for row in expected_rows(data) if row["time_gps"] is not None]
    times = sorted(row["time_gps"] for row in rows)
    low, high = times[len(times) // 4], times[len(times) // 2]

    def expected(keep: Callable[[Any], bool]) -> list[int]:
        return [row["offset"] for row in rows if keep(row["time_gps"])]

    for options, keep in (
        ({"from": low.isoformat()}, lambda t: t >= low),
        ({"to": str(high)}, lambda t: t < high),
        ({"from": low.isoformat(), "to": high.isoformat()}, lambda t: low <= t < high),
        ({"from": f"{low:%Y-%m-%d}"}, lambda t: t.date() >= low.date()),
        ({"from": high.isoformat(), "to": high.isoformat()}, lambda _: False),
    ):
        frame = load(spark, data, columns="offset", blocksize=50_000, **options)
        assert [row["offset"] for row in in_order(frame)] == expected(keep), options
        assert frame.where("file = 'valley_drive.rec'").count() <= frame.count()
        assert frame.count() == len(expected(keep))
    for wrong in ("yesterday", "now", "2026-03-01T06:00:00Z", "2026-13-01", "20260301", ""):
        with pytest.raises(Exception, match="is not a GPS time"):
            load(spark, data, **{"from": wrong}).count()


def test_options_for_times_and_pushed_filters(pushing: SparkSession, data: Path) -> None:
    rows = [row for row in expected_rows(data) if row["time_gps"] is not None]
    times = sorted(row["time_gps"] for row in rows)
    low, high = times[len(times) // 4], times[len(times) // 2]
    frame = load(pushing, data, columns="time_gps", to=high.isoformat())
    chosen = frame.where(f"time_gps >= timestamp_ntz'{low}'")
    assert chosen.count() == sum(low <= time < high for time in times)


def test_contains(spark: SparkSession) -> None:
    area = sd.RectangularArea([390, 25], [75, 110], unit="gon", hz_step=0.1, v_step=0.1)
    random = np.random.default_rng(1)
    hz, v = random.uniform(0, 400, 5_000), random.uniform(0, 200, 5_000)
    rows = [(i, float(a), float(b)) for i, (a, b) in enumerate(zip(hz, v, strict=True))]
    rows += [(5_000, None, 90.0), (5_001, 5.0, None), (5_002, float("nan"), 90.0)]
    frame = spark.createDataFrame(rows, "i int, hz double, v double").repartition(4)
    inside = surveydata.spark.contains(area)
    found = frame.select("i", inside("hz", "v").alias("inside")).orderBy("i").collect()
    expected = [*area.contains(hz, v).tolist(), None, None, False]
    assert [row.inside for row in found] == expected
    assert 50 < sum(expected[:5_000]) < 4_900
    degrees = surveydata.spark.contains(area, "deg")
    assert frame.where(degrees(F.col("hz").cast("float"), F.col("v").cast("float"))).count() == int(
        area.contains(hz.astype(np.float32), v.astype(np.float32), "deg").sum()
    )


def test_what_cannot_be_read(spark: SparkSession, tmp_path: Path) -> None:
    for path, options, message in (
        (tmp_path / "none.rec", {}, "FileNotFoundError"),
        (tmp_path, {"columns": "hdob"}, "hdob"),
        (tmp_path, {"blocksize": "0"}, "at least one byte"),
    ):
        (tmp_path / "a.rec").touch()
        with pytest.raises(Exception, match=message):
            load(spark, path, **options).collect()
    with pytest.raises(Exception, match="name the archive"):
        spark.read.format("surveydata").load().collect()
