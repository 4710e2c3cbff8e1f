# fmt header-only, for builds that cannot use the package of this system.
if(NOT TARGET fmt::fmt-header-only)
  add_library(fmt::fmt-header-only INTERFACE IMPORTED)
  target_compile_definitions(fmt::fmt-header-only INTERFACE FMT_HEADER_ONLY)
  target_include_directories(fmt::fmt-header-only SYSTEM INTERFACE ${SURVEYDATA_HOST_HEADERS})
endif()
file(STRINGS ${SURVEYDATA_HOST_HEADERS}/fmt/core.h fmt_VERSION REGEX "define FMT_VERSION ")
string(REGEX REPLACE ".* ([0-9]+)(....)$" "\\1" fmt_VERSION ${fmt_VERSION})
