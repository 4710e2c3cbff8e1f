#ifndef SURVEYDATA_TOOLS_AREA_AREA_REASONS_H_
#define SURVEYDATA_TOOLS_AREA_AREA_REASONS_H_

#include <string>
#include <string_view>

#include <surveydata/scanning/area_explanation.h>

#include <area/angle_unit.h>
#include <output/json_writer.h>

/// \file
/// Why an area contains a direction, or does not, as JSON and as text. Edges are counted
/// from 1, angles are in a unit.

namespace Tool {

/// A name for JSON: "parity".
std::string_view RuleName(SDI::AreaExplanation::Rule rule);

/// The member "why" of an object.
void WriteReasons(JsonWriterC& out, const SDI::AreaExplanation& why, AngleUnit unit);

/// Lines that begin with `indent`: the rule, the crossings of the meridian, the nearest edge.
std::string ReasonsText(const SDI::AreaExplanation& why, AngleUnit unit, std::string_view indent);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_REASONS_H_
