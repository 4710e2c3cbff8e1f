#ifndef SURVEYDATA_GNSS_DILUTION_H_
#define SURVEYDATA_GNSS_DILUTION_H_

#include <algorithm>
#include <cmath>

#include <surveydata/gnss/gps_dops.h>

/// \file
/// Internal: dilutions of precision, from the tenths in which they are stored.

namespace SDI::Dilution {

/// The root of the sum of the squares of `tenths`, or -1 if one of them is not available.
template <class... Tenths>
double Combined(Tenths... tenths) {
  if (std::max({tenths...}) == DOP_NOT_AVAILABLE) return -1.0;
  if constexpr (sizeof...(tenths) == 1) return (tenths + ...) / 10.0;  // the root of a square
  const auto squared = [](double each) { return each * each; };
  return std::sqrt((squared(tenths) + ...)) / 10.0;
}

}  // namespace SDI::Dilution

#endif  // SURVEYDATA_GNSS_DILUTION_H_
