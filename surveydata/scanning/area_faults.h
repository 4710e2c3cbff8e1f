#ifndef SURVEYDATA_SCANNING_AREA_FAULTS_H_
#define SURVEYDATA_SCANNING_AREA_FAULTS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <surveydata/object_model/export.h>
#include <surveydata/scanning/scan_area.h>

namespace SDI {

/// A rule that an area breaks. Points and edges are counted from 0; edge i runs from point i to the
/// next point, the last edge to point 0.
struct AreaFault {
  enum class Rule : std::uint8_t {
    kHzStepNotPositive = 1,
    kVStepNotPositive,
    kPointCount,       ///< A rectangle has 2 points, a polygon 3 or more.
    kPointOutOfRange,  ///< Hz must be in [0, 2 pi], V in [0, pi], after the second face is
                       ///< resolved.
    kEqualPoints,
    kEqualHz,        ///< Both corners of a rectangle have the same Hz.
    kEqualV,         ///< Both corners of a rectangle have the same V.
    kCrossingEdges,  ///< Two non-adjacent edges cross.
  };

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  Rule rule = Rule::kPointCount;
  std::array<std::size_t, 2> points = {kNone,
                                       kNone};        ///< The points concerned, in ascending order.
  std::array<std::size_t, 2> edges = {kNone, kNone};  ///< The edges concerned, likewise.
  double hz = 0.0;                                    ///< Near the crossing of two edges, rad.
  double v = 0.0;                                     ///< Likewise.
};

/// The rule in a few words, as part of a message: "edges cross". Never null.
SURVEYDATA_API const char* TextOf(AreaFault::Rule rule);

/// Why `ScanAreaC::IsValid` returns false; empty if and only if it returns true. Crossing edges are
/// searched for only if there is no fault of points; at most 8 pairs are returned.
/// \cost that of `IsValid`, up to 9 times that if edges cross.
SURVEYDATA_API std::vector<AreaFault> FindAreaFaults(const ScanAreaC& area);

}  // namespace SDI

#endif  // SURVEYDATA_SCANNING_AREA_FAULTS_H_
