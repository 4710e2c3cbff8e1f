# Fails unless the part of DOCUMENT between its lines <!-- begin: ... --> and <!-- end --> equals
# the output of PROGRAM. With RENEW, replaces that part with the output instead.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE actual COMMAND_ERROR_IS_FATAL ANY)
file(READ ${DOCUMENT} document)
if(NOT document MATCHES "^(.*\n<!-- begin: [^\n]* -->\n)(.*)(<!-- end -->\n.*)$")
  message(FATAL_ERROR "${DOCUMENT} has no lines <!-- begin: ... --> and <!-- end -->")
endif()
set(before "${CMAKE_MATCH_1}")
set(part "${CMAKE_MATCH_2}")
set(after "${CMAKE_MATCH_3}")
if(RENEW)
  file(WRITE ${DOCUMENT} "${before}${actual}${after}")
elseif(NOT part STREQUAL actual)
  message(FATAL_ERROR "${DOCUMENT} differs from the output of ${PROGRAM}:\n${actual}")
endif()
