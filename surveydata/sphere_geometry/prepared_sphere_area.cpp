#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/filter_bounds.h>
#include <surveydata/sphere_geometry/prepared_sphere_area.h>
#include <surveydata/sphere_geometry/ring_curves.h>

namespace GMAT {
namespace {

constexpr std::size_t kBlock = 256;

// A point even slightly beyond a pole lies on the meridian opposite to its Hz.
bool IsRegular(const AnglePointC& p) {
  return p.Hz >= -kRoundingMargin && p.Hz <= TWO_PI + kRoundingMargin && p.V >= 0.0 && p.V <= PI;
}

double WidthOf(const AreaFrame& frame) {
  double width = 0.0;
  for (const AnglePointC& point : frame.edges) width = std::max(width, point.Hz);
  return width;
}

constexpr double kTurns[] = {0.0, TWO_PI};

bool IsInTurn(double x) { return x >= 0.0 && x <= TWO_PI; }

// For a in (-2 pi, 2 pi] what `NormalizeAngle` returns, without a branch that depends on a.
double NormalizeOneTurn(double a) {
  const double turned = a + kTurns[a < 0.0 ? 1 : 0];
  return turned < TWO_PI ? turned : 0.0;
}

// The Hz of `BandProbe`, for `hz` in [0, 2 pi].
double BandHz(double hz, double v, double hzOrigin) {
  const double x = hz + hzOrigin;
  const bool isNearTurn = std::fabs(x - TWO_PI) <= kRoundingMargin;
  if (isNearTurn || x > 2.0 * TWO_PI - kRoundingMargin) return BandProbe(hz, v, hzOrigin).Hz;
  return x - kTurns[x > TWO_PI ? 1 : 0];
}

}  // namespace

PreparedSphereAreaC::PreparedSphereAreaC(const SphereAreaC& area, bool hasRaster,
                                         double manySideBySide) {
  const std::vector<AnglePointC>& points = area.GetPoints();
  AreaFrame frame;
  if (!BuildFrame(points, frame)) return;
  if (!frame.enclosesZenith && !IsRingValid(points, frame.edges)) return;
  frame_ = std::move(frame);
  rectangleWidth_ = WidthOf(frame_);
  if (!std::all_of(points.begin(), points.end(), IsRegular) || rectangleWidth_ > kWidestFrame) {
    way_ = Way::kRules;
  } else if (!frame_.isPolygon) {
    way_ = Way::kRectangle;
  } else {
    way_ = Way::kPolygon;
    const RingCurves ring = BuildRingCurves(frame_);
    band_.emplace(frame_, manySideBySide);
    slabs_.emplace(frame_, ring, manySideBySide);
    if (hasRaster && DecidedRasterC::CanDecide(*slabs_)) raster_.emplace(frame_, ring, *slabs_);
  }
}

PreparedSphereAreaC::Answer PreparedSphereAreaC::AskRectangle(double h, double v) const {
  const double vLow = std::min(frame_.vMin, frame_.vMax);
  const double vHigh = std::max(frame_.vMin, frame_.vMax);
  if (h > rectangleWidth_ + kRoundingMargin && h < TWO_PI - kRoundingMargin) return {false, true};
  if (v < vLow - kRoundingMargin || v > vHigh + kRoundingMargin) return {false, true};
  const double steps = h * 1e10;
  const bool isBetweenSteps = std::fabs(steps - std::floor(steps) - 0.5) < kBetweenSteps;
  if (!isBetweenSteps && h > kRoundingMargin && h < rectangleWidth_ - kRoundingMargin &&
      v > vLow + kRoundingMargin && v < vHigh - kRoundingMargin) {
    return {true, true};
  }
  return {IsInsideByCrossings(frame_, AllEdges(frame_), h, v), false};
}

inline PreparedSphereAreaC::Answer PreparedSphereAreaC::AskPolygon(double h, double v) const {
  const Verdict verdict = slabs_->Ask(h, v);
  if (verdict != Verdict::kUndecided) return {verdict == Verdict::kInside, true};
  return {slabs_->AskRules(frame_, h, v), false};
}

inline PreparedSphereAreaC::Answer PreparedSphereAreaC::AskWrapped(double hz, double v) const {
  const double hzOrigin = frame_.hzOrigin;
  switch (way_) {
    case Way::kPolygon:
      if (!IsInTurn(hz)) {  // outside by less than the comparison to 10 digits detects
        if (band_->Contains(frame_, BandProbe(hz, v, hzOrigin))) return {true, true};
        return AskPolygon(NormalizeAngle(hz - hzOrigin), v);
      }
      if (band_->Contains(frame_, {BandHz(hz, v, hzOrigin), v})) return {true, true};
      return AskPolygon(NormalizeOneTurn(hz - hzOrigin), v);
    case Way::kRectangle:
      if (FindEdgeInBand(frame_, EdgesWithBand(frame_), BandProbe(hz, v, hzOrigin))) {
        return {true, true};
      }
      return AskRectangle(NormalizeAngle(hz - hzOrigin), v);
    case Way::kRules:
      return {FindEdgeInBand(frame_, EdgesWithBand(frame_), BandProbe(hz, v, hzOrigin)) ||
                  IsInsideByCrossings(frame_, AllEdges(frame_), NormalizeAngle(hz - hzOrigin), v),
              false};
    case Way::kNever:
      break;
  }
  return {false, true};
}

PreparedSphereAreaC::Answer PreparedSphereAreaC::Ask(double hz, double v) const {
  if (!WrapIntoRange(hz, 0.0, TWO_PI) || !WrapIntoRange(v, 0.0, TWO_PI)) return {false, true};
  if (raster_) {
    const Verdict verdict = raster_->Find(hz, v);
    if (verdict != Verdict::kUndecided) return {verdict == Verdict::kInside, true};
  }
  return AskWrapped(hz, v);
}

// Where a direction lies is unpredictable, and a branch on it costs as much as the filter itself.
// The directions of a block that a stage has to process are therefore gathered without a branch.
void PreparedSphereAreaC::AskPolygonBlock(std::span<const double> hz, std::span<const double> v,
                                          std::span<bool> inside) const {
  const std::size_t count = hz.size();
  std::array<double, kBlock> bandHz;
  std::array<double, kBlock> h;
  std::array<std::uint8_t, kBlock> beyondTurn;
  std::array<std::uint8_t, kBlock> nearBand;
  std::array<std::uint8_t, kBlock> nearRing;
  std::size_t beyondTurnCount = 0;
  std::size_t nearBandCount = 0;
  std::size_t nearRingCount = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const bool isInTurn = AreInTurn(hz[i], v[i]);
    bandHz[i] = BandHz(hz[i], v[i], frame_.hzOrigin);
    h[i] = NormalizeOneTurn(hz[i] - frame_.hzOrigin);
    inside[i] = false;
    const auto index = static_cast<std::uint8_t>(i);
    beyondTurn[beyondTurnCount] = index;
    beyondTurnCount += !isInTurn;
    nearBand[nearBandCount] = index;
    nearBandCount += isInTurn & !band_->IsBeyond(bandHz[i]);
    nearRing[nearRingCount] = index;
    nearRingCount += isInTurn & !slabs_->IsBeyond(h[i], v[i]);
  }
  for (std::size_t k = 0; k < beyondTurnCount; ++k) {
    const std::size_t i = beyondTurn[k];
    inside[i] = Ask(hz[i], v[i]).isInside;
  }
  for (std::size_t k = 0; k < nearBandCount; ++k) {
    const std::size_t i = nearBand[k];
    if (band_->Contains(frame_, {bandHz[i], v[i]})) inside[i] = true;
  }
  for (std::size_t k = 0; k < nearRingCount; ++k) {
    const std::size_t i = nearRing[k];
    if (!inside[i]) inside[i] = AskPolygon(h[i], v[i]).isInside;
  }
}

// Gathers the directions that the raster does not decide in the same way.
void PreparedSphereAreaC::AskRasterBlock(std::span<const double> hz, std::span<const double> v,
                                         std::span<bool> inside) const {
  std::array<std::uint8_t, kBlock> verdicts{};
  raster_->FindBits(hz, v, verdicts);
  // A separate loop, which the compiler vectorizes.
  for (std::size_t i = 0; i < hz.size(); ++i) {
    inside[i] = verdicts[i] == static_cast<std::uint8_t>(Verdict::kInside);
  }
  // Eight at a time, because most are decided.
  constexpr std::uint64_t kAnyUndecided = 0x0101010101010101U * DecidedRasterC::kUndecidedBit;
  std::array<std::uint8_t, kBlock> undecided;
  std::size_t undecidedCount = 0;
  for (std::size_t i = 0; i < hz.size(); i += 8) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, verdicts.data() + i, 8);
    if ((eight & kAnyUndecided) == 0) continue;
    for (std::size_t k = i; k < i + 8; ++k) {
      undecided[undecidedCount] = static_cast<std::uint8_t>(k);
      undecidedCount += (verdicts[k] & DecidedRasterC::kUndecidedBit) != 0;
    }
  }
  if (undecidedCount == 0) return;
  std::array<double, kBlock> undecidedHz;
  std::array<double, kBlock> undecidedV;
  std::array<bool, kBlock> answers;
  for (std::size_t k = 0; k < undecidedCount; ++k) {
    undecidedHz[k] = hz[undecided[k]];
    undecidedV[k] = v[undecided[k]];
  }
  AskPolygonBlock({undecidedHz.data(), undecidedCount}, {undecidedV.data(), undecidedCount},
                  {answers.data(), undecidedCount});
  for (std::size_t k = 0; k < undecidedCount; ++k) inside[undecided[k]] = answers[k];
}

void PreparedSphereAreaC::Contains(std::span<const double> hz, std::span<const double> v,
                                   std::span<bool> inside) const {
  const std::size_t count = std::min({hz.size(), v.size(), inside.size()});
  if (way_ != Way::kPolygon) {
    for (std::size_t i = 0; i < count; ++i) inside[i] = Ask(hz[i], v[i]).isInside;
    return;
  }
  for (std::size_t i = 0; i < count; i += kBlock) {
    const std::size_t size = std::min(kBlock, count - i);
    if (raster_) {
      AskRasterBlock(hz.subspan(i, size), v.subspan(i, size), inside.subspan(i, size));
    } else {
      AskPolygonBlock(hz.subspan(i, size), v.subspan(i, size), inside.subspan(i, size));
    }
  }
}

}  // namespace GMAT
