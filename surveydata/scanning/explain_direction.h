#ifndef SURVEYDATA_SCANNING_EXPLAIN_DIRECTION_H_
#define SURVEYDATA_SCANNING_EXPLAIN_DIRECTION_H_

#include <surveydata/scanning/area_explanation.h>
#include <surveydata/sphere_geometry/area_frame.h>

/// \file
/// The answers of containment with their reasons.

namespace SDI {

/// Applies the rules of `GMAT::SphereAreaC::Contains`, one after the other.
/// \param frame  null for an area that is not valid (and not around the zenith).
AreaExplanation ExplainDirection(const GMAT::AreaFrame* frame, double hz, double v);

AreaExplanation ExplainDirectionInDome(double hz, double v);

}  // namespace SDI

#endif  // SURVEYDATA_SCANNING_EXPLAIN_DIRECTION_H_
