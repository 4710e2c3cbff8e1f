#ifndef SURVEYDATA_SPHERE_GEOMETRY_CLOSE_CROSSINGS_H_
#define SURVEYDATA_SPHERE_GEOMETRY_CLOSE_CROSSINGS_H_

#include <cstddef>
#include <span>
#include <vector>

#include <surveydata/sphere_geometry/area_frame.h>
#include <surveydata/sphere_geometry/cell_grid.h>
#include <surveydata/sphere_geometry/column_order.h>
#include <surveydata/sphere_geometry/hz_intervals.h>
#include <surveydata/sphere_geometry/ring_curves.h>

/// \file
/// The Hz at which it is uncertain whether an edge counts, or at which two crossings may be so
/// close that the rules count them as one.

namespace GMAT {

/// Adds the meridians of corners, the range in which two edges that leave a corner to the same side
/// are close, whole steep edges, and the meridians of edges at a pole.
void AddIntervalsOfCorners(const AreaFrame& frame, const RingCurves& ring, HzIntervalsC& intervals);

/// Compares the curves of an index column by column, and adds the Hz at which two of
/// them come close to each other.
class CurveComparisonC {
 public:
  /// \param edgeCount  determines which edges are adjacent: their corner is handled elsewhere.
  CurveComparisonC(const std::vector<ArcCurve>& curves, std::size_t edgeCount,
                   HzIntervalsC& intervals);

  void SetColumn(double west, double east, const CosSin& atWest, const CosSin& atEast);

  /// Compares all curves of a cell with each other.
  /// \cost m log m for m curves of which few are close or swap.
  void CompareCell(const CellGridC::Cell& cell);

  /// Compares two curves that cross the whole column; `upper` is the higher one on average.
  /// \return whether they are in this order in the whole column, perhaps except in an interval that
  ///         is added to the list.
  bool CompareNeighbours(const ColumnOrderC::Crossing& lower, const ColumnOrderC::Crossing& upper);

  /// Compares a curve with those that cross the whole column.
  /// \cost log k for k of them.
  void CompareWithOrder(const ArcCurve& curve, std::span<const ColumnOrderC::Item> order);

 private:
  // A curve between two Hz, mostly the borders of the column.
  struct Line {
    double west;  // t of the curve, or of its continuation, at the first Hz
    double east;
    double closest;      // in t: crossings closer to it may count as one with it
    double highestEast;  // of the lines up to this one
    const ArcCurve* curve;
    bool isLowest;
  };

  static Line MakeLine(const ArcCurve& curve, double west, double east);
  static double ClosestOf(const Line& a, const Line& b);
  static bool AreApart(const Line& a, const Line& b);
  bool AreNeighbours(const Line& a, const Line& b) const;
  void AddInterval(const Line& a, const Line& b);
  void LeaveToRules(double low, double high);

  const std::vector<ArcCurve>& curves_;
  const std::size_t edgeCount_;
  HzIntervalsC& intervals_;
  double west_ = 0.0;
  double east_ = 0.0;
  CosSin atWest_{};
  CosSin atEast_{};
  std::vector<Line> lines_;
};

/// Adds the Hz at which curves that share a cell come close to each other, or to a curve that
/// crosses their whole column. `borders` are those of the grid's columns.
void AddIntervalsOfCells(const CellGridC& grid, const ColumnOrderC& order,
                         const std::vector<CosSin>& borders, const std::vector<ArcCurve>& curves,
                         std::size_t edgeCount, HzIntervalsC& intervals);

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_CLOSE_CROSSINGS_H_
