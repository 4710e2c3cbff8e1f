#include <type_traits>

#include <gtest/gtest.h>

#include <surveydata/scanning/scan_definition.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>

namespace {

using SDI::ScanDefinitionC;
using SDI::ScanDefinitionImplC;

TEST(ScanDefinition, ComparesOnlyTypes) {
  static_assert(!std::is_default_constructible_v<ScanDefinitionImplC>);
  static_assert(!std::is_default_constructible_v<ScanDefinitionC>);
  const ScanDefinitionC seven(new ScanDefinitionImplC(7));
  EXPECT_EQ(seven.GetType(), 7u);
  EXPECT_TRUE(seven.IsEqual(ScanDefinitionC(new ScanDefinitionImplC(7))));
  EXPECT_FALSE(seven.IsEqual(ScanDefinitionC(new ScanDefinitionImplC(8))));
  EXPECT_FALSE(ScanDefinitionImplC(7).IsEqual(API::ImplObjectC())) << "another class";
  ScanDefinitionImplC impl(7);
  EXPECT_EQ(static_cast<ScanDefinitionC*>(impl.GetBase())->GetImpl(), &impl);
}

// The type is a field: assigning through the base class copies it, whatever the classes are.
TEST(ScanDefinition, AssignmentTakesTheType) {
  ScanDefinitionImplC seven(7);
  const ScanDefinitionImplC eight(8);
  EXPECT_EQ(&(seven = eight), &seven);
  EXPECT_EQ(seven.GetType(), 8U);
  EXPECT_EQ(ScanDefinitionImplC(eight).GetType(), 8U);

  SDI::ScanRectangularAreaImplC rectangle;
  SDI::ScanAreaImplC& area = rectangle;
  area = SDI::ScanPolygonAreaImplC();
  EXPECT_EQ(area.GetType(), SDI::ScanPolygonAreaImplC().GetType());
}

}  // namespace
