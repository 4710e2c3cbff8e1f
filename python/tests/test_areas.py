import copy
import json
import math
import os
import pickle
import threading
from collections.abc import Callable
from pathlib import Path

import numpy as np
import numpy.typing as npt
import pytest
from hypothesis import given
from hypothesis import strategies as st
from hypothesis.extra import numpy as hnp

import surveydata as sd

FACADE_HZ = [0.4, 1.6, 1.6, 1.1, 0.4]
FACADE_V = [1.7, 1.7, 1.2, 0.9, 1.1]

AnyFloats = npt.NDArray[np.float64] | npt.NDArray[np.float32]

angles = st.floats(-7.0, 13.0)
odd_angles = st.one_of(
    angles,
    st.integers(-8, 8).map(lambda n: n * math.pi / 4),
    st.integers(-8, 8).map(lambda n: np.nextafter(n * math.pi / 4, 9.0).item()),
    st.sampled_from([math.nan, math.inf, -math.inf, 99.9, 100.1, 1e300, 0.0, -0.0, 5e-324]),
)


def facade(**more: object) -> sd.PolygonArea:
    return sd.PolygonArea(FACADE_HZ, FACADE_V, **{"unit": "rad", **more})


@st.composite
def areas(draw: st.DrawFn) -> sd.Area:
    kind = draw(st.sampled_from(["rectangle", "polygon", "dome"]))
    if kind == "dome":
        return sd.DomeArea(unit="rad")
    if kind == "rectangle":
        hz = draw(st.lists(st.floats(0, 2 * math.pi), min_size=2, max_size=2))
        v = draw(st.lists(st.floats(0, math.pi), min_size=2, max_size=2))
        return sd.RectangularArea(hz, v, unit="rad")
    if draw(st.booleans()):  # star-shaped rings are valid, most others are not
        count = draw(st.integers(3, 12))
        radii = draw(st.lists(st.floats(0.05, 0.7), min_size=count, max_size=count))
        turn = 2 * math.pi / count
        hz = [3 + r * math.cos(i * turn) for i, r in enumerate(radii)]
        v = [1.5 + r * math.sin(i * turn) for i, r in enumerate(radii)]
        return sd.PolygonArea(hz, v, unit="rad")
    count = draw(st.integers(0, 7))
    hz = draw(st.lists(odd_angles, min_size=count, max_size=count))
    v = draw(st.lists(odd_angles, min_size=count, max_size=count))
    return sd.PolygonArea(hz, v, unit="rad")


# ----- Containment


@given(
    area=areas(),
    directions=st.lists(st.tuples(odd_angles, odd_angles), min_size=1, max_size=40),
    many=st.booleans(),
)
def test_arrays_are_answered_as_the_plain_rule_answers(
    area: sd.Area, directions: list[tuple[float, float]], many: bool
) -> None:
    hz, v = (np.array(column) for column in zip(*directions, strict=True))
    if not area.is_area_valid():
        for ask in (
            lambda: area.contains(hz, v),
            lambda: area.contains(*directions[0]),
            lambda: area.prepare(many=many),
        ):
            with pytest.raises(ValueError, match=r"the points do not make an area: ."):
                ask()
        return
    plain = [area.contains(h, w) for h, w in directions]  # one at a time: not prepared
    assert area.contains(hz, v).tolist() == plain
    prepared = area.prepare(many=many)
    assert prepared.contains(hz, v).tolist() == plain
    assert [prepared.contains(h, w) for h, w in directions] == plain
    assert [area.explain(h, w).is_inside for h, w in directions] == plain
    assert [prepared.explain(h, w).is_inside for h, w in directions] == plain


def test_recorded_answers(data: Path) -> None:
    area: sd.Area | None = None
    asked = {"contains": 0, "valid": 0}
    for line in (data / "geometry_cases.txt").read_text().splitlines():
        words = line.split()
        if words[0] == "runtime" and words[1] in ("sin", "cos", "atan", "acos", "tan"):
            # The answers are those of this C library's functions.
            assert getattr(math, words[1])(float.fromhex(words[2])) == float.fromhex(words[-1])
        if words[0] == "area":
            corners = np.array([float.fromhex(word) for word in words[1:]])
            kind = sd.RectangularArea if len(corners) == 4 else sd.PolygonArea
            area = kind(corners[0::2], corners[1::2], unit="rad")
        elif words[1:2] == ["contains"]:
            assert area is not None
            hz, v = (float.fromhex(word) for word in words[2:4])
            expected = float.fromhex(words[-1]) == 1
            assert area.explain(hz, v).is_inside == expected
            if area.is_area_valid():
                assert area.contains(hz, v) == expected
                assert area.contains([hz], [v]) == [expected]
            asked["contains"] += 1
        elif words[1:2] == ["valid"]:
            assert area is not None
            assert area.is_area_valid() == (float.fromhex(words[-1]) == 1)
            asked["valid"] += 1
    assert asked == {"contains": 360, "valid": 90}


@given(
    shape=hnp.array_shapes(min_dims=1, max_dims=4, min_side=0, max_side=5),
    dtype=st.sampled_from([np.float64, np.float32]),
    unit=st.sampled_from(["rad", "deg", "gon"]),
    data=st.data(),
)
def test_wherever_the_elements_lie(
    shape: tuple[int, ...],
    dtype: type[np.float64] | type[np.float32],
    unit: sd.Unit,
    data: st.DataObject,
) -> None:
    area = facade()
    rng = np.random.default_rng(data.draw(st.integers(0, 1000)))
    half = {"rad": math.pi, "deg": 180, "gon": 200}[unit]
    hz: AnyFloats = (rng.uniform(0, 0.7, shape) * half).astype(dtype)
    v: AnyFloats = (rng.uniform(0.2, 0.7, shape) * half).astype(dtype)
    plain = [
        area.contains(float(h), float(w), unit) for h, w in zip(hz.ravel(), v.ravel(), strict=True)
    ]
    expected = np.array(plain, dtype=bool).reshape(shape)

    fields = np.zeros(shape, dtype=[("hz", dtype), ("flag", "u1"), ("v", dtype)])
    fields["hz"], fields["v"] = hz, v  # unaligned, 9 or 17 bytes apart
    for a, b in [
        (hz, v),
        (hz.copy(order="F"), v),
        (hz[::-1].copy()[::-1], v),
        (np.repeat(hz, 3, axis=-1)[..., ::3], v),
        (np.ascontiguousarray(hz.T).T, np.asfortranarray(v)),
        (fields["hz"], fields["v"]),
        (hz.astype(hz.dtype.newbyteorder(">")), v),
    ]:
        a.flags.writeable = False
        inside = area.contains(a, b, unit)
        assert isinstance(inside, np.ndarray)
        assert inside.dtype == np.bool_
        assert inside.shape == shape
        assert (inside == expected).all()


@pytest.mark.parametrize("count", [511, 512, 513, 1500])
def test_long_rows_are_answered_in_blocks(count: int) -> None:
    hz = np.linspace(0, 2, 2 * count)[::2]
    v = np.full(count, 1.3)
    expected = [facade().contains(h, 1.3) for h in hz.tolist()]
    assert facade().contains(hz, v).tolist() == expected
    assert any(expected)
    assert not all(expected)


def test_arrays_broadcast() -> None:
    area = facade()
    hz = np.linspace(0, 2, 7)
    v = np.linspace(0.8, 1.8, 5)
    grid = area.contains(hz[:, None], v[None, :])
    assert isinstance(grid, np.ndarray)
    assert grid.tolist() == [[area.contains(h, w) for w in v.tolist()] for h in hz.tolist()]
    assert (area.contains(hz, 1.3) == area.contains(hz, np.full(7, 1.3))).all()
    with pytest.raises(ValueError, match="shape"):
        area.contains([1, 2, 3], [1, 2])


def test_numbers_of_other_types_are_converted() -> None:
    area = sd.RectangularArea([0, 3], [1, 2], unit="rad")
    assert area.contains([1, 2, 4], [1.5, 1.5, 1.5]).tolist() == [True, True, False]
    assert area.contains(np.array([1, 2, 4]), 1.5).tolist() == [True, True, False]
    assert area.contains(1, 1.5) is True
    assert area.contains(np.float32(1), np.int16(1)) is True
    assert area.contains(np.array(1.0), 1.5).shape == ()
    assert area.contains(np.array(1.0), 1.5)
    with pytest.raises(ValueError, match="could not convert"):
        area.contains(["north"], [1.0])
    for kind in ("M8[s]", "m8[s]"):
        with pytest.raises(TypeError, match="real numbers"):
            area.contains(np.array([1, 2], kind), 1.5)


def test_masked_directions_are_outside() -> None:
    area = sd.RectangularArea([0, 3], [1, 2], unit="rad")
    for dtype in (np.float64, np.float32, np.int16):
        hz = np.ma.MaskedArray(np.array([1, 2], dtype), mask=[True, False])
        assert area.contains(hz, [1.5, 1.5]).tolist() == [False, True]
        assert area.contains([1, 2], hz).tolist() == [False, True]
        assert area.prepare().contains(hz, 1.5).tolist() == [False, True]


@pytest.mark.parametrize("unit", ["rad", "deg", "gon"])
def test_the_unit_of_the_area_is_that_of_its_answers(unit: sd.Unit) -> None:
    half = {"rad": math.pi, "deg": 180.0, "gon": 200.0}[unit]
    scale = half / math.pi
    area = sd.PolygonArea(
        np.array(FACADE_HZ) * scale, np.array(FACADE_V) * scale, unit=unit, hz_step=scale / 100
    )
    assert area.unit == unit
    assert area.hz == pytest.approx(np.array(FACADE_HZ) * scale, abs=1e-10)
    assert area.hz_step == pytest.approx(scale / 100)
    plain = facade().bounds()
    bounds = area.bounds()
    assert bounds is not None
    assert plain is not None
    assert bounds[:4] == pytest.approx(np.array(plain[:4]) * scale)
    assert area.bounds("rad")[:4] == pytest.approx(plain[:4])
    assert area.contains(1.0 * scale, 1.3 * scale) is True
    assert area.contains(1.0, 1.3, "rad") is True
    assert area.contains(np.array([1.0, 0.1]) * scale, 1.3 * scale).tolist() == [True, False]
    assert area.explain(scale, 1.3 * scale).v == pytest.approx(1.3 * scale)


def test_a_wrong_unit_is_refused() -> None:
    with pytest.raises(ValueError, match="'grad' is not a unit"):
        facade(unit="grad")
    with pytest.raises(ValueError, match="'turn' is not a unit"):
        facade().contains(1.0, 1.0, "turn")
    with pytest.raises(ValueError, match="'turn' is not a unit"):
        facade().contains([1.0], [1.0], "turn")


def test_several_threads_ask_at_once() -> None:
    area = facade()
    prepared = area.prepare(many=True)
    rng = np.random.default_rng(1)
    hz, v = rng.uniform(0, 2, 200_000), rng.uniform(0.8, 1.8, 200_000)
    expected = prepared.contains(hz, v)
    answers: list[object] = [None] * 4

    def ask(i: int) -> None:
        answers[i] = prepared.contains(hz, v) if i % 2 else area.contains(hz, v)

    threads = [threading.Thread(target=ask, args=(i,)) for i in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert all((answer == expected).all() for answer in answers)


def test_other_threads_run_while_directions_are_answered(
    steps_beside: Callable[[Callable[[], object]], int],
) -> None:
    count = 400_000
    rng = np.random.default_rng(2)
    ring = np.linspace(0, 2 * math.pi, 2000, endpoint=False)
    radius = rng.uniform(0.3, 0.6, ring.size)
    area = sd.PolygonArea(3 + radius * np.cos(ring), 1.5 + radius * np.sin(ring), unit="rad")
    hz, v = rng.uniform(2, 4, count), rng.uniform(0.5, 2.5, count)
    assert steps_beside(lambda: area.contains(hz, v)) > 1000


def test_an_area_that_is_none_is_not_asked() -> None:
    bow_tie = sd.PolygonArea([0, 1, 0, 1], [1, 2, 2, 1], unit="rad")
    with pytest.raises(
        ValueError, match=r"the points do not make an area: edges 1 \(.*\) and 3 \(.*\) cross"
    ):
        bow_tie.contains(0.5, 1.5)
    assert bow_tie.explain(0.5, 1.5).rule == sd.Rule.NOT_VALID
    assert (
        repr(bow_tie.explain(0.5, 1.5)) == "<Explanation: outside by NOT_VALID, at hz 0.5, v 1.5>"
    )


def test_an_explanation_says_what_it_is() -> None:
    area = sd.RectangularArea([10, 20], [80, 90], unit="deg")
    assert repr(area.explain(15, 88)) == (
        "<Explanation: inside by PARITY, 2.0 from edge 1, at hz 15.0, v 88.0>"
    )


# ----- Grids


def test_a_grid_is_swept_in_columns() -> None:
    area = sd.RectangularArea([350, 352], [80, 81], unit="deg", hz_step=1, v_step=0.5)
    grid = area.grid()
    # The upper side of this rectangle is not inside by the rules of the library.
    assert not area.contains(351, 81)
    assert grid.hz == pytest.approx([350, 350, 351, 351, 352, 352])
    assert grid.v == pytest.approx([80, 80.5, 80.5, 80, 80, 80.5])
    in_gon = area.grid("gon")
    assert in_gon.v == pytest.approx(grid.v * 10 / 9)
    across = sd.RectangularArea([359, 1], [80, 80.9], unit="deg", hz_step=1, v_step=0.5)
    assert across.grid().hz == pytest.approx([359, 359, 0, 0, 1, 1])


def test_grids_are_those_of_the_program(data: Path, tmp_path: Path) -> None:
    grids = json.loads((data / "area_grids.json").read_text())
    assert len(grids) == 7
    for expected in grids:
        (tmp_path / "area.json").write_text(json.dumps(expected["area"]))
        grid = sd.read_area(tmp_path / "area.json").grid()
        assert np.stack(grid).T == pytest.approx(np.array(expected["directions"]), abs=1e-9)


def test_a_grid_around_the_zenith_begins_there_and_is_one_turn() -> None:
    dome = sd.DomeArea(unit="deg", hz_step=90, v_step=36)
    columns = list(dome.iter_grid())
    assert [column.hz[0] for column in columns] == [0, 90, 180, 270]
    assert columns[0].v == pytest.approx([0, 36, 72, 108, 144])
    cap = sd.PolygonArea([0, 90, 180, 270], [20] * 4, unit="deg", hz_step=45, v_step=5)
    assert cap.grid().v[0] == 0
    assert len(list(cap.iter_grid())) == 8


@given(area=areas(), seed=st.integers(0, 1000))
def test_a_grid_has_the_directions_inside(area: sd.Area, seed: int) -> None:
    rng = np.random.default_rng(seed)
    kind, points, unit, options = area.__reduce__()[1]
    steps = {"hz_step": float(rng.uniform(0.05, 0.5)), "v_step": float(rng.uniform(0.05, 0.5))}
    stepped = area.__reduce__()[0](kind, points, unit, {**options, **steps})
    if not stepped.is_valid():
        with pytest.raises(ValueError, match=r"not valid: ."):
            stepped.grid()
        return
    hz, v = stepped.grid()
    assert stepped.contains(hz, v).all()
    assert len(set(zip(hz.tolist(), v.tolist(), strict=True))) == hz.size
    assert sum(len(column.hz) for column in stepped.iter_grid()) == hz.size


def test_a_grid_has_a_limit() -> None:
    def area(hz_step: float, v_step: float) -> sd.Area:
        return sd.RectangularArea([10, 20], [80, 90], unit="deg", hz_step=hz_step, v_step=v_step)

    for v_step in (1e-9, 1e-300):
        with pytest.raises(
            ValueError, match=r"has 1e\+\d+ steps of V in a column, more than 10,000"
        ):
            area(1, v_step).iter_grid()
    with pytest.raises(ValueError, match=r"columns, more than 9,007,199,254,740,992"):
        area(1e-300, 1).iter_grid()
    fine = area(1e-9, 1)
    with pytest.raises(ValueError, match=r"has 1\d\d,\d{3},\d{3},\d{3} directions .* 100,000,000;"):
        fine.grid()
    first = next(fine.iter_grid())
    assert first.hz[0] == pytest.approx(10, abs=1e-6)
    # The limit counts all directions in the bounds, with both ends.
    just_too_many = area(10 / 99_999, 10 / 1_000)
    with pytest.raises(ValueError, match=r"has 100,100,000 directions"):
        just_too_many.grid()


# ----- Definition


def test_the_unit_is_never_assumed() -> None:
    for make in (
        lambda: sd.RectangularArea([1, 2], [1, 2]),
        lambda: sd.PolygonArea([1, 2, 3], [1, 2, 1]),
        lambda: sd.DomeArea(),
    ):
        with pytest.raises(TypeError, match="required keyword-only argument: 'unit'"):
            make()
    with pytest.raises(TypeError, match="DomeArea has no argument 'hz_stepp'"):
        sd.DomeArea(unit="rad", hz_stepp=1)


def test_points_that_do_not_match_are_refused() -> None:
    with pytest.raises(ValueError, match="same length"):
        sd.PolygonArea([1, 2, 3], [1, 2], unit="rad")
    with pytest.raises(ValueError, match="one dimension"):
        sd.PolygonArea([[1, 2]], [[1, 2]], unit="rad")
    with pytest.raises(ValueError, match="same length"):
        sd.PolygonArea([1, 2, 3], [1, 2, 3], [5], unit="rad")
    with pytest.raises(TypeError, match="real numbers"):
        sd.PolygonArea(np.array([1j, 2, 3]), [1, 2, 3], unit="rad")
    masked = np.ma.MaskedArray([1, 2, 3], mask=[False, True, False])
    assert not sd.PolygonArea(masked, [1, 1, 2], unit="rad").is_area_valid()
    with pytest.raises(TypeError, match="an area is a"):
        sd.Area()


def test_it_is_what_it_was_made_of() -> None:
    area = sd.PolygonArea(
        [10, 20, 30],
        [90, 80, 95],
        [5, -1, 7],
        unit="gon",
        hz_step=0.05,
        v_step=0.1,
        name="wall",
        setting_a=1,
        limit_low=2,
        limit_high=3,
        setting_b=4,
        setting_c=5,
        setting_d=6.5,
        setting_e=7,
    )
    assert area.kind == "polygon"
    assert area.hz.tolist() == [10, 20, 30]
    assert area.v.tolist() == [90, 80, 95]
    assert area.distance.tolist() == [5, -1, 7]
    assert (area.hz_step, area.v_step, area.name, area.unit) == (0.05, 0.1, "wall", "gon")
    assert (area.setting_a, area.limit_low, area.limit_high) == (1, 2, 3)
    assert (area.setting_b, area.setting_c, area.setting_d, area.setting_e) == (4, 5, 6.5, 7)
    assert repr(area) == "<PolygonArea 'wall', 3 points, steps 0.05 by 0.1 gon>"
    assert repr(sd.DomeArea(unit="rad")) == "<DomeArea, steps 0 by 0 rad>"
    for value in ("hz", "hz_step", "unit", "setting_a"):
        with pytest.raises(AttributeError):
            setattr(area, value, 1)


def test_settings_that_do_not_fit_are_refused() -> None:
    most = {"setting_a": 2**32 - 1, "setting_b": 2**32 - 1, "setting_c": 2**32 - 1,
            "setting_e": 2**16 - 1}  # fmt: skip
    for name, largest in most.items():
        for value in (0, largest, np.uint32(7)):
            assert getattr(sd.DomeArea(unit="rad", **{name: value}), name) == value
        for value in (-1, largest + 1, 2**100):
            with pytest.raises(ValueError, match=f"{name}: {value} is not from 0 to {largest}"):
                sd.DomeArea(unit="rad", **{name: value})
        with pytest.raises(TypeError):
            sd.DomeArea(unit="rad", **{name: 1.5})
    with pytest.raises(ValueError, match="surrogates not allowed"):
        sd.DomeArea(unit="rad", name="\ud800")


def test_defaults_are_those_of_the_library() -> None:
    area = sd.DomeArea(unit="rad")
    assert (area.setting_a, area.limit_low, area.limit_high) == (0, -1, -1)
    assert (area.setting_b, area.setting_c, area.setting_d, area.setting_e) == (4, 0, 0, 1)
    assert facade().distance.tolist() == [-1] * 5
    assert (area.hz.size, area.v.size, area.distance.size) == (0, 0, 0)


@given(area=areas())
def test_copies_and_pickles_are_equal(area: sd.Area) -> None:
    for other in (copy.copy(area), copy.deepcopy(area), pickle.loads(pickle.dumps(area))):
        assert type(other) is type(area)
        assert other._state() == area._state() or any(
            math.isnan(x) for point in area._impl.points("rad") for x in point
        )
        assert repr(other) == repr(area)


def test_a_pickle_keeps_every_bit_and_all_settings() -> None:
    area = sd.PolygonArea(
        [10.1, 20.7, 30.3],
        [90.1, 80.3, 95],
        [5, 6, 7],
        unit="gon",
        name="n",
        hz_step=0.07,
        v_step=0.03,
        setting_a=3,
        limit_low=1,
        limit_high=2,
        setting_b=9,
        setting_c=8,
        setting_d=0.5,
        setting_e=11,
    )
    again = pickle.loads(pickle.dumps(area))
    assert again._state() == area._state()
    assert again == area
    prepared = pickle.loads(pickle.dumps(area.prepare(many=True)))
    assert prepared.area == area
    assert repr(prepared) == repr(area.prepare(many=True))


def test_equality_is_that_of_the_library() -> None:
    base = {"unit": "gon", "hz_step": 0.1, "v_step": 0.1}
    area = sd.PolygonArea([10, 20, 30], [90, 80, 95], [5, 6, 7], **base)
    for same in ({"name": "another"}, {"setting_b": 7}, {"setting_e": 7}):
        assert area == sd.PolygonArea([10, 20, 30], [90, 80, 95], **{**base, **same})
    for other in ({"hz_step": 0.2}, {"setting_a": 7}, {"limit_low": 0.5}, {"limit_high": 2.5}):
        assert area != sd.PolygonArea([10, 20, 30], [90, 80, 95], **{**base, **other})
    assert area != sd.PolygonArea([10, 20, 31], [90, 80, 95], **base)
    assert sd.RectangularArea([1, 2], [1, 2], unit="rad") != sd.PolygonArea(
        [1, 2], [1, 2], unit="rad"
    )
    assert area != "an area"
    with pytest.raises(TypeError, match="unhashable"):
        hash(area)


# ----- Queries


def test_faults_name_the_rule_and_the_points() -> None:
    assert facade(hz_step=0.1, v_step=0.1).faults() == []
    steps = facade().faults()
    assert [fault.rule for fault in steps] == ["hzStepNotPositive", "vStepNotPositive"]
    assert not facade().is_valid()
    assert facade().is_area_valid()
    twice = sd.PolygonArea([1, 2, 2, 1], [1, 1, 2, 1], hz_step=1, v_step=1, unit="rad")
    assert [(fault.rule, fault.points) for fault in twice.faults()] == [("equalPoints", [0, 3])]
    assert repr(twice.faults()[0]).startswith("<Fault: points 1 and 4 are equal")
    bow_tie = sd.PolygonArea([1, 2, 1, 2], [1, 2, 2, 1], hz_step=1, v_step=1, unit="rad")
    (fault,) = bow_tie.faults()
    assert (fault.rule, fault.edges, fault.points) == ("crossingEdges", [0, 2], [])
    assert "cross near" in fault.text


@given(area=areas())
def test_faults_are_empty_exactly_for_a_valid_area(area: sd.Area) -> None:
    points = area._state()[0]
    whole = sd.Area.__reduce__(area)  # with the steps as well
    again = whole[0](whole[1][0], points, "rad", {"hz_step": 0.1, "v_step": 0.1})
    assert again.is_valid() == (again.faults() == [])
    assert again.is_area_valid() or not again.is_valid()
    assert (again.bounds() is not None) == again.is_area_valid()


def test_bounds() -> None:
    across = sd.RectangularArea([350, 20], [80, 100], unit="deg")
    assert across.bounds() == pytest.approx((350, 20, 80, 100, False))
    around = sd.PolygonArea([0, 100, 200, 300], [40, 45, 50, 45], unit="gon")
    assert sd.PolygonArea([1], [1], unit="rad").bounds() is None
    ring = around.bounds()
    assert ring is not None
    assert ring.encloses_zenith
    assert ring.v_max == pytest.approx(160)  # 0.8 pi, as for every area around the zenith
    dome = sd.DomeArea(unit="deg").bounds()
    assert dome is not None
    assert dome.encloses_zenith
    assert dome.v_max == pytest.approx(144)


def test_outline() -> None:
    rectangle = sd.RectangularArea([10, 20], [80, 90], [5, -1], unit="gon")
    outline = rectangle.outline(3.0)
    assert sorted(zip(outline.hz, outline.v, strict=True)) == [
        (10, 80),
        (10, 90),
        (20, 80),
        (20, 90),
    ]
    assert set(outline.distance.tolist()) == {5.0}  # that of the only point with a distance
    bare = facade().outline(3.0)
    assert bare.hz.tolist() == FACADE_HZ
    assert bare.distance.tolist() == [3.0] * 5
    assert facade().outline(unit="gon").v == pytest.approx(np.array(FACADE_V) * 200 / math.pi)
    assert [column.shape for column in sd.DomeArea(unit="rad").outline()] == [(0,)] * 3


def test_solid_angle() -> None:
    assert sd.DomeArea(unit="rad").solid_angle() == pytest.approx(
        2 * math.pi * (1 - math.cos(0.8 * math.pi))
    )
    assert sd.PolygonArea([1], [1], unit="rad").solid_angle() is None


def test_explain_names_rule_crossings_and_the_nearest_edge() -> None:
    area = sd.RectangularArea([10, 20], [80, 90], unit="deg")
    inside = area.explain(15, 84)
    assert inside.is_inside
    assert inside.rule == sd.Rule.PARITY
    assert [(edge, v) for edge, v, _ in inside.crossings] == [
        (3, pytest.approx(80)),
        (1, pytest.approx(90)),
    ]
    assert inside.nearest_edge == 3
    assert inside.distance == pytest.approx(4)
    assert inside.band_edge is None
    assert area.explain(15, 70).rule == sd.Rule.NOTHING_ABOVE
    assert area.explain(50, 85).rule == sd.Rule.NO_CROSSING
    far = area.explain(1e9, 85)
    assert (far.rule, far.nearest_edge, far.distance) == (sd.Rule.OUT_OF_RANGE, None, None)
    assert sd.DomeArea(unit="rad").explain(1, 1).rule == sd.Rule.DOME
    assert area.prepare().explain(15, 84).rule == sd.Rule.PARITY


# ----- Files and pictures


def test_area_files(data: Path) -> None:
    area = sd.read_area(data / "areas" / "facade.json")
    assert isinstance(area, sd.PolygonArea)
    assert (area.name, area.unit, area.hz_step) == ("South facade with annex", "gon", 0.05)
    assert area.hz[:3].tolist() == [24.4425, 24.4425, 22.7505]
    assert area.distance[0] == 14.17
    assert area.solid_angle() == pytest.approx(0.577284069, abs=5e-10)  # facade.info.txt
    assert area.bounds() == pytest.approx((22.7505, 96.1646, 60.3342, 108.44734, False), abs=5e-6)
    outline = (data / "areas" / "facade.outline.txt").read_text().splitlines()[1:]
    expected = np.array([[float(word) for word in line.split()[1:]] for line in outline])
    assert np.array(area.outline()).T == pytest.approx(expected, abs=5e-6)
    assert isinstance(sd.read_area(data / "areas" / "doorway.json"), sd.RectangularArea)
    assert isinstance(sd.read_area(str(data / "areas" / "dome.json")), sd.DomeArea)
    assert not sd.read_area(data / "areas" / "bow_tie.json").is_valid()


def test_files_that_are_none(data: Path, tmp_path: Path) -> None:
    with pytest.raises(FileNotFoundError):
        sd.read_area(tmp_path / "none.json")
    with pytest.raises(IsADirectoryError):
        sd.read_area(tmp_path)
    named = tmp_path / os.fsdecode(b"S\xfcd.json")  # not UTF-8
    named.write_bytes((data / "areas" / "facade.json").read_bytes())
    assert sd.read_area(named) == sd.read_area(data / "areas" / "facade.json")
    bad = tmp_path / "bad.json"
    bad.write_text('{"kind": "circle", "unit": "deg"}')
    with pytest.raises(ValueError, match="kind"):
        sd.read_area(bad)
    with pytest.raises(ValueError, match="valley_drive"):
        sd.read_area(data / "valley_drive.rec")


def test_the_picture_is_the_programs(data: Path) -> None:
    area = sd.read_area(data / "areas" / "facade.json")
    # With the options of docs/pictures/redraw.sh.
    picture = area.svg([57, 40, 90, 62], [92, 75, 85, 107], window=(10, 50, 110, 120))
    assert picture == (data.parents[1] / "docs" / "pictures" / "facade.svg").read_text()
    assert area._repr_svg_() == area.svg()
    assert "South facade with annex" in area._repr_svg_()
    with pytest.raises(ValueError, match="larger Hz"):
        area.svg(window=(10, 50, 5, 120))
    with pytest.raises(ValueError, match="larger Hz"):
        area.svg(window=(0, 50, 801, 120))  # more than two turns
    with pytest.raises(ValueError, match="same length"):
        area.svg([1, 2], [1])
    assert facade()._repr_svg_().rstrip().endswith("</svg>")


def test_arrays_of_other_kinds() -> None:
    area = sd.PolygonArea([1, 2, 3], [1, 1, 2], unit="rad")
    hz, v = np.linspace(0, 6, 1000), np.linspace(0, 3, 1000)
    inside = area.contains(hz, v)
    assert 0 < inside.sum() < 1000
    fixed = hz.copy()
    fixed.flags.writeable = False
    unaligned = np.ndarray((1000,), np.float64, b"x" + hz.tobytes(), 1)
    for same in (fixed, unaligned, hz.astype(">f8"), hz.astype(object), hz.tolist()):
        assert (area.contains(same, v) == inside).all()
    assert (area.contains(hz[::-1], v[::-1]) == inside[::-1]).all()
    repeated = area.contains(np.broadcast_to(1.5, (3, 4)), np.broadcast_to(1.2, (3, 4)))
    assert repeated.shape == (3, 4)
    assert repeated.all() == area.contains(1.5, 1.2)
    assert area.contains(np.empty((0, 5)), np.empty((0, 5))).shape == (0, 5)
    with pytest.raises(TypeError, match="real numbers"):
        area.contains(hz.astype(complex), v)
    with pytest.raises(MemoryError):
        area.contains(np.broadcast_to(1.5, (2**45,)), np.broadcast_to(1.2, (2**45,)))
