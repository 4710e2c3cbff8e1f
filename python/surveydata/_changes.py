"""Changes of single records in a file."""

from __future__ import annotations

import os
from pathlib import Path
from typing import NamedTuple

from . import _core


class ByteChange(NamedTuple):
    """A changed byte of a record file."""

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

    The change is made completely or not at all: in a copy that is verified and then replaces the
    file in one step. Access rights are preserved, or the change is refused. The file is locked
    during the change, and gets a new inode. `name` has at most 17 characters; `antenna_height` is
    0 to 1000 metres, vertical unless `slant` is true. With `dry_run` nothing is changed.

    Returns the changed bytes, none if the record has these values already. Raises ValueError if no
    value is given, if a value does not fit, and if there is no such measurement or its frame has no
    room for the field. Raises OSError if the file cannot be changed; it then stays as it was.
    """
    if name is None and number is None and antenna_height is None:
        raise ValueError("nothing to set: give name, number or antenna_height")
    if number is not None and not -(2**31) <= number < 2**31:
        raise ValueError("number is not a number of 32 bits")
    if offset < 0:
        raise ValueError("offset is in bytes, not below 0")
    with Path(path).open("rb"):  # for Python's own exceptions
        pass
    changes = _core.set_record(
        os.fspath(path), offset, name, number, antenna_height, slant, dry_run
    )
    return [ByteChange(*change) for change in changes]
