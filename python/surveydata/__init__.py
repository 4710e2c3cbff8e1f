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
from ._records import (
    FIXED_WIDTH,
    Column,
    ColumnInfo,
    DamageTable,
    RecordTable,
    append,
    columns,
    find_damage,
    iter_batches,
    read_records,
)

__all__ = [
    "FIXED_WIDTH",
    "Area",
    "Bounds",
    "Column",
    "ColumnInfo",
    "DamageTable",
    "DomeArea",
    "Explanation",
    "Fault",
    "Outline",
    "PolygonArea",
    "PreparedArea",
    "RecordTable",
    "RectangularArea",
    "Rule",
    "Unit",
    "__version__",
    "append",
    "columns",
    "find_damage",
    "iter_batches",
    "read_area",
    "read_records",
]
