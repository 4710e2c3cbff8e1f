#ifndef SURVEYDATA_OBJECT_MODEL_COMPARE_H_
#define SURVEYDATA_OBJECT_MODEL_COMPARE_H_

#include <array>
#include <cstddef>
#include <limits>
#include <type_traits>

#include <surveydata/object_model/export.h>

namespace API {

/// Compares `a` and `b` with a tolerance relative to the larger of them.
///
/// The tolerance is `eps` times two to the power e, where e is the exponent that `frexp` returns
/// for the operand of larger magnitude (on a tie, `b`). It therefore shrinks with the operands: 0.0
/// and 1e-300 differ. An infinite operand has e = 0.
///
/// \return 1 if a - b is greater than the tolerance, -1 if it is less than minus the tolerance,
///         otherwise 0; also 0 if an operand or `eps` is NaN.
SURVEYDATA_API int CompareWithTolerance(double a, double b, double eps) noexcept;
/// The same comparison, computed in double precision.
SURVEYDATA_API int CompareWithTolerance(float a, float b, float eps) noexcept;

/// Whether two fields of a record are equal: floating-point numbers within the epsilon of their
/// type (`CompareWithTolerance`), parts by their own equality, others by `==`.
template <class Field>
bool EqualField(const Field& a, const Field& b) {
  static_assert(!std::is_array_v<Field>, "plain arrays would be compared by address");
  if constexpr (requires { a.isEqual(b); }) {
    return a.isEqual(b);
  } else {
    return a == b;
  }
}

// Equal numbers need no tolerance: their difference is 0, or NaN for two infinities.
inline bool EqualField(const double& a, const double& b) {
  return a == b || CompareWithTolerance(a, b, std::numeric_limits<double>::epsilon()) == 0;
}

inline bool EqualField(const float& a, const float& b) {
  return a == b || CompareWithTolerance(a, b, std::numeric_limits<float>::epsilon()) == 0;
}

template <class Element, std::size_t N>
bool EqualField(const std::array<Element, N>& a, const std::array<Element, N>& b) {
  for (std::size_t i = 0; i < N; ++i) {
    if (!EqualField(a[i], b[i])) return false;
  }
  return true;
}

/// Texts in plain arrays are equal when they agree up to their terminator.
template <std::size_t N>
bool EqualField(const char16_t (&a)[N], const char16_t (&b)[N]) {
  for (std::size_t i = 0; i < N; ++i) {
    if (a[i] != b[i]) return false;
    if (a[i] == 0) return true;
  }
  return true;
}

/// Whether two records agree in the listed fields, compared in the order listed up to the first
/// difference. This list is the equality of a data class.
template <class Record, class... Fields>
bool EqualFields(const Record& a, const Record& b, Fields... fields) {
  return (EqualField(a.*fields, b.*fields) && ...);
}

/// Whether two records agree in the listed fields exactly, by `==`.
template <class Record, class... Fields>
bool SameFields(const Record& a, const Record& b, Fields... fields) {
  return ((a.*fields == b.*fields) && ...);
}

}  // namespace API

#endif  // SURVEYDATA_OBJECT_MODEL_COMPARE_H_
