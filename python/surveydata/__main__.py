"""`python -m surveydata`: commands that need the engines of the Python package. All other commands
are in the program `surveydata`.
"""

from __future__ import annotations

import argparse
import sys
from typing import TYPE_CHECKING

if TYPE_CHECKING:
    from collections.abc import Sequence

    from .parquet import Progress

DONE = 0
USAGE = 2
CANNOT_READ_OR_WRITE = 3


def _size(text: str) -> int:
    """A number of bytes: "64MB", "500kB", "1000"."""
    for suffix, factor in (("GB", 10**9), ("MB", 10**6), ("kB", 10**3), ("", 1)):
        if text.endswith(suffix):
            size = int(text.removesuffix(suffix)) * factor
            break
    if size < 1:
        raise ValueError
    return size


def _count(text: str) -> int:
    count = int(text)
    if count < 1:
        raise ValueError
    return count


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(prog="python -m surveydata", allow_abbrev=False)
    commands = parser.add_subparsers(dest="command", required=True, metavar="COMMAND")
    to_parquet = commands.add_parser(
        "to-parquet",
        help="write record files as a folder of Parquet files",
        description="Writes the measurements of record files as a folder of Parquet files. Run it "
        "again to continue an interrupted run.",
        allow_abbrev=False,
    )
    to_parquet.add_argument("archive", metavar="ARCHIVE", nargs="+", help="file, folder or URL")
    to_parquet.add_argument("-o", "--output", metavar="DIR", required=True, help="the folder")
    to_parquet.add_argument("--columns", metavar="NAMES", help="separated by commas; default: all")
    to_parquet.add_argument(
        "--pattern", default="*.rec", help="which files of a folder; **/*.rec: also in subfolders"
    )
    to_parquet.add_argument(
        "--stretch",
        metavar="SIZE",
        type=_size,
        default=64 << 20,
        help="bytes of a record file in one Parquet file, such as 200MB; default: 64 MiB",
    )
    to_parquet.add_argument("--workers", metavar="N", type=_count, help="default: all processors")
    return parser


def _show(progress: Progress) -> None:
    rate = (progress.size_done - progress.size_kept) / max(progress.seconds, 1e-3)
    sys.stderr.write(
        f"\r{progress.stretches_done} of {progress.stretches} stretches, "
        f"{progress.size_done / 1e6:,.0f} of {progress.size / 1e6:,.0f} MB, {rate / 1e6:,.0f} MB/s "
    )
    sys.stderr.flush()


def _counted(count: int, noun: str) -> str:
    return f"{count:,} {noun}{'' if count == 1 else 's'}"


def main(arguments: Sequence[str] | None = None) -> int:
    """Runs a command and returns its exit code."""
    options = _parser().parse_args(arguments)
    try:
        from .parquet import to_parquet
    except ModuleNotFoundError as error:
        print(f"error: {error}; pip install 'surveydata[parquet]'", file=sys.stderr)
        return CANNOT_READ_OR_WRITE
    on_terminal = sys.stderr.isatty()
    try:
        progress = to_parquet(
            options.archive if len(options.archive) > 1 else options.archive[0],
            options.output,
            options.columns.split(",") if options.columns else None,
            pattern=options.pattern,
            stretch=options.stretch,
            workers=options.workers,
            report=_show if on_terminal else None,
        )
    except (KeyError, ValueError) as error:
        print(f"error: {error.args[0]}", file=sys.stderr)
        return USAGE
    except (OSError, ModuleNotFoundError) as error:
        print(f"error: {error}", file=sys.stderr)
        return CANNOT_READ_OR_WRITE
    finally:
        if on_terminal:
            print(file=sys.stderr)
    print(
        f"{_counted(progress.rows, 'measurement')} of {_counted(progress.files, 'file')} in "
        f"{_counted(progress.stretches, 'Parquet file')}, {progress.stretches_kept:,} of them "
        f"present before; {_counted(progress.left_out, 'frame')} left out; "
        f"{progress.seconds:,.1f} s",
        file=sys.stderr,
    )
    return DONE


if __name__ == "__main__":
    sys.exit(main())
