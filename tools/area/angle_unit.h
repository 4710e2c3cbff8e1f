#ifndef SURVEYDATA_TOOLS_AREA_ANGLE_UNIT_H_
#define SURVEYDATA_TOOLS_AREA_ANGLE_UNIT_H_

#include <optional>
#include <string>
#include <string_view>

namespace Tool {

/// The unit of angles in files, options and output; the library works in radians.
enum class AngleUnit { kRad, kDeg, kGon };

/// "rad", "deg" or "gon".
std::string_view UnitName(AngleUnit unit);
/// Empty for any other name.
std::optional<AngleUnit> FindUnit(std::string_view name);

/// Half a turn in the unit.
double HalfTurn(AngleUnit unit);

double ToRadians(double angle, AngleUnit unit);

/// The angle in the unit. Degrees and gon are rounded to 1e-11, so that an angle that was converted
/// to radians is converted back to the same number.
double FromRadians(double radians, AngleUnit unit);

/// The number of decimals with which angles are shown: a tenth of a microradian.
int UnitDecimals(AngleUnit unit);

/// An angle in the unit as text, with these decimals, or with six significant digits if it is very
/// large.
std::string AngleText(double angle, AngleUnit unit);
/// The same for a step, which is shown as 0 only if it is 0.
std::string StepText(double step, AngleUnit unit);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_ANGLE_UNIT_H_
