#ifndef SURVEYDATA_TESTS_SUPPORT_LITERAL_SPHERE_AREA_H_
#define SURVEYDATA_TESTS_SUPPORT_LITERAL_SPHERE_AREA_H_

#include <cstdint>
#include <limits>
#include <vector>

/// \file
/// The rules of sphere areas, implemented literally step by step: slow, and sharing no code with
/// the library. Every answer of the library, on any code path, must equal this bit for bit.

namespace literal {

struct Angles {
  double hz = std::numeric_limits<double>::max();
  double v = std::numeric_limits<double>::max();
};

bool ApproxEqual(double a, double b, std::uint16_t digits);
double RoundToStep(double x, double step);
bool InRange(double x, double lo, double hi, std::uint16_t digits);
bool AtLeast(double a, double b, std::uint16_t digits);
bool AtMost(double a, double b, std::uint16_t digits);
double NormalizeAngle(double a);
bool WrapIntoRange(double* a, double lo, double hi);

struct Extents {
  double hzMin = 0.0;
  double hzMax = 0.0;
  double vMin = 0.0;
  double vMax = 0.0;
  bool enclosesZenith = false;
};

class SphereArea {
 public:
  void AddPoint(double hz, double v);
  const std::vector<Angles>& Points() const { return points_; }

  bool IsValid() const;
  bool GetExtents(Extents& extents, bool noClamp) const;
  bool Contains(double hz, double v) const;
  double DistanceToBoundary(double hz, double v) const;
  bool SearchLine(Angles probe, bool vertical, std::vector<Angles>& out) const;

 private:
  bool BuildEdgeList(std::vector<Angles>& edges, double& hzOrigin) const;
  bool ClampV(double& a, double& b, bool clamp) const;

  std::vector<Angles> points_;
  bool unlimitedV_ = false;
};

}  // namespace literal

#endif  // SURVEYDATA_TESTS_SUPPORT_LITERAL_SPHERE_AREA_H_
