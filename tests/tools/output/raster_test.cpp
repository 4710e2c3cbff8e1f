#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include <output/raster.h>
#include <output/svg.h>

namespace {

using Tool::RasterC;

constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();

// The elements that a raster adds to a picture.
std::string Drawn(const RasterC& raster, std::size_t mostRuns = kAny) {
  Tool::SvgC svg(100, 100, "");
  const std::size_t before = svg.GetSize();
  raster.Draw(svg, "#123456", mostRuns);
  return std::move(svg).Finish().substr(before);
}

TEST(Raster, DrawsRunsOfMarkedCells) {
  RasterC raster({10, 20}, 8, 4);
  EXPECT_TRUE(raster.IsEmpty());
  EXPECT_EQ(Drawn(raster), "</svg>\n");
  for (const double x : {10.0, 11.5, 12.999, 15.5}) raster.Mark({x, 21.5});
  for (const Tool::SvgPoint outside :
       {Tool::SvgPoint{9.99, 21}, {18, 21}, {12, 19.9}, {12, 24}, {1e300, 1e300}}) {
    raster.Mark(outside);
  }
  EXPECT_EQ(raster.CountRuns(), 2u);
  EXPECT_EQ(Drawn(raster),
            "<path d=\"M10 21.5h3M15 21.5h1\" fill=\"none\" stroke=\"#123456\" "
            "stroke-width=\"1\"/>\n</svg>\n");
}

TEST(Raster, JoinsCellsWhereThereAreTooManyRuns) {
  RasterC raster({0, 0}, 64, 64);
  int cell = 0;
  raster.ForEachCell([&](Tool::SvgPoint /*centre*/, std::uint8_t& mark) {
    mark = (cell / 64 + cell) % 2 == 0 ? 1 : 0;  // as on a chessboard
    ++cell;
  });
  EXPECT_EQ(raster.CountRuns(), 64u * 32u);
  EXPECT_NE(Drawn(raster).find("stroke-width=\"1\""), std::string::npos);
  const std::string coarse = Drawn(raster, 100);  // joined cells are all marked
  EXPECT_NE(coarse.find("M0 1h64"), std::string::npos) << coarse;
  EXPECT_NE(coarse.find("stroke-width=\"2\""), std::string::npos) << coarse;
}

TEST(Raster, MarksEveryCellAlongALine) {
  RasterC raster({0, 0}, 10, 10);
  raster.MarkLine({-1e9, 2.5}, {1e9, 2.5});
  EXPECT_EQ(Drawn(raster),
            "<path d=\"M0 2.5h10\" fill=\"none\" stroke=\"#123456\" "
            "stroke-width=\"1\"/>\n</svg>\n");
  RasterC diagonal({0, 0}, 10, 10);
  diagonal.MarkLine({0.5, 0.5}, {9.5, 9.5});
  EXPECT_EQ(diagonal.CountRuns(), 10u);
  RasterC beside({0, 0}, 10, 10);
  beside.MarkLine({-5, 3}, {-1, 8});
  beside.MarkLine({3, -5}, {20, -1});
  beside.MarkLine({-5, 5}, {5, -5.1});
  EXPECT_TRUE(beside.IsEmpty());
  beside.MarkLine({4, 4}, {4, 4});
  EXPECT_EQ(beside.CountRuns(), 1u);
}

}  // namespace
