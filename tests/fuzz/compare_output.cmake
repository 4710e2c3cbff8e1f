# Fails unless PROGRAM prints exactly what the file EXPECTED holds.
execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE actual COMMAND_ERROR_IS_FATAL ANY)
file(READ ${EXPECTED} expected)
if(NOT actual STREQUAL expected)
  message(FATAL_ERROR "${PROGRAM} prints something else than ${EXPECTED} holds:\n${actual}")
endif()
