# Installs only the program from the build BUILD_DIR, moves the tree to PREFIX, and runs it there
# with an empty environment and without the library. DATA is a record file. PAGE is the page that the
# build installs, if any.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${PREFIX} ${PREFIX}.first)
execute_process(
  COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --component program --prefix ${PREFIX}.first
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${PREFIX}.first ${PREFIX})

file(GLOB_RECURSE installed RELATIVE ${PREFIX} ${PREFIX}/*)
set(expected
  bin/surveydata
  share/bash-completion/completions/surveydata
  share/fish/vendor_completions.d/surveydata.fish
  share/man/man1/surveydata.1
  share/zsh/site-functions/_surveydata)
if(PAGE)
  list(APPEND expected share/surveydata/surveydata.html)
endif()
list(SORT installed)
list(SORT expected)
if(NOT installed STREQUAL expected)
  message(FATAL_ERROR "installed: ${installed}\nexpected: ${expected}")
endif()

execute_process(COMMAND ${READELF} -d ${PREFIX}/bin/surveydata
  OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
if(NOT dynamic MATCHES "NEEDED" OR dynamic MATCHES "RPATH|RUNPATH|libsurveydata|libstdc")
  message(FATAL_ERROR "the program has a run path or unexpected dependencies:\n${dynamic}")
endif()

# run(<argument>...): stores the program's output in `output`; the exit code must be 0 or 1.
function(run)
  execute_process(COMMAND env -i ${PREFIX}/bin/surveydata ${ARGN} WORKING_DIRECTORY /
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE error)
  if(NOT result MATCHES "^[01]$")
    message(FATAL_ERROR "${ARGN}: ${result}\n${error}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()
run(--version)
if(NOT output STREQUAL "surveydata ${VERSION}\n")
  message(FATAL_ERROR "the version is ${output}")
endif()
run(record show ${DATA} --offset 960)
if(NOT output MATCHES "Süd-Ø1")
  message(FATAL_ERROR "the record is shown as ${output}")
endif()
