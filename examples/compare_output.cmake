# Runs PROGRAM in WORK_DIR, with a copy of DATA if given, and compares its standard output with
# the file EXPECTED. With ERROR instead, the program must exit with 1, print nothing on standard
# output and exactly this line on standard error.
cmake_minimum_required(VERSION 3.25)

file(MAKE_DIRECTORY ${WORK_DIR})
if(DATA)
  file(COPY ${DATA} DESTINATION ${WORK_DIR} FILE_PERMISSIONS OWNER_READ OWNER_WRITE)
endif()
execute_process(COMMAND ${EMULATOR} ${PROGRAM} WORKING_DIRECTORY ${WORK_DIR}
  OUTPUT_VARIABLE output ERROR_VARIABLE error RESULT_VARIABLE result)
if(ERROR)
  string(REPLACE "\r\n" "\n" error "${error}")
  if(NOT result EQUAL 1 OR NOT output STREQUAL "" OR NOT error STREQUAL "${ERROR}\n")
    message(FATAL_ERROR "${PROGRAM} exited with ${result}:\n${output}${error}")
  endif()
  return()
endif()
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} exited with ${result}")
endif()
string(REPLACE "\r\n" "\n" output "${output}")  # line ends of Windows
file(READ ${EXPECTED} expected)
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "The output differs from ${EXPECTED}:\n${output}")
endif()
