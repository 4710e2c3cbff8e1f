# Creates the Debian packages of the build RELEASE_DIR, checks them, installs them below a separate
# root folder, uses them there, and removes them again. VERSION is that of the project; DATA is a
# record file. CXX and GENERATOR build the consumer project.
cmake_minimum_required(VERSION 3.25)

# run(<result> <command>...): stores the output in `output`; the exit code must match <result>, a
# regular expression.
function(run expected)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result
    OUTPUT_VARIABLE output ERROR_VARIABLE error)
  if(NOT result MATCHES "^${expected}$")
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}: ${result}\n${output}${error}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_equal what actual expected)
  if(NOT actual STREQUAL expected)
    message(FATAL_ERROR "${what}: ${actual}\nexpected: ${expected}")
  endif()
endfunction()

set(ENV{PATH} "$ENV{PATH}:/usr/sbin:/sbin")  # dpkg requires ldconfig on the path
find_program(DPKG dpkg)
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
find_program(FILE_KINDS file)
if(NOT DPKG OR NOT DPKG_SHLIBDEPS OR NOT FILE_KINDS)
  message("skipped: dpkg, dpkg-shlibdeps or file is not installed")
  return()
endif()
run(0 id -u)
set(as_root "")
if(NOT output STREQUAL "0\n")
  find_program(FAKEROOT fakeroot)
  if(NOT FAKEROOT)
    message("skipped: dpkg requires root or fakeroot")
    return()
  endif()
  set(as_root ${FAKEROOT})
endif()

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
run(0 ${CMAKE_CPACK_COMMAND} --config ${RELEASE_DIR}/CPackConfig.cmake -B ${WORK_DIR}/packages)
set(full_version ${VERSION}-1)
string(REGEX REPLACE "\\..*" "" major ${VERSION})
set(runtime libsurveydata${major})
run(0 ${DPKG} --print-architecture)
string(STRIP "${output}" architecture)
foreach(package ${runtime} libsurveydata-dev surveydata)
  set(deb_${package} ${WORK_DIR}/packages/${package}_${full_version}_${architecture}.deb)
endforeach()

# Modes of folders and files must not depend on the umask.
function(modes variable folder)
  set(all "")
  file(GLOB packages ${folder}/*.deb)
  list(LENGTH packages count)
  expect_equal("packages in ${folder}" ${count} 3)
  foreach(package IN LISTS packages)
    run(0 dpkg-deb --contents ${package})
    string(REGEX MATCHALL "[d-][rwxst-]+ [^ ]+ +[0-9]+ [^ ]+ [^ ]+ [^\n]+" lines "${output}")
    list(TRANSFORM lines REPLACE " +[0-9]+ [^ ]+ [^ ]+ " " ")
    list(APPEND all ${lines})
  endforeach()
  set(${variable} "${all}" PARENT_SCOPE)
endfunction()
modes(expected ${WORK_DIR}/packages)
set(odd ${expected})
list(FILTER odd EXCLUDE REGEX
  "^(drwxr-xr-x root/root .*/|-rw-r--r-- root/root .*[^/]|-rwxr-xr-x root/root \\./usr/bin/[a-z]+)$")
expect_equal("modes" "${odd}" "")
if(NOT "-rwxr-xr-x root/root ./usr/bin/surveydata" IN_LIST expected)
  message(FATAL_ERROR "the modes could not be read: ${expected}")
endif()
foreach(umask 000 077)
  run(0 sh -c "umask ${umask} && exec \"$@\"" sh
    ${CMAKE_CPACK_COMMAND} --config ${RELEASE_DIR}/CPackConfig.cmake -B ${WORK_DIR}/umask_${umask})
  modes(found ${WORK_DIR}/umask_${umask})
  expect_equal("modes with umask ${umask}" "${found}" "${expected}")
endforeach()

# Control fields of the packages.
function(field variable package name)
  run(0 dpkg-deb --field ${deb_${package}} ${name})
  string(STRIP "${output}" output)
  set(${variable} "${output}" PARENT_SCOPE)
endfunction()
foreach(package ${runtime} libsurveydata-dev)
  field(multi_arch ${package} Multi-Arch)
  expect_equal("${package}: Multi-Arch" "${multi_arch}" "same")
endforeach()
field(depends libsurveydata-dev Depends)
expect_equal("libsurveydata-dev: Depends" "${depends}"
  "${runtime} (= ${full_version}), libboost-dev")
field(depends ${runtime} Depends)
string(REGEX MATCHALL "[a-z][a-z0-9+-]*[a-z0-9+]" names "${depends}")
list(REMOVE_DUPLICATES names)
list(SORT names)
expect_equal("${runtime}: Depends" "${names}" "libc6;libgcc-s1;libstdc++6")
field(depends surveydata Depends)
if(NOT depends MATCHES "^libc6 \\(>= [0-9.]+\\)$")  # the rest is linked in
  message(FATAL_ERROR "surveydata: Depends: ${depends}")
endif()
run(0 dpkg-deb --info ${deb_${runtime}} shlibs)
expect_equal("${runtime}: shlibs" "${output}"
  "libsurveydata ${major} ${runtime} (>= ${full_version})\n")
run(0 dpkg-deb --info ${deb_${runtime}} triggers)
expect_equal("${runtime}: triggers" "${output}" "activate-noawait ldconfig\n")

# The packages are not intended for Debian's archive, where an initial upload closes a bug report.
find_program(LINTIAN lintian)
if(LINTIAN)
  execute_process(COMMAND ${LINTIAN} --allow-root --fail-on error,warning
      --suppress-tags initial-upload-closes-no-bugs
      ${deb_${runtime}} ${deb_libsurveydata-dev} ${deb_surveydata}
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE error)
  if(NOT result EQUAL 0 OR NOT output STREQUAL "")
    message(FATAL_ERROR "lintian: ${result}\n${output}${error}")
  endif()
else()
  message(STATUS "lintian is not installed: the packages are not checked with it")
endif()

# A root that contains only the packages' dependencies, in this system's versions.
set(root ${WORK_DIR}/root)
set(database ${root}/var/lib/dpkg)
file(MAKE_DIRECTORY ${database}/info ${database}/updates ${database}/triggers)
set(status "")
foreach(name libboost-dev libc6 libgcc-s1 libstdc++6)
  execute_process(COMMAND dpkg-query --status ${name}:${architecture}
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_QUIET)
  if(NOT result EQUAL 0)
    message("skipped: the package ${name} is not installed")
    return()
  endif()
  string(APPEND status "${output}\n")
endforeach()
file(WRITE ${database}/status "${status}")
set(dpkg ${as_root} ${DPKG} --root=${root} --force-not-root --log=${WORK_DIR}/dpkg.log)

# The development package must not be installable without the library.
run(1 ${dpkg} --install ${deb_libsurveydata-dev})
run(0 ${dpkg} --purge libsurveydata-dev)
run(0 ${dpkg} --install ${deb_${runtime}} ${deb_libsurveydata-dev} ${deb_surveydata})

run(0 env -i ${root}/usr/bin/surveydata --version)
expect_equal("the version" "${output}" "surveydata ${VERSION}\n")
run(0 env -i ${root}/usr/bin/surveydata record show ${DATA} --offset 960)
if(NOT output MATCHES "Süd-Ø1")
  message(FATAL_ERROR "the record is shown as ${output}")
endif()
# The page that the release was given.
run(0 env -i ${root}/usr/bin/surveydata view ${DATA} -o -)
if(NOT output MATCHES "^<!doctype html>\n<template id=\"file\" data-name=\"valley_drive.rec\">[A-Za-z0-9+/=]+</template>\n$")
  message(FATAL_ERROR "surveydata view does not embed the file into the installed page: ${output}")
endif()
foreach(file
    usr/share/man/man1/surveydata.1.gz
    usr/share/bash-completion/completions/surveydata
    usr/share/zsh/vendor-completions/_surveydata
    usr/share/fish/vendor_completions.d/surveydata.fish
    usr/share/surveydata/surveydata.html
    usr/share/surveydata/surveydata.natvis
    usr/share/doc/${runtime}/copyright
    usr/share/doc/${runtime}/changelog.Debian.gz)
  if(NOT EXISTS ${root}/${file})
    message(FATAL_ERROR "${file} is not installed")
  endif()
endforeach()
# gdb searches its own folder for a script at the library's path; the printers are next to the
# library.
file(GLOB_RECURSE library RELATIVE ${root} ${root}/usr/lib/libsurveydata.so.${VERSION})
cmake_path(GET library PARENT_PATH library_dir)
foreach(file
    usr/share/gdb/auto-load/${library}-gdb.py
    ${library_dir}/surveydata/printers.py
    ${library_dir}/surveydata/types.o)
  if(NOT EXISTS ${root}/${file})
    message(FATAL_ERROR "${file} is not installed")
  endif()
endforeach()
run(0 ${CMAKE_COMMAND} -D WAY=find_package -D LINKAGE=shared -D PREFIX=${root}/usr
  -D CONSUMER_DIR=${SOURCE_DIR}/tests/consumer -D WORK_DIR=${WORK_DIR}/consumer -D CXX=${CXX}
  -D GENERATOR=${GENERATOR} -P ${SOURCE_DIR}/tests/package/consume.cmake)

run(0 ${dpkg} --purge surveydata libsurveydata-dev ${runtime})
file(GLOB_RECURSE left LIST_DIRECTORIES true RELATIVE ${root} ${root}/*)
list(FILTER left EXCLUDE REGEX "^var($|/lib($|/dpkg($|/)))")
expect_equal("files left after removal" "${left}" "")
