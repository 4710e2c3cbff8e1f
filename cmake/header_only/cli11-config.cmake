# Header-only CLI11, for builds that cannot use the system's package.
if(NOT TARGET CLI11::CLI11)
  add_library(CLI11::CLI11 INTERFACE IMPORTED)
  target_include_directories(CLI11::CLI11 SYSTEM INTERFACE ${SURVEYDATA_HOST_HEADERS})
endif()
