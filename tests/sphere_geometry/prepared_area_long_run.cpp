// prepared_area_long_run [PROBES [SEED [PER_RING]]]: compares prepared areas, with and without
// a raster or ordered lists of edges, one direction at a time and in batches, with the plain rules.
// Tests PROBES random and adversarial directions, PER_RING for each ring, and reports how often the
// bounds did not prove the answer. Exits with 1 at the first difference. A test uses a few
// directions, a long run 10^9, with 10^5 per ring.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <vector>

#include <benchmarks/hostile_rings.h>

#include <surveydata/sphere_geometry/area_rules.h>
#include <surveydata/sphere_geometry/prepared_sphere_area.h>
#include <surveydata/sphere_geometry/sphere_area.h>

#include "tests/support/ring_generator.h"

namespace {

using GMAT::AnglePointC;
using GMAT::PreparedSphereAreaC;

// The rules over all edges, as in `SphereAreaC::Contains`, but the edges and the validity of the
// ring are computed only once.
class PlainRulesC {
 public:
  explicit PlainRulesC(const GMAT::SphereAreaC& area)
      : isArea_(GMAT::BuildFrame(area.GetPoints(), frame_) &&
                (frame_.enclosesZenith || GMAT::IsRingValid(area.GetPoints(), frame_.edges))) {}

  bool Contains(double hz, double v) const {
    if (!GMAT::WrapIntoRange(hz, 0.0, GMAT::TWO_PI) || !GMAT::WrapIntoRange(v, 0.0, GMAT::TWO_PI)) {
      return false;
    }
    return isArea_ && (GMAT::FindEdgeInBand(frame_, GMAT::EdgesWithBand(frame_),
                                            GMAT::BandProbe(hz, v, frame_.hzOrigin)) ||
                       GMAT::IsInsideByCrossings(frame_, GMAT::AllEdges(frame_),
                                                 GMAT::NormalizeAngle(hz - frame_.hzOrigin), v));
  }
  const GMAT::AreaFrame& GetFrame() const { return frame_; }

 private:
  GMAT::AreaFrame frame_;
  bool isArea_;
};

struct Tally {
  std::uint64_t probes = 0;
  std::uint64_t inside = 0;
  std::uint64_t unproven = 0;
  std::uint64_t undecided = 0;  // by the raster

  void Print(const char* kind) const {
    const auto percent = [this](std::uint64_t count) {
      return probes == 0 ? 0.0 : 100.0 * static_cast<double>(count) / static_cast<double>(probes);
    };
    std::printf("%-12s %12llu probes, %11llu inside, %.4f %% by the rules, %.4f %% not by cells\n",
                kind, static_cast<unsigned long long>(probes),
                static_cast<unsigned long long>(inside), percent(unproven), percent(undecided));
  }
};

// One ring, and all ways to query it.
class RingC {
 public:
  explicit RingC(const std::vector<AnglePointC>& points) {
    area_.AddPoints(points);
    rules_ = std::make_unique<PlainRulesC>(area_);
    few_ = std::make_unique<PreparedSphereAreaC>(area_);
    many_ = std::make_unique<PreparedSphereAreaC>(area_, true);
    ordered_ = std::make_unique<PreparedSphereAreaC>(area_, false, 0.0);
  }

  const GMAT::AreaFrame& GetFrame() const { return rules_->GetFrame(); }
  const GMAT::DecidedRasterC* GetRaster() const { return many_->GetRaster(); }

  // With `isFirst` the area itself is tested, too, which repeats all preparations.
  bool Compare(AnglePointC probe, bool isFirst, Tally& tally) {
    const bool expected = rules_->Contains(probe.Hz, probe.V);
    const PreparedSphereAreaC::Answer few = few_->Ask(probe.Hz, probe.V);
    const PreparedSphereAreaC::Answer many = many_->Ask(probe.Hz, probe.V);
    const PreparedSphereAreaC::Answer ordered = ordered_->Ask(probe.Hz, probe.V);
    ++tally.probes;
    tally.inside += expected;
    tally.unproven += !few.isProven;
    const bool isInTurn =
        probe.Hz >= 0.0 && probe.Hz <= GMAT::TWO_PI && probe.V >= 0.0 && probe.V <= GMAT::TWO_PI;
    tally.undecided += GetRaster() == nullptr || !isInTurn ||
                       GetRaster()->Find(probe.Hz, probe.V) == GMAT::Verdict::kUndecided;
    hz_.push_back(probe.Hz);
    v_.push_back(probe.V);
    expected_.push_back(expected);
    if (few.isInside == expected && many.isInside == expected && ordered.isInside == expected &&
        (!isFirst || area_.Contains(probe.Hz, probe.V) == expected)) {
      return true;
    }
    Report(probe, expected);
    std::printf("prepared: %d, proven %d; with a raster: %d, proven %d; in order: %d, proven %d\n",
                few.isInside, few.isProven, many.isInside, many.isProven, ordered.isInside,
                ordered.isProven);
    return false;
  }

  bool CompareBatches() {
    const auto inside = std::make_unique<bool[]>(hz_.size());
    for (const PreparedSphereAreaC* const prepared : {few_.get(), many_.get()}) {
      prepared->Contains(hz_, v_, {inside.get(), hz_.size()});
      for (std::size_t i = 0; i < hz_.size(); ++i) {
        if (inside[i] == (expected_[i] != 0)) continue;
        Report({hz_[i], v_[i]}, expected_[i] != 0);
        std::printf("in a batch: %d\n", inside[i]);
        return false;
      }
    }
    return true;
  }

 private:
  void Report(AnglePointC probe, bool expected) const {
    std::printf("DIFFERENCE at {%a, %a}: the rules say %d; the points are\n", probe.Hz, probe.V,
                expected);
    for (const AnglePointC& p : area_.GetPoints()) std::printf("{%a, %a}, ", p.Hz, p.V);
    std::printf("\n");
  }

  GMAT::SphereAreaC area_;
  std::unique_ptr<PlainRulesC> rules_;
  std::unique_ptr<PreparedSphereAreaC> few_;
  std::unique_ptr<PreparedSphereAreaC> many_;
  std::unique_ptr<PreparedSphereAreaC> ordered_;  // with ordered lists, as for very many edges
  std::vector<double> hz_;
  std::vector<double> v_;
  std::vector<char> expected_;
};

// On the borders of cells, and next to them.
AnglePointC CellProbe(RingGenerator& random, const GMAT::DecidedRasterC& raster) {
  AnglePointC probe = raster.GetCellCorner(random.Below(GMAT::DecidedRasterC::kRingColumns + 1),
                                           random.Below(GMAT::DecidedRasterC::kRows + 1));
  const AnglePointC other = raster.GetCellCorner(random.Below(GMAT::DecidedRasterC::kRingColumns),
                                                 random.Below(GMAT::DecidedRasterC::kRows));
  switch (random.Below(3)) {
    case 0:
      probe.Hz = other.Hz + random.Uniform(0.0, 1e-3);
      break;
    case 1:
      probe.V = other.V + random.Uniform(0.0, 1e-3);
      break;
    default:
      break;
  }
  return {random.Nudged(probe.Hz), random.Nudged(probe.V)};
}

// Hundreds of corners: half of the rings are those whose edges lie side by side at an angle.
std::vector<AnglePointC> CrowdedRing(RingGenerator& random) {
  if (random.Below(2) == 0) return random.CrowdedRing();
  const std::size_t kinds = std::size(HostileRings::kAll);
  std::vector<AnglePointC> ring;
  for (const Direction& d : HostileRings::kAll[random.Below(kinds)].make(20 + random.Below(400))) {
    ring.push_back({GMAT::NormalizeAngle(d.hz), d.v});
  }
  return ring;
}

}  // namespace

int main(int argc, char** argv) {
  const std::uint64_t wanted = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 100'000'000;
  const std::uint64_t seed = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 20260101;
  const std::uint64_t perRing = argc > 3 ? std::strtoull(argv[3], nullptr, 10) : 100'000;
  constexpr std::uint64_t kAskedOfArea = 80;
  const std::uint64_t line = perRing < 1000 ? perRing / 4 + 1 : 250;
  constexpr double kLineWidth = 1e-4;
  RingGenerator random(seed);
  Tally adversarial;
  Tally cells;
  Tally lines;
  Tally uniform;
  Tally crowded;
  std::uint64_t probes = 0;
  for (std::uint64_t rings = 0; probes < wanted; ++rings) {
    // One in a hundred, or one in ten if many directions are tested per ring.
    const bool isCrowded = rings % (perRing > 1000 ? 10 : 100) == 0;
    RingC ring(isCrowded ? CrowdedRing(random) : random.Ring(200, true));
    double lineHz = 0.0;
    for (std::uint64_t i = 0; i < perRing; ++i, ++probes) {
      bool isSame = true;
      // Every fourth group of directions is a line of a scan: batches look these up together.
      if (i / line % 4 == 3) {
        AnglePointC probe = random.Probe(ring.GetFrame().edges, ring.GetFrame().hzOrigin, true);
        if (i % line == 0) lineHz = probe.Hz;
        probe.Hz = lineHz + (i % 2 == 0 ? 0.0 : random.Uniform(0.0, kLineWidth));
        if (i % 4 == 0) probe.V = random.Uniform(0.0, GMAT::PI);
        if (!ring.Compare(probe, false, lines)) return 1;
        continue;
      }
      if (i % 2 == 0) {
        const AnglePointC anywhere{random.Uniform(0.0, GMAT::TWO_PI),
                                   random.Uniform(0.0, GMAT::PI)};
        isSame = ring.Compare(anywhere, i < kAskedOfArea, isCrowded ? crowded : uniform);
      } else if (i % 8 == 1 && ring.GetRaster() != nullptr) {
        isSame = ring.Compare(CellProbe(random, *ring.GetRaster()), i < kAskedOfArea, cells);
      } else {
        const GMAT::AreaFrame& frame = ring.GetFrame();
        isSame = ring.Compare(random.Probe(frame.edges, frame.hzOrigin, true), i < kAskedOfArea,
                              isCrowded ? crowded : adversarial);
      }
      if (!isSame) return 1;
    }
    if (!ring.CompareBatches()) return 1;
  }
  adversarial.Print("adversarial");
  cells.Print("cell borders");
  lines.Print("scan lines");
  uniform.Print("uniform");
  crowded.Print("crowded");
  return 0;
}
