#include <algorithm>
#include <limits>
#include <typeinfo>

#include <surveydata/scanning/explain_direction.h>
#include <surveydata/scanning/scan_area.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>
#include <surveydata/sphere_geometry/angles.h>

namespace SDI {
namespace {

/// `impl` as an area if its type is exactly one of `Kinds`, else null.
template <class... Kinds>
ScanAreaImplC* IfExactly(API::ImplObjectC* impl) {
  if (impl == nullptr) return nullptr;
  const std::type_info* const kind = &typeid(*impl);
  ScanAreaImplC* area = nullptr;
  static_cast<void>(
      ((kind == &typeid(Kinds) && (area = static_cast<Kinds*>(impl)) != nullptr) || ...));
  return area;
}

}  // namespace

ScanAreaImplC::ScanAreaImplC(std::uint32_t type) : ScanDefinitionImplC(type) {}
ScanAreaImplC::ScanAreaImplC(const ScanAreaImplC& other) = default;
ScanAreaImplC& ScanAreaImplC::operator=(const ScanAreaImplC& other) = default;
ScanAreaImplC::~ScanAreaImplC() = default;

bool ScanAreaImplC::IsEqual(const API::ImplObjectC& other) const {
  const auto* const area = dynamic_cast<const ScanAreaImplC*>(&other);
  return area != nullptr && ScanDefinitionImplC::IsEqual(other) &&
         GMAT::ExactlyEqual(hzStep_, area->hzStep_) && GMAT::ExactlyEqual(vStep_, area->vStep_) &&
         points_ == area->points_ && settingA_ == area->settingA_ && limitLow_ == area->limitLow_ &&
         limitHigh_ == area->limitHigh_;
}

bool ScanAreaImplC::IsValid() const { return hzStep_ > 0.0 && vStep_ > 0.0 && IsAreaValid(); }

bool ScanAreaImplC::AddPoint(const ScanDefPointC& point) {
  points_.push_back(point);
  try {
    return sphereArea_.AddPoint(points_.back().GetHz(), points_.back().GetV());
  } catch (...) {  // out of memory: both lists keep the same points
    points_.pop_back();
    throw;
  }
}

void ScanAreaImplC::RemoveLastPoint() {
  if (!points_.empty()) points_.pop_back();
  sphereArea_.RemoveLastPoint();
}

void ScanAreaImplC::Clear() {
  points_.clear();
  sphereArea_.Clear();
}

std::uint16_t ScanAreaImplC::GetPointCount() const {
  return static_cast<std::uint16_t>(sphereArea_.GetPointCount());
}

void ScanAreaImplC::GetPoints(std::vector<ScanDefPointC>& points) const { points = points_; }

bool ScanAreaImplC::IsAreaValid() const { return sphereArea_.IsValid(); }

bool ScanAreaImplC::GetBoundingPoints(ScanDefPointC& low, ScanDefPointC& high,
                                      bool normalize) const {
  if (!IsAreaValid()) return false;
  double hzMin = 0.0;
  double hzMax = 0.0;
  double vMin = 0.0;
  double vMax = 0.0;
  bool enclosesZenith = false;
  if (!sphereArea_.GetExtents(hzMin, hzMax, vMin, vMax, enclosesZenith, false)) return false;
  if (normalize) {
    GMAT::WrapIntoRange(hzMax, 0.0, GMAT::TWO_PI);
    GMAT::WrapIntoRange(vMax, 0.0, GMAT::TWO_PI);
  }
  low.SetHz(hzMin);
  low.SetV(vMin);
  high.SetHz(hzMax);
  high.SetV(vMax);
  return true;
}

bool ScanAreaImplC::Contains(double hz, double v) const {
  return GetType() == kDomeArea ? ScanDomeAreaImplC::IsInDome(hz, v) : sphereArea_.Contains(hz, v);
}

AreaExplanation ScanAreaImplC::Explain(double hz, double v) const {
  if (GetType() == kDomeArea) return ExplainDirectionInDome(hz, v);
  const std::vector<GMAT::AnglePointC>& points = sphereArea_.GetPoints();
  GMAT::AreaFrame frame;
  const bool isArea = GMAT::BuildFrame(points, frame) &&
                      (frame.enclosesZenith || GMAT::IsRingValid(points, frame.edges));
  return ExplainDirection(isArea ? &frame : nullptr, hz, v);
}

double ScanAreaImplC::GetHzStep() const { return hzStep_; }
void ScanAreaImplC::SetHzStep(double step) { hzStep_ = step; }
double ScanAreaImplC::GetVStep() const { return vStep_; }
void ScanAreaImplC::SetVStep(double step) { vStep_ = step; }
std::uint32_t ScanAreaImplC::GetSettingA() const { return settingA_; }
void ScanAreaImplC::SetSettingA(std::uint32_t setting) { settingA_ = setting; }
double ScanAreaImplC::GetLimitLow() const { return limitLow_; }
void ScanAreaImplC::SetLimitLow(double limit) { limitLow_ = limit; }
double ScanAreaImplC::GetLimitHigh() const { return limitHigh_; }
void ScanAreaImplC::SetLimitHigh(double limit) { limitHigh_ = limit; }
std::uint32_t ScanAreaImplC::GetSettingB() const { return settingB_; }
void ScanAreaImplC::SetSettingB(std::uint32_t setting) { settingB_ = setting; }
std::uint32_t ScanAreaImplC::GetSettingC() const { return settingC_; }
void ScanAreaImplC::SetSettingC(std::uint32_t setting) { settingC_ = setting; }
double ScanAreaImplC::GetSettingD() const { return settingD_; }
void ScanAreaImplC::SetSettingD(double setting) { settingD_ = setting; }
std::uint16_t ScanAreaImplC::GetSettingE() const { return settingE_; }
void ScanAreaImplC::SetSettingE(std::uint16_t setting) { settingE_ = setting; }

struct ScanAreaC::Bounds {
  double hzMin = std::numeric_limits<double>::max();
  double hzMax = std::numeric_limits<double>::max();
  double vMin = std::numeric_limits<double>::max();
  double vMax = std::numeric_limits<double>::max();
};

const GMAT::SphereAreaC& ScanAreaImplC::GetSphereArea() const { return sphereArea_; }
const std::vector<ScanDefPointC>& ScanAreaImplC::Points() const { return points_; }

ScanAreaC::ScanAreaC(ScanAreaImplC* impl) : ScanDefinitionC(impl) {}
ScanAreaC::~ScanAreaC() = default;

ScanAreaImplC* ScanAreaC::GetImpl() const {
  API::ImplObjectC* const impl = API::BaseC::GetImpl();
  // `CheckedCast` compares with the exact type first, which is never the abstract class. Comparing
  // with its three subclasses saves most calls the search for a base class.
  if (ScanAreaImplC* const area =
          IfExactly<ScanRectangularAreaImplC, ScanPolygonAreaImplC, ScanDomeAreaImplC>(impl)) {
    return area;
  }
  return API::CheckedCast<ScanAreaImplC>(impl);
}

bool ScanAreaC::GetBoundingPoints(ScanDefPointC& low, ScanDefPointC& high, bool normalize) const {
  return GetImpl()->GetBoundingPoints(low, high, normalize);
}

bool ScanAreaC::IsEqual(const ScanAreaC& other) const {
  return GetImpl()->IsEqual(*other.GetImpl());
}

bool ScanAreaC::IsValid() const { return GetImpl()->IsValid(); }
bool ScanAreaC::AddPoint(const ScanDefPointC& point) { return GetImpl()->AddPoint(point); }
void ScanAreaC::RemoveLastPoint() { GetImpl()->RemoveLastPoint(); }
void ScanAreaC::Clear() { GetImpl()->Clear(); }
std::uint16_t ScanAreaC::GetPointCount() const { return GetImpl()->GetPointCount(); }
void ScanAreaC::GetPoints(std::vector<ScanDefPointC>& points) const {
  GetImpl()->GetPoints(points);
}
bool ScanAreaC::IsAreaValid() const { return GetImpl()->IsAreaValid(); }
void ScanAreaC::GetOutline(std::vector<ScanDefPointC>& out, double defaultDistance) const {
  GetImpl()->GetOutline(out, defaultDistance);
}

bool ScanAreaC::Contains(double hz, double v) const { return GetImpl()->Contains(hz, v); }
AreaExplanation ScanAreaC::Explain(double hz, double v) const { return GetImpl()->Explain(hz, v); }

ScanAreaC::Bounds ScanAreaC::MeasureBounds() const {
  Bounds bounds;
  const ScanAreaImplC& impl = *GetImpl();
  if (!impl.IsValid()) return bounds;
  ScanDefPointC low;
  ScanDefPointC high;
  impl.GetBoundingPoints(low, high, true);
  bounds.hzMin = low.GetHz();
  bounds.hzMax = high.GetHz();
  bounds.vMin = std::min(low.GetV(), high.GetV());
  bounds.vMax = std::max(low.GetV(), high.GetV());
  return bounds;
}

double ScanAreaC::GetHzMin() const { return MeasureBounds().hzMin; }
double ScanAreaC::GetVMin() const { return MeasureBounds().vMin; }
double ScanAreaC::GetHzMax() const { return MeasureBounds().hzMax; }
double ScanAreaC::GetVMax() const { return MeasureBounds().vMax; }

double ScanAreaC::GetHzStep() const { return GetImpl()->GetHzStep(); }
void ScanAreaC::SetHzStep(double step) { GetImpl()->SetHzStep(step); }
double ScanAreaC::GetVStep() const { return GetImpl()->GetVStep(); }
void ScanAreaC::SetVStep(double step) { GetImpl()->SetVStep(step); }
void ScanAreaC::SetSteps(double hz, double v) {
  SetHzStep(hz);
  SetVStep(v);
}
std::uint32_t ScanAreaC::GetSettingA() const { return GetImpl()->GetSettingA(); }
void ScanAreaC::SetSettingA(std::uint32_t setting) { GetImpl()->SetSettingA(setting); }
double ScanAreaC::GetLimitLow() const { return GetImpl()->GetLimitLow(); }
void ScanAreaC::SetLimitLow(double limit) { GetImpl()->SetLimitLow(limit); }
double ScanAreaC::GetLimitHigh() const { return GetImpl()->GetLimitHigh(); }
void ScanAreaC::SetLimitHigh(double limit) { GetImpl()->SetLimitHigh(limit); }
std::uint32_t ScanAreaC::GetSettingB() const { return GetImpl()->GetSettingB(); }
void ScanAreaC::SetSettingB(std::uint32_t setting) { GetImpl()->SetSettingB(setting); }
std::uint32_t ScanAreaC::GetSettingC() const { return GetImpl()->GetSettingC(); }
void ScanAreaC::SetSettingC(std::uint32_t setting) { GetImpl()->SetSettingC(setting); }
double ScanAreaC::GetSettingD() const { return GetImpl()->GetSettingD(); }
void ScanAreaC::SetSettingD(double setting) { GetImpl()->SetSettingD(setting); }
std::uint16_t ScanAreaC::GetSettingE() const { return GetImpl()->GetSettingE(); }
void ScanAreaC::SetSettingE(std::uint16_t setting) { GetImpl()->SetSettingE(setting); }

}  // namespace SDI
