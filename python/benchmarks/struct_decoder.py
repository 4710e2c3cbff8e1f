"""A decoder of record files in pure Python, with the module struct: the peer of `read_records`.

It fills the same columns of numbers and flags. docs/record_frames.md describes the frames.
"""

from __future__ import annotations

import math
import struct
from typing import TYPE_CHECKING, Any

import numpy as np

import surveydata

if TYPE_CHECKING:
    from numpy.typing import NDArray

_MAGIC = 44700
_MEASUREMENT = 113
_HEADER = struct.Struct("<HHBHiiH")
_U16 = struct.Struct("<H")
_I32 = struct.Struct("<i")
_FLAGS = struct.Struct("<6xBBi")
_HEIGHT = struct.Struct("<fB")
_TIME = struct.Struct("<Hi")
_VALUES = struct.Struct("<xHH")
_DOPS = struct.Struct("<xHHH")
_VECTOR = struct.Struct("<xfff")
_NOT_AVAILABLE = 65535

Columns = dict[str, list[Any]]


def _text_size(data: bytes, at: int, most: int) -> int:
    for end in range(at, at + most, 2):
        if data[end] == 0 and data[end + 1] == 0:
            return end + 2 - at
    return most


def _dops(row: dict[str, Any], tenths: tuple[int, int, int]) -> None:
    hdop, vdop, tdop = (None if value == _NOT_AVAILABLE else value / 10 for value in tenths)
    row["hdop"], row["vdop"], row["tdop"] = hdop, vdop, tdop
    if hdop is not None and vdop is not None:
        row["pdop"] = math.sqrt(hdop * hdop + vdop * vdop)
        if tdop is not None:
            row["gdop"] = math.sqrt(hdop * hdop + vdop * vdop + tdop * tdop)


def _first_word(data: bytes, at: int, word: int, row: dict[str, Any]) -> int:
    if word & 0x0001:
        kind, status, more = _FLAGS.unpack_from(data, at)
        row["kind_zero"], row["kind_non_zero"] = kind == 0, kind != 0
        row["status_bit_3"], row["status_bit_1"] = status & 2 != 0, status & 4 != 0
        row["status_bit_0"] = more & 0x4000 != 0
        at += _FLAGS.size
    if word & 0x0002:
        (row["number"],) = _I32.unpack_from(data, at + 34)
        at += 38
    if word & 0x0004:
        height, kind = _HEIGHT.unpack_from(data, at)
        row["antenna_height"], row["antenna_is_vertical"] = height, kind != 1
        row["antenna_horizontal_offset"] = 0.0
        row["antenna_vertical_height"] = height  # frames have no horizontal offset
        at += _HEIGHT.size
    if word & 0x0008:
        count = data[at]
        at += 1
        if count:
            row["extra_gps_week"], row["extra_time_of_week"] = _TIME.unpack_from(data, at)
            at += _TIME.size
    if word & 0x0010:
        (row["word_16"],) = _U16.unpack_from(data, at)
        at += 28
    if word & 0x0020:
        at += 5 + 8 * (data[at] & 7).bit_count()
    if word & 0x0040:
        row["value_0"], row["value_1"] = _VALUES.unpack_from(data, at)
        at += _VALUES.size
    if word & 0x0080:
        _dops(row, _DOPS.unpack_from(data, at))
        at += _DOPS.size
    if word & 0x0100:
        row["total_first"], row["total_second"] = data[at], data[at + 1]
        row["system_1_first"], row["system_1_second"] = data[at], data[at + 1]
        at += 2
    if word & 0x0200:
        row["vector_x"], row["vector_y"], row["vector_z"] = _VECTOR.unpack_from(data, at)
        at += _VECTOR.size
    if word & 0x1000:
        at = _systems(data, at, row)
    return at


def _systems(data: bytes, at: int, row: dict[str, Any]) -> int:
    systems = data[at]
    at += 1
    found = {}
    for number in (1, 2, 3):
        if not systems >> (number - 1) & 1:
            continue
        valid = data[at] & 1
        at += 1
        if valid:
            if number == 1 or data[at + 1]:
                found[number] = data[at], data[at + 1]
            at += 2
    if found:  # if none is present, system 1 gets the total pair
        row["system_1_used"] = False
        row["system_1_first"] = row["system_1_second"] = None
    for number, pair in found.items():
        row[f"system_{number}_used"] = True
        row[f"system_{number}_first"], row[f"system_{number}_second"] = pair
    return at


def _second_word(data: bytes, at: int, row: dict[str, Any]) -> None:
    (word,) = _U16.unpack_from(data, at)
    at += 2
    for bit, name in ((1, "flag_a"), (2, "value_b"), (4, "value_c")):
        if word & bit:
            row[name] = data[at]
            at += 1
    if not row.get("value_c"):
        row["value_c"] = None
    for bit in (0x8, 0x10):
        if word & bit:
            at += _text_size(data, at, 160)
    if word & 0x20:
        (row["value_d"],) = _I32.unpack_from(data, at)
        at += 4
    if word & 0x40:
        at += _text_size(data, at, 160)
    if word & 0x80:
        row["flag_e"] = data[at]
        at += 1
    if word & 0x100:
        at += _text_size(data, at, 60)
    if word & 0x200:
        row["value_f"] = data[at]
        at += 1
    if word & 0x400:
        (row["value_g"],) = _I32.unpack_from(data, at)
        at += 4
    for bit, name in ((0x800, "value_h"), (0x1000, "value_i")):
        if word & bit:
            (row[name],) = _U16.unpack_from(data, at)
            at += 2
    if word & 0x2000:
        (row["list_head"],) = _U16.unpack_from(data, at)


def read_columns(data: bytes) -> dict[str, tuple[NDArray[Any], NDArray[np.bool_]]]:
    """The columns of `surveydata.FIXED_WIDTH`: the values, and which of them are present."""
    names = surveydata.FIXED_WIDTH
    columns: Columns = {name: [] for name in names}
    at = 0
    while at + 19 <= len(data):
        magic, length, kind, week, time, time_b, word = _HEADER.unpack_from(data, at)
        end = at + length
        # The sum of the covered bytes and the checksum is 0.
        if (
            magic != _MAGIC
            or length < 5
            or end + 2 > len(data)
            or (sum(data[at + 2 : end]) + _U16.unpack_from(data, end)[0]) & 0xFFFF
        ):
            at += 1
            continue
        if kind != _MEASUREMENT:
            at = end + 2
            continue
        row: dict[str, Any] = {"offset": at, "size": length + 2, "gps_week": week}
        row["time_of_week"], row["time_b_of_week"], row["system_1_used"] = time, time_b, True
        after = _first_word(data, at + _HEADER.size, word, row)
        if word & 0x2000:
            _second_word(data, after, row)
        for name in names:
            columns[name].append(row.get(name))
        at = end + 2
    arrays = {}
    for info in surveydata.columns():
        if info.name in columns:
            values = columns[info.name]
            dtype = np.bool_ if info.type == "bool" else np.dtype(info.type)
            arrays[info.name] = (
                np.array([0 if value is None else value for value in values], dtype),
                np.array([value is not None for value in values]),
            )
    return arrays
