import fcntl
from pathlib import Path

import pytest

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
