"""The first steps of a user, in an environment that has only NumPy."""

import importlib.util
import math

import surveydata

assert importlib.util.find_spec("pyarrow") is None, "run this in an environment with NumPy only"
assert surveydata.__version__.count(".") == 2
area = surveydata.RectangularArea([10, 20], [80, 90], unit="deg")
assert area.contains([15, 25], [85, 85]).tolist() == [True, False]
solid_angle = area.solid_angle()
exact = math.radians(10) * (math.cos(math.radians(80)) - math.cos(math.radians(90)))
assert solid_angle is not None
assert math.isclose(solid_angle, exact, rel_tol=1e-12)
print(f"surveydata {surveydata.__version__} works with only NumPy")
