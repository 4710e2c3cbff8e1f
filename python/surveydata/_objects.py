"""Scans: an object of the library that holds an area."""

from __future__ import annotations

from typing import Any

from . import _areas, _core


class Scan(_core.ScanCore):
    """A scan: four texts of at most 32, 32, 255 and 64 UTF-16 units, numbers whose meaning the
    caller defines, and an area.

    Two scans are equal if their texts, their numbers and, if both have one, their areas are.
    """

    __slots__ = ()
    __hash__ = None

    def __init__(
        self,
        *,
        text_1: str | None = None,
        text_2: str | None = None,
        text_3: str | None = None,
        text_4: str | None = None,
        value_1: float | None = None,
        value_2: float | None = None,
        value_3: float | None = None,
        value_4: float | None = None,
        word_1: int | None = None,
        word_2: int | None = None,
        area: _areas.Area | None = None,
    ) -> None:
        super().__init__(
            text_1=text_1,
            text_2=text_2,
            text_3=text_3,
            text_4=text_4,
            value_1=value_1,
            value_2=value_2,
            value_3=value_3,
            value_4=value_4,
            word_1=word_1,
            word_2=word_2,
        )
        self.area = area

    @property
    def area(self) -> _areas.Area | None:
        """A copy of the area, with angles in radians and without a name, or None."""
        core = self.get_area()
        return None if core is None else _areas._area_of(core)

    @area.setter
    def area(self, area: _areas.Area | None) -> None:
        self.set_area(None if area is None else area._impl)

    def __copy__(self) -> Scan:
        copy = Scan()
        copy.assign(self)
        return copy

    def __deepcopy__(self, memo: dict[Any, Any]) -> Scan:
        return self.__copy__()

    def __getstate__(self) -> tuple[Any, ...]:
        return (super().__getstate__(), self.area)

    def __setstate__(self, state: tuple[Any, ...]) -> None:
        if len(state) != 2 or not isinstance(state[1], _areas.Area | None):
            raise ValueError("a pickle of another version")
        super().__setstate__(state[0])
        self.area = state[1]

    def __repr__(self) -> str:
        fields = super().__repr__().removeprefix("ScanCore(").removesuffix(")")
        return f"Scan({fields}, area={self.area!r})"
