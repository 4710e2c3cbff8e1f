#ifndef SURVEYDATA_TESTS_SUPPORT_GEOMETRY_CASES_H_
#define SURVEYDATA_TESTS_SUPPORT_GEOMETRY_CASES_H_

#include <cstdint>
#include <functional>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

#include <surveydata/sphere_geometry/angles.h>

/// \file
/// Queries of the sphere geometry with their answers, as the lines of a text file:
///
///     area <Hz> <V> ...                            the corners to which the following lines refer
///     <source> <question> <given> ... = <answer> ...
///
/// Numbers are hexadecimal doubles; true and false are 1 and 0. A list of crossings begins with its
/// length.

namespace GeometryCases {

/// On which functions an answer depends.
enum class Source {
  kArithmetic,  ///< Only on IEEE arithmetic: the same on every platform.
  kRuntime,     ///< It is the result of a math function of the C runtime.
  kGeometry,    ///< On those math functions: the same where their results are.
};

struct Case {
  Source source = Source::kArithmetic;
  std::string question;
  std::vector<GMAT::AnglePointC> area;
  std::vector<double> given;
  std::vector<double> answers;  ///< The recorded answers.
};

/// The names used in the file.
std::string_view NameOf(Source source);

/// The current answer of the library or the runtime. \throw std::runtime_error for an unknown
/// question.
std::vector<double> Answer(const Case& question);

/// Calls `visit` for each case. \throw std::runtime_error for an invalid line.
void ForEach(std::istream& file, const std::function<void(const Case&)>& visit);

/// Generates questions without answers, which depend only on the seed, and calls `visit` for each.
void MakeUp(std::uint64_t seed, const std::function<void(const Case&)>& visit);

}  // namespace GeometryCases

#endif  // SURVEYDATA_TESTS_SUPPORT_GEOMETRY_CASES_H_
