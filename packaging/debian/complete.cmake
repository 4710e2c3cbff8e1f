# Run by CPack before it creates the packages: adds the files that only a Debian package has, and
# moves files whose location differs there.
include(${CMAKE_CURRENT_LIST_DIR}/../../cmake/SurveydataDate.cmake)
set(changelog ${CMAKE_CURRENT_LIST_DIR}/../../CHANGELOG.md)
surveydata_release_date(day seconds ${changelog})
set(ENV{SOURCE_DATE_EPOCH} ${seconds})  # for the following steps
set(ENV{LC_ALL} C)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} name)
  set(package ${CPACK_DEBIAN_${name}_PACKAGE_NAME})
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  set(doc ${share}/doc/${package})
  file(MAKE_DIRECTORY ${doc})
  configure_file(${CMAKE_CURRENT_LIST_DIR}/copyright ${doc}/copyright COPYONLY)

  file(WRITE ${doc}/changelog.Debian
    "${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; "
    "urgency=medium\n\n  * See changelog.gz.\n\n"
    " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
  configure_file(${changelog} ${doc}/changelog COPYONLY)
  file(GLOB compressed ${doc}/changelog* ${share}/man/man1/*.1)
  execute_process(COMMAND gzip -9nf ${compressed} COMMAND_ERROR_IS_FATAL ANY)

  if(EXISTS ${share}/zsh/site-functions)
    file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
  endif()
endforeach()
