#ifndef SURVEYDATA_SCANNING_AREA_EXPLANATION_H_
#define SURVEYDATA_SCANNING_AREA_EXPLANATION_H_

#include <cstddef>
#include <limits>
#include <vector>

namespace SDI {

/// Why an area contains a direction, or does not (`ScanAreaC::Explain`). Angles are in rad.
///
/// Edge i of a polygon runs from point i to the next one, the last edge to the first point. Edges 0
/// and 2 of a rectangle are its meridians at the Hz of the first and of the second point, edges 1
/// and 3 its circles of latitude at the V of the second and of the first. Edge 0 of a dome is its
/// limit, V = 0.8 pi.
struct AreaExplanation {
  /// The rule that decided, the first in this order that applies.
  enum class Rule {
    kOutOfRange,    ///< An angle is NaN or beyond 100 rad: outside.
    kDome,          ///< Inside if V, wrapped into [0, 2 pi], is at most 0.8 pi.
    kNotValid,      ///< The area is not valid: outside.
    kBand,          ///< Within half of 0.001 gon of an edge, where its band lies: inside.
    kNoSearchLine,  ///< The bounds extend from pole to pole, or are a point: outside.
    kNoCrossing,    ///< The meridian crosses no edge: outside.
    kNothingAbove,  ///< All crossings are below, and the zenith is not inside: outside.
    kParity         ///< Inside if the number of crossings that count is odd.
  };

  /// Where the meridian of the direction crosses an edge.
  struct Crossing {
    std::size_t edge = 0;
    double v = 0.0;
    /// Below the direction, and not within 10 decimal digits of the next one below.
    bool isCounted = false;
  };

  static constexpr std::size_t kNoEdge = static_cast<std::size_t>(-1);

  bool isInside = false;  ///< The answer of `Contains`.
  Rule rule = Rule::kNotValid;
  double hz = 0.0;  ///< The direction in [0, 2 pi]; as given if it is out of range.
  double v = 0.0;   ///< Likewise.

  /// By ascending V; empty for a dome and an area that is not valid.
  std::vector<Crossing> crossings;

  /// The first edge in whose band the direction lies, or none.
  std::size_t bandEdge = kNoEdge;

  /// The edge that is nearest on the sphere and the angle to its nearest point, within 1e-12; none
  /// and the largest finite double for an area that is not valid and a direction out of range.
  ///
  /// The boundary of a polygon consists of the shorter arcs of great circles between its corners,
  /// including the closing edge; an edge that defines no arc (ends equal, antipodal or both at a
  /// pole, to 10 digits) contributes its ends. That of a rectangle is two parts of meridians and
  /// two of circles of latitude; that of a dome its limit. It includes neither the boundary band,
  /// which is elsewhere, nor the limit at which a ring around the zenith ends. V beyond pi is the
  /// same direction in the second face.
  /// @{
  std::size_t nearestEdge = kNoEdge;
  double distance = std::numeric_limits<double>::max();
  /// @}
};

}  // namespace SDI

#endif  // SURVEYDATA_SCANNING_AREA_EXPLANATION_H_
