#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/scanning/scan_dome_area.h>

#include "tests/scanning/area_samples.h"

namespace {

using SDI::ScanDefPointC;
using SDI::ScanDomeAreaC;
using TestSupport::kTwoPi;

TEST(ScanDomeArea, CoversEverythingDownToTheLimit) {
  ScanDomeAreaC dome;
  EXPECT_TRUE(dome.IsAreaValid());
  EXPECT_FALSE(dome.IsValid());
  dome.SetSteps(0.1, 0.1);
  EXPECT_TRUE(dome.IsValid());
  EXPECT_EQ(dome.GetHzMin(), 0.0);
  EXPECT_EQ(dome.GetHzMax(), 6.283184307179586);
  EXPECT_EQ(dome.GetVMin(), 0.0);
  EXPECT_EQ(dome.GetVMax(), 2.5132741228718345);
  EXPECT_FALSE(dome.AddPoint({1.0, 1.0, 1.0}));
  dome.RemoveLastPoint();
  dome.Clear();
  EXPECT_EQ(dome.GetPointCount(), 0u);
  std::vector<ScanDefPointC> out(2);
  dome.GetOutline(out, 1.0);
  EXPECT_EQ(out.size(), 2u);
  ScanDefPointC low;
  ScanDefPointC high;
  EXPECT_TRUE(dome.GetBoundingPoints(low, high, false));
  EXPECT_EQ(high.GetHz(), 6.283184307179586);
}

TEST(ScanDomeArea, ContainsWhatLiesAboveTheLimit) {
  const ScanDomeAreaC dome;
  EXPECT_TRUE(dome.Contains(1.0, 0.0));
  EXPECT_TRUE(dome.Contains(-5.0, 2.5132741228718345));
  EXPECT_FALSE(dome.Contains(1.0, std::nextafter(2.5132741228718345, 3.0)));
  EXPECT_FALSE(dome.Contains(1.0, -0.1));
  EXPECT_TRUE(dome.Contains(1.0, kTwoPi + 1.0));
  EXPECT_FALSE(dome.Contains(std::nan(""), 1.0));
  EXPECT_FALSE(dome.Contains(1.0, std::nan("")));
  EXPECT_FALSE(dome.Contains(101.0, 1.0));
}

}  // namespace
