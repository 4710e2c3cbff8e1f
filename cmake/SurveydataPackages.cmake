# Debian packages, one for each component of the installation. Run `cpack` in a build configured
# with CMAKE_INSTALL_PREFIX=/usr, as the preset package does.
set(SURVEYDATA_PACKAGE_CONTACT "" CACHE STRING
  "Maintainer of the packages, as NAME <ADDRESS>; by default DEBFULLNAME and DEBEMAIL")
set(contact "${SURVEYDATA_PACKAGE_CONTACT}")
if(NOT contact AND DEFINED ENV{DEBEMAIL})
  set(contact "$ENV{DEBEMAIL}")
  if(DEFINED ENV{DEBFULLNAME})
    set(contact "$ENV{DEBFULLNAME} <${contact}>")
  endif()
endif()
if(NOT contact)
  set(contact "No maintainer <nobody@example.org>")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # set per package
set(CPACK_PACKAGE_CONTACT "${contact}")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET surveydata_tool)
  list(APPEND CPACK_COMPONENTS_ALL program)
endif()
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/complete.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/adjust.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(library libsurveydata${PROJECT_VERSION_MAJOR})
set(about "The data model that the software of a surveying instrument uses to pass
sensor data between its components: coordinates with their quality and
reference system, GNSS measurements and their record files, total station
records, camera orientations, and laser scans with their areas.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
  "data model of a surveying instrument - shared library\n${about}")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libsurveydata-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "${library} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}), libboost-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
  "data model of a surveying instrument - development files\n${about}

This package contains the headers, the static library, and package files
for CMake and pkg-config.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME surveydata)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION
  "record files and scan areas of a surveying instrument
The program lists, shows, exports, patches and plots the binary record
files of a GNSS receiver. It checks scan areas on the sphere of
directions, tests whether directions are inside, and plots the areas. It
shows both in a browser, without a network.")

include(CPack)
