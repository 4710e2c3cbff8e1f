"""Areas on the sphere of directions: the part of its surroundings that a scan covers.

Directions have two angles: Hz, the horizontal angle, and V, from the zenith (0) down to the nadir
(half a turn). Every area is created with the unit of its angles, "rad", "deg" (360 to the turn) or
"gon" (400 to the turn); methods take and return angles in that unit, unless a call names another.
Distances are in metres.
"""

from __future__ import annotations

import math
import operator
import os
from pathlib import Path
from typing import (
    TYPE_CHECKING,
    Any,
    ClassVar,
    Literal,
    NamedTuple,
    TypeAlias,
    TypedDict,
    overload,
)

import numpy as np

from . import _core

if TYPE_CHECKING:
    from collections.abc import Callable, Iterator
    from typing import Unpack

    from numpy.typing import ArrayLike, NDArray

Unit: TypeAlias = Literal["rad", "deg", "gon"]
_Number: TypeAlias = "float | np.floating[Any] | np.integer[Any]"
_NUMBERS = (float, int, np.floating, np.integer)
_TURN = {"rad": 2 * math.pi, "deg": 360.0, "gon": 400.0}


class AreaOptions(TypedDict, total=False):
    """Keywords of the constructors: what an area has in addition to its points and its unit.

    The caller defines the meaning of settings and limits; the library only stores them.
    """

    hz_step: float
    """The step of the scan in Hz; 0 by default, which is not valid."""
    v_step: float
    """The step of the scan in V; 0 by default, which is not valid."""
    name: str
    """The title of its pictures."""
    setting_a: int
    """0 by default."""
    limit_low: float
    """-1 by default."""
    limit_high: float
    """-1 by default."""
    setting_b: int
    """4 by default."""
    setting_c: int
    """0 by default."""
    setting_d: float
    """0 by default."""
    setting_e: int
    """1 by default."""


_DEFAULTS: AreaOptions = {
    "hz_step": 0.0,
    "v_step": 0.0,
    "name": "",
    "setting_a": 0,
    "limit_low": -1.0,
    "limit_high": -1.0,
    "setting_b": 4,
    "setting_c": 0,
    "setting_d": 0.0,
    "setting_e": 1,
}
_SETTINGS = tuple(_DEFAULTS)[3:]
_LARGEST = {
    "setting_a": 2**32 - 1,
    "setting_b": 2**32 - 1,
    "setting_c": 2**32 - 1,
    "setting_e": 2**16 - 1,
}
_LOWEST_OF_DOME = 0.8 * math.pi


class Bounds(NamedTuple):
    """The bounds of an area, in the requested unit."""

    hz_min: float
    """Above `hz_max` if the area crosses Hz 0."""
    hz_max: float
    """At most a full turn."""
    v_min: float
    """For an area around the zenith the smallest V of its ring, not 0."""
    v_max: float
    encloses_zenith: bool


# The limits of grids: of a column, which is in memory, of arrays, and beyond which numbers are
# inexact.
_MOST_IN_COLUMN = 10**7
_MOST_IN_GRID = 10**8
_MOST_COLUMNS = 2**53


class _Lattice(NamedTuple):
    """The directions at the steps of a grid, inside and outside, in rad."""

    columns: int
    rows: int
    hz_min: float
    width: float
    hz_step: float
    v_min: float
    v_max: float
    v_step: float


class Directions(NamedTuple):
    """Directions, one per element."""

    hz: NDArray[np.float64]
    v: NDArray[np.float64]


class Outline(NamedTuple):
    """The corners of an area."""

    hz: NDArray[np.float64]
    v: NDArray[np.float64]
    distance: NDArray[np.float64]
    """In metres."""


def _as_angles(values: ArrayLike) -> NDArray[np.float64] | NDArray[np.float32]:
    """float32 and float64 without a copy, whatever their strides; everything else as float64.

    Masked values become NaN.
    """
    if isinstance(values, np.ma.MaskedArray):
        values = np.ma.filled(np.ma.asarray(values, np.float64), np.nan)
    array = np.asarray(values)
    if array.dtype == np.float32 or array.dtype == np.float64:
        return array if array.dtype.isnative else array.astype(array.dtype.newbyteorder("="))
    if array.dtype.kind in "cmM":  # complex numbers and times
        raise TypeError("angles are real numbers")
    return array.astype(np.float64)


def _ask(
    contains: Callable[[float, float, str], bool],
    contains_many: Callable[[object, object, object, str], None],
    hz: ArrayLike,
    v: ArrayLike,
    unit: str,
) -> bool | NDArray[np.bool_]:
    if isinstance(hz, _NUMBERS) and isinstance(v, _NUMBERS):
        return contains(float(hz), float(v), unit)
    hz_array, v_array = np.broadcast_arrays(_as_angles(hz), _as_angles(v))
    inside = np.empty(hz_array.shape, dtype=np.bool_)
    contains_many(hz_array, v_array, inside, unit)
    return inside


class Area:
    """The directions around the instrument that a scan covers.

    An area never changes, so any number of threads may use it at the same time. It accepts any
    points and steps; `is_valid` and `faults` check them.

    Two areas are equal if kind, steps, points, `setting_a` and both limits are; the distances of
    points do not matter. Areas can be copied and pickled, but not hashed.
    """

    __slots__ = ("_impl",)
    __hash__: ClassVar[None] = None  # type: ignore[assignment]

    _kind: ClassVar[str]
    _impl: _core.AreaCore

    def __init__(self) -> None:
        raise TypeError("an area is a RectangularArea, a PolygonArea or a DomeArea")

    # ----- Definition

    @property
    def kind(self) -> str:
        """The kind of area: "rectangle", "polygon" or "dome"."""
        return self._impl.kind

    @property
    def unit(self) -> Unit:
        """The unit of angles, unless a call names another one."""
        unit: Unit = self._impl.unit  # type: ignore[assignment]
        return unit

    @property
    def name(self) -> str:
        """The title of its pictures."""
        return self._impl.name

    @property
    def hz(self) -> NDArray[np.float64]:
        """Hz of the points, in the unit of the area."""
        return self._points(0)

    @property
    def v(self) -> NDArray[np.float64]:
        """V of the points, in the unit of the area."""
        return self._points(1)

    @property
    def distance(self) -> NDArray[np.float64]:
        """The distances of the points in metres; not above 0 for a point without one."""
        return self._points(2)

    def _points(self, column: int) -> NDArray[np.float64]:
        return np.array([point[column] for point in self._impl.points(self.unit)], dtype=np.float64)

    @property
    def hz_step(self) -> float:
        """The step of the scan in Hz, in the unit of the area."""
        return self._impl.steps(self.unit)[0]

    @property
    def v_step(self) -> float:
        """The step of the scan in V, in the unit of the area."""
        return self._impl.steps(self.unit)[1]

    @property
    def setting_a(self) -> int:
        """The caller defines its meaning, as that of the other settings and of the limits."""
        return self._impl.settings()[0]

    @property
    def limit_low(self) -> float:
        """The caller defines its meaning; -1 by default."""
        return self._impl.settings()[1]

    @property
    def limit_high(self) -> float:
        """The caller defines its meaning; -1 by default."""
        return self._impl.settings()[2]

    @property
    def setting_b(self) -> int:
        """The caller defines its meaning; 4 by default."""
        return self._impl.settings()[3]

    @property
    def setting_c(self) -> int:
        """The caller defines its meaning; 0 by default."""
        return self._impl.settings()[4]

    @property
    def setting_d(self) -> float:
        """The caller defines its meaning; 0 by default."""
        return self._impl.settings()[5]

    @property
    def setting_e(self) -> int:
        """The caller defines its meaning; 1 by default."""
        return self._impl.settings()[6]

    # ----- Queries

    def is_valid(self) -> bool:
        """Whether both steps are above 0 and the points make an area."""
        return self._impl.is_valid()

    def is_area_valid(self) -> bool:
        """Whether the points make an area, for any steps: otherwise no direction is inside."""
        return self._impl.is_area_valid()

    def faults(self) -> list[_core.Fault]:
        """The rules that the area breaks: none if and only if it is valid.

        Crossing edges are searched for only if there is no fault of points; at most 8 are listed.
        """
        return self._impl.faults()

    def bounds(self, unit: Unit | None = None) -> Bounds | None:
        """The bounds, or None if the points do not make an area."""
        bounds = self._impl.bounds(unit or self.unit)
        return None if bounds is None else Bounds(*bounds)

    def outline(self, default_distance: float = 0.0, unit: Unit | None = None) -> Outline:
        """The corners with their distances. A rectangle has four, a dome none.

        A point without a distance gets one that is derived from the other points, or
        `default_distance` (m) if no point has one.
        """
        corners = self._impl.outline(default_distance, unit or self.unit)
        columns = np.array(corners, dtype=np.float64).reshape(-1, 3).T
        return Outline(*(column.copy() for column in columns))

    def solid_angle(self) -> float | None:
        """The solid angle of the directions inside, in steradians, without the boundary band.

        None if the points do not make an area.
        """
        return self._impl.solid_angle()

    @overload
    def contains(self, hz: _Number, v: _Number, unit: Unit | None = None) -> bool: ...
    @overload
    def contains(
        self, hz: ArrayLike, v: ArrayLike, unit: Unit | None = None
    ) -> NDArray[np.bool_]: ...
    def contains(
        self, hz: ArrayLike, v: ArrayLike, unit: Unit | None = None
    ) -> bool | NDArray[np.bool_]:
        """Whether directions are inside the area or in its boundary band.

        `hz` and `v` are two numbers, or arrays that broadcast against each other; the result has
        their shape. Arrays of float64 and float32 are not copied, whatever their strides; others
        are converted. The result is False for NaN, for masked values and beyond 100 rad. The steps
        do not matter. Raises ValueError with the first fault if the points do not make an area;
        `explain` works for such an area, too.

        Each call with arrays prepares the area; `prepare` does that once. Other threads can run
        during the call.
        """
        return _ask(
            self._impl.contains,
            lambda *args: _core.AreaCore.prepare(self._impl, False).contains_many(*args),
            hz,
            v,
            unit or self.unit,
        )

    def explain(self, hz: float, v: float, unit: Unit | None = None) -> _core.Explanation:
        """The result of `contains` for one direction, with the reasons."""
        return self._impl.explain(hz, v, unit or self.unit)

    def prepare(self, many: bool = False) -> PreparedArea:
        """Prepare the area for many queries; the results are the same.

        With `many`, the preparation also builds a raster of decided cells, which takes up to 512 KB
        and up to a millisecond. It is worthwhile for about ten thousand directions or more. Raises
        ValueError as `contains` does.
        """
        return PreparedArea(self, many=many)

    def iter_grid(self, unit: Unit | None = None) -> Iterator[Directions]:
        """The directions of the area at its steps, in the order in which an instrument sweeps:
        columns by ascending Hz, with V alternately ascending and descending. Each column is one
        item, so the memory does not depend on the steps; columns without a direction inside are
        left out.

        The grid starts at the lowest Hz and V of the bounds, or at Hz 0 and V 0 for a dome and for
        an area around the zenith. Raises ValueError with the first fault if the area is not valid,
        and if a column has more than 10^7 steps of V or there are more than 2^53 columns.
        """
        return self._sweep(self._lattice(), unit or self.unit)

    def _lattice(self) -> _Lattice:
        if not self.is_valid():
            raise ValueError(f"the area is not valid: {self.faults()[0].text}")
        bounds = self.bounds("rad")
        assert bounds is not None
        hz_step, v_step = self._impl.steps("rad")
        hz_min, hz_max, v_min, v_max, encloses_zenith = bounds
        if self.kind == "dome" or encloses_zenith:
            hz_min, hz_max, v_min = 0.0, 2 * math.pi, 0.0
            v_max = _LOWEST_OF_DOME if self.kind == "dome" else v_max
        width = hz_max - hz_min if hz_max >= hz_min else hz_max - hz_min + 2 * math.pi
        for steps, limit, what in (
            ((v_max - v_min) / v_step, _MOST_IN_COLUMN, "steps of V in a column"),
            (width / hz_step, _MOST_COLUMNS, "columns"),
        ):
            if steps >= limit:
                raise ValueError(f"the grid has {steps:.4g} {what}, more than {limit:,}")
        # A full turn does not end where it begins; rounding may miss the last step.
        most = 1e-9
        columns = math.floor(width / hz_step + most) + 1
        if width >= 2 * math.pi - most:
            columns = max(1, math.ceil(2 * math.pi / hz_step - most))
        rows = math.floor((v_max - v_min) / v_step + most) + 1
        return _Lattice(columns, rows, hz_min, width, hz_step, v_min, v_max, v_step)

    def _sweep(self, lattice: _Lattice, unit: Unit) -> Iterator[Directions]:
        v = lattice.v_min + lattice.v_step * np.arange(lattice.rows, dtype=np.float64)
        v = np.minimum(v, lattice.v_max)
        prepared = self.prepare(many=True)
        scale = _TURN[unit] / (2 * math.pi)
        is_down = True
        for column in range(lattice.columns):
            turn = min(column * lattice.hz_step, lattice.width)
            hz = math.fmod(lattice.hz_min + turn, 2 * math.pi)
            inside = v[prepared.contains(np.full(v.shape, hz), v, "rad")]
            if inside.size:
                ordered = inside if is_down else inside[::-1]
                yield Directions(np.full(inside.shape, hz * scale), ordered * scale)
                is_down = not is_down

    def grid(self, unit: Unit | None = None) -> Directions:
        """All directions of `iter_grid` as two arrays.

        Also raises ValueError if there are more than 10^8 directions at the steps in the bounds of
        the area; `iter_grid` takes more.
        """
        lattice = self._lattice()
        if (count := lattice.columns * lattice.rows) > _MOST_IN_GRID:
            raise ValueError(
                f"the grid has {count:,} directions in its bounds, more than {_MOST_IN_GRID:,}; "
                "iter_grid gives them column by column"
            )
        columns = list(self._sweep(lattice, unit or self.unit))
        if not columns:
            return Directions(np.empty(0), np.empty(0))
        hz, v = zip(*columns, strict=True)
        return Directions(np.concatenate(hz), np.concatenate(v))

    # ----- Copies, equality, pictures

    def _state(self) -> tuple[list[tuple[float, float, float]], str, AreaOptions]:
        core = self._impl
        hz_step, v_step = core.steps("rad")
        settings = dict(zip(_SETTINGS, core.settings(), strict=True))
        options: Any = {"hz_step": hz_step, "v_step": v_step, "name": core.name, **settings}
        return (core.points("rad"), core.unit, options)

    def __reduce__(self) -> tuple[Any, ...]:
        return (_restore, (type(self), *self._state()))

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Area):
            return NotImplemented
        return self._impl.is_equal(other._impl)

    def __repr__(self) -> str:
        hz_step, v_step = self._impl.steps(self.unit)
        points = len(self._impl.points("rad"))
        name = f" {self.name!r}" if self.name else ""
        what = f", {points} points" if self.kind != "dome" else ""
        return (
            f"<{type(self).__name__}{name}{what}, "
            f"steps {hz_step:.10g} by {v_step:.10g} {self.unit}>"
        )

    def svg(
        self,
        hz: ArrayLike = (),
        v: ArrayLike = (),
        *,
        window: tuple[float, float, float, float] | None = None,
        unit: Unit | None = None,
    ) -> str:
        """The picture of the program's `surveydata area plot`, as an SVG document.

        It marks the directions `hz` and `v` with the result of `contains`. `window` is the visible
        part of the plane of Hz and V, at most two turns wide: Hz and V of two opposite corners, of
        which the second has the larger angles. By default the picture shows the whole sphere.
        """
        if window is not None and not (
            window[0] < window[2] <= window[0] + 2 * _TURN[unit or self.unit]
            and window[1] < window[3]
        ):
            raise ValueError("the second corner of a window has the larger Hz and V")
        probes = [(hz, v) for hz, v, _ in _triples(np.ravel(hz), np.ravel(v), None)]
        return self._impl.svg(probes, window, unit or self.unit)

    def _repr_svg_(self) -> str:
        return self.svg()


class _PointArea(Area):
    __slots__ = ()

    def __init__(
        self,
        hz: ArrayLike,
        v: ArrayLike,
        distance: ArrayLike | None = None,
        *,
        unit: Unit,
        **options: Unpack[AreaOptions],
    ) -> None:
        _fill(self, _triples(hz, v, distance), unit, unit, options)


class RectangularArea(_PointArea):
    """The directions between two opposite corners, with straight edges in the plane of Hz and V.

    `hz`, `v` and `distance` have two elements each, in `unit` and metres. If the first corner has
    the larger Hz, the area crosses Hz 0. The other keywords are those of `AreaOptions`.
    """

    __slots__ = ()
    _kind = "rectangle"


class PolygonArea(_PointArea):
    """A polygon of three or more corners, whose edges are arcs of great circles. It is closed.

    One that winds around the vertical axis encloses the zenith. `hz`, `v` and `distance` are in
    `unit` and metres. The other keywords are those of `AreaOptions`.
    """

    __slots__ = ()
    _kind = "polygon"


class DomeArea(Area):
    """All directions from the zenith down to V = 0.8 pi. It has no points.

    The keywords besides `unit` are those of `AreaOptions`.
    """

    __slots__ = ()
    _kind = "dome"

    def __init__(self, *, unit: Unit, **options: Unpack[AreaOptions]) -> None:
        _fill(self, [], unit, unit, options)


class PreparedArea:
    """An area prepared for many queries. Any number of threads may use it at the same time."""

    __slots__ = ("_area", "_impl", "_many")

    def __init__(self, area: Area, *, many: bool = False) -> None:
        self._area = area
        self._many = many
        self._impl = _core.AreaCore.prepare(area._impl, many)

    @property
    def area(self) -> Area:
        """The area that was prepared."""
        return self._area

    @overload
    def contains(self, hz: _Number, v: _Number, unit: Unit | None = None) -> bool: ...
    @overload
    def contains(
        self, hz: ArrayLike, v: ArrayLike, unit: Unit | None = None
    ) -> NDArray[np.bool_]: ...
    def contains(
        self, hz: ArrayLike, v: ArrayLike, unit: Unit | None = None
    ) -> bool | NDArray[np.bool_]:
        """The same as `Area.contains`."""
        return _ask(self._impl.contains, self._impl.contains_many, hz, v, unit or self._area.unit)

    def explain(self, hz: float, v: float, unit: Unit | None = None) -> _core.Explanation:
        """The same as `Area.explain`."""
        return self._impl.explain(hz, v, unit or self._area.unit)

    def __reduce__(self) -> tuple[Any, ...]:
        return (_prepare, (self._area, self._many))

    def __repr__(self) -> str:
        return f"<PreparedArea of {self._area!r}{', many=True' if self._many else ''}>"


def _prepare(area: Area, many: bool) -> PreparedArea:
    return PreparedArea(area, many=many)


def _triples(
    hz: ArrayLike, v: ArrayLike, distance: ArrayLike | None
) -> list[tuple[float, float, float]]:
    columns = [_as_angles(hz), _as_angles(v)]
    columns.append(np.full(columns[0].shape, -1.0) if distance is None else _as_angles(distance))
    if any(column.ndim != 1 or column.shape != columns[0].shape for column in columns):
        raise ValueError("hz, v and distance need one dimension and the same length")
    return list(zip(*(column.tolist() for column in columns), strict=True))


def _fill(
    area: Area,
    points: list[tuple[float, float, float]],
    given: str,
    unit: str,
    options: AreaOptions,
) -> None:
    if unknown := options.keys() - _DEFAULTS.keys():
        raise TypeError(f"{type(area).__name__} has no argument {min(unknown)!r}")
    values: dict[str, Any] = {**_DEFAULTS, **options}
    for setting, most in _LARGEST.items():
        if not 0 <= operator.index(values[setting]) <= most:
            raise ValueError(f"{setting}: {values[setting]} is not from 0 to {most}")
    str.encode(values["name"])  # raises ValueError for unpaired surrogates
    area._impl = _core.AreaCore.make(
        type(area)._kind,
        points,
        (values["hz_step"], values["v_step"]),
        given,
        unit,
        values["name"],
        *(values[name] for name in _SETTINGS),
    )


def _restore(
    kind: type[Area],
    points: list[tuple[float, float, float]],
    unit: str,
    options: AreaOptions,
) -> Area:
    area = object.__new__(kind)
    _fill(area, points, "rad", unit, options)
    return area


def _area_of(core: _core.AreaCore) -> Area:
    classes: dict[str, type[Area]] = {
        cls._kind: cls for cls in (RectangularArea, PolygonArea, DomeArea)
    }
    area = object.__new__(classes[core.kind])
    area._impl = core
    return area


def read_area(path: str | os.PathLike[str]) -> Area:
    """Reads an area file, which docs/area_files.md describes. The area has the unit of the file.

    Raises FileNotFoundError or another OSError if the file cannot be read, and ValueError with the
    position and the fault if it is not an area file.
    """
    with Path(path).open("rb"):  # for Python's own exceptions
        pass
    return _area_of(_core.AreaCore.read(os.fspath(path)))
