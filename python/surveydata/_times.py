"""Times of measurements as numbers that engines sort and compare."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np

if TYPE_CHECKING:
    from numpy.typing import NDArray

_WEEK = 7 * 24 * 3600 * 1000
_EPOCH = np.datetime64("1980-01-06T00:00:00.000", "ms")


def gps_times(week: NDArray[Any], time_of_week: NDArray[Any]) -> NDArray[np.datetime64]:
    """GPS times in milliseconds, exact; NaT if the time of week is out of range."""
    inside = (time_of_week >= 0) & (time_of_week < _WEEK)
    since = week.astype(np.int64) * _WEEK + time_of_week
    times: NDArray[np.datetime64] = _EPOCH + since.astype("timedelta64[ms]")
    times[~inside] = np.datetime64("NaT")
    return times
