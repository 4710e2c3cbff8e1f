# Runs PROGRAM in WORK_DIR, with a copy of DATA if given, and compares its standard output with
# the file EXPECTED.
cmake_minimum_required(VERSION 3.25)

file(MAKE_DIRECTORY ${WORK_DIR})
if(DATA)
  file(COPY ${DATA} DESTINATION ${WORK_DIR} FILE_PERMISSIONS OWNER_READ OWNER_WRITE)
endif()
execute_process(COMMAND ${EMULATOR} ${PROGRAM} WORKING_DIRECTORY ${WORK_DIR}
  OUTPUT_VARIABLE output RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ended with ${result}")
endif()
string(REPLACE "\r\n" "\n" output "${output}")  # line ends of Windows
file(READ ${EXPECTED} expected)
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "The output differs from ${EXPECTED}:\n${output}")
endif()
