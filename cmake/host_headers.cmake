# For toolchain files. Debian ships header-only libraries only for its own platforms. Their headers
# work on all platforms; links in a separate folder make them available without the other host
# headers.
get_property(is_try_compile GLOBAL PROPERTY IN_TRY_COMPILE)
if(NOT is_try_compile)
  set(SURVEYDATA_HOST_HEADERS ${CMAKE_BINARY_DIR}/host_headers)
  file(MAKE_DIRECTORY ${SURVEYDATA_HOST_HEADERS})
  foreach(name boost CLI fmt nlohmann)
    if(EXISTS /usr/include/${name} AND NOT EXISTS ${SURVEYDATA_HOST_HEADERS}/${name})
      file(CREATE_LINK /usr/include/${name} ${SURVEYDATA_HOST_HEADERS}/${name} SYMBOLIC)
    endif()
  endforeach()
  set(Boost_NO_BOOST_CMAKE ON)
  set(Boost_INCLUDE_DIR ${SURVEYDATA_HOST_HEADERS})
  foreach(package CLI11 fmt nlohmann_json)
    set(${package}_DIR ${CMAKE_CURRENT_LIST_DIR}/header_only)
  endforeach()
endif()
