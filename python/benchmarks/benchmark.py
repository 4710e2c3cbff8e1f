"""Speed of the package, each figure with that of its peer from the same run.

    python python/benchmarks/benchmark.py [--library libsurveydata.so] [--megabytes 100]

Times are medians of processor time of interleaved runs, except those of two threads, which are
elapsed time. With the shared library, batches of directions are compared with the same batches
through the C interface.
"""

from __future__ import annotations

import argparse
import ctypes
import hashlib
import statistics
import threading
import time
from pathlib import Path
from typing import TYPE_CHECKING

import numpy as np
from struct_decoder import read_columns

import surveydata

if TYPE_CHECKING:
    from collections.abc import Callable

    from numpy.typing import NDArray

_SAMPLES = Path(__file__).resolve().parents[2] / "tests" / "data"


def interleaved(clock: Callable[[], float], runs: int, *works: Callable[[], object]) -> list[float]:
    """The median time of each function, in interleaved runs, after one that is not counted."""
    times: list[list[float]] = [[] for _ in works]
    for run in range(runs + 1):
        for work, results in zip(works, times, strict=True):
            start = clock()
            work()
            if run:
                results.append(clock() - start)
    return [statistics.median(results) for results in times]


def records(megabytes: int, runs: int) -> None:
    """Reads all columns of fixed width of copies of a sample into NumPy."""
    print(f"{'records':28}{'million/s':>10}{'MB/s':>8}{'peer':>8}")
    for name in ("valley_drive", "desert_highway"):
        sample = (_SAMPLES / f"{name}.rec").read_bytes()
        data = sample * max(1, megabytes * 10**6 // len(sample))
        few = sample * 10
        rows = len(surveydata.read_records(data, ["offset"]))
        few_rows = len(surveydata.read_records(few, ["offset"]))

        def read(data: bytes = data) -> object:
            return surveydata.read_records(data, surveydata.FIXED_WIDTH).to_numpy()

        def peer(few: bytes = few) -> object:
            return read_columns(few)

        seconds, slow = interleaved(time.process_time, runs, read, peer)
        ratio = slow / few_rows * rows / seconds
        print(
            f"{name:28}{rows / seconds / 1e6:10.2f}{len(data) / seconds / 1e6:8.0f}"
            f"{ratio:7.0f}x  as fast as the module struct"
        )


def two_threads(megabytes: int, runs: int) -> None:
    """Work in two threads, compared with the same work twice in one.

    Hashing needs only the processor, not memory: its ratio shows how much two threads of this
    machine can do at the moment. Virtual processors may share a core, or the other one may be busy.
    """
    sample = (_SAMPLES / "valley_drive.rec").read_bytes()
    data = sample * max(1, megabytes * 10**6 // len(sample))

    def read() -> object:
        return surveydata.read_records(data, surveydata.FIXED_WIDTH).to_numpy()

    def hash_bytes() -> object:
        return hashlib.blake2b(data).digest()

    def once(work: Callable[[], object]) -> None:
        work()
        work()

    def twice(work: Callable[[], object]) -> None:
        threads = [threading.Thread(target=work) for _ in range(2)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()

    alone, together, hash_alone, hash_together = interleaved(
        time.perf_counter,
        runs,
        lambda: once(read),
        lambda: twice(read),
        lambda: once(hash_bytes),
        lambda: twice(hash_bytes),
    )
    print(
        f"{'two threads':28}{alone / together:6.2f} times one (elapsed), "
        f"a hash of the same bytes {hash_alone / hash_together:.2f} times"
    )


class _Definition(ctypes.Structure):  # surveydata_area_definition
    _fields_ = [
        ("struct_size", ctypes.c_uint32),
        ("kind", ctypes.c_uint32),
        ("count", ctypes.c_size_t),
        ("hz", ctypes.c_void_p),
        ("v", ctypes.c_void_p),
        ("distance", ctypes.c_void_p),
        ("hz_step", ctypes.c_double),
        ("v_step", ctypes.c_double),
    ]


def directions(library: str, runs: int) -> None:
    """Batches of directions, compared with the same batches through the C interface."""
    core = ctypes.CDLL(library)
    pointer = ctypes.c_void_p
    core.surveydata_area_contains_many.argtypes = [
        pointer, pointer, ctypes.c_ssize_t, pointer, ctypes.c_ssize_t, ctypes.c_size_t, pointer
    ]  # fmt: skip
    count = 1_000_000
    rng = np.random.default_rng(7)
    print(f"{'directions (million/s)':28}{'package':>10}{'C':>8}{'package/C':>12}")
    for corners in (4, 100, 10_000):
        angles = np.linspace(0, 2 * np.pi, corners, endpoint=False)
        radius = rng.uniform(0.4, 0.6, corners)
        hz, v = 3 + radius * np.cos(angles), 1.5 + radius * np.sin(angles)
        area = surveydata.PolygonArea(hz, v, unit="rad").prepare(many=True)
        definition = _Definition(
            ctypes.sizeof(_Definition), 2, corners, hz.ctypes.data, v.ctypes.data, None, 0, 0
        )
        handle, prepared = pointer(), pointer()
        many = 2
        assert not core.surveydata_area_create(ctypes.byref(definition), ctypes.byref(handle))
        assert not core.surveydata_area_prepare(handle, many, ctypes.byref(prepared))
        ask_hz, ask_v = rng.uniform(2.2, 3.8, count), rng.uniform(0.7, 2.3, count)
        inside = np.empty(count, np.uint8)

        def ask(
            area: surveydata.PreparedArea = area,
            ask_hz: NDArray[np.float64] = ask_hz,
            ask_v: NDArray[np.float64] = ask_v,
        ) -> object:
            return area.contains(ask_hz, ask_v)

        def ask_c(
            prepared: ctypes.c_void_p = prepared,
            ask_hz: NDArray[np.float64] = ask_hz,
            ask_v: NDArray[np.float64] = ask_v,
            inside: NDArray[np.uint8] = inside,
        ) -> None:
            step = ask_hz.itemsize
            assert not core.surveydata_area_contains_many(
                prepared, ask_hz.ctypes.data, step, ask_v.ctypes.data, step, count,
                inside.ctypes.data,
            )  # fmt: skip

        ask_c()
        assert (area.contains(ask_hz, ask_v) == inside.view(np.bool_)).all()
        ours, theirs = interleaved(time.process_time, runs, ask, ask_c)
        what = f"{corners} corners"
        print(
            f"{what:28}{count / ours / 1e6:10.1f}{count / theirs / 1e6:8.1f}{ours / theirs:12.2f}"
        )
        core.surveydata_area_destroy(prepared)
        core.surveydata_area_destroy(handle)


def main() -> None:
    """Runs all benchmarks."""
    parser = argparse.ArgumentParser(description="Measure the speed of the package surveydata.")
    parser.add_argument("--library", help="libsurveydata.so, optimised, for the directions")
    parser.add_argument("--megabytes", type=int, default=100, help="of records; 100 by default")
    parser.add_argument("--runs", type=int, default=7, help="of each measurement; 7 by default")
    options = parser.parse_args()
    records(options.megabytes, options.runs)
    two_threads(options.megabytes, options.runs)
    if options.library:
        directions(options.library, options.runs)


if __name__ == "__main__":
    main()
