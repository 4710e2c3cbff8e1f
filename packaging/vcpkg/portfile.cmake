# An overlay port that builds the source tree that contains it:
#   vcpkg install surveydata --overlay-ports=packaging/vcpkg
cmake_path(SET SOURCE_PATH NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../..")

vcpkg_check_features(OUT_FEATURE_OPTIONS FEATURE_OPTIONS
  FEATURES program SURVEYDATA_BUILD_TOOLS)
vcpkg_cmake_configure(
  SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS
    -DSURVEYDATA_BUILD_TESTS=OFF
    -DSURVEYDATA_BUILD_EXAMPLES=OFF
    -DSURVEYDATA_BUILD_BENCHMARKS=OFF
    -DSURVEYDATA_INSTALL=ON
    ${FEATURE_OPTIONS})
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/surveydata)
vcpkg_fixup_pkgconfig()
if("program" IN_LIST FEATURES)
  vcpkg_copy_tools(TOOL_NAMES surveydata AUTO_CLEAN)
endif()
file(REMOVE_RECURSE
  "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/packaging/debian/copyright")
