import copy
import ctypes
import gc
import math
import pickle
import random
from pathlib import Path
from typing import Any

import numpy as np
import pytest

import surveydata as sd
from surveydata import _core

WHOLES = {
    sd.Position: {
        "crs": sd.CoordinateReferenceSystem,
        "point": sd.CoordinatePoint,
        "quality": sd.CoordinateQuality,
        "undulation": sd.UndulationMemento,
    },
    sd.Rectangle: {
        "crs": sd.CoordinateReferenceSystem,
        "bottom_left": sd.CoordinatePoint,
        "top_right": sd.CoordinatePoint,
    },
}
# The arguments of constructors that are neither integers of any size nor texts.
SPECIAL = {
    (sd.CoordinateQuality, "matrix"): sd.QMatrix(q11=1, q23=2),
    (sd.GPSRefStationData, "reference_system"): sd.CoordinateReferenceSystem(kind=2),
    (sd.GPSRefStationData, "point"): sd.CoordinatePoint(x=4),
    (sd.GPSRefStationData, "antenna_height"): sd.GPSAntHeight(height=1.5),
    (sd.GPSRefStationData, "is_flag_3_set"): True,
    (sd.GPSAntHeight, "is_vertical"): False,
    **{(sd.GPSDOPs, name): 1.5 for name in ("hdop", "vdop", "tdop")},
    **{
        (kind, name): {
            sd.CoordinateReferenceSystem: sd.CoordinateReferenceSystem(kind=3),
            sd.CoordinatePoint: sd.CoordinatePoint(y=4),
            sd.CoordinateQuality: sd.CoordinateQuality(sigma=5),
            sd.UndulationMemento: sd.UndulationMemento(source=6),
        }[part]
        for kind, parts in WHOLES.items()
        for name, part in parts.items()
    },
}
CLASSES = [
    sd.CoordinatePoint,
    sd.CoordinateQuality,
    sd.CoordinateReferenceSystem,
    sd.DisplayAttributes,
    sd.GPSAntHeight,
    sd.GPSDOPs,
    sd.GPSRefStationData,
    sd.ImgCameraInfo,
    sd.ImgChipWindowInfo,
    sd.ImgExteriorOrientation,
    sd.ImgInteriorOrientation,
    sd.InstrumentInfoData,
    sd.Position,
    sd.QMatrix,
    sd.Rectangle,
    sd.Scan,
    sd.ScanDefPoint,
    sd.TPSCalibrationData,
    sd.TPSCorrectionData,
    sd.TPSMeasData,
    sd.TPSSetupData,
    sd.UndulationMemento,
]
WITHOUT_EQUALITY = {sd.DisplayAttributes, sd.Rectangle}
COUNTS = {  # of arguments that the constructors take
    sd.CoordinatePoint: 3,
    sd.CoordinateQuality: 3,
    sd.CoordinateReferenceSystem: 3,
    sd.DisplayAttributes: 8,
    sd.GPSAntHeight: 3,
    sd.GPSDOPs: 3,
    sd.GPSRefStationData: 7,
    sd.ImgCameraInfo: 9,
    sd.ImgChipWindowInfo: 4,
    sd.ImgExteriorOrientation: 6,
    sd.ImgInteriorOrientation: 7,
    sd.InstrumentInfoData: 11,
    sd.Position: 9,
    sd.QMatrix: 6,
    sd.Rectangle: 3,
    sd.Scan: 11,
    sd.ScanDefPoint: 3,
    sd.TPSCalibrationData: 8,
    sd.TPSCorrectionData: 13,
    sd.TPSMeasData: 28,
    sd.TPSSetupData: 13,
    sd.UndulationMemento: 3,
}


def names_of(kind: type[Any]) -> list[str]:
    """The names of the values, from the `repr` of a default object."""
    text = repr(kind())
    names, depth = [], 0
    for i, character in enumerate(text):
        depth += (character == "(") - (character == ")")
        if character == "=" and depth == 1:
            names.append(text[:i].rsplit(" ", 1)[-1].rsplit("(", 1)[-1])
    return names


def value_for(kind: type[Any], name: str, seed: int) -> Any:
    """A value that is not the default."""
    if (kind, name) in SPECIAL:
        return SPECIAL[kind, name]
    if name == "area":
        return sd.RectangularArea([1, 2], [1, 2], unit="rad", hz_step=seed, v_step=1)
    default = getattr(kind(), name)
    if isinstance(default, str):
        return f"ä{seed}\U0001f600"
    return type(default)(seed + 3)


def filled(kind: type[Any], seed: int = 0) -> tuple[Any, dict[str, Any]]:
    values = {name: value_for(kind, name, seed + i) for i, name in enumerate(names_of(kind))}
    return kind(**values), values


def same(a: Any, b: Any) -> bool:
    return repr(a) == repr(b) and pickle.dumps(a) == pickle.dumps(b)


@pytest.mark.parametrize("kind", CLASSES)
def test_constructors_take_every_value_by_keyword(kind: type[Any]) -> None:
    made, values = filled(kind)
    assert len(values) == COUNTS[kind]
    for name, value in values.items():
        read = getattr(made, name)
        assert repr(read) == repr(value)
        assert repr(getattr(kind(**{name: value}), name)) == repr(value)
    assert repr(made).startswith(kind.__name__ + "(")
    with pytest.raises(TypeError):
        kind(1, 2, 3)
    with pytest.raises(TypeError):
        kind(no_such_value=1)


@pytest.mark.parametrize("kind", CLASSES)
def test_copies_and_pickles_are_the_same_and_apart(kind: type[Any]) -> None:
    made, values = filled(kind)
    for other in (copy.copy(made), copy.deepcopy(made), pickle.loads(pickle.dumps(made))):
        assert type(other) is kind
        assert same(made, other)
        for name, value in filled(kind, 7)[1].items():
            if (kind, name) in SPECIAL:
                continue
            try:
                setattr(other, name, value)
            except AttributeError:
                continue  # only the constructor sets it
            assert repr(getattr(made, name)) == repr(values[name])
            assert repr(getattr(other, name)) == repr(value)


@pytest.mark.parametrize("kind", CLASSES)
def test_equality_is_that_of_the_library(kind: type[Any]) -> None:
    made, values = filled(kind)
    with pytest.raises(TypeError, match="unhashable"):
        hash(made)
    assert made != "something else"
    if kind in WITHOUT_EQUALITY:
        assert made != copy.copy(made)
        return
    assert made == copy.copy(made)
    for name in values:
        different = {**values}
        del different[name]
        if name in ("distance", "area"):  # not compared, or only if both have one
            assert made == kind(**different)
        else:
            assert made != kind(**different), name


@pytest.mark.parametrize("kind", list(WHOLES))
def test_parts_live_in_their_whole_and_keep_it_alive(kind: type[Any]) -> None:
    whole = kind()
    for name in WHOLES[kind]:
        assert getattr(whole, name) is getattr(whole, name)
    whole.crs.kind = 3
    assert whole.crs.kind == 3
    part = whole.crs
    whole.crs = sd.CoordinateReferenceSystem(kind=9)  # copied into the part
    assert part.kind == 9
    assert part is whole.crs
    del whole
    gc.collect()
    part.variant = 7
    assert (part.kind, part.variant) == (9, 7)
    part = filled(kind)[0].crs  # there is no other reference to the whole
    gc.collect()
    assert part.has_height == 0


def test_a_position_answers() -> None:
    position = sd.Position(
        crs=sd.CoordinateReferenceSystem(kind=2, has_height=1),
        quality=sd.CoordinateQuality(sigma=2, matrix=sd.QMatrix(q11=4, q22=9), valid_axes=3),
    )
    assert position.dimension == 3
    assert position.std_dev(1) == 4
    assert position.std_dev(3) is None
    assert position.combined_std_dev(2) == pytest.approx(2 * math.sqrt(13))
    assert position.quality.matrix is not position.quality.matrix
    position.quality.matrix.q11 = 100  # changes only a copy
    assert position.std_dev(1) == 4


def test_a_scan_gives_and_takes_copies_of_its_area() -> None:
    polygon = sd.PolygonArea([10, 20, 30], [90, 80, 95], unit="gon", name="n", setting_b=9)
    scan = sd.Scan(text_3="three", area=polygon)
    area = scan.area
    assert isinstance(area, sd.PolygonArea)
    assert area == polygon
    assert (area.unit, area.name, area.setting_b) == ("rad", "", 9)
    assert scan.area is not area
    for other in (sd.RectangularArea([1, 2], [1, 2], unit="rad"), sd.DomeArea(unit="deg"), None):
        scan.area = other
        assert scan.area == other
    assert area == polygon
    gc.collect()
    assert area.hz == pytest.approx(np.array([10, 20, 30]) * math.pi / 200)
    assert repr(scan).endswith("area=None)")


def test_texts_that_do_not_fit_are_refused() -> None:
    info = sd.InstrumentInfoData(identifier="x" * 16)
    with pytest.raises(ValueError, match="identifier: 17 UTF-16 units; 16 fit"):
        info.identifier = "x" * 17
    with pytest.raises(ValueError, match="identifier: 18 UTF-16 units; 16 fit"):
        info.identifier = "\U0001f600" * 9
    with pytest.raises(ValueError, match=r"identifier: U\+0000 would end the text"):
        info.identifier = "a\0b"
    with pytest.raises(ValueError, match=r"text_1: U\+0000"):
        info.text_1 = "a\0b"
    with pytest.raises(ValueError, match="surrogates not allowed"):
        info.text_1 = "\ud800"
    assert info.identifier == "x" * 16
    info.identifier = "\ud800"  # a valid UTF-16 unit
    assert info.identifier == "\ud800"
    info.text_1 = "long" * 1000
    assert info.text_1 == "long" * 1000
    for name, most in (("text_1", 32), ("text_2", 32), ("text_3", 255), ("text_4", 64)):
        assert getattr(sd.Scan(**{name: "y" * most}), name) == "y" * most
        with pytest.raises(ValueError, match=f"{name}: {most + 1} UTF-16 units; {most} fit"):
            sd.Scan(**{name: "y" * (most + 1)})
    with pytest.raises(ValueError, match="text: 17"):
        sd.TPSMeasData(text="z" * 17)


def test_numbers_that_do_not_fit_are_refused() -> None:
    attributes = sd.DisplayAttributes()
    for name, low, high in (("param_1", -(2**15), 2**15 - 1), ("mode", 0, 2**32 - 1)):
        for value in (low, high):
            setattr(attributes, name, value)
            assert getattr(attributes, name) == value
        for value in (low - 1, high + 1, 2**100):
            with pytest.raises(ValueError, match=f"{name}: {value} is not from {low} to {high}"):
                setattr(attributes, name, value)
    attributes.mode = np.int64(5)
    assert attributes.mode == 5
    with pytest.raises(TypeError):
        attributes.mode = 1.5
    with pytest.raises(TypeError):
        attributes.mode = None
    matrix = sd.QMatrix(q11=math.inf, q12=math.nan)
    assert matrix.q11 == math.inf
    with pytest.raises(ValueError, match="q13: the number is beyond single precision"):
        matrix.q13 = 1e39
    with pytest.raises(ValueError, match=r"hdop: .* whole tenths"):
        sd.GPSDOPs(hdop=1.23)
    with pytest.raises(ValueError, match="whole tenths"):
        sd.GPSDOPs(vdop=6553.5)
    assert sd.GPSDOPs(hdop=0.8, vdop=1.3).pdop == pytest.approx(math.hypot(0.8, 1.3))
    assert sd.GPSDOPs(hdop=0.8).gdop is None


def test_helpers_of_classes() -> None:
    correction = sd.TPSCorrectionData
    assert correction.ppm_from_scale(correction.scale_from_ppm(12)) == pytest.approx(12)
    height = sd.GPSAntHeight(height=5, is_vertical=False, horizontal_offset=3)
    assert height.vertical_height == 4
    point = sd.ScanDefPoint(distance=4)
    assert point.has_distance
    point.clear_distance()
    assert (point.distance, point.has_distance) == (-1, False)
    station = sd.GPSRefStationData(point=sd.CoordinatePoint(x=1))
    assert station.antenna_height is None
    assert station.reference_system == sd.CoordinateReferenceSystem()


# ----- Measurements


@pytest.mark.parametrize("name", ["valley_drive", "desert_highway"])
def test_measurements_are_those_of_the_table(data: Path, name: str) -> None:
    content = (data / f"{name}.rec").read_bytes()
    table = sd.read_records(content)
    rows = {column: table[column].tolist() for column in table.columns}

    def both(first: str, second: str, row: int) -> Any:
        a, b = rows[first][row], rows[second][row]
        return None if a is None else (a, b)

    for row, (offset, size) in enumerate(zip(rows["offset"], rows["size"], strict=True)):
        measurement = sd.GPSMeasData(frame=content[offset : offset + size])
        assert measurement.time_a == both("gps_week", "time_of_week", row)
        assert measurement.time_b[1] == rows["time_b_of_week"][row]
        for column in ("status_bit_0", "status_bit_1", "status_bit_2", "status_bit_3",
                       "system_1_used", "system_2_used", "word_16", "flag_a",
                       "value_b", "value_c", "flag_e"):  # fmt: skip
            value = getattr(measurement, column)
            assert value == rows[column][row] or rows[column][row] is None
        for pair in ("total", "system_1", "system_2", "system_3"):
            expected = both(f"{pair}_first", f"{pair}_second", row)
            assert getattr(measurement, f"{pair}_pair") == expected
        vector = both("vector_x", "vector_y", row)
        assert (measurement.vector and measurement.vector[:2]) == vector
        dops = measurement.dops
        assert (dops and dops.pdop) == rows["pdop"][row]
        height = measurement.antenna_height
        assert (height and height.height) == rows["antenna_height"][row]
        assert measurement.values == [v for v in (rows["value_0"][row], rows["value_1"][row])
                                      if v is not None]  # fmt: skip
        for other in (copy.copy(measurement), pickle.loads(pickle.dumps(measurement))):
            assert other == measurement


def test_a_measurement_that_was_changed_is_pickled_as_it_is(data: Path) -> None:
    content = (data / "valley_drive.rec").read_bytes()
    frame = content[854 : 854 + 40]
    measurement = sd.GPSMeasData(frame=bytearray(frame))
    assert repr(measurement) == "<GPSMeasData at 440075000 ms of GPS week 2091>"
    plain = sd.GPSMeasData(frame=frame)
    assert measurement == plain
    measurement.antenna_height = sd.GPSAntHeight(height=2, is_vertical=False, horizontal_offset=1)
    measurement.values = [5, 6]
    assert measurement != plain
    again = pickle.loads(pickle.dumps(measurement))
    assert again == measurement == copy.deepcopy(measurement)
    assert again.values == [5, 6]
    with pytest.raises(ValueError, match="two at most"):
        measurement.values = [1, 2, 3]
    with pytest.raises(ValueError, match="is not from 0 to 65535"):
        measurement.values = [65536]
    with pytest.raises(ValueError, match="checksum"):
        sd.GPSMeasData(frame=frame[:-1] + b"x")
    with pytest.raises(TypeError):
        sd.GPSMeasData(frame="text")
    empty = sd.GPSMeasData()
    assert (empty.dops, empty.vector, empty.word_16, empty.total_pair) == (None,) * 4
    assert sd.GPSMeasData(values=[1]).values == [1]


# ----- Lifetimes


def run_program(seed: int, steps: int) -> None:
    """Creates objects, takes and assigns parts, copies, pickles and drops, at random."""
    rng = random.Random(seed)
    alive: list[Any] = []
    for _ in range(steps):
        step = rng.randrange(7)
        if step == 0 or not alive:
            alive.append(filled(rng.choice(CLASSES), rng.randrange(50))[0])
            continue
        one = rng.choice(alive)
        parts = WHOLES.get(type(one), {})
        if step == 1:
            del alive[rng.randrange(len(alive))]
        elif step == 2 and parts:
            alive.append(getattr(one, rng.choice(list(parts))))
        elif step == 3 and parts:
            name = rng.choice(list(parts))
            others = [other for other in alive if type(other) is parts[name]]
            setattr(one, name, rng.choice(others) if others else parts[name]())
        elif step == 4:
            alive.append(copy.copy(one))
        elif step == 5:
            alive.append(pickle.loads(pickle.dumps(one)))
        elif isinstance(one, sd.Scan):
            one.area = rng.choice([None, one.area, sd.DomeArea(unit="rad")])
        else:
            repr(one)
        if alive and rng.random() < 0.3:
            alive.pop(0)


@pytest.mark.parametrize("seed", range(40))
def test_random_programs(seed: int) -> None:
    run_program(seed, 150)


class _Memory(ctypes.Structure):  # mallinfo2
    _fields_ = [(name, ctypes.c_size_t) for name in
                ("arena", "ordblks", "smblks", "hblks", "hblkhd", "usmblks", "fsmblks", "uordblks",
                 "fordblks", "keepcost")]  # fmt: skip


def test_no_object_outlives_its_last_name() -> None:
    library = ctypes.CDLL(None)
    try:
        library.mallinfo2.restype = _Memory
    except AttributeError:
        pytest.skip("the C library does not report allocated memory")

    def after(rounds: int) -> int:
        for _ in range(rounds):
            run_program(3, 200)
        gc.collect()
        return int(library.mallinfo2().uordblks)

    after(20)
    first = after(1)
    # The smallest object has 40 bytes. After 1000 rounds, the few kilobytes that the interpreter
    # itself takes do not matter.
    assert after(1000) - first < 1000 * 32


def test_the_extension_has_public_classes_alone() -> None:
    """Data classes, and what the package wraps; no implementations, no adoption."""
    found = {kind for kind in vars(_core).values() if isinstance(kind, type)}
    wrapped = {
        _core.AppendOutcome,
        _core.AreaCore,
        _core.BatchCore,
        _core.Explanation,
        _core.Fault,
        _core.LockedFileCore,
        _core.PreparedCore,
        _core.ReaderCore,
        _core.ReaderState,
        _core.Rule,
        _core.ScanCore,
    }
    assert found == wrapped | {sd.GPSMeasData} | (set(CLASSES) - {sd.Scan})
    for kind in found:
        assert not [name for name in dir(kind) if "impl" in name.lower() or "base" == name]


@pytest.mark.parametrize("kind", CLASSES)
def test_a_pickle_with_other_values_is_refused(kind: type[Any]) -> None:
    state = kind().__getstate__()
    for wrong in ((), (*state, 1), (object(),) * len(state)):
        with pytest.raises((ValueError, TypeError)):
            kind.__new__(kind).__setstate__(wrong)


def test_a_pickle_of_a_measurement_with_other_values_is_refused() -> None:
    for wrong in ((b"x", None, []), (b"", None, [1, 2, 3]), (b"", None, [1] * 300),
                  (b"", 5, []), (b"", None, "two"), ("text", None, [])):  # fmt: skip
        with pytest.raises((ValueError, TypeError)):
            sd.GPSMeasData.__new__(sd.GPSMeasData).__setstate__(wrong)
