"""Changes of single records in a file."""

from __future__ import annotations

import os
from pathlib import Path
from typing import TYPE_CHECKING, NamedTuple

import numpy as np

from . import _core, _records

if TYPE_CHECKING:
    from collections.abc import Callable

    from numpy.typing import NDArray


class ByteChange(NamedTuple):
    """A changed byte of a record file."""

    offset: int
    """In the file."""
    old: int
    new: int
    field: str
    """The field of the frame that the byte belongs to."""


class ChangeCounts(NamedTuple):
    """The numbers of measurements that `set_records` changed and did not change."""

    changed: int
    alike: int
    """Those that had the values already."""
    without_room: int
    """Those whose frame has no room for one of the fields; they stay unchanged."""


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
    room for the field. Raises OSError if the file cannot be changed; it then stays unchanged.
    """
    if not 0 <= offset < 2**64:
        raise ValueError("offset is in bytes, not below 0, and below 2^64")
    _check(path, name, number, antenna_height)
    changes = _core.set_record(
        os.fspath(path), offset, name, number, antenna_height, slant, dry_run
    )
    return [ByteChange(*change) for change in changes]


def set_records(
    path: str | os.PathLike[str],
    where: Callable[[_records.RecordTable], NDArray[np.bool_]] | None = None,
    start: int | None = None,
    end: int | None = None,
    *,
    name: str | None = None,
    number: int | None = None,
    antenna_height: float | None = None,
    slant: bool = False,
    dry_run: bool = False,
) -> ChangeCounts:
    """Change the name, the number or the antenna height of all measurements that `where` keeps,
    in one replacement of the file.

    `where`, `start` and `end` are those of `read_records`; without them, all measurements are
    changed. The file is locked before it is read, and until the change is made. All other rules and
    exceptions are those of `set_record`, except that frames without room for a field are counted.
    """
    _check(path, name, number, antenna_height)
    file = _core.LockedFileCore.open(os.fspath(path))
    try:
        begin = _records.check_stretch(start, end)
        reader = _core.ReaderCore.open_source(file.read_at, file.size, begin, end)
        columns = (
            ["offset", "size"] if where is None else [info.name for info in _records.columns()]
        )
        offsets, sizes = [np.empty(0, np.uint64)], [np.empty(0, np.uint64)]
        for table in _records.batches_of(reader, Path(path), columns, where):
            # Copies: views would keep all columns.
            offsets.append(table.column("offset").values.astype(np.uint64))
            sizes.append(table.column("size").values.astype(np.uint64))
        counts = file.change(
            np.concatenate(offsets),
            np.concatenate(sizes),
            name,
            number,
            antenna_height,
            slant,
            dry_run,
        )
    finally:
        file.close()
    return ChangeCounts(*counts)


def _check(
    path: str | os.PathLike[str],
    name: str | None,
    number: int | None,
    antenna_height: float | None,
) -> None:
    if name is None and number is None and antenna_height is None:
        raise ValueError("nothing to set: give name, number or antenna_height")
    if number is not None and not -(2**31) <= number < 2**31:
        raise ValueError("number is not a number of 32 bits")
    if name is not None:
        name.encode()  # raises ValueError for unpaired surrogates
    with Path(path).open("rb"):  # for Python's own exceptions
        pass
