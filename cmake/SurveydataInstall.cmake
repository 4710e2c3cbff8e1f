# Rules for `cmake --install`. The installed tree is relocatable: the package files locate the rest
# relative to themselves. The components are those of the packages: runtime, development, and
# program, which tools/CMakeLists.txt installs.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS surveydata surveydata_static EXPORT surveydata-targets
  RUNTIME COMPONENT runtime
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS surveydata_objects FILE_SET HEADERS COMPONENT development)

set(SURVEYDATA_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/surveydata)
install(EXPORT surveydata-targets NAMESPACE surveydata::
  DESTINATION ${SURVEYDATA_CMAKEDIR} COMPONENT development)
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/surveydata-config.cmake.in
  ${PROJECT_BINARY_DIR}/surveydata-config.cmake
  INSTALL_DESTINATION ${SURVEYDATA_CMAKEDIR}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/surveydata-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/surveydata-config.cmake
  ${PROJECT_BINARY_DIR}/surveydata-config-version.cmake
  DESTINATION ${SURVEYDATA_CMAKEDIR} COMPONENT development)

set(SURVEYDATA_PCDIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH SURVEYDATA_PC_PREFIX /prefix/${SURVEYDATA_PCDIR} /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/surveydata.pc.in
  ${PROJECT_BINARY_DIR}/surveydata.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/surveydata.pc
  DESTINATION ${SURVEYDATA_PCDIR} COMPONENT development)
