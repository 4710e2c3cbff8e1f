"""Converts ARCHIVE to DIR in processes that kill themselves, each after some more steps than the
previous one, until one reaches the end. Prints a line for each: the signal, the number of complete
files, and their rows.
"""

import os
import random
import signal
import sys
from collections.abc import Callable
from pathlib import Path
from typing import Any

import pyarrow.parquet as pq

from surveydata import parquet


def steps(step: Callable[[], None]) -> None:
    """Calls `step` before and after every operation that changes the folder."""

    def around(owner: Any, name: str) -> None:
        original = getattr(owner, name)

        def wrapped(*arguments: Any, **options: Any) -> Any:
            step()
            result = original(*arguments, **options)
            step()
            return result

        setattr(owner, name, wrapped)

    for name in ("mkdir", "unlink", "replace"):
        around(Path, name)
    for name in ("write_table", "add_key_value_metadata", "close"):
        around(pq.ParquetWriter, name)
    around(os, "fsync")


def convert_until_killed(archive: str, folder: str, last: int) -> None:
    count = iter(range(last))

    def step() -> None:
        if next(count, None) is None:
            os.kill(os.getpid(), signal.SIGKILL)

    steps(step)
    parquet.to_parquet(archive, folder, stretch=120_000, workers=2)


def main(archive: str, folder: str) -> None:
    chance = random.Random(7)
    last, status = 0, -1
    while status != 0:
        process = os.fork()  # no other thread runs here
        if process == 0:
            try:
                convert_until_killed(archive, folder, last)
                os._exit(0)
            finally:
                os._exit(1)
        status = os.waitstatus_to_exitcode(os.waitpid(process, 0)[1])
        if status > 0:
            sys.exit(status)
        parts = sorted(Path(folder).glob("*/*.parquet"))
        print(-status, len(parts), sum(pq.read_metadata(part).num_rows for part in parts))
        last += chance.randrange(1, 4) if last < 20 else chance.randrange(2, 7)


if __name__ == "__main__":
    main(*sys.argv[1:])
