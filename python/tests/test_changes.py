import contextlib
import fcntl
from pathlib import Path

import numpy as np
import pytest
from numpy.typing import NDArray

import surveydata as sd

OFFSET = 960  # of a measurement with a name and an antenna height


def copy_of(data: Path, tmp_path: Path) -> Path:
    path = tmp_path / "drive.rec"
    path.write_bytes((data / "valley_drive.rec").read_bytes())
    return path


def row_at(path: Path, offset: int) -> dict[str, object]:
    table = sd.read_records(path)
    row = table.column("offset").values.tolist().index(offset)
    return {name: str(table[name].tolist()[row]) for name in table.columns}


def test_a_record_is_changed_and_nothing_else(data: Path, tmp_path: Path) -> None:
    path = copy_of(data, tmp_path)
    before = path.read_bytes()
    path.chmod(0o640)
    was = row_at(path, OFFSET)
    planned = sd.set_record(path, OFFSET, name="Süd-Ø2", number=7, dry_run=True)
    assert path.read_bytes() == before
    made = sd.set_record(path, OFFSET, name="Süd-Ø2", number=7)
    assert made == planned
    after = path.read_bytes()
    expected = bytearray(before)
    for change in made:
        assert expected[change.offset] == change.old
        expected[change.offset] = change.new
    assert after == bytes(expected)
    assert {change.field for change in made} >= {"name", "number", "checksum"}
    assert row_at(path, OFFSET) == {**was, "name": "Süd-Ø2", "number": "7"}
    assert path.stat().st_mode & 0o777 == 0o640
    assert list(tmp_path.iterdir()) == [path]
    assert sd.set_record(path, OFFSET, number=7) == []


def test_the_antenna_height(data: Path, tmp_path: Path) -> None:
    path = copy_of(data, tmp_path)
    table = sd.read_records(path, ["offset", "antenna_height"])
    _, valid = table.column("antenna_height")
    assert valid is not None
    offset = int(table.column("offset").values[valid][0])
    sd.set_record(str(path), offset, antenna_height=1.5, slant=True)
    row = row_at(path, offset)
    assert (row["antenna_height"], row["antenna_is_vertical"]) == ("1.5", "False")
    without = int(table.column("offset").values[~valid][0])
    with pytest.raises(ValueError, match="no room for an antenna height"):
        sd.set_record(path, without, antenna_height=1.5)


def test_what_does_not_fit_is_refused(data: Path, tmp_path: Path) -> None:
    path = copy_of(data, tmp_path)
    before = path.read_bytes()
    for fault, values in (
        ("nothing to set", {}),
        ("name has 18 characters; a frame holds 17", {"name": "x" * 18}),
        ("control character", {"name": "a\tb"}),
        ("beyond U\\+FFFF", {"name": "\U0001f600"}),
        ("surrogates not allowed", {"name": "\ud800"}),
        ("32 bits", {"number": 2**31}),
        ("antenna_height must be from 0 to 1000", {"antenna_height": 1000.5}),
        ("antenna_height must be", {"antenna_height": -0.0}),
    ):
        with pytest.raises(ValueError, match=fault):
            sd.set_record(path, OFFSET, **values)
    with pytest.raises(ValueError, match="no valid measurement frame at offset 961"):
        sd.set_record(path, OFFSET + 1, number=1)
    with pytest.raises(ValueError, match="not below 0"):
        sd.set_record(path, -1, number=1)
    with pytest.raises(ValueError, match="below 2"):
        sd.set_record(path, 2**64, number=1)
    with pytest.raises(FileNotFoundError):
        sd.set_record(tmp_path / "none.rec", OFFSET, number=1)
    with pytest.raises(IsADirectoryError):
        sd.set_record(tmp_path, OFFSET, number=1)
    assert path.read_bytes() == before


def test_a_file_that_is_locked_is_left_alone(data: Path, tmp_path: Path) -> None:
    path = copy_of(data, tmp_path)
    before = path.read_bytes()
    with path.open("rb") as other:
        fcntl.flock(other, fcntl.LOCK_EX)
        with pytest.raises(OSError, match=r"drive\.rec"):
            sd.set_record(path, OFFSET, number=1)
    assert path.read_bytes() == before
    assert sd.set_record(path, OFFSET, number=12345)


def test_all_chosen_records_are_changed_at_once(data: Path, tmp_path: Path) -> None:
    path, one_by_one = copy_of(data, tmp_path), tmp_path / "other.rec"
    one_by_one.write_bytes(path.read_bytes())
    path.chmod(0o640)
    table = sd.read_records(path, ["offset", "number"])
    offsets = table.column("offset").values.tolist()
    numbers = table["number"].tolist()

    def where(rows: sd.RecordTable) -> NDArray[np.bool_]:
        return np.asarray(rows["pdop"] < 1.5) & (np.asarray(rows["number"]) != 5)

    taken = sd.read_records(path, where=where, start=2000, end=60_000)
    assert 0 < len(taken) < 414
    planned = sd.set_records(path, where, 2000, 60_000, number=5, dry_run=True)
    assert path.read_bytes() == one_by_one.read_bytes()
    counts = sd.set_records(path, where, 2000, 60_000, number=5)
    assert counts == planned
    assert counts.changed + counts.without_room == len(taken)
    assert counts.changed > 0
    changed = 0
    for offset in taken.column("offset").values.tolist():
        with contextlib.suppress(ValueError):  # no room for a number
            changed += bool(sd.set_record(one_by_one, offset, number=5))
    assert changed == counts.changed
    assert path.read_bytes() == one_by_one.read_bytes()
    assert path.stat().st_mode & 0o777 == 0o640
    after = dict(zip(offsets, sd.read_records(path)["number"].tolist(), strict=True))
    chosen = set(taken.column("offset").values.tolist())
    for offset, number in zip(offsets, numbers, strict=True):
        assert after[offset] == number or (offset in chosen and after[offset] == 5)
    again = sd.set_records(path, number=5)
    assert again.alike >= counts.changed
    assert sum(again) == 414
    nothing = sd.set_records(path, lambda rows: np.zeros(len(rows), bool), number=6)
    assert nothing == (0, 0, 0)
    assert sorted(tmp_path.iterdir()) == sorted([path, one_by_one])


def test_a_change_of_many_records_is_made_completely_or_not_at_all(
    data: Path, tmp_path: Path
) -> None:
    path = copy_of(data, tmp_path)
    before = path.read_bytes()

    def fails(_rows: sd.RecordTable) -> NDArray[np.bool_]:
        with pytest.raises(OSError, match=r"drive\.rec"):  # it is locked
            sd.set_record(path, OFFSET, number=1)
        raise RuntimeError("the question")

    with pytest.raises(RuntimeError, match="the question"):
        sd.set_records(path, fails, number=1)
    assert path.read_bytes() == before

    def writes(rows: sd.RecordTable) -> NDArray[np.bool_]:
        with path.open("r+b") as other:  # a program that ignores the lock
            other.seek(int(rows.column("offset").values[0]) + 30)
            other.write(b"xx")
        return np.ones(len(rows), bool)

    with pytest.raises(OSError, match="changed"):
        sd.set_records(path, writes, number=1)
    path.write_bytes(before)
    with pytest.raises(ValueError, match="nothing to set"):
        sd.set_records(path)
    with pytest.raises(ValueError, match="not below 0"):
        sd.set_records(path, start=-1, number=1)
    with pytest.raises(ValueError, match="18 characters"):
        sd.set_records(path, name="x" * 18)
    with pytest.raises(FileNotFoundError):
        sd.set_records(tmp_path / "none.rec", number=1)
    with pytest.raises(ValueError, match="one bool"):
        sd.set_records(path, lambda _rows: np.ones(3, bool), number=1)
    assert path.read_bytes() == before
    assert list(tmp_path.iterdir()) == [path]
    sd.set_record(path, OFFSET, number=12345)  # it is not locked any more


def test_a_locked_file_checks_what_it_is_given(data: Path, tmp_path: Path) -> None:
    file = sd._core.LockedFileCore.open(str(copy_of(data, tmp_path)))
    numbers = np.array([OFFSET], np.uint64)
    for offsets, sizes in (
        (numbers.astype(np.int32), numbers),
        (numbers, np.zeros(2, np.uint64)),
        (np.zeros(4, np.uint64)[::2], np.zeros(2, np.uint64)),
    ):
        with pytest.raises(ValueError, match="expected"):
            file.change(offsets, sizes, None, 1, None, False, True)
    with pytest.raises(OSError, match="changed"):
        file.change(numbers, np.array([7], np.uint64), None, 1, None, False, True)
    with pytest.raises(BufferError):
        file.read_at(0, b"not to be written to")
    assert file.size > 90_000
    file.close()
    with pytest.raises(OSError, match="closed"):
        file.read_at(0, bytearray(5))
