# Compiles a caller of every pair (every_pair.cpp) with CXX, with and without optimisation. Its
# object files must not define any member, vtable or type information of the library's classes, so
# that nothing of an implementation is compiled into a caller. Then links it with SHARED_LIBRARY and
# runs it.
cmake_minimum_required(VERSION 3.25)
include(${SOURCE_DIR}/abi/Exports.cmake)

# The caller must use every pair that the headers declare.
file(READ ${SOURCE_DIR}/tests/support/pair_list.h used)
file(READ ${CMAKE_CURRENT_LIST_DIR}/every_pair.cpp more)
string(APPEND used "${more}")
file(GLOB_RECURSE headers ${SOURCE_DIR}/surveydata/*.h)
set(classes "")
foreach(header IN LISTS headers)
  file(READ ${header} text)
  # The namespace of a class is the last one opened before it.
  string(REGEX MATCHALL
    "\nnamespace (SDI|ODM) {|class SURVEYDATA_API [A-Za-z]+[ \n]*: public (API::(HandleC|ImplC)|(SDI::)?GPSMeasFieldsC)<"
    places "${text}")
  foreach(place IN LISTS places)
    if(place MATCHES "namespace (SDI|ODM)")
      set(namespace ${CMAKE_MATCH_1})
    elseif(place MATCHES "SURVEYDATA_API ([A-Za-z]+)")
      list(APPEND classes ${namespace}::${CMAKE_MATCH_1})
    endif()
  endforeach()
endforeach()
foreach(class IN LISTS classes)
  if(NOT used MATCHES "[^A-Za-z]${class}[^A-Za-z]")
    message(SEND_ERROR "the caller does not use ${class}")
  endif()
endforeach()
list(LENGTH classes count)
message(STATUS "${count} classes of pairs")
if(count EQUAL 0)
  message(FATAL_ERROR "no pairs found in the headers")
endif()

file(MAKE_DIRECTORY ${WORK_DIR})
foreach(optimisation IN ITEMS -O0 -O2)
  set(object ${WORK_DIR}/every_pair${optimisation}.o)
  set(program ${WORK_DIR}/every_pair${optimisation})
  execute_process(
    COMMAND ${CXX} -std=c++20 ${optimisation} -I${SOURCE_DIR} -c -o ${object}
            ${CMAKE_CURRENT_LIST_DIR}/every_pair.cpp
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${NM} --defined-only ${object}
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[A-Za-z] [^ \n]+" symbols "${symbols}")
  if(NOT "T main" IN_LIST symbols)
    message(FATAL_ERROR "the symbols of ${object} could not be read")
  endif()
  list(TRANSFORM symbols REPLACE ".* " "")
  list(FILTER symbols INCLUDE REGEX "${exports_held}")
  exports_complain(${CXXFILT} "With ${CXX} ${optimisation}, a caller defines:" "${symbols}")

  get_filename_component(library_dir ${SHARED_LIBRARY} DIRECTORY)
  execute_process(
    COMMAND ${CXX} -o ${program} ${object} ${SHARED_LIBRARY} -Wl,-rpath,${library_dir}
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${program} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
