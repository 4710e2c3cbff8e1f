# Checks that a record can grow without recompiling its users. Compiles a caller of public objects
# (grown_caller.cpp), and a copy of the library in which every implementation has an additional
# first field. The caller must print the same with this library as with SHARED_LIBRARY. Caller and
# copy are compiled with AddressSanitizer, which must not report anything.
cmake_minimum_required(VERSION 3.25)
include(${SOURCE_DIR}/abi/Exports.cmake)

set(field "  std::uint64_t growth_[4] = {1, 2, 3, 4};\n")
set(grown ${WORK_DIR}/sources)
set(checked -fsanitize=address -fno-omit-frame-pointer)

# The caller, with the original headers. It must not construct implementations.
file(MAKE_DIRECTORY ${WORK_DIR})
execute_process(
  COMMAND ${CXX} -std=c++20 -O1 ${checked} -I${SOURCE_DIR} -c -o ${WORK_DIR}/grown_caller.o
          ${CMAKE_CURRENT_LIST_DIR}/grown_caller.cpp
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${NM} ${WORK_DIR}/grown_caller.o
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "U _ZN(3ODM[0-9]+[A-Za-z]+|3SDI[0-9]+[A-Za-z]+ImplC)C[12]E[^\n]*" made
  "${symbols}")
list(TRANSFORM made REPLACE "^U " "")
exports_complain(${CXXFILT} "The caller constructs implementations:" "${made}")

# The copy of the library.
file(REMOVE_RECURSE ${grown})
file(COPY ${SOURCE_DIR}/surveydata ${SOURCE_DIR}/cmake ${SOURCE_DIR}/abi ${SOURCE_DIR}/CMakeLists.txt
  DESTINATION ${grown})
file(GLOB_RECURSE headers ${grown}/surveydata/*.h)
set(names "")
foreach(header IN LISTS headers)
  file(READ ${header} text)
  string(REPLACE ";" "@semicolon@" text "${text}")
  # Implementations derive from ImplC, or from an implementation that does.
  string(REGEX MATCHALL
    "class SURVEYDATA_(API|VISIBLE) [A-Za-z]+[ \n]*: public ((API::)?ImplC|ScanDefinitionImplC|(SDI::)?GPSMeasFieldsC)[^{]*{\n public:\n"
    classes "${text}")
  foreach(class IN LISTS classes)
    string(REPLACE "${class}" "${class}${field}" text "${text}")
    string(REGEX REPLACE "^class SURVEYDATA_[A-Z]+ ([A-Za-z]+).*" "\\1" name "${class}")
    list(APPEND names ${name})
  endforeach()
  string(REPLACE "@semicolon@" ";" text "${text}")
  if(classes)
    string(REPLACE "#include <surveydata/object_model/export.h>\n"
      "#include <cstdint>\n#include <surveydata/object_model/export.h>\n" text "${text}")
  endif()
  if(header MATCHES "object_model/layout.h$")
    string(REPLACE "= sizeof(void*) == 8;" "= false;" changed "${text}")
    if(changed STREQUAL text)
      message(FATAL_ERROR "the size assertions could not be disabled")
    endif()
    set(text "${changed}")
  endif()
  file(WRITE ${header} "${text}")
endforeach()
# Exactly the implementations of all pairs, and their bases, must have grown.
file(READ ${SOURCE_DIR}/tests/support/pair_list.h pairs)
string(REGEX MATCHALL ", *(ODM|SDI)::[A-Za-z]+>" implementations "${pairs}")
list(LENGTH implementations expected)
math(EXPR expected "${expected} + 3")  # ScanDefinitionImplC, ScanAreaImplC, GPSMeasFieldsC
list(LENGTH names count)
if(NOT count EQUAL expected)
  message(FATAL_ERROR "${count} implementations have grown, of ${expected}: ${names}")
endif()

# Unlike Debug with a sanitizer, the build type None is not optimised.
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${grown} -B ${WORK_DIR}/build -G Ninja
    -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=None -DSURVEYDATA_UNITY=ON
    -DSURVEYDATA_SANITIZE=address -DSURVEYDATA_INSTALL=OFF -DSURVEYDATA_BUILD_TESTS=OFF
    -DSURVEYDATA_BUILD_TOOLS=OFF -DSURVEYDATA_BUILD_EXAMPLES=OFF -DSURVEYDATA_BUILD_BENCHMARKS=OFF
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build --target surveydata
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

# GPSRecordFileC opens files for writing.
file(COPY_FILE ${SOURCE_DIR}/tests/data/valley_drive.rec ${WORK_DIR}/records.rec)
execute_process(
  COMMAND ${CXX} ${checked} -o ${WORK_DIR}/grown_caller ${WORK_DIR}/grown_caller.o ${SHARED_LIBRARY}
  COMMAND_ERROR_IS_FATAL ANY)
function(run_caller library result)
  get_filename_component(folder ${library} DIRECTORY)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${folder}
            ${WORK_DIR}/grown_caller ${WORK_DIR}/records.rec
    OUTPUT_VARIABLE output RESULT_VARIABLE status ERROR_VARIABLE report)
  if(NOT status EQUAL 0 OR NOT output MATCHES "\nread: 20\n" OR NOT report STREQUAL "")
    message(FATAL_ERROR "with ${library}: ${status}\n${output}\n${report}")
  endif()
  set(${result} "${output}" PARENT_SCOPE)
endfunction()
run_caller(${SHARED_LIBRARY} before)
run_caller(${WORK_DIR}/build/surveydata/libsurveydata.so after)
if(NOT before STREQUAL after)
  message(FATAL_ERROR "The output of the caller differs with the grown library:\n${after}")
endif()
string(LENGTH "${before}" length)
message(STATUS "${count} implementations have grown; ${length} bytes of output are identical")
