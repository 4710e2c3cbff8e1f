# nlohmann-json header-only, for builds that cannot use the package of this system.
if(NOT TARGET nlohmann_json::nlohmann_json)
  add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
  target_include_directories(nlohmann_json::nlohmann_json SYSTEM
    INTERFACE ${SURVEYDATA_HOST_HEADERS})
endif()
