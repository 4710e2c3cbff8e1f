# Checks that includes.cmake notices violations: adds one include at a time to a copy of the sources.
#   cmake -D SOURCE_DIR=<the project> -D COPY=<a folder to overwrite> -P planted_includes.cmake
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${COPY})
file(COPY ${SOURCE_DIR}/surveydata ${SOURCE_DIR}/tools DESTINATION ${COPY})

# run(<variable>): checks the copy, and sets <variable> to the messages.
function(run variable)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -D SOURCE_DIR=${COPY} -P ${CMAKE_CURRENT_LIST_DIR}/includes.cmake
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  string(REGEX REPLACE "[ \n]+" " " output "${result} ${output}")
  set(${variable} "${output}" PARENT_SCOPE)
endfunction()

run(output)
if(NOT output MATCHES "^0 ")
  message(FATAL_ERROR "the sources themselves violate the layers: ${output}")
endif()

# expect(<file> <header> <message>): if <file> includes <header>, the check fails with <message>.
function(expect file header message)
  file(READ ${COPY}/${file} text)
  file(APPEND ${COPY}/${file} "#include <${header}>\n")
  run(output)
  file(WRITE ${COPY}/${file} "${text}")
  if(output MATCHES "^0 " OR NOT output MATCHES "${message}")
    message(SEND_ERROR "${file} with <${header}>: ${output}")
  endif()
endfunction()

# Cycles, directly and over several units.
expect(tools/area/area_file.h area/area_faults.h
  "in a cycle.*tools/area/area_faults, tools/area/area_file")
expect(tools/area/area_maps.h area/area_picture.h "in a cycle.*tools/area/area_picture")
expect(tools/output/svg.cpp output/chart.h "in a cycle.*tools/output/svg")
expect(surveydata/object_model/utf8.h surveydata/object_model/fixed_string.h
  "in a cycle.*surveydata/object_model/utf8")
expect(surveydata/c_interface/boundary.h surveydata/c_interface/measurement.h
  "in a cycle.*surveydata/c_interface/boundary")
expect(surveydata/gnss/gps_record_outcome.h surveydata/gnss/record_damage.h
  "in a cycle.*surveydata/gnss/gps_record_outcome")
# Layers.
expect(tools/area/area_file.h record/record_walk.h "tools/area/area_file.h must not include record")
expect(tools/output/svg.h unistd.h "tools/output/svg.h must not include unistd.h")
expect(surveydata/geodetic/position.h surveydata/gnss/gps_time.h
  "surveydata/geodetic/position.h must not include surveydata/gnss")
expect(surveydata/gnss/frame_cursors.h surveydata/gnss/record_walk.h "which is about files")
