"""Runs the code of the documents and the examples."""

import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "python" / "examples"


@pytest.fixture
def workplace(data: Path, tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> Path:
    for folder in ("drives", "archive"):
        (tmp_path / folder).mkdir()
        for name in ("valley_drive", "desert_highway"):
            shutil.copy(data / f"{name}.rec", tmp_path / folder)
    shutil.copy(data / "valley_drive.rec", tmp_path)
    shutil.copy(data / "areas" / "facade.json", tmp_path)
    monkeypatch.chdir(tmp_path)
    return tmp_path


# Blocks that need a server or the packages that `./test.sh --engines` installs.
ELSEWHERE = ("s3://", "archive_parquet", "surveydata.dask", "surveydata.spark")


def blocks(document: Path) -> list[str]:
    found = re.findall(r"^```python\n(.*?)^```$", document.read_text(), re.MULTILINE | re.DOTALL)
    return [block for block in found if not any(word in block for word in ELSEWHERE)]


@pytest.mark.parametrize("name", ["README.md", "docs/python.md"])
@pytest.mark.usefixtures("workplace")
def test_every_block_of_python_runs(name: str) -> None:
    """A comment `# -> VALUE` after an expression is its expected value."""
    names: dict[str, object] = {"__name__": "document"}
    found = blocks(ROOT / name)
    assert len(found) >= {"README.md": 1, "docs/python.md": 4}[name]
    answers = 0
    for block in found:
        exec(compile(block, name, "exec"), names)
        for line in block.splitlines():
            expression, mark, answer = line.partition("# -> ")
            if mark:
                assert repr(eval(expression, names)) == answer.strip(), line
                answers += 1
    assert answers >= {"README.md": 0, "docs/python.md": 5}[name]


def run(name: str, *arguments: object) -> str:
    done = subprocess.run(
        [sys.executable, "-P", EXAMPLES / f"{name}.py", *map(str, arguments)],
        check=True,
        capture_output=True,
        text=True,
    )
    assert done.stderr == ""
    return done.stdout


def texts_of(picture: Path) -> str:
    root = ElementTree.parse(picture).getroot()
    assert root.tag.endswith("svg")
    return " ".join(root.itertext())


@pytest.mark.usefixtures("workplace")
def test_quality_of_a_drive() -> None:
    output = run("drive_quality", "valley_drive.rec", "picture.svg")
    assert output.startswith("414 measurements, ")
    assert "2 above 6:\n" in output
    assert "PDOP" in texts_of(Path("picture.svg"))


def test_a_damaged_file_and_its_repair(workplace: Path) -> None:
    content = bytearray((workplace / "valley_drive.rec").read_bytes())
    content[1000] ^= 1
    (workplace / "damaged.rec").write_bytes(bytes(content))
    output = run("repair", "damaged.rec", "repaired.rec")
    assert "wrong checksum" in output
    assert "413 measurements are in repaired.rec, with 0 findings" in output


@pytest.mark.usefixtures("workplace")
def test_coverage_of_a_facade() -> None:
    output = run("facade_coverage", "facade.json", "picture.svg")
    assert output.startswith("South facade with annex: ")
    assert "% measured" in output
    assert "South facade" in texts_of(Path("picture.svg"))


@pytest.mark.usefixtures("workplace")
def test_an_archive_of_files() -> None:
    output = run("archive", "drives", "picture.svg")
    assert [line.split()[-1] for line in output.splitlines()] == [
        "desert_highway.rec",
        "valley_drive.rec",
    ]
    assert "desert_highway.rec" in texts_of(Path("picture.svg"))
