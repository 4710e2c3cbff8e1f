#ifndef SURVEYDATA_PLATFORM_VORLIN_TIME_H_
#define SURVEYDATA_PLATFORM_VORLIN_TIME_H_

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace Vorlin {

/// A time value with the layout that the instrument platform defines. This library only stores it;
/// receivers provide the GPS week and the milliseconds of that week.
struct TimeC {
  std::uint16_t week = 0;
  std::int32_t timeOfWeek = 0;

  bool operator==(const TimeC&) const = default;
};

static_assert(sizeof(TimeC) == 8 && offsetof(TimeC, timeOfWeek) == 4);
static_assert(std::is_trivially_copyable_v<TimeC>);

}  // namespace Vorlin

#endif  // SURVEYDATA_PLATFORM_VORLIN_TIME_H_
