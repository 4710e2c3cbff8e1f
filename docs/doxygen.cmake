# Runs DOXYGEN on the project in SOURCE_DIR and writes to OUTPUT_DIR; the pages show VERSION. A
# warning is an error. With COMMENTS, only checks that every class has a comment; a specialisation
# has that of its template.
cmake_minimum_required(VERSION 3.25)

if(NOT DOXYGEN)
  message("skipped: doxygen is not installed")
  return()
endif()
file(MAKE_DIRECTORY ${OUTPUT_DIR})
file(READ ${SOURCE_DIR}/docs/Doxyfile settings)
string(APPEND settings "OUTPUT_DIRECTORY = \"${OUTPUT_DIR}\"\n")
if(COMMENTS)
  string(APPEND settings "EXTRACT_ALL = NO\nWARN_IF_UNDOCUMENTED = YES\nGENERATE_HTML = NO\n"
                         "GENERATE_XML = YES\n")  # doxygen requires an output
else()
  string(APPEND settings "WARN_AS_ERROR = FAIL_ON_WARNINGS\n")
endif()
file(WRITE ${OUTPUT_DIR}/Doxyfile "${settings}")
set(ENV{SURVEYDATA_VERSION} ${VERSION})
execute_process(COMMAND ${DOXYGEN} ${OUTPUT_DIR}/Doxyfile WORKING_DIRECTORY ${SOURCE_DIR}
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(COMMENTS)
  string(REGEX MATCHALL "[^\n]*Compound [^<\n]* is not documented[^\n]*" output "${output}")
  list(JOIN output "\n" output)
  if(output)
    set(result 1)
  endif()
endif()
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${output}")
endif()
