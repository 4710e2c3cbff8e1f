#ifndef SURVEYDATA_TESTS_SUPPORT_TEST_EACH_H_
#define SURVEYDATA_TESTS_SUPPORT_TEST_EACH_H_

#include <string>
#include <typeinfo>

#include <boost/core/demangle.hpp>
#include <gtest/gtest.h>

/// \file
/// `TEST_EACH_SUITE` and `TEST_EACH`: like `TYPED_TEST_SUITE` and `TYPED_TEST`, for long lists of
/// types. With those, each test takes compilers several seconds for a list of thirty types, because
/// the names of the templates contain every tail of the list.

namespace EachType {

template <class Test>
testing::Test* Make() {
  return new Test;
}

inline void Register(const char* suite, int index, const char* name, const std::type_info& type,
                     const char* file, int line, testing::Test* (*make)()) {
  testing::RegisterTest((std::string(suite) + "/" + std::to_string(index)).c_str(), name,
                        boost::core::demangle(type.name()).c_str(), nullptr, file, line, make);
}

template <template <class> class Test, class... T>
bool RegisterAll(const testing::Types<T...>& /*types*/, const char* suite, const char* name,
                 const char* file, int line) {
  int index = 0;
  (Register(suite, index++, name, typeid(T), file, line, &Make<Test<T>>), ...);
  return true;
}

}  // namespace EachType

/// Runs the tests of the class template `suite` for each type of `types`, a `testing::Types`.
#define TEST_EACH_SUITE(suite, types) using suite##Types = types

/// A test of `suite` for each type, which is `TypeParam` in its body.
#define TEST_EACH(suite, name)                                                              \
  template <class TypeParam>                                                                \
  class suite##_##name##_Test : public suite<TypeParam> {                                   \
    using TestFixture = suite<TypeParam>;                                                   \
    void TestBody() override;                                                               \
  };                                                                                        \
  [[maybe_unused]] const bool suite##_##name##_isRegistered =                               \
      EachType::RegisterAll<suite##_##name##_Test>(suite##Types(), #suite, #name, __FILE__, \
                                                   __LINE__);                               \
  template <class TypeParam>                                                                \
  void suite##_##name##_Test<TypeParam>::TestBody()

#endif  // SURVEYDATA_TESTS_SUPPORT_TEST_EACH_H_
