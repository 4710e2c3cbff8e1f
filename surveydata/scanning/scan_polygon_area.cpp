#include <algorithm>
#include <cstdint>

#include <surveydata/scanning/scan_polygon_area.h>

namespace SDI {

ScanPolygonAreaImplC::ScanPolygonAreaImplC() : ImplC(kPolygonArea) {}
ScanPolygonAreaImplC::ScanPolygonAreaImplC(API::BaseC* owner) : ImplC(kPolygonArea) {
  SetBase(owner);
}
ScanPolygonAreaImplC::ScanPolygonAreaImplC(const ScanPolygonAreaImplC& other) = default;
ScanPolygonAreaImplC& ScanPolygonAreaImplC::operator=(const ScanPolygonAreaImplC& other) = default;
ScanPolygonAreaImplC::~ScanPolygonAreaImplC() = default;
API::BaseC* ScanPolygonAreaImplC::GetBase() { return ImplC::GetBase(); }

bool ScanPolygonAreaImplC::IsEqual(const API::ImplObjectC& other) const {
  return dynamic_cast<const ScanPolygonAreaImplC*>(&other) != nullptr &&
         ScanAreaImplC::IsEqual(other);
}

bool ScanPolygonAreaImplC::IsValid() const {
  const std::vector<ScanDefPointC>& points = Points();
  return ScanAreaImplC::IsValid() && points.size() >= 3 &&
         std::adjacent_find(points.begin(), points.end()) == points.end() &&
         !(points.front() == points.back());
}

void ScanPolygonAreaImplC::GetOutline(std::vector<ScanDefPointC>& out,
                                      double defaultDistance) const {
  out = Points();
  double sum = 0.0;
  std::size_t count = 0;
  for (const ScanDefPointC& point : out) {
    if (!point.HasDistance()) continue;
    sum += point.GetDistance();
    ++count;
  }
  if (count == out.size()) return;
  if (count == 0) {
    for (ScanDefPointC& point : out) point.SetDistance(defaultDistance);
    return;
  }
  const double mean = sum / static_cast<double>(count);
  const std::size_t n = out.size();
  // Computed from the original points, so that a filled value does not affect its neighbours.
  const auto distanceOrMean = [&](std::uint64_t index) {
    const double distance = Points()[static_cast<std::size_t>(index % n)].GetDistance();
    return distance < 0.0 ? mean : distance;
  };
  for (std::size_t i = 0; i < n; ++i) {
    if (!(Points()[i].GetDistance() < 0.0)) continue;
    // For the first point i - 1 wraps around to 2^64 - 1, also where pointers have 32 bits. Its
    // neighbour is therefore the last point only if n is a power of two.
    out[i].SetDistance(
        (distanceOrMean(std::uint64_t{i} - 1) + distanceOrMean(std::uint64_t{i} + 1)) / 2.0);
  }
}

void ScanPolygonAreaImplC::SetPoints(const std::vector<ScanDefPointC>& points) {
  for (const ScanDefPointC& point : points) ScanAreaImplC::AddPoint(point);
}

ScanPolygonAreaC::ScanPolygonAreaC() = default;
ScanPolygonAreaC::ScanPolygonAreaC(ScanPolygonAreaImplC* impl) : HandleC(impl) {}
ScanPolygonAreaC::~ScanPolygonAreaC() = default;

void ScanPolygonAreaC::SetPoints(const std::vector<ScanDefPointC>& points) {
  GetImpl()->SetPoints(points);
}

}  // namespace SDI

template SDI::ScanPolygonAreaImplC* API::CastFromAny(API::ImplObjectC*);
