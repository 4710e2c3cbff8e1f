"""Record files in the file systems of fsspec (object stores, zip files, memory), and the stretches
of files that engines distribute to their workers.
"""

from __future__ import annotations

import errno
import os
from pathlib import Path
from typing import TYPE_CHECKING, Any, NamedTuple

if TYPE_CHECKING:
    from collections.abc import Iterable, Iterator

RANGE = 8 << 20
"""The most bytes of a request."""

_BLOCK = 256 << 10
"""The reader requests blocks of this size, also to complete the last record of a stretch."""


class RecordFile(NamedTuple):
    """A record file that can be read in stretches."""

    path: str
    """A path, or a URL of fsspec."""
    size: int
    """In bytes."""
    name: str
    """The path relative to the folder that was named, with slashes; otherwise its last part."""
    version: str
    """Differs after a change: the modification time, or what the file system has instead."""


class Stretch(NamedTuple):
    """A part of a file. The stretches of a file together cover it once."""

    file: RecordFile
    begin: int
    end: int

    @property
    def size(self) -> int:
        """In bytes."""
        return self.end - self.begin


def is_url(path: object) -> bool:
    """Whether fsspec opens the path: "s3://bucket/x.rec", "zip://x.rec::archive.zip"."""
    return isinstance(path, str) and ("://" in path or "::" in path)


def list_files(
    paths: str | os.PathLike[str] | Iterable[str | os.PathLike[str]], pattern: str = "*.rec"
) -> Iterator[RecordFile]:
    """The files of paths, which are files, folders or URLs of either, each folder in the order of
    its names. Raises FileNotFoundError if a path does not exist, ValueError if it is not a regular
    file.
    """
    if not isinstance(paths, str | os.PathLike):
        for path in paths:
            yield from list_files(path, pattern)
    elif is_url(paths):
        yield from _list_store(str(paths), pattern)
    else:
        yield from _list_local(Path(paths), pattern)


def _list_local(path: Path, pattern: str) -> Iterator[RecordFile]:
    if path.is_dir():
        files = sorted(file for file in path.glob(pattern) if file.is_file())
    else:
        files = [path]
    for file in files:
        status = file.stat()
        if not file.is_file():
            raise ValueError(f"{file} is not a regular file, so it has no stretches")
        name = file.relative_to(path).as_posix() if file != path else file.name
        yield RecordFile(str(file), status.st_size, name, str(status.st_mtime_ns))


def _list_store(url: str, pattern: str) -> Iterator[RecordFile]:
    file_system, root = _file_system_of(url)
    if _is_local(file_system):
        yield from _list_local(Path(root), pattern)
        return
    _, chain, rest = url.partition("::")  # `rest` is the URL of the outer file
    if file_system.isdir(root):
        prefix = root.rstrip("/") + "/" if root.strip("/") else root
        infos = sorted(file_system.glob(prefix + pattern, detail=True).items())
        files = [(path, info) for path, info in infos if info["type"] == "file"]
    else:
        prefix = root.rpartition("/")[0] + "/" if "/" in root else ""
        files = [(root, file_system.info(root))]
    for path, info in files:
        yield RecordFile(
            file_system.unstrip_protocol(path) + chain + rest,
            _size_of(info, url),
            path.removeprefix(prefix),
            str(file_system.ukey(path)),
        )


def _size_of(info: dict[str, Any], url: str) -> int:
    size: int | None = info["size"]
    if size is None:
        raise OSError(errno.ESPIPE, "the file system does not know the size", url)
    return size


def _file_system_of(url: str) -> tuple[Any, str]:
    import fsspec

    file_system, path = fsspec.url_to_fs(url)
    return file_system, path


def _is_local(file_system: Any) -> bool:
    from fsspec.implementations.local import LocalFileSystem

    return isinstance(file_system, LocalFileSystem)


def cut(files: Iterable[RecordFile], size: int) -> Iterator[Stretch]:
    """Stretches of at most `size` bytes, at least one for each file."""
    if size < 1:
        raise ValueError("a stretch has at least one byte")
    for file in files:
        for begin in range(0, max(file.size, 1), size):
            yield Stretch(file, begin, min(begin + size, file.size))


def source_of(file: RecordFile) -> StoreFile | Path:
    """The source from which `read_records` reads a file."""
    return open_url(file.path) if is_url(file.path) else Path(file.path)


def open_url(url: str) -> StoreFile | Path:
    """The same for the URL of a file."""
    file_system, path = _file_system_of(url)
    return Path(path) if _is_local(file_system) else StoreFile(file_system, path, url)


class StoreFile:
    """A file of an fsspec file system, which is read in large ranges.

    It has the methods of a binary file object that `read_records` needs. Only one thread may use it
    at a time.
    """

    def __init__(self, file_system: Any, path: str, url: str) -> None:
        self._size = self._end = _size_of(file_system.info(path), url)
        # Without fsspec's cache: this class chooses the ranges.
        self._file = file_system.open(path, "rb", cache_type="none")
        self._file_system = file_system  # kept: deleting that of a zip file closes its files
        self._url = url
        self._at = 0
        self._begin = 0  # the offset of the buffered bytes
        self._bytes = b""

    def expect(self, end: int | None) -> None:
        """Limits ranges to a block after `end`, the end of a stretch, unless more is requested."""
        self._end = self._size if end is None else min(self._size, end + _BLOCK)

    def seekable(self) -> bool:
        """True: any range can be read."""
        return True

    def tell(self) -> int:
        """The offset of the next byte to read."""
        return self._at

    def seek(self, offset: int, whence: int = os.SEEK_SET) -> int:
        """Sets the offset, from the beginning or from the end."""
        self._at = offset + (self._size if whence == os.SEEK_END else 0)
        return self._at

    def read(self, size: int) -> bytes:
        """Reads at most `size` bytes; none only at the end of the file."""
        if not self._begin <= self._at < self._begin + len(self._bytes):
            end = min(max(self._at + size, min(self._at + RANGE, self._end)), self._size)
            self._begin, self._bytes = self._at, b""
            if self._at < end:
                self._file.seek(self._at)
                self._bytes = self._file.read(end - self._at)
        begin = self._at - self._begin
        data = self._bytes[begin : begin + size]
        self._at += len(data)
        return data

    def __repr__(self) -> str:
        return self._url
