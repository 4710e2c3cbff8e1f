#ifndef SURVEYDATA_TESTS_SUPPORT_NUMBER_OF_CASES_H_
#define SURVEYDATA_TESTS_SUPPORT_NUMBER_OF_CASES_H_

namespace TestSupport {

/// A test of many cases runs one in this many, as tests/CMakeLists.txt explains.
#ifdef SURVEYDATA_FEWER_CASES
inline constexpr unsigned kOneCaseIn = 5;
#else
inline constexpr unsigned kOneCaseIn = 1;
#endif

/// How many of `all` cases a test runs. Also for the counts that the cases must reach.
template <class Number>
constexpr Number NumberOfCases(Number all) {
  return all / static_cast<Number>(kOneCaseIn);
}

}  // namespace TestSupport

#endif  // SURVEYDATA_TESTS_SUPPORT_NUMBER_OF_CASES_H_
