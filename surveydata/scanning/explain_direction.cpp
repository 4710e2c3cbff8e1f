#include <algorithm>
#include <cmath>

#include <surveydata/scanning/explain_direction.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/boundary_distance.h>

namespace SDI {
namespace {

using Rule = AreaExplanation::Rule;

// The wrapped direction; out of range if wrapping fails.
AreaExplanation Begin(double hz, double v) {
  AreaExplanation why;
  why.hz = hz;
  why.v = v;
  const bool isInRange = GMAT::WrapIntoRange(why.hz, 0.0, GMAT::TWO_PI) &&
                         GMAT::WrapIntoRange(why.v, 0.0, GMAT::TWO_PI);
  if (isInRange) return why;
  why.hz = hz;
  why.rule = Rule::kOutOfRange;
  return why;
}

// The crossings of the direction's meridian, and whether they put the direction inside.
void FollowMeridian(const GMAT::AreaFrame& frame, AreaExplanation& why, bool isDecided) {
  const GMAT::SearchMeridianC meridian(frame, GMAT::NormalizeAngle(why.hz - frame.hzOrigin));
  std::vector<double> crossings;
  if (meridian.IsArc()) {
    GMAT::ForEachCrossing(frame, GMAT::AllEdges(frame), meridian, [&](std::size_t edge, double v) {
      why.crossings.push_back({edge, v, false});
      crossings.push_back(v);
    });
  }
  std::stable_sort(why.crossings.begin(), why.crossings.end(),
                   [](const auto& p, const auto& q) { return p.v < q.v; });
  bool hasOneAbove = false;
  for (std::size_t i = 0; i < why.crossings.size(); ++i) {
    AreaExplanation::Crossing& crossing = why.crossings[i];
    const bool isAbove = GMAT::AtLeast(why.v, crossing.v);
    const bool isRepeated =
        i + 1 < why.crossings.size() && GMAT::ApproxEqual(crossing.v, why.crossings[i + 1].v);
    crossing.isCounted = !isAbove && !isRepeated;
    hasOneAbove = hasOneAbove || isAbove;
  }
  if (isDecided) return;
  why.isInside = meridian.IsArc() && GMAT::IsInsideByParity(crossings, why.v, frame.enclosesZenith);
  why.rule = !meridian.IsArc()                     ? Rule::kNoSearchLine
             : why.crossings.empty()               ? Rule::kNoCrossing
             : hasOneAbove || frame.enclosesZenith ? Rule::kParity
                                                   : Rule::kNothingAbove;
}

}  // namespace

AreaExplanation ExplainDirection(const GMAT::AreaFrame* frame, double hz, double v) {
  AreaExplanation why = Begin(hz, v);
  if (why.rule == Rule::kOutOfRange || frame == nullptr) return why;
  const auto band = GMAT::FindEdgeInBand(*frame, GMAT::EdgesWithBand(*frame),
                                         GMAT::BandProbe(why.hz, why.v, frame->hzOrigin));
  if (band) {
    why.bandEdge = *band;
    why.rule = Rule::kBand;
    why.isInside = true;
  }
  FollowMeridian(*frame, why, band.has_value());
  const GMAT::NearestEdge nearest = GMAT::FindNearestEdge(*frame, {why.hz, why.v});
  why.nearestEdge = nearest.edge;
  why.distance = nearest.distance;
  return why;
}

AreaExplanation ExplainDirectionInDome(double hz, double v) {
  AreaExplanation why = Begin(hz, v);
  if (why.rule == Rule::kOutOfRange) return why;
  why.rule = Rule::kDome;
  why.isInside = ScanDomeAreaImplC::IsInDome(hz, v);
  GMAT::AnglePointC firstFace{why.hz, why.v};
  GMAT::ToFirstFace(firstFace);
  why.nearestEdge = 0;
  why.distance = std::fabs(firstFace.V - GMAT::V_LIMIT);
  return why;
}

}  // namespace SDI
