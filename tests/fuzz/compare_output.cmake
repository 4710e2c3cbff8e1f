# Fails unless the output of PROGRAM equals the file EXPECTED.
execute_process(COMMAND ${EMULATOR} ${PROGRAM}
  OUTPUT_VARIABLE actual COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\r\n" "\n" actual "${actual}")  # line ends of Windows
file(READ ${EXPECTED} expected)
if(NOT actual STREQUAL expected)
  message(FATAL_ERROR "the output of ${PROGRAM} differs from ${EXPECTED}:\n${actual}")
endif()
