"""The samples, and archives made of them."""

from collections.abc import Callable
from pathlib import Path

import pytest

SAMPLES = ("valley_drive", "desert_highway")


@pytest.fixture(scope="session")
def data() -> Path:
    return Path(__file__).resolve().parents[2] / "tests" / "data"


@pytest.fixture(scope="session")
def samples(data: Path) -> list[bytes]:
    return [(data / f"{name}.rec").read_bytes() for name in SAMPLES]


@pytest.fixture(scope="session")
def drives(tmp_path_factory: pytest.TempPathFactory, samples: list[bytes]) -> Path:
    """A folder of five files: the samples, an empty file, one with gaps, one with a plain name."""
    folder = tmp_path_factory.mktemp("archive") / "drives"
    folder.mkdir()
    valley, desert = samples
    files = {
        "desert.rec": desert,
        "empty.rec": b"",
        "gaps.rec": b"\xff" * 1000 + valley * 3 + b"gap" * 50_000 + desert + valley[:-7],
        "täl = 50 %+1.rec": valley,
        "valley.rec": valley * 20,
    }
    for name, content in files.items():
        (folder / name).write_bytes(content)
    return folder


@pytest.fixture
def make_archive(tmp_path: Path, samples: list[bytes]) -> Callable[[int], Path]:
    """A folder with one file of about `size` bytes."""

    def make(size: int) -> Path:
        folder = tmp_path / "archive"
        folder.mkdir()
        both = b"".join(samples)
        (folder / "drive.rec").write_bytes(both * (size // len(both) + 1))
        return folder

    return make
