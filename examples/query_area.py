"""Reads records from a Python object and queries an area through the C interface, with ctypes only.

The environment variable SURVEYDATA_LIBRARY has the path of the library.
"""

import array
import ctypes
import os

library = ctypes.CDLL(os.environ["SURVEYDATA_LIBRARY"])
library.surveydata_status_text.restype = ctypes.c_char_p

OK, END, NO_END = 0, 1, 2**64 - 1
MEASUREMENT = 1
POLYGON, QUESTIONS_MANY = 2, 2

ReadAt = ctypes.CFUNCTYPE(ctypes.c_int64, ctypes.c_void_p, ctypes.c_uint64,
                          ctypes.POINTER(ctypes.c_uint8), ctypes.c_size_t)


class Source(ctypes.Structure):
    _fields_ = [("struct_size", ctypes.c_uint32), ("reserved", ctypes.c_uint32), ("read_at", ReadAt),
                ("release", ctypes.c_void_p), ("context", ctypes.c_void_p), ("size", ctypes.c_uint64)]


class Entry(ctypes.Structure):
    _fields_ = [("struct_size", ctypes.c_uint32), ("kind", ctypes.c_uint32),
                ("offset", ctypes.c_uint64), ("size", ctypes.c_uint64),
                ("record_type", ctypes.c_uint32), ("damage", ctypes.c_uint32),
                ("bytes", ctypes.c_void_p)]


class AreaDefinition(ctypes.Structure):
    _fields_ = [("struct_size", ctypes.c_uint32), ("kind", ctypes.c_uint32),
                ("count", ctypes.c_size_t), ("hz", ctypes.c_void_p), ("v", ctypes.c_void_p),
                ("distance", ctypes.c_void_p), ("hz_step", ctypes.c_double),
                ("v_step", ctypes.c_double)]


def check(status):
    if status != OK:
        raise RuntimeError(library.surveydata_status_text(status).decode())


def measurements(content):
    """Yields offset and bytes of each measurement in a bytes-like object."""

    def read_at(_context, offset, to, count):
        piece = content[offset:offset + count]  # could be a request to a server
        ctypes.memmove(to, piece, len(piece))
        return len(piece)

    source = Source(ctypes.sizeof(Source), 0, ReadAt(read_at), None, None, len(content))
    reader = ctypes.c_void_p()
    check(library.surveydata_reader_open_source(ctypes.byref(source), ctypes.c_uint64(0),
                                                ctypes.c_uint64(NO_END), ctypes.byref(reader)))
    try:
        entry = Entry(ctypes.sizeof(Entry))
        while (status := library.surveydata_reader_next(reader, MEASUREMENT,
                                                        ctypes.byref(entry))) == OK:
            yield entry.offset, ctypes.string_at(entry.bytes, entry.size)
        if status != END:
            check(status)
    finally:
        library.surveydata_reader_close(reader)


def inside(corners, directions):
    """Whether each direction (Hz, V), in rad, lies in the polygon with these corners."""
    hz = array.array("d", (corner[0] for corner in corners))
    v = array.array("d", (corner[1] for corner in corners))
    definition = AreaDefinition(ctypes.sizeof(AreaDefinition), POLYGON, len(corners),
                                hz.buffer_info()[0], v.buffer_info()[0], None, 0.01, 0.01)
    area, prepared = ctypes.c_void_p(), ctypes.c_void_p()
    check(library.surveydata_area_create(ctypes.byref(definition), ctypes.byref(area)))
    try:
        check(library.surveydata_area_prepare(area, QUESTIONS_MANY, ctypes.byref(prepared)))
        pairs = array.array("d", (angle for direction in directions for angle in direction))
        first = pairs.buffer_info()[0]
        answers = (ctypes.c_uint8 * len(directions))()
        # Hz and V alternate, so the strides are 16 bytes.
        check(library.surveydata_area_contains_many(
            prepared, ctypes.c_void_p(first), ctypes.c_ssize_t(16), ctypes.c_void_p(first + 8),
            ctypes.c_ssize_t(16), ctypes.c_size_t(len(directions)), answers))
        return [bool(answer) for answer in answers]
    finally:
        library.surveydata_area_destroy(prepared)
        library.surveydata_area_destroy(area)


with open("valley_drive.rec", "rb") as file:
    frames = list(measurements(file.read()))
print(len(frames), "measurements, the first", len(frames[0][1]), "bytes long at", frames[0][0])

facade = [(1.0, 1.1), (1.8, 1.1), (1.8, 1.6), (1.0, 1.6)]
print(inside(facade, [(1.4, 1.3), (1.4, 2.0), (2.0, 1.3)]))
