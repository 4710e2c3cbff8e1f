# Fails unless PROGRAM prints exactly what the file EXPECTED holds.
execute_process(COMMAND ${EMULATOR} ${PROGRAM}
  OUTPUT_VARIABLE actual COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\r\n" "\n" actual "${actual}")  # as Windows ends lines
file(READ ${EXPECTED} expected)
if(NOT actual STREQUAL expected)
  message(FATAL_ERROR "${PROGRAM} prints something else than ${EXPECTED} holds:\n${actual}")
endif()
