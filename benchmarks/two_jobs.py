#!/usr/bin/env python3
"""The speedup of the record commands of the program with two jobs.

    benchmarks/two_jobs.py build/release/tools/surveydata [--megabytes 132] [--runs 9] [COMMAND...]

The input is copies of the sample valley_drive.rec. Times are elapsed times, so the machine must be idle. For
comparison, two programs with one job each run at the same time: their speed is what the two cores allow at that
moment, which can be less than twice that of one if the processor is virtual. Runs of one job, of two jobs and of
two programs alternate; figures are medians, after one warm-up run of each.
"""

from __future__ import annotations

import argparse
import os
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

SAMPLES = Path(__file__).resolve().parents[1] / "tests" / "data"
COMMANDS = {
    "export": "export FILE",
    "csv": "export FILE --csv",
    "list": "list FILE",
    "json": "list FILE --json",
    "plot": "plot FILE -o OUT",
    "check": "check FILE",
    "diff": "diff FILE CHANGED",
}


def run(command: list[str], programs: int = 1) -> tuple[float, float]:
    """Elapsed and processor time of a command, or of several like it at once, in seconds."""
    start = time.perf_counter()
    processes = [
        subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) for _ in range(programs)
    ]
    processor = 0.0
    for process in processes:
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode not in (0, 1):
            raise SystemExit(f"{' '.join(command)} exited with {process.returncode}")
        processor += usage.ru_utime + usage.ru_stime
    return time.perf_counter() - start, processor


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("--megabytes", type=int, default=132)
    parser.add_argument("--runs", type=int, default=9)
    parser.add_argument("command", nargs="*", help=f"any of {', '.join(COMMANDS)}; all by default")
    options = parser.parse_intermixed_args()
    commands = options.command or list(COMMANDS)
    for name in commands:
        if name not in COMMANDS:
            parser.error(f"{name} is not one of {', '.join(COMMANDS)}")

    sample = (SAMPLES / "valley_drive.rec").read_bytes()
    other = (SAMPLES / "desert_highway.rec").read_bytes()
    copies = max(2, options.megabytes * 1_000_000 // len(sample))
    with tempfile.TemporaryDirectory() as folder:
        names = {"FILE": f"{folder}/a.rec", "CHANGED": f"{folder}/b.rec", "OUT": f"{folder}/plot.svg"}
        # Few differences: a copy of the other sample is missing, and one is inserted elsewhere.
        for name, places in ("FILE", (1, 2)), ("CHANGED", (2, 3)):
            with open(names[name], "wb") as file:
                for i in range(copies):
                    file.write(sample)
                    if i in [place * copies // 4 for place in places]:
                        file.write(other)
        print("| command | one job | two jobs | speedup | two programs | processor time of two jobs to one |")
        print("|---|---|---|---|---|---|")
        for name in commands:
            words = [names.get(word, word) for word in COMMANDS[name].split()]
            command = [options.program, "record", *words, "--jobs"]
            results = []
            for _ in range(options.runs + 1):
                one, two, both = run([*command, "1"]), run([*command, "2"]), run([*command, "1"], 2)
                results.append((one[0], two[0], one[0] / two[0], 2 * one[0] / both[0], two[1] / one[1]))
            medians = [statistics.median(column) for column in zip(*results[1:], strict=True)]
            print(f"| `record {COMMANDS[name]}` |", "{:.3f} s | {:.3f} s | {:.2f} | {:.2f} | {:.2f} |".format(*medians))
            sys.stdout.flush()


if __name__ == "__main__":
    main()
