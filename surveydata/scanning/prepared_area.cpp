#include <algorithm>
#include <cstddef>

#include <surveydata/scanning/explain_direction.h>
#include <surveydata/scanning/prepared_area.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/sphere_geometry/prepared_sphere_area.h>

namespace SDI {

PreparedAreaC::PreparedAreaC(const ScanAreaC& area) : PreparedAreaC(area, Questions::kFew) {}

PreparedAreaC::PreparedAreaC(const ScanAreaC& area, Questions questions) {
  if (area.GetType() == kDomeArea) return;
  prepared_ = std::make_shared<const GMAT::PreparedSphereAreaC>(area.GetImpl()->GetSphereArea(),
                                                                questions == Questions::kMany);
}

PreparedAreaC::PreparedAreaC(const PreparedAreaC& other) = default;
PreparedAreaC& PreparedAreaC::operator=(const PreparedAreaC& other) = default;
PreparedAreaC::~PreparedAreaC() = default;

bool PreparedAreaC::Contains(double hz, double v) const {
  return prepared_ != nullptr ? prepared_->Ask(hz, v).isInside : ScanDomeAreaImplC::IsInDome(hz, v);
}

AreaExplanation PreparedAreaC::Explain(double hz, double v) const {
  return prepared_ != nullptr ? ExplainDirection(prepared_->GetFrame(), hz, v)
                              : ExplainDirectionInDome(hz, v);
}

void PreparedAreaC::Contains(std::span<const double> hz, std::span<const double> v,
                             std::span<bool> inside) const {
  if (prepared_ != nullptr) {
    prepared_->Contains(hz, v, inside);
    return;
  }
  const std::size_t count = std::min({hz.size(), v.size(), inside.size()});
  for (std::size_t i = 0; i < count; ++i) inside[i] = ScanDomeAreaImplC::IsInDome(hz[i], v[i]);
}

}  // namespace SDI
