#!/usr/bin/env python3
"""Reads the Arrow stream of the C interface with pyarrow: every value of the sample files, the schema
with its units, absent values and batches.

    arrow_stream_test.py LIBRARY DATA
"""

import ctypes
import datetime
import json
import pathlib
import struct
import sys
import tempfile
import unittest

import pyarrow as pa

LIBRARY = ctypes.CDLL(sys.argv[1])
DATA = pathlib.Path(sys.argv[2])
NO_END = 2**64 - 1


class Column(ctypes.Structure):
    _fields_ = [("name", ctypes.c_char_p), ("unit", ctypes.c_char_p),
                ("description", ctypes.c_char_p), ("type", ctypes.c_uint32),
                ("can_be_absent", ctypes.c_int32), ("largest", ctypes.c_size_t)]


# SURVEYDATA_COLUMN_BOOL to SURVEYDATA_COLUMN_UINT16_LIST
TYPES = [pa.bool_(), pa.uint8(), pa.uint16(), pa.uint32(), pa.uint64(), pa.int32(), pa.float32(),
         pa.float64(), pa.large_string(),
         pa.large_list(pa.field("item", pa.uint16(), nullable=False))]


class ArrowArrayStream(ctypes.Structure):
    _fields_ = [("functions", ctypes.c_void_p * 4), ("private_data", ctypes.c_void_p)]


def list_columns():
    columns = (Column * 200)()
    count = ctypes.c_size_t()
    status = LIBRARY.surveydata_columns(columns, ctypes.c_size_t(ctypes.sizeof(Column)),
                                        ctypes.c_size_t(len(columns)), ctypes.byref(count))
    assert status == 0
    return columns[:count.value]


COLUMNS = list_columns()


def open_stream(path, names=None, rows=0):
    """The stream of a file, as pyarrow takes it over."""
    reader = ctypes.c_void_p()
    status = LIBRARY.surveydata_reader_open_file(str(path).encode(), ctypes.c_uint64(0),
                                                 ctypes.c_uint64(NO_END), ctypes.byref(reader))
    assert status == 0, path
    chosen, count = None, 0
    if names is not None:
        places = [[column.name.decode() for column in COLUMNS].index(name) for name in names]
        chosen, count = (ctypes.c_uint32 * len(places))(*places), len(places)
    stream = ArrowArrayStream()
    status = LIBRARY.surveydata_reader_arrow_stream(reader, chosen, ctypes.c_size_t(count),
                                                    ctypes.c_size_t(rows), ctypes.byref(stream))
    assert status == 0
    return pa.RecordBatchReader._import_from_c(ctypes.addressof(stream))


def single(number):
    """The nearest number of single precision."""
    return struct.unpack("f", struct.pack("f", number))[0]


def leap_seconds():
    """The moments of UTC after each leap second since 1980, and how far GPS time is ahead then."""
    moments = []
    for line in (DATA / "leapseconds").read_text().splitlines():
        words = line.split()
        if words[:1] == ["Leap"] and int(words[1]) >= 1980:
            day = datetime.datetime.strptime(" ".join(words[1:4]), "%Y %b %d")
            moments.append((day + datetime.timedelta(days=1), len(moments) + 1))
    return moments


LEAP_SECONDS = leap_seconds()


def iso(time):
    return time.isoformat(timespec="milliseconds")


def gps_and_utc(week, time_of_week):
    gps = datetime.datetime(1980, 1, 6) + datetime.timedelta(weeks=week, milliseconds=time_of_week)
    utc = gps
    for moment, ahead in LEAP_SECONDS:
        if gps - datetime.timedelta(seconds=ahead) >= moment:
            utc = gps - datetime.timedelta(seconds=ahead)
    return iso(gps), iso(utc)


def expected_row(record):
    """The row of a record whose fields and getters another program has recorded."""
    info, fields, getters = record["info"], record["measurement"], record["getters"]
    row = {"offset": record["offset"], "size": record["size"], "name": info["name"] or None,
           "number": info["number"], "kind_zero": info["flags"] & 1 != 0,
           "kind_non_zero": info["flags"] & 2 != 0}

    def has(bit):
        return fields["setMask"] & bit != 0

    def when(is_present, value):
        return value if is_present else None

    row["gps_week"], row["time_of_week"] = fields["timeA"]
    row["time_gps"], row["time_utc"] = gps_and_utc(*fields["timeA"])
    row["time_b_of_week"] = fields["timeB"]
    extra = fields["extraTime"] if fields["extraTimeCount"] else [None, None]
    row["extra_gps_week"], row["extra_time_of_week"] = extra
    row["extra_time_gps"], row["extra_time_utc"] = (
        gps_and_utc(*extra) if fields["extraTimeCount"] else (None, None))
    for bit, is_set in enumerate(getters["statusBits"]):
        row[f"status_bit_{bit}"] = is_set
    for system in (1, 2, 3):
        row[f"system_{system}_used"] = getters[f"system{system}Used"]
    antenna = fields["antennaHeight"]
    row["antenna_height"] = when(has(0x0002), single(antenna["height"]))
    row["antenna_is_vertical"] = when(has(0x0002), antenna["isVertical"])
    row["antenna_horizontal_offset"] = when(has(0x0002), single(antenna["horizontalOffset"]))
    height = getters["verticalHeight"]
    row["antenna_vertical_height"] = None if height is None else single(height)
    for i in (0, 1):
        row[f"value_{i}"] = when(fields["valueCount"] > i, fields["values"][i])
    for dilution in ("hdop", "vdop", "tdop", "pdop", "gdop"):
        value = getters["dops"][dilution] if getters["dops"] else -1.0
        row[dilution] = when(value != -1.0, value)
    row["word_16"] = when(has(0x0020), fields["word16"])
    for name, pair in (("total", "totalPair"), ("system_1", "system1Pair"),
                       ("system_2", "system2Pair"), ("system_3", "system3Pair")):
        row[f"{name}_first"], row[f"{name}_second"] = getters[pair] or (None, None)
    for axis, value in zip("xyz", fields["vector"]):
        row[f"vector_{axis}"] = when(has(0x0010), value)
    row["flag_a"], row["flag_e"] = fields["flagA"] != 0, fields["flagE"] != 0
    row["value_c"] = when(has(0x0080), fields["valueC"])
    row["value_h"] = when(has(0x0100), fields["valueH"])
    row["value_i"] = when(has(0x0200), fields["valueI"])
    for letter in "bdfg":
        row[f"value_{letter}"] = fields[f"value{letter.upper()}"]
    for letter in "abcd":
        row[f"text_{letter}"] = fields[f"text{letter.upper()}"] or None
    row["list_head"] = when(has(0x0400), fields["listBlock"]["head"])
    row["list_entries"] = when(has(0x0400), fields["listBlock"]["entries"])
    return row


def expected_table(name):
    lines = (DATA / f"{name}.expected.jsonl").read_text().splitlines()
    return [expected_row(json.loads(line)) for line in lines]


class ArrowStream(unittest.TestCase):
    maxDiff = None

    def test_schema(self):
        schema = open_stream(DATA / "valley_drive.rec").schema
        self.assertGreater(len(COLUMNS), 50)
        self.assertEqual(schema.names, [column.name.decode() for column in COLUMNS])
        units = {}
        for column, field in zip(COLUMNS, schema):
            self.assertEqual(field.type, TYPES[column.type], field.name)
            self.assertEqual(field.nullable, bool(column.can_be_absent), field.name)
            self.assertEqual(field.metadata[b"description"], column.description)
            units[field.name] = field.metadata.get(b"unit", b"").decode()
        self.assertEqual({name: unit for name, unit in units.items() if unit}, {
            "offset": "byte", "size": "byte", "gps_week": "week", "time_of_week": "ms",
            "time_b_of_week": "ms", "extra_gps_week": "week", "extra_time_of_week": "ms",
            "antenna_height": "m", "antenna_horizontal_offset": "m", "antenna_vertical_height": "m",
            "vector_x": "m", "vector_y": "m", "vector_z": "m"})
        leap_seconds_of = {b"leap_seconds": b"IERS leap-seconds.list of 2026-07-06",
                           b"leap_seconds_expire": b"2027-06-28",
                           b"leap_seconds_after_expiry": b"the last offset is used"}
        self.assertEqual(schema.metadata, leap_seconds_of)
        self.assertLessEqual(leap_seconds_of.items(),
                             schema.field("time_utc").metadata.items())

    def test_every_value_of_the_samples(self):
        for name in ("valley_drive", "desert_highway"):
            with self.subTest(name):
                table = open_stream(DATA / f"{name}.rec").read_all()
                table.validate(full=True)
                expected = expected_table(name)
                self.assertEqual(table.num_rows, len(expected))
                self.assertEqual(set(table.schema.names), set(expected[0]))
                for column in table.schema.names:
                    values = [row[column] for row in expected]
                    self.assertEqual(table[column].to_pylist(), values, column)
                    self.assertEqual(table[column].null_count, values.count(None), column)

    def test_batches(self):
        sample = DATA / "valley_drive.rec"
        once = open_stream(sample).read_all().drop_columns(["offset"])
        with tempfile.TemporaryDirectory() as folder:
            large = pathlib.Path(folder) / "large.rec"
            large.write_bytes(160 * sample.read_bytes())
            batches = list(open_stream(large))
            self.assertEqual([batch.num_rows for batch in batches], [65536, 160 * 414 - 65536])
            table = pa.Table.from_batches(batches).drop_columns(["offset"])
            table.validate(full=True)
            self.assertTrue(table.equals(pa.concat_tables(160 * [once])))
            few = open_stream(large, ["time_utc", "hdop"], 1000)
            self.assertEqual(few.schema.names, ["time_utc", "hdop"])
            sizes = [batch.num_rows for batch in few]
            self.assertEqual(sizes, 66 * [1000] + [240])

    def test_columns_outlive_their_batches(self):
        reader = open_stream(DATA / "valley_drive.rec", rows=100)
        columns = [batch.column("text_b") for batch in reader]
        del reader
        expected = [row["text_b"] for row in expected_table("valley_drive")]
        self.assertEqual([value for column in columns for value in column.to_pylist()], expected)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
