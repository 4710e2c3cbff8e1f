# surveydata_test(<name> [INTERNAL] [PROPERTY] [EXHAUSTIVE] [LABEL ...] [LIBRARIES ...]
#                 [HEADERS ...]): builds one test program from <name>.cpp.
#
# INTERNAL links the static library, so that the test can use internal symbols. PROPERTY adds
# RapidCheck, with the parameters in a cache variable. LABEL is the ctest label, by default unit or
# property. EXHAUSTIVE optimises the test in every build. HEADERS names the target of
# surveydata_test_headers() whose precompiled headers the test uses.
include(GoogleTest)
if(CMAKE_CROSSCOMPILING)
  # Debian ships the sources of GoogleTest, but RapidCheck and ICU only as binaries for its own
  # platforms: builds for other platforms omit the tests that need them.
  set(BUILD_GMOCK OFF)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
else()
  find_package(GTest REQUIRED)
  find_package(rapidcheck REQUIRED)
endif()

set(SURVEYDATA_PROPERTY_PARAMS "seed=20260101 max_success=1000"
    CACHE STRING "RapidCheck parameters of the property tests")

# surveydata_test_headers(<name> LIBRARIES ... HEADERS ...): precompiles GoogleTest, the headers of
# the standard library that most tests include, and HEADERS, once for all tests with these libraries.
# Not with a compiler cache, which has more hits without them.
set(SURVEYDATA_PRECOMPILE_TESTS ON)
if(CMAKE_CXX_COMPILER_LAUNCHER)
  set(SURVEYDATA_PRECOMPILE_TESTS OFF)
endif()
function(surveydata_test_headers name)
  if(NOT SURVEYDATA_PRECOMPILE_TESTS)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LIBRARIES;HEADERS")
  file(CONFIGURE OUTPUT ${name}.cpp CONTENT "")
  add_library(${name} OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} surveydata_warnings GTest::gtest)
  target_compile_features(${name} PRIVATE cxx_std_20)
  target_precompile_headers(${name} PRIVATE
    <algorithm> <array> <cmath> <cstddef> <cstdint> <cstdio> <cstdlib> <cstring> <filesystem>
    <fstream> <functional> <iterator> <limits> <memory> <optional> <random> <span> <string>
    <string_view> <type_traits> <utility> <vector> <gtest/gtest.h> ${arg_HEADERS})
endfunction()

surveydata_test_headers(surveydata_test_headers)
if(SURVEYDATA_OPTIMISED)
  surveydata_test_headers(surveydata_exhaustive_test_headers)
endif()
if(TARGET surveydata_exhaustive_test_headers)
  target_compile_options(surveydata_exhaustive_test_headers PRIVATE ${SURVEYDATA_OPTIMISED})
endif()

function(surveydata_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "INTERNAL;PROPERTY;EXHAUSTIVE" "LABEL;HEADERS" "LIBRARIES")
  if(arg_INTERNAL)
    set(library surveydata::surveydata_static)
  else()
    set(library surveydata::surveydata)
  endif()
  if(CMAKE_CROSSCOMPILING AND (arg_PROPERTY OR "ICU::uc" IN_LIST arg_LIBRARIES))
    return()
  elseif(arg_PROPERTY)
    set(label property)
    list(APPEND arg_LIBRARIES rapidcheck rapidcheck_gtest)
  else()
    set(label unit)
  endif()
  if(arg_LABEL)
    set(label ${arg_LABEL})
  endif()
  add_executable(${name} ${name}.cpp)
  if(arg_EXHAUSTIVE)
    target_compile_options(${name} PRIVATE ${SURVEYDATA_OPTIMISED})
  endif()
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_definitions(${name} PRIVATE
    SURVEYDATA_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data/")
  target_link_libraries(${name} PRIVATE record_fields
    ${library} ${arg_LIBRARIES} surveydata_warnings Boost::headers GTest::gtest_main)
  if(NOT arg_HEADERS AND arg_EXHAUSTIVE AND SURVEYDATA_OPTIMISED)
    set(arg_HEADERS surveydata_exhaustive_test_headers)
  elseif(NOT arg_HEADERS)
    set(arg_HEADERS surveydata_test_headers)
  endif()
  # g++ 12 reports false overflows for concatenated std::strings.
  target_compile_options(${name} PRIVATE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds;-Wno-restrict;-Wno-stringop-overflow>)
  if(TARGET ${arg_HEADERS})
    target_precompile_headers(${name} REUSE_FROM ${arg_HEADERS})
  endif()
  if(CMAKE_CROSSCOMPILING OR SURVEYDATA_SANITIZE MATCHES "address")
    # One process for all cases, because programs start slowly under an emulator, and with the address
    # sanitizer, which also searches for leaks at the end.
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES LABELS ${label} TIMEOUT 600
      ENVIRONMENT "RC_PARAMS=${SURVEYDATA_PROPERTY_PARAMS}")
  else()
    gtest_discover_tests(${name}
      DISCOVERY_TIMEOUT 60
      PROPERTIES LABELS ${label} TIMEOUT 600
                 ENVIRONMENT "RC_PARAMS=${SURVEYDATA_PROPERTY_PARAMS}")
  endif()
endfunction()
