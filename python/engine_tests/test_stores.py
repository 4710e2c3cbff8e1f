import itertools
import os
import zipfile
from collections.abc import Iterator
from pathlib import Path
from typing import Any

import fsspec
import pyarrow as pa
import pytest
from fsspec.implementations.memory import MemoryFileSystem
from fsspec.spec import AbstractBufferedFile, AbstractFileSystem

import surveydata as sd
from surveydata import _stores


def rows(source: object, **options: Any) -> pa.Table:
    return pa.table(sd.read_records(source, **options)).combine_chunks()


class RecordedFile(AbstractBufferedFile):  # type: ignore[misc]
    def _fetch_range(self, start: int, end: int) -> bytes:
        self.fs.requests.append((start, end))
        content: bytes = self.fs.content
        return content[start:end]


class RecordedStore(AbstractFileSystem):  # type: ignore[misc]
    """A store of one file that records which ranges are fetched, like an object store."""

    protocol = "recorded"
    cachable = False
    content = b""
    requests: list[tuple[int, int]]

    def info(self, path: str, **_: Any) -> dict[str, Any]:
        return {"name": path, "size": len(self.content), "type": "file"}

    def ls(self, path: str, detail: bool = True, **_: Any) -> list[Any]:
        return [self.info(path)] if detail else [path]

    def _open(self, path: str, mode: str = "rb", **options: Any) -> RecordedFile:
        options.pop("block_size", None)
        return RecordedFile(self, path, mode, **options)


@pytest.fixture
def recorded(samples: list[bytes]) -> Iterator[type[RecordedStore]]:
    RecordedStore.content = b"".join(samples) * 200  # 34 MB
    RecordedStore.requests = []
    fsspec.register_implementation("recorded", RecordedStore, clobber=True)
    yield RecordedStore
    RecordedStore.content = b""


@pytest.fixture
def memory(drives: Path) -> Iterator[str]:
    store = MemoryFileSystem()
    store.put(str(drives) + "/", "/stored/", recursive=True)
    yield "memory://stored"
    store.rm("/stored", recursive=True)


@pytest.fixture(scope="module", params=[zipfile.ZIP_STORED, zipfile.ZIP_DEFLATED])
def zipped(
    request: pytest.FixtureRequest, drives: Path, tmp_path_factory: pytest.TempPathFactory
) -> str:
    path = tmp_path_factory.mktemp("zip") / "drives.zip"
    with zipfile.ZipFile(path, "w", request.param) as archive:
        for file in sorted(drives.iterdir()):
            archive.write(file, f"year/{file.name}")
    return f"zip://year::{path}"


def test_a_file_through_each_file_system(drives: Path, memory: str, zipped: str) -> None:
    head, _, rest = zipped.partition("::")
    for name in ("valley.rec", "gaps.rec", "empty.rec", "täl = 50 %+1.rec"):
        expected = rows(drives / name)
        assert len(expected) > 400 or name == "empty.rec"
        for url in (f"file://{drives}/{name}", f"{memory}/{name}", f"{head}/{name}::{rest}"):
            assert rows(url) == expected, url


def test_a_folder_through_each_file_system(drives: Path, memory: str, zipped: str) -> None:
    expected = rows(drives)
    for url in (f"file://{drives}", f"local://{drives}", memory, zipped):
        assert rows(url) == expected, url
        assert rows(url, pattern="v*.rec") == rows(drives / "valley.rec")
    assert rows([memory, drives]) == pa.concat_tables([expected] * 2).combine_chunks()


def test_damage_in_a_store(drives: Path, memory: str) -> None:
    local, stored = sd.find_damage(drives / "gaps.rec"), sd.find_damage(f"{memory}/gaps.rec")
    assert len(local.offset) >= 3
    for a, b in zip(local, stored, strict=True):
        assert a.tolist() == b.tolist()


def test_stretches_in_a_store_join_to_the_whole(drives: Path, memory: str, zipped: str) -> None:
    for folder in (memory, zipped):
        for name in ("valley.rec", "gaps.rec"):
            head, _, rest = folder.partition("::")
            url = f"{head}/{name}::{rest}" if rest else f"{head}/{name}"
            size = (drives / name).stat().st_size
            cuts = [0, 1, 5_000, 94_423, 94_424, size // 2, size - 1, size, size + 10, None]
            parts = [rows(url, start=a, end=b) for a, b in itertools.pairwise(cuts)]
            assert sum(len(part) > 0 for part in parts) >= 3
            assert pa.concat_tables(parts).combine_chunks() == rows(drives / name)


def test_only_a_stretch_is_fetched_in_large_ranges(recorded: type[RecordedStore]) -> None:
    begin, end = 20_000_000, 30_000_000
    found = sd.read_records("recorded://drive.rec", ["offset"], start=begin, end=end)
    assert begin <= found["offset"].min() < begin + 500
    assert end - 500 < found["offset"].max() < end
    spans = recorded.requests
    # The reader looks back 131,074 bytes, and reads one more block for the end of the last record.
    assert begin - 131_074 <= min(a for a, _ in spans)
    assert max(b for _, b in spans) <= end + 2 * 256 * 1024
    assert all(a[1] == b[0] for a, b in itertools.pairwise(spans)), "each byte once, in their order"
    assert len(spans) == 2
    assert max(b - a for a, b in spans) == _stores.RANGE == 8 << 20


def test_a_whole_file_is_fetched_once(recorded: type[RecordedStore]) -> None:
    assert len(sd.read_records("recorded://drive.rec", ["offset"])) == 200 * (414 + 380)
    spans = recorded.requests
    assert spans[0][0] == 0
    assert spans[-1][1] == len(recorded.content)
    assert all(a[1] == b[0] for a, b in itertools.pairwise(spans))
    assert len(spans) == -(-len(recorded.content) // _stores.RANGE)


@pytest.mark.usefixtures("recorded")
def test_what_cannot_be_fetched_raises(monkeypatch: pytest.MonkeyPatch) -> None:
    def fail(*_: object) -> bytes:
        raise ConnectionResetError("the connection was lost")

    monkeypatch.setattr(RecordedFile, "_fetch_range", fail)
    with pytest.raises(ConnectionResetError):
        sd.read_records("recorded://drive.rec")
    with pytest.raises(FileNotFoundError):
        sd.read_records("memory://no/such/file.rec")


def test_files_and_their_stretches(drives: Path, memory: str, zipped: str) -> None:
    names = ["desert.rec", "empty.rec", "gaps.rec", "täl = 50 %+1.rec", "valley.rec"]
    sizes = [(drives / name).stat().st_size for name in names]
    for folder in (drives, str(drives), f"file://{drives}", memory, zipped):
        files = list(_stores.list_files(folder))
        assert [file.name for file in files] == names
        assert [file.size for file in files] == sizes
        assert [len(rows(file.path)) for file in files] == [len(rows(drives / n)) for n in names]
        stretches = list(_stores.cut(files, 100_000))
        assert sum(stretch.size for stretch in stretches) == sum(sizes)
        assert [s.begin for s in stretches if s.file.name == "gaps.rec"] == list(
            range(0, sizes[2], 100_000)
        )
        assert all(s.size == 100_000 or s.end == s.file.size for s in stretches)
        assert {s.file.name for s in stretches} == set(names)
    with pytest.raises(ValueError, match="at least one byte"):
        list(_stores.cut(files, 0))


def test_a_changed_file_has_another_version(tmp_path: Path, samples: list[bytes]) -> None:
    path = tmp_path / "a.rec"
    path.write_bytes(samples[0])
    (before,) = _stores.list_files(path)
    os.utime(path, ns=(1, 1))
    (after,) = _stores.list_files(path)
    assert before.version != after.version
    assert before._replace(version="") == after._replace(version="")


def test_what_has_no_stretches_is_refused(tmp_path: Path) -> None:
    os.mkfifo(tmp_path / "pipe")
    with pytest.raises(ValueError, match="not a regular file"):
        list(_stores.list_files(tmp_path / "pipe"))
    with pytest.raises(FileNotFoundError):
        list(_stores.list_files(tmp_path / "none"))
