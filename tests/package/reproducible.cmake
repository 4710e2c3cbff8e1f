# Builds the Debian packages again, from a copy of the sources in another folder, and compares them
# byte by byte with those of the build RELEASE_DIR.
cmake_minimum_required(VERSION 3.25)

find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
find_program(FILE_KINDS file)
if(NOT DPKG_SHLIBDEPS OR NOT FILE_KINDS)
  message("skipped: dpkg-shlibdeps or file is not installed")
  return()
endif()

file(REMOVE_RECURSE ${WORK_DIR})
set(elsewhere "${WORK_DIR}/a folder with another name")
file(GLOB parts RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/*)
list(REMOVE_ITEM parts build demo)
foreach(part ${parts})
  file(COPY ${SOURCE_DIR}/${part} DESTINATION "${elsewhere}/sources")
endforeach()
# File times older than the release.
execute_process(COMMAND find ${elsewhere}/sources -exec touch --date=2001-02-03 {} +
  COMMAND_ERROR_IS_FATAL ANY)

set(ENV{TZ} Pacific/Kiritimati)  # a time zone with another date
execute_process(
  COMMAND ${CMAKE_COMMAND} -D SOURCE_DIR=${elsewhere}/sources -D BUILD_DIR=${elsewhere}/build
          -D GENERATOR=${GENERATOR} -D CXX=${CXX} -D TOOLS=${TOOLS} -D JOBS=${JOBS}
          -D PAGE=${PAGE}
          -P ${CMAKE_CURRENT_LIST_DIR}/release.cmake
  COMMAND_ERROR_IS_FATAL ANY)

# pack(<build> <folder>): creates the packages of the build.
function(pack build folder)
  execute_process(COMMAND ${CMAKE_CPACK_COMMAND} --config ${build}/CPackConfig.cmake -B ${folder}
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${output}")
  endif()
endfunction()
pack(${elsewhere}/build ${elsewhere}/packages)
unset(ENV{TZ})
pack(${RELEASE_DIR} ${WORK_DIR}/packages)

file(GLOB packages RELATIVE ${WORK_DIR}/packages ${WORK_DIR}/packages/*.deb)
list(LENGTH packages count)
if(NOT count EQUAL 3)
  message(FATAL_ERROR "${count} packages: ${packages}")
endif()
foreach(package ${packages})
  file(SHA256 ${WORK_DIR}/packages/${package} one)
  file(SHA256 ${elsewhere}/packages/${package} other)
  if(NOT one STREQUAL other)
    message(SEND_ERROR "${package} differs: compare ${WORK_DIR}/packages and ${elsewhere}/packages")
  endif()
endforeach()
