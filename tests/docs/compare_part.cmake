# Fails unless the part of DOCUMENT between its lines <!-- begin: ... --> and <!-- end --> is what
# PROGRAM prints. RENEW writes it there instead.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE actual COMMAND_ERROR_IS_FATAL ANY)
file(READ ${DOCUMENT} document)
if(NOT document MATCHES "^(.*\n<!-- begin: [^\n]* -->\n)(.*)(<!-- end -->\n.*)$")
  message(FATAL_ERROR "${DOCUMENT} has no place for what ${PROGRAM} prints")
endif()
set(before "${CMAKE_MATCH_1}")
set(part "${CMAKE_MATCH_2}")
set(behind "${CMAKE_MATCH_3}")
if(RENEW)
  file(WRITE ${DOCUMENT} "${before}${actual}${behind}")
elseif(NOT part STREQUAL actual)
  message(FATAL_ERROR "${DOCUMENT} shows something else than ${PROGRAM} prints:\n${actual}")
endif()
