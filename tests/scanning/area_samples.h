#ifndef SURVEYDATA_TESTS_SCANNING_AREA_SAMPLES_H_
#define SURVEYDATA_TESTS_SCANNING_AREA_SAMPLES_H_

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>

/// \file
/// Areas for tests.

namespace TestSupport {

inline constexpr double kTwoPi = 6.283185307179586;
inline constexpr double kNotSet = 1.7976931348623157e308;  ///< A coordinate that was not set.

inline SDI::ScanRectangularAreaC* MakeRectangle() {
  auto* const area = new SDI::ScanRectangularAreaC;
  area->SetSteps(0.1, 0.2);
  area->SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  return area;
}

using Calls = std::vector<std::string>;

inline const std::vector<SDI::ScanDefPointC> kTriangle = {
    {1.0, 1.0, -1.0}, {2.0, 1.0, -1.0}, {1.5, 1.5, -1.0}};

inline SDI::ScanPolygonAreaC* MakePolygon(
    const std::vector<SDI::ScanDefPointC>& points = kTriangle) {
  auto* const area = new SDI::ScanPolygonAreaC;
  area->SetSteps(0.1, 0.2);
  area->SetPoints(points);
  return area;
}

// An implementation that records the calls of its virtual functions, in order.
template <class Impl>
class LoggedC : public Impl {
 public:
  bool IsValid() const override { return Log("IsValid"), Impl::IsValid(); }
  bool AddPoint(const SDI::ScanDefPointC& point) override {
    Log("AddPoint " + std::to_string(point.GetHz()).substr(0, 3));
    return Impl::AddPoint(point);
  }
  void RemoveLastPoint() override { Log("RemoveLastPoint"), Impl::RemoveLastPoint(); }
  void Clear() override { Log("Clear"), Impl::Clear(); }
  std::uint16_t GetPointCount() const override {
    return Log("GetPointCount"), Impl::GetPointCount();
  }
  void GetPoints(std::vector<SDI::ScanDefPointC>& points) const override {
    Log("GetPoints"), Impl::GetPoints(points);
  }
  bool IsAreaValid() const override { return Log("IsAreaValid"), Impl::IsAreaValid(); }
  bool GetBoundingPoints(SDI::ScanDefPointC& low, SDI::ScanDefPointC& high,
                         bool normalize) const override {
    return Log("GetBoundingPoints"), Impl::GetBoundingPoints(low, high, normalize);
  }

  Calls TakeCalls() { return std::exchange(calls_, {}); }

 private:
  void Log(std::string call) const { calls_.push_back(std::move(call)); }

  mutable Calls calls_;
};

}  // namespace TestSupport

#endif  // SURVEYDATA_TESTS_SCANNING_AREA_SAMPLES_H_
