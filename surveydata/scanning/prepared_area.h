#ifndef SURVEYDATA_SCANNING_PREPARED_AREA_H_
#define SURVEYDATA_SCANNING_PREPARED_AREA_H_

#include <memory>
#include <span>

#include <surveydata/object_model/export.h>
#include <surveydata/scanning/area_explanation.h>
#include <surveydata/scanning/scan_area.h>

namespace GMAT {
class PreparedSphereAreaC;
}

namespace SDI {

/// A scan area prepared for many queries of `Contains`.
///
/// It never changes and is independent of the area it was made from. Copies share the same data,
/// and several threads may use it concurrently. Every answer equals that of `ScanAreaC::Contains`.
class SURVEYDATA_API PreparedAreaC {
 public:
  /// How many queries to prepare for. The answers do not depend on it.
  enum class Questions {
    kFew,  ///< Fast to prepare.
    kMany  ///< Adds a raster of decided cells: up to 512 KB, and up to a millisecond for rings of a
           ///< thousand points. Use it for about ten thousand directions or more.
  };

  /// Prepares for few queries.
  /// \cost n log n for n points, or that of `ScanAreaC::IsAreaValid` if it is higher. A ring around
  ///       the zenith that crosses itself nearly everywhere takes time proportional to n^2. Memory
  ///       is proportional to n: at most about 5 KB for each point and 50 MB.
  explicit PreparedAreaC(const ScanAreaC& area);
  PreparedAreaC(const ScanAreaC& area, Questions questions);
  PreparedAreaC(const PreparedAreaC& other);
  PreparedAreaC& operator=(const PreparedAreaC& other);
  ~PreparedAreaC();

  /// Whether a direction is inside or in the boundary band, which is displaced from the boundary
  /// (`ScanAreaC::Contains`). Angles in rad.
  /// \cost depends on the number of edges near the direction, not on that of all edges. Where many
  ///       edges cross each other, on a ring around the zenith, it grows with the number of edges
  ///       on the direction's meridian.
  bool Contains(double hz, double v) const;

  /// Stores the answer for each pair hz[i], v[i] in inside[i], up to the end of the shortest of the
  /// three.
  void Contains(std::span<const double> hz, std::span<const double> v,
                std::span<bool> inside) const;

  /// The answer of `Contains` for the same direction with its reasons, which are those of
  /// `ScanAreaC::Explain`.
  /// \cost linear in the number of points.
  AreaExplanation Explain(double hz, double v) const;

 private:
  std::shared_ptr<const GMAT::PreparedSphereAreaC> prepared_;  // null for a dome
};

}  // namespace SDI

#endif  // SURVEYDATA_SCANNING_PREPARED_AREA_H_
