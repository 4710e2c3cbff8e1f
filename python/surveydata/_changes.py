"""Changes of single records in a file."""

from __future__ import annotations

import os
from pathlib import Path
from typing import NamedTuple

from . import _core


class ByteChange(NamedTuple):
    """A byte of a record file that is changed."""

    offset: int
    """In the file."""
    old: int
    new: int
    field: str
    """The field of the frame that the byte belongs to."""


def set_record(
    path: str | os.PathLike[str],
    offset: int,
    *,
    name: str | None = None,
    number: int | None = None,
    antenna_height: float | None = None,
    slant: bool = False,
    dry_run: bool = False,
) -> list[ByteChange]:
    """Change the name, the number or the antenna height of the measurement whose frame begins at
    `offset` bytes, as the program's `surveydata record set` does.

    The change is made completely or not at all: in a copy that is read back and then replaces the
    file in one step. Access stays as it was, or the change is refused; the file is locked
    meanwhile, and gets a new inode. `name` has at most 17 characters, `antenna_height` is from 0 to
    1000 metres, vertical unless `slant`. With `dry_run` nothing is changed.

    Returns the changed bytes, none when the record holds the values already. Raises ValueError when
    nothing is named, for a value that does not fit, and when there is no such measurement or it has
    no room for the field; OSError when the file cannot be changed, and is as it was.
    """
    if name is None and number is None and antenna_height is None:
        raise ValueError("nothing to set: give name, number or antenna_height")
    if number is not None and not -(2**31) <= number < 2**31:
        raise ValueError("number is not a number of 32 bits")
    if offset < 0:
        raise ValueError("offset is in bytes, not below 0")
    with Path(path).open("rb"):  # raises what Python raises
        pass
    changes = _core.set_record(
        os.fspath(path), offset, name, number, antenna_height, slant, dry_run
    )
    return [ByteChange(*change) for change in changes]
