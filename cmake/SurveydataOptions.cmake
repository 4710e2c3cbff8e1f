# The build options. By default, everything is built if this is the top-level project, and only the
# library if it is part of another project.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT WIN32)
  set(SURVEYDATA_CAN_LTO ON)
else()
  set(SURVEYDATA_CAN_LTO OFF)
endif()
option(SURVEYDATA_BUILD_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(SURVEYDATA_BUILD_TOOLS "Build the program surveydata" ${PROJECT_IS_TOP_LEVEL})
option(SURVEYDATA_BUILD_BENCHMARKS "Build the benchmarks" ${PROJECT_IS_TOP_LEVEL})
option(SURVEYDATA_BUILD_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
option(SURVEYDATA_BUILD_PYTHON "Build the extension module of the Python package" OFF)
option(SURVEYDATA_INSTALL "Install the library and its package files" ${PROJECT_IS_TOP_LEVEL})
option(SURVEYDATA_WARNINGS_AS_ERRORS "Treat warnings as errors" OFF)
option(SURVEYDATA_LTO "Use link-time optimisation for the library in a release, with g++"
  ${SURVEYDATA_CAN_LTO})
option(SURVEYDATA_UNITY "Compile the sources of a folder of the library and of the program as one, which
  takes half the time if all of them are built" OFF)
set(SURVEYDATA_LIBRARY_OPTIONS "" CACHE STRING
  "Compiler options of the library alone, after all others, e.g. -O3 if the rest is optimised less")
set(SURVEYDATA_PAGE "" CACHE FILEPATH
  "The page for the browser, which `./test.sh --page` builds; installed with the program")
set(SURVEYDATA_SANITIZE "" CACHE STRING "Sanitizers for the whole build, e.g. address,undefined")
option(SURVEYDATA_COVERAGE "Instrument the build for coverage" OFF)

if(PROJECT_IS_TOP_LEVEL)
  if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
  endif()
  set(CMAKE_CXX_EXTENSIONS OFF)
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
  if(WIN32)  # programs find the library in their own folder
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
  endif()
  if(SURVEYDATA_SANITIZE)
    add_compile_options(-fsanitize=${SURVEYDATA_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer -D_GLIBCXX_ASSERTIONS
                        # g++ reports false positives about its own instrumentation
                        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    add_link_options(-fsanitize=${SURVEYDATA_SANITIZE})
    # lld links a program with sanitizers in a third of the time.
    find_program(SURVEYDATA_LLD ld.lld)
    if(SURVEYDATA_LLD AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
      add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-fuse-ld=lld>)
    endif()
  endif()
  if(SURVEYDATA_COVERAGE)
    add_compile_options(--coverage -fprofile-abs-path)
    add_link_options(--coverage)
  endif()
endif()

# Without optimisation, a sanitizer build takes half the time, so the preset `asan` does not
# optimise. This option optimises code that processes millions of cases.
if(SURVEYDATA_SANITIZE)
  set(SURVEYDATA_OPTIMISED $<$<CONFIG:Debug>:-O1>)
endif()

# surveydata_unity(<target>): compiles the sources of each folder of the target as one, if the option
# SURVEYDATA_UNITY is on. Names without linkage must then be unique in a folder.
function(surveydata_unity target)
  if(NOT SURVEYDATA_UNITY)
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    get_filename_component(folder ${source} DIRECTORY)
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP "${folder}")
  endforeach()
endfunction()

# The warnings enabled for every source of the project. Tests and tools may assume 64-bit sizes; the
# library may not, so it is compiled with -Wconversion on every platform.
add_library(surveydata_warnings INTERFACE)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  target_compile_options(surveydata_warnings INTERFACE -Wconversion)
endif()
target_compile_options(surveydata_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wold-style-cast -Wnon-virtual-dtor
  -Woverloaded-virtual $<$<BOOL:${SURVEYDATA_WARNINGS_AS_ERRORS}>:-Werror>)

# Hardening of optimised builds against untrusted input: stack and buffer checks, and relocations
# that are read-only after loading.
add_library(surveydata_hardening INTERFACE)
if(NOT WIN32 AND NOT EMSCRIPTEN)
  target_compile_options(surveydata_hardening INTERFACE
    "$<$<NOT:$<CONFIG:Debug>>:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  if(NOT APPLE)
    target_link_options(surveydata_hardening INTERFACE LINKER:-z,relro LINKER:-z,now)
  endif()
endif()
