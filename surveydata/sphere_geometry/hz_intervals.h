#ifndef SURVEYDATA_SPHERE_GEOMETRY_HZ_INTERVALS_H_
#define SURVEYDATA_SPHERE_GEOMETRY_HZ_INTERVALS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <surveydata/sphere_geometry/angles.h>

namespace GMAT {

/// Hz in units of 2^-32 of a turn, which wraps by itself: for `hz` in [0, 2 pi], 2 pi is 0. Rounded
/// down.
inline std::uint32_t ToTurnUnits(double hz) {
  return static_cast<std::uint32_t>(static_cast<std::int64_t>(hz * (0x1p32 / TWO_PI)));
}

/// A set of closed intervals of Hz in [0, width], in which the rules decide instead of an index.
class HzIntervalsC {
 public:
  struct Interval {
    double low;
    double high;
  };
  static constexpr std::size_t kBytesPerBucket = 8;

  HzIntervalsC() = default;
  /// \param width  at most a full turn.
  explicit HzIntervalsC(double width) : width_(width) {}

  void Reserve(std::size_t count) { intervals_.reserve(count); }
  /// Sets how many intervals are stored at most, at least two. Beyond that, the narrowest gaps
  /// between intervals are closed: the set becomes larger, but not the memory.
  void SetMost(std::size_t count) { most_ = count; }
  void Add(double low, double high) {
    if (intervals_.size() >= most_) CloseNarrowGaps();
    intervals_.push_back({low, high});
  }
  /// Adds an interval of Hz that may extend beyond [0, 2 pi]. If the width is a full turn, the part
  /// beyond one end is added at the other.
  void AddHz(double low, double high);
  /// Sorts and joins the intervals. Call it once, after the last `Add` and before the first query.
  /// `mostBuckets` limits the memory of the table.
  void Build(std::uint32_t mostBuckets);
  /// Drops the intervals themselves; `MayContain` still works.
  void DropIntervals() { intervals_ = {}; }

  std::size_t GetTableSize() const { return hulls_.size() * kBytesPerBucket; }
  /// After `Build`, the intervals are in ascending order and do not overlap.
  const std::vector<Interval>& GetIntervals() const { return intervals_; }

  /// Whether an Hz may lie in an interval: true for all that do and for few others. One lookup,
  /// without a branch.
  bool MayContain(std::uint32_t units) const {
    const Hull& hull = hulls_[BucketOf(std::min(units, lastUnit_))];
    return units - hull.low <= hull.length;
  }
  /// The same for a range of units: true if it is for one of them, and for few other ranges.
  bool MayContainAny(std::uint32_t first, std::uint32_t last) const;
  bool Contains(double hz) const { return MayContain(ToTurnUnits(hz)) && Find(hz); }

 private:
  // The range of all intervals of a bucket, [low, low + length]; without any, the last unit.
  struct Hull {
    std::uint32_t low = ~0U;
    std::uint32_t length = 0;
  };
  static_assert(sizeof(Hull) == kBytesPerBucket);

  // Sorts the intervals and joins those that overlap.
  void Join();
  // Leaves at most half as many intervals as may be stored.
  void CloseNarrowGaps();

  static constexpr int kFraction = 40;
  // The units of an Hz plus `added`, at most those of the width.
  std::uint32_t ToUnits(double hz, double added) const;
  std::size_t BucketOf(std::uint32_t units) const {
    return static_cast<std::size_t>((units * bucketsPerUnit_) >> kFraction);
  }
  bool Find(double hz) const;

  double width_ = 0.0;
  std::uint32_t lastUnit_ = 0;
  std::uint64_t bucketsPerUnit_ = 0;  // times 2^kFraction
  std::size_t most_ = std::numeric_limits<std::size_t>::max();
  std::vector<Interval> intervals_;
  std::vector<Hull> hulls_;
};

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_HZ_INTERVALS_H_
