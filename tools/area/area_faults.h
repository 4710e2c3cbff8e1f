#ifndef SURVEYDATA_TOOLS_AREA_AREA_FAULTS_H_
#define SURVEYDATA_TOOLS_AREA_AREA_FAULTS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <area/area_file.h>

namespace Tool {

/// A rule that an area breaks. Points and edges are counted from 1; edge k runs from point k to the
/// next one, and the last edge back to point 1.
struct AreaFault {
  std::string_view rule;            ///< A name for JSON.
  std::vector<std::size_t> points;  ///< Those that break it, if any do.
  std::vector<std::size_t> edges;
  std::string text;  ///< In words, with angles in the unit of the file.
};

/// The faults that `SDI::FindAreaFaults` finds, with texts.
std::vector<AreaFault> FindAreaFaults(const AreaFile& file);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_FAULTS_H_
