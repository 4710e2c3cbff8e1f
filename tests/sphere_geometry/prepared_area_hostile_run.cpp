// prepared_area_hostile_run [RINGS [SEED [RASTERS]]]: as prepared_area_long_run, but with few
// directions for each of many rings that are hostile to an index: edges almost along meridians,
// corners next to poles, to the end of the search line and to borders of columns, needles, edges
// of half a turn, and rings of several turns that nearly coincide. On each meridian, a direction
// is tested between all crossings. One ring in RASTERS also gets a raster, and batches. Exits with
// 1 at the first difference.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <optional>
#include <vector>

#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/prepared_sphere_area.h>
#include <surveydata/sphere_geometry/ring_curves.h>
#include <surveydata/sphere_geometry/sphere_area.h>

#include "tests/support/ring_generator.h"

namespace {

using GMAT::AnglePointC;
using GMAT::HALF_PI;
using GMAT::PI;
using GMAT::PreparedSphereAreaC;
using GMAT::TWO_PI;
using GMAT::V_LIMIT;

using Ring = std::vector<AnglePointC>;

class HostileGeneratorC {
 public:
  explicit HostileGeneratorC(std::uint64_t seed) : random_(seed) {}

  std::uint64_t Below(std::uint64_t n) { return random_.Below(n); }
  bool OneIn(std::uint64_t n) { return Below(n) == 0; }
  double Uniform(double lo, double hi) { return random_.Uniform(lo, hi); }

  // A small offset, often next to one of the tolerances.
  double Off() {
    constexpr double kTolerances[] = {5e-11, 1e-10, 1.5e-10, 2e-10,  1e-9,     2e-9,
                                      4e-9,  8e-9,  1e-8,    2e-8,   2.2e-8,   3.2e-8,
                                      1e-7,  1e-6,  1.2e-7,  7.8e-6, 7.854e-6, 1e-5};
    switch (Below(6)) {
      case 0:
        return 0.0;
      case 1:
        return Sign() * Power(-16.0, -5.0);
      case 2:
        return Uniform(-3e-10, 3e-10);
      case 3:
        return Uniform(-2.2e-9, 2.2e-9);
      case 4:
        return Sign() * kTolerances[Below(std::size(kTolerances))] + Sign() * Power(-16.0, -11.0);
      default:
        return Sign() * Uniform(0.9e-8, 1.1e-8);
    }
  }

  Ring Next() {
    Ring ring;
    const std::uint64_t kind = Below(20);
    if (kind < 7) {
      ring = AroundZenith();
    } else if (kind < 10) {
      ring = Star();
    } else if (kind < 12) {
      ring = Needles();
    } else if (kind < 14) {
      ring = WideEdges();
    } else if (kind < 16) {
      ring = OnColumns();
    } else if (kind < 19) {
      ring = Turns();
    } else {
      ring = {{OneIn(3) ? 0.0 : Uniform(0.0, TWO_PI), V()}, {Uniform(0.0, TWO_PI), V()}};
    }
    for (AnglePointC& p : ring) {
      p = {GMAT::NormalizeAngle(p.Hz), std::clamp(p.V, 0.0, PI)};
    }
    return ring;
  }

 private:
  double Sign() { return OneIn(2) ? 1.0 : -1.0; }
  double Power(double lowest, double highest) { return std::pow(10.0, Uniform(lowest, highest)); }
  double SteepHz() { return OneIn(8) ? 0.0 : Sign() * Power(-10.3, OneIn(2) ? -5.0 : -0.5); }
  double PoleV() {
    const double off = OneIn(6) ? 0.0 : Power(-11.0, OneIn(2) ? -5.0 : -1.0);
    return OneIn(2) ? off : PI - off;
  }
  double V() {
    switch (Below(8)) {
      case 0:
        return V_LIMIT + Off();
      case 1:
        return V_LIMIT + Sign() * Power(-8.0, -0.5);
      case 2:
        return PoleV();
      case 3:
        return HALF_PI + Off();
      case 4:
        return Uniform(2.3, 3.1);
      default:
        return Uniform(0.01, 3.13);
    }
  }
  const AnglePointC& AnyOf(const Ring& ring) { return ring[Below(ring.size())]; }

  Ring AroundZenith() {
    Ring ring;
    const auto n = static_cast<double>(3 + Below(OneIn(5) ? 20 : 7));
    const double width = (OneIn(8) ? static_cast<double>(1 + Below(6)) : 1.0) * TWO_PI;
    const double direction = Sign();
    const double start = OneIn(3) ? 0.0 : Uniform(0.0, TWO_PI);
    double hz = 0.0;
    for (double i = 0.0; i < n; ++i) {
      const double regular = width * i / n;
      switch (Below(4)) {
        case 0:
          hz += SteepHz();
          break;
        case 1:
          hz = regular + Uniform(-1.5, 1.5) * TWO_PI / n;
          break;
        case 2:
          hz = regular + PI * Sign() + Off();
          break;
        default:
          hz = regular + (OneIn(2) ? Off() : 0.0);
      }
      ring.push_back({start + direction * hz, V()});
      if (OneIn(8)) ring.back().V = AnyOf(ring).V + Off();
      if (OneIn(12)) ring.push_back({AnyOf(ring).Hz + Off(), V()});
      if (OneIn(20)) ring.push_back({AnyOf(ring).Hz + Off(), AnyOf(ring).V + Off()});
    }
    return ring;
  }

  Ring Star() {
    Ring ring;
    const std::size_t n = 3 + Below(OneIn(4) ? 30 : 6);
    const double hz = OneIn(2) ? Uniform(-0.3, 0.3) : Uniform(0.0, TWO_PI);
    const double v = OneIn(4) ? PoleV() : Uniform(0.2, 2.9);
    const double width = OneIn(3) ? Power(-10.0, -3.0) : Uniform(0.01, 1.4);
    const double height = OneIn(3) ? width : Power(-9.0, 0.1);
    for (std::size_t i = 0; i < n; ++i) {
      const double angle =
          TWO_PI * (static_cast<double>(i) + Uniform(0.0, 0.9)) / static_cast<double>(n);
      const double r = OneIn(3) ? 1.0 : Uniform(0.05, 1.0);
      ring.push_back({hz + width * r * std::cos(angle), v + height * r * std::sin(angle)});
    }
    const std::size_t at = Below(n);
    const AnglePointC& next = ring[(at + 1) % n];
    if (OneIn(3)) ring[at].Hz = next.Hz + SteepHz();
    if (OneIn(4)) ring[at].V = PoleV();
    if (OneIn(4)) ring[at] = {next.Hz + Off(), next.V + Off()};
    if (OneIn(6)) ring[at].Hz = next.Hz + PI + Off();
    return ring;
  }

  Ring Needles() {
    Ring ring;
    const double hz = OneIn(3) ? 0.0 : Uniform(0.0, TWO_PI);
    const double length = OneIn(3) ? Power(-8.0, 0.0) : Uniform(0.1, 1.5);
    const double step = Uniform(0.02, 0.2);
    double v = Uniform(0.2, 1.5);
    for (std::uint64_t left = 1 + Below(5); left > 0; --left, v += step) {
      const double gap = Power(-11.0, -2.0);
      const double tip = v + Uniform(-0.02, 0.02);
      ring.push_back({hz, v});
      ring.push_back({hz + length, tip});
      if (OneIn(3)) ring.push_back({hz + length + Off(), tip + gap * Uniform(0.1, 1.0)});
      if (OneIn(3)) ring.push_back({hz + length * Uniform(0.2, 0.8), (v + tip) / 2.0 + gap});
      ring.push_back({hz + Off(), v + gap + (OneIn(2) ? 0.3 * step : 0.0)});
    }
    ring.push_back({hz - Power(-9.0, -0.5), v + 0.2});
    return ring;
  }

  Ring WideEdges() {
    Ring ring;
    double hz = Uniform(0.0, TWO_PI);
    for (std::uint64_t left = 3 + Below(3); left > 0; --left) {
      ring.push_back({hz, OneIn(3) ? PoleV() : Uniform(0.05, 3.1)});
      hz += OneIn(3) ? PI + Off() : Uniform(-PI, PI);
    }
    return ring;
  }

  // An upper and a lower side, with corners at the borders of the columns of the ring's frame.
  Ring OnColumns() {
    const double widths[] = {Uniform(0.1, 3.0), 0.9 * TWO_PI, Power(-5.0, -1.0)};
    const double width = widths[Below(3)];
    const double start = OneIn(2) ? 0.0 : Uniform(0.0, TWO_PI);
    const double columns = OneIn(2) ? 8.0 : static_cast<double>(8 + Below(10));
    const double v = Uniform(0.3, 2.6);
    const double height = Power(-6.0, -0.6);
    const std::uint64_t n = 3 + Below(8);
    Ring ring;
    for (const double side : {1.0, -1.0}) {
      std::vector<double> borders;
      if (side > 0.0) borders = {0.0, width};
      for (std::uint64_t i = 0; i < n; ++i) {
        const double border = width * static_cast<double>(Below(9)) / columns;
        borders.push_back(std::clamp(border + Off(), 0.0, width));
      }
      std::sort(borders.begin(), borders.end(),
                [side](double a, double b) { return side > 0.0 ? a < b : a > b; });
      for (const double hz : borders) {
        ring.push_back({start + hz, v + side * height * Uniform(0.0, 1.0)});
      }
    }
    return ring;
  }

  Ring Turns() {
    Ring ring;
    const double start = OneIn(2) ? 0.0 : Uniform(0.0, TWO_PI);
    const bool isExact = OneIn(2);
    const std::uint64_t corners = 3 + Below(5);
    double v[8];
    for (double& at : v) at = OneIn(6) ? V_LIMIT + Off() : Uniform(0.2, 2.9);
    for (std::uint64_t turn = 2 + Below(5); turn > 0; --turn) {
      for (std::uint64_t i = 0; i < corners; ++i) {
        const double hz = start + TWO_PI * static_cast<double>(i) / static_cast<double>(corners);
        ring.push_back(
            {hz + (isExact ? 0.0 : Off()), v[i] + (OneIn(2) ? Off() : Power(-10.0, -2.0))});
      }
    }
    return ring;
  }

  RingGenerator random_;
};

// One ring, all ways to query it, and the queries.
class ComparedRingC {
 public:
  ComparedRingC(const Ring& points, bool hasRaster, HostileGeneratorC& random)
      : random_(random), hasRaster_(hasRaster) {
    area_.AddPoints(points);
    isArea_ = GMAT::BuildFrame(area_.GetPoints(), frame_) &&
              (frame_.enclosesZenith || GMAT::IsRingValid(area_.GetPoints(), frame_.edges));
    if (!isArea_) return;
    prepared_.emplace_back(area_);
    prepared_.emplace_back(area_, false, 0.0);  // with ordered lists, as for very many edges
    if (hasRaster) prepared_.emplace_back(area_, true);
    if (frame_.isPolygon) slabs_.emplace(frame_, GMAT::BuildRingCurves(frame_));
  }

  bool IsArea() const { return isArea_; }
  std::uint64_t GetProbes() const { return probes_; }

  // Directions on one meridian, and some next to the band.
  bool CompareMeridian() {
    const double hz = SomeHz();
    double wrapped = hz;
    if (!GMAT::WrapIntoRange(wrapped, 0.0, TWO_PI)) return true;
    const GMAT::SearchMeridianC meridian(frame_, GMAT::NormalizeAngle(wrapped - frame_.hzOrigin));
    std::vector<double> marks{0.0, PI};
    if (meridian.IsArc()) {
      GMAT::ForEachCrossing(frame_, GMAT::AllEdges(frame_), meridian,
                            [&](std::size_t, double v) { marks.push_back(v); });
    }
    std::sort(marks.begin(), marks.end());
    bool isSame = true;
    for (std::size_t i = 1; i < marks.size(); ++i) {
      isSame &= Compare({hz, (marks[i - 1] + marks[i]) / 2.0});
    }
    for (int i = 0; i < 3; ++i) {
      isSame &= Compare({hz, marks[random_.Below(marks.size())] + random_.Off()});
    }
    isSame &= Compare({hz, (random_.OneIn(2) ? frame_.vMin : frame_.vMax) + random_.Off()});
    return isSame && Compare({hz, random_.Uniform(-0.1, TWO_PI)}) && CompareBand();
  }

  // All queries, in their order and in the order of Hz, so that runs share a column.
  bool CompareBatches() const {
    std::vector<Asked> asked = asked_;
    for (int pass = 0; pass < 2; ++pass) {
      std::vector<double> hz;
      std::vector<double> v;
      for (const Asked& a : asked) {
        hz.push_back(a.direction.Hz);
        v.push_back(a.direction.V);
      }
      const auto inside = std::make_unique<bool[]>(asked.size());
      for (const PreparedSphereAreaC& prepared : prepared_) {
        prepared.Contains(hz, v, {inside.get(), asked.size()});
        for (std::size_t i = 0; i < asked.size(); ++i) {
          if (inside[i] != asked[i].isInside) return Report(asked[i].direction, asked[i].isInside);
        }
      }
      std::sort(asked.begin(), asked.end(),
                [](const Asked& a, const Asked& b) { return a.direction.Hz < b.direction.Hz; });
    }
    return true;
  }

 private:
  struct Asked {
    AnglePointC direction;
    bool isInside;
  };

  double SomeHz() {
    const double fromFrame = HzInFrame() + frame_.hzOrigin;
    if (hasRaster_ && random_.OneIn(4) && prepared_.back().GetRaster() != nullptr) {
      return prepared_.back().GetRaster()->GetCellCorner(random_.Below(513), 0).Hz + random_.Off();
    }
    return random_.OneIn(20) ? fromFrame : GMAT::NormalizeAngle(fromFrame);
  }

  double HzInFrame() {
    const std::size_t edge = random_.Below(frame_.GetEdgeCount());
    const double start = frame_.GetStart(edge).Hz;
    switch (random_.Below(6)) {
      case 0:
      case 1:
        return start + random_.Off();
      case 2:
        return start + random_.Uniform(0.0, 1.0) * (frame_.GetEnd(edge).Hz - start);
      case 3:
        if (slabs_ && !slabs_->GetIntervals().GetIntervals().empty()) {
          const auto& intervals = slabs_->GetIntervals().GetIntervals();
          const auto& interval = intervals[random_.Below(intervals.size())];
          double hz = random_.OneIn(2) ? interval.low : interval.high;
          const double towards = random_.OneIn(2) ? -10.0 : 10.0;
          for (std::uint64_t i = random_.Below(4); i > 0; --i) hz = std::nextafter(hz, towards);
          return hz;
        }
        [[fallthrough]];
      case 4:
        return (slabs_ ? slabs_->GetWidth() : TWO_PI) * static_cast<double>(random_.Below(13)) /
                   static_cast<double>(8 + 4 * random_.Below(2)) +
               random_.Off();
      default:
        return random_.Uniform(0.0, TWO_PI);
    }
  }

  // At half the tolerance from the chord of an edge, in the frame of the band.
  bool CompareBand() {
    const std::size_t edge = random_.Below(frame_.GetEdgeCount());
    const AnglePointC& a = frame_.GetStart(edge);
    const AnglePointC& b = frame_.GetEnd(edge);
    const double length = GMAT::PlanarDistance(a, b);
    if (!(length > 0.0)) return true;
    const double along = random_.OneIn(3) ? 0.0 : random_.Uniform(0.0, 1.0);
    const double across = (random_.OneIn(2) ? 0.5 : -0.5) * GMAT::CONTAINS_TOLERANCE +
                          (random_.OneIn(2) ? random_.Uniform(-3e-10, 3e-10) : random_.Off());
    const double hz =
        a.Hz + along * (b.Hz - a.Hz) - across / length * (b.V - a.V) - frame_.hzOrigin;
    const double v = a.V + along * (b.V - a.V) + across / length * (b.Hz - a.Hz);
    return Compare({random_.OneIn(20) ? hz : GMAT::NormalizeAngle(hz), v});
  }

  bool IsInsideByRules(AnglePointC direction) const {
    if (!GMAT::WrapIntoRange(direction.Hz, 0.0, TWO_PI) ||
        !GMAT::WrapIntoRange(direction.V, 0.0, TWO_PI)) {
      return false;
    }
    const AnglePointC probe = GMAT::BandProbe(direction.Hz, direction.V, frame_.hzOrigin);
    const double h = GMAT::NormalizeAngle(direction.Hz - frame_.hzOrigin);
    return GMAT::FindEdgeInBand(frame_, GMAT::EdgesWithBand(frame_), probe) ||
           GMAT::IsInsideByCrossings(frame_, GMAT::AllEdges(frame_), h, direction.V);
  }

  bool Compare(AnglePointC direction) {
    const bool expected = IsInsideByRules(direction);
    ++probes_;
    if (hasRaster_) asked_.push_back({direction, expected});
    for (const PreparedSphereAreaC& prepared : prepared_) {
      if (prepared.Ask(direction.Hz, direction.V).isInside != expected) {
        return Report(direction, expected);
      }
    }
    return true;
  }

  bool Report(AnglePointC direction, bool expected) const {
    std::printf("DIFFERENCE at {%a, %a}: the rules say %d; the points are\n", direction.Hz,
                direction.V, expected);
    for (const AnglePointC& p : area_.GetPoints()) std::printf("{%a, %a}, ", p.Hz, p.V);
    std::printf("\nAlone, in order, with a raster:");
    for (const PreparedSphereAreaC& prepared : prepared_) {
      const PreparedSphereAreaC::Answer answer = prepared.Ask(direction.Hz, direction.V);
      std::printf(" %d (proven %d)", answer.isInside, answer.isProven);
    }
    std::printf("\n");
    return false;
  }

  HostileGeneratorC& random_;
  bool hasRaster_;
  bool isArea_ = false;
  GMAT::SphereAreaC area_;
  GMAT::AreaFrame frame_;
  std::vector<PreparedSphereAreaC> prepared_;
  std::optional<GMAT::SlabIndexC> slabs_;
  std::vector<Asked> asked_;
  std::uint64_t probes_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  const std::uint64_t wanted = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1'000'000;
  const std::uint64_t seed = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 20260101;
  const std::uint64_t perRaster = argc > 3 ? std::strtoull(argv[3], nullptr, 10) : 24;
  constexpr int kMeridians = 24;
  HostileGeneratorC random(seed);
  std::uint64_t areas = 0;
  std::uint64_t probes = 0;
  for (std::uint64_t i = 0; i < wanted; ++i) {
    ComparedRingC ring(random.Next(), i % perRaster == 0, random);
    if (!ring.IsArea()) continue;
    for (int k = 0; k < kMeridians; ++k) {
      if (!ring.CompareMeridian()) return 1;
    }
    if (!ring.CompareBatches()) return 1;
    ++areas;
    probes += ring.GetProbes();
  }
  std::printf("%llu rings, of which %llu are areas; %llu directions\n",
              static_cast<unsigned long long>(wanted), static_cast<unsigned long long>(areas),
              static_cast<unsigned long long>(probes));
}
