"""Record files of GNSS measurements, and areas on the sphere of directions, as arrays.

The work is done by the library surveydata, which this package contains.
"""

from ._areas import (
    Area,
    Bounds,
    DomeArea,
    Outline,
    PolygonArea,
    PreparedArea,
    RectangularArea,
    Unit,
    read_area,
)
from ._core import VERSION as __version__
from ._core import Explanation, Fault, Rule

__all__ = [
    "Area",
    "Bounds",
    "DomeArea",
    "Explanation",
    "Fault",
    "Outline",
    "PolygonArea",
    "PreparedArea",
    "RectangularArea",
    "Rule",
    "Unit",
    "__version__",
    "read_area",
]
