#ifndef SURVEYDATA_TOOLS_AREA_AREA_CURVES_H_
#define SURVEYDATA_TOOLS_AREA_AREA_CURVES_H_

#include <cstddef>
#include <functional>
#include <set>
#include <vector>

#include <surveydata/sphere_geometry/sphere_area.h>

#include <area/area_faults.h>
#include <area/area_file.h>
#include <output/svg.h>

/// \file
/// The edges of an area as curves, and curves as lines on the page.

namespace Tool {

/// Directions from t = 0 to t = 1, Hz in one continuous frame.
using Curve = std::function<GMAT::AnglePointC(double)>;
/// The position at which a direction is drawn.
using PageMap = std::function<SvgPoint(const GMAT::AnglePointC&)>;

struct EdgeCurve {
  Curve at;
  bool isArc;  ///< Or a straight line in the plane.
  bool isFaulty;
};

/// Whether the angles are small enough to be drawn.
bool IsDrawable(const GMAT::AnglePointC& p);

/// A straight line in the plane of Hz and V.
Curve Straight(const GMAT::AnglePointC& a, const GMAT::AnglePointC& b);

/// The edges of the area; none if they cannot be drawn.
std::vector<EdgeCurve> MakeEdges(const AreaFile& file, const std::vector<AreaFault>& faults);

/// The numbers of the points, or of the edges, that break a rule.
std::set<std::size_t> Faulty(const std::vector<AreaFault>& faults,
                             std::vector<std::size_t> AreaFault::*numbers);

/// Approximates the curve on the page to a quarter of a pixel, with at least `least` halvings.
std::vector<SvgPoint> Sampled(const Curve& curve, const PageMap& map, int least = 3);

/// `points` without those that lie on the line between their neighbours.
std::vector<SvgPoint> Thinned(const std::vector<SvgPoint>& points);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_AREA_AREA_CURVES_H_
