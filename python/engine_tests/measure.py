"""Measures the figures of docs/scale.md on this machine, and prints them as tables.

An archive of four files is made from the samples. Its times ascend, and its vectors differ in each
frame, as in real files. Every figure is the best of three interleaved runs.
"""

import argparse
import itertools
import json
import os
import platform
import shutil
import struct
import sys
import tempfile
import time
from collections.abc import Callable
from pathlib import Path
from typing import Any

import duckdb
import numpy as np
import polars
import pyarrow.dataset as ds

import surveydata as sd
from surveydata import parquet

FILES = 4
DATA = Path(__file__).resolve().parents[2] / "tests" / "data"


def make_archive(folder: Path, size: int) -> int:
    """Creates four files of about `size` bytes in total; returns the number of measurements."""
    sample = b"".join(
        (DATA / f"{name}.rec").read_bytes() for name in ("valley_drive", "desert_highway")
    )
    table = sd.read_records(sample, ["offset", "size", "vector_x"])
    times = size // FILES // len(sample) + 1
    rows = np.tile(np.frombuffer(sample, np.uint8), (times, 1))
    random = np.random.default_rng(1)
    frames = list(zip(*(table[name].tolist() for name in table.columns), strict=True))
    for row, (begin, length, x) in enumerate(frames):
        frame = rows[:, begin : begin + length]
        seconds = np.arange(times, dtype="<i8") * len(frames) + row
        frame[:, 5:7] = (2_400 + seconds // 604_800).astype("<u2").view(np.uint8).reshape(-1, 2)
        of_week = (seconds % 604_800 * 1000).astype("<i4")
        frame[:, 7:11] = of_week.view(np.uint8).reshape(-1, 4)
        at = frame[0].tobytes().find(struct.pack("<d", x)) if x else -1
        if at > 0:
            vector = frame[:, at : at + 24].copy().view("<f8") + random.normal(0, 5, (times, 3))
            frame[:, at : at + 24] = vector.astype("<f8").view(np.uint8)
        total = -frame[:, 2:-2].sum(axis=1, dtype=np.int64) & 0xFFFF
        frame[:, -2:] = total.astype("<u2").view(np.uint8).reshape(-1, 2)
    folder.mkdir()
    for number in range(FILES):
        (folder / f"drive_{number}.rec").write_bytes(rows.tobytes())
    assert len(sd.read_records(folder / "drive_0.rec", ["size"])) == times * len(frames)
    return FILES * times * len(frames)


def best(*actions: Callable[[], Any], runs: int = 3) -> list[float]:
    """The shortest times in seconds of interleaved runs."""
    found = [[] for _ in actions]  # type: list[list[float]]
    for _ in range(runs):
        for action, seconds in zip(actions, found, strict=True):
            begin = time.perf_counter()
            action()
            seconds.append(time.perf_counter() - begin)
    return [min(seconds) for seconds in found]


def table(title: str, heads: list[str], lines: list[list[str]]) -> None:
    print(f"\n{title}\n\n| {' | '.join(heads)} |\n|{'---|' * len(heads)}")
    for line in lines:
        print(f"| {' | '.join(line)} |")
    sys.stdout.flush()


def rate(size: int, seconds: float) -> str:
    return f"{size / seconds / 1e6:,.0f} MB/s"


def measure_reading(archive: Path, size: int) -> None:
    def read(columns: list[str] | None) -> Callable[[], Any]:
        return lambda: [None for _ in sd.iter_batches(archive, columns)]

    one, every = best(read(["pdop"]), read(None))
    lines = [["one column", f"{one:.2f} s", rate(size, one)]]
    lines += [["all columns", f"{every:.2f} s", rate(size, every)]]
    table("One thread, no engine", ["read", "time", "rate"], lines)


def measure_parquet(archive: Path, size: int, work: Path) -> None:
    def convert(workers: int) -> Callable[[], Any]:
        def run() -> None:
            shutil.rmtree(work / "parquet", ignore_errors=True)
            parquet.to_parquet(archive, work / "parquet", stretch=16 << 20, workers=workers)

        return run

    lines = []
    for workers, seconds in zip((1, 2), best(convert(1), convert(2)), strict=True):
        lines.append([f"{workers}", f"{seconds:.2f} s", rate(size, seconds)])
    table("To Parquet, all columns", ["threads", "time", "rate"], lines)
    written = sum(path.stat().st_size for path in work.glob("parquet/*/*"))
    print(f"\n{size / 1e6:,.0f} MB of records are {written / 1e6:,.0f} MB of Parquet.")


def measure_queries(work: Path) -> None:
    names = ", ".join(f'"{info.name}"' for info in sd.columns())
    files = f"'{work}/parquet/*/*.parquet'"
    lines_file = work / "all.jsonl"
    duckdb.sql(f"copy (select {names} from {files}) to '{lines_file}' (format json)")
    print(f"\nAs JSON Lines they are {lines_file.stat().st_size / 1e6:,.0f} MB.")
    connection = duckdb.connect()
    means: dict[str, float] = {}

    def ask(name: str, source: str) -> Callable[[], Any]:
        def run() -> None:
            ((means[name],),) = connection.sql(f"select avg(pdop) from {source}").fetchall()

        return run

    def ask_polars() -> None:
        frame = polars.scan_parquet(work / "parquet")
        means["polars"] = frame.select(polars.col("pdop").mean()).collect().item()

    def ask_pyarrow() -> None:
        column = ds.dataset(work / "parquet", partitioning="hive").to_table(["pdop"])["pdop"]
        means["pyarrow"] = float(np.mean(column.drop_null().to_numpy()))

    slow, quick, by_polars, by_pyarrow = best(
        ask("lines", f"read_json('{lines_file}', format = 'newline_delimited')"),
        ask("parquet", files),
        ask_polars,
        ask_pyarrow,
    )
    assert np.allclose(list(means.values()), means["parquet"], rtol=1e-12, atol=0)
    table(
        "The mean of `pdop`",
        ["engine", "source", "time"],
        [
            ["DuckDB", "JSON Lines", f"{slow * 1e3:,.0f} ms"],
            ["DuckDB", "Parquet", f"{quick * 1e3:,.1f} ms"],
            ["polars", "Parquet", f"{by_polars * 1e3:,.1f} ms"],
            ["pyarrow", "Parquet", f"{by_pyarrow * 1e3:,.1f} ms"],
        ],
    )
    print(f"\nIn DuckDB, Parquet is {slow / quick:,.0f} times as fast as JSON Lines.")


BLOCKSIZES = itertools.count(16 << 20)


def ask_frame(archive: Path) -> Any:
    """A different one each time, because Dask does not compute a result again."""
    import surveydata.dask as sdd

    return sdd.read_records(archive, blocksize=next(BLOCKSIZES), index=None)


def count_rows(archive: Path) -> Any:
    """The number of rows of each partition, after reading all its columns."""
    return ask_frame(archive).map_partitions(len, meta=("rows", "int64")).compute()


def measure_dask(archive: Path, size: int, rows: int) -> None:
    import surveydata.dask as sdd
    from distributed import Client, LocalCluster

    lines = []
    for workers in (1, 2):
        with (
            LocalCluster(
                n_workers=workers, threads_per_worker=1, processes=True, dashboard_address=None
            ) as cluster,
            Client(cluster),
        ):
            divided = best(lambda: sdd.read_records(archive, blocksize="16 MiB"))[0]
            assert sum(count_rows(archive)) == rows
            one = best(lambda: ask_frame(archive)["pdop"].mean().compute())[0]
            every = best(lambda: count_rows(archive))[0]
        found = {"divisions": divided, "mean of pdop": one, "all columns": every}
        for what, seconds in found.items():
            lines.append([f"{workers}", what, f"{seconds:.2f} s", rate(size, seconds)])
    table("Dask, one thread a worker", ["workers", "query", "time", "rate"], lines)


def time_spark(spark: Any, archive: Path, rows: int) -> list[float]:
    def load(**options: object) -> Any:
        """A different one each time, because Spark does not compute a result again."""
        reader = spark.read.format("surveydata").options(blocksize=16 << 20, **options)
        return reader.load(str(archive))

    assert load(columns="pdop").count() == rows
    return best(
        lambda: load(columns="pdop").agg({"pdop": "avg"}).collect(),
        lambda: load().agg({"pdop": "avg"}).collect(),
        lambda: load().where("file = 'drive_0.rec'").agg({"pdop": "avg"}).collect(),
    )


def measure_spark(archive: Path, size: int, rows: int, work: Path) -> None:
    import surveydata.spark
    from pyspark.sql import SparkSession

    os.environ |= {"PYSPARK_PYTHON": sys.executable, "SPARK_LOCAL_HOSTNAME": "localhost"}
    os.environ["SPARK_WORKER_DIR"] = str(work / "workers")
    lines = []
    for workers in (1, 2):
        spark = (
            SparkSession.builder.master(f"local-cluster[{workers},1,1024]")
            .config("spark.ui.enabled", "false")
            .config("spark.sql.shuffle.partitions", "2")
            .config("spark.local.dir", str(work / "spark"))
            .getOrCreate()
        )
        spark.sparkContext.setLogLevel("ERROR")
        surveydata.spark.register(spark, push_filters=True)
        seconds = time_spark(spark, archive, rows)
        spark.stop()
        queries = ("mean of pdop", "all columns", "one of four files")
        for what, took in zip(queries, seconds, strict=True):
            lines.append([f"{workers}", what, f"{took:.2f} s", rate(size, took)])
    table("Spark, one core an executor", ["executors", "query", "time", "rate"], lines)


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("--size", type=float, default=200e6, help="of the archive, in bytes")
    parser.add_argument("--parts", default="reading,parquet,dask,spark")
    options = parser.parse_args()
    parts = options.parts.split(",")
    with tempfile.TemporaryDirectory() as name:
        work = Path(name)
        rows = make_archive(work / "archive", int(options.size))
        size = sum(path.stat().st_size for path in work.glob("archive/*"))
        versions = json.dumps({"python": platform.python_version(), "processors": os.cpu_count()})
        print(f"{rows:,} measurements, {size / 1e6:,.0f} MB, {FILES} files; {versions}")
        if "reading" in parts:
            measure_reading(work / "archive", size)
        if "parquet" in parts:
            measure_parquet(work / "archive", size, work)
            measure_queries(work)
        if "dask" in parts:
            measure_dask(work / "archive", size, rows)
        if "spark" in parts:
            measure_spark(work / "archive", size, rows, work)


if __name__ == "__main__":
    main()
