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
/// Questions to the sphere geometry with their answers, as the lines of a text file:
///
///     area <Hz> <V> ...                            the corners to which the following lines refer
///     <source> <question> <given> ... = <answer> ...
///
/// Numbers are hexadecimal doubles, yes and no are 1 and 0. An answer that is a list of crossings
/// begins with their number.

namespace GeometryCases {

/// What an answer depends on.
enum class Source {
  kArithmetic,  ///< On IEEE doubles alone: the same on every platform.
  kRuntime,     ///< It is one of the math functions of the C runtime.
  kGeometry,    ///< On those math functions: the same where they are.
};

struct Case {
  Source source = Source::kArithmetic;
  std::string question;
  std::vector<GMAT::AnglePointC> area;
  std::vector<double> given;
  std::vector<double> answers;  ///< As recorded.
};

/// The names in the order of the file.
std::string_view NameOf(Source source);

/// The present answer of the library or the runtime. \throw std::runtime_error for an
/// unknown question.
std::vector<double> Answer(const Case& question);

/// Calls `visit` for each case. \throw std::runtime_error for an invalid line.
void ForEach(std::istream& file, const std::function<void(const Case&)>& visit);

/// Generates questions, the same for the same seed, and calls `visit` for each, without answers.
void MakeUp(std::uint64_t seed, const std::function<void(const Case&)>& visit);

}  // namespace GeometryCases

#endif  // SURVEYDATA_TESTS_SUPPORT_GEOMETRY_CASES_H_
