#ifndef SURVEYDATA_TESTS_SUPPORT_COMPARE_AREAS_H_
#define SURVEYDATA_TESTS_SUPPORT_COMPARE_AREAS_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/sphere_area.h>

#include "tests/support/literal_sphere_area.h"

/// \file
/// Checks that a sphere area gives the answers of the literal rules, bit for bit.

namespace CompareAreas {

using GMAT::AnglePointC;
using GMAT::SphereAreaC;

inline std::uint64_t Bits(double x) { return std::bit_cast<std::uint64_t>(x); }

// NaN equals NaN with any sign and payload, because these differ between platforms.
inline bool Same(double a, double b) { return Bits(a) == Bits(b) || (a != a && b != b); }

inline bool Same(const std::vector<AnglePointC>& a, const std::vector<literal::Angles>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!Same(a[i].Hz, b[i].hz) || !Same(a[i].V, b[i].v)) return false;
  }
  return true;
}

/// How many of the compared cases had each outcome.
struct Tally {
  std::uint64_t cases = 0;
  std::uint64_t valid = 0;
  std::uint64_t zenith = 0;
  std::uint64_t inside = 0;
  std::uint64_t band = 0;
  std::uint64_t crossings = 0;
};

/// Compares validity and bounds.
inline void CompareRing(const SphereAreaC& area, const literal::SphereArea& rules, Tally& tally) {
  const bool isValid = rules.IsValid();
  ASSERT_EQ(area.IsValid(), isValid);
  tally.valid += isValid;
  for (const bool noClamp : {false, true}) {
    literal::Extents expected{-1.0, -2.0, -3.0, -4.0, false};
    double hzMin = -1.0;
    double hzMax = -2.0;
    double vMin = -3.0;
    double vMax = -4.0;
    bool enclosesZenith = false;
    const bool result = rules.GetExtents(expected, noClamp);
    ASSERT_EQ(area.GetExtents(hzMin, hzMax, vMin, vMax, enclosesZenith, noClamp), result);
    ASSERT_TRUE(Same(hzMin, expected.hzMin)) << hzMin << " " << expected.hzMin;
    ASSERT_TRUE(Same(hzMax, expected.hzMax)) << hzMax << " " << expected.hzMax;
    ASSERT_TRUE(Same(vMin, expected.vMin)) << vMin << " " << expected.vMin;
    ASSERT_TRUE(Same(vMax, expected.vMax)) << vMax << " " << expected.vMax;
    ASSERT_EQ(enclosesZenith, expected.enclosesZenith);
    if (noClamp) tally.zenith += enclosesZenith;
  }
}

/// Compares the crossings of a direction's meridian and circle of latitude.
inline void CompareLines(const SphereAreaC& area, const literal::SphereArea& rules,
                         AnglePointC probe, Tally& tally) {
  for (const bool vertical : {true, false}) {
    std::vector<AnglePointC> out(1);
    std::vector<literal::Angles> expected(1);
    const bool result = rules.SearchLine({probe.Hz, probe.V}, vertical, expected);
    ASSERT_EQ(area.SearchLine(probe, vertical, out), result);
    if (result) {
      ASSERT_TRUE(Same(out, expected));
      tally.crossings += out.size();
    }
  }
}

/// Compares whether a direction is inside, and its distance from the boundary.
inline void CompareProbe(const SphereAreaC& area, const literal::SphereArea& rules,
                         AnglePointC probe, Tally& tally) {
  const double distance = rules.DistanceToBoundary(probe.Hz, probe.V);
  ASSERT_TRUE(Same(area.DistanceToBoundary(probe.Hz, probe.V), distance));
  const bool inside = rules.Contains(probe.Hz, probe.V);
  ASSERT_EQ(area.Contains(probe.Hz, probe.V), inside);
  tally.inside += inside;
  tally.band += inside && distance < GMAT::CONTAINS_TOLERANCE / 2.0;
}

}  // namespace CompareAreas

#endif  // SURVEYDATA_TESTS_SUPPORT_COMPARE_AREAS_H_
