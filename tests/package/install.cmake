# Installs the build BUILD_DIR, then moves the tree to PREFIX: the installed files must be
# relocatable.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${PREFIX} ${PREFIX}.first)
execute_process(
  COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX}.first
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${PREFIX}.first ${PREFIX})

# Exactly the public headers, and the headers that they include, are installed. Callers that take
# the structs of Arrow from elsewhere do not need the header that defines them.
set(expected "")
set(open surveydata/surveydata.h surveydata/c_interface/arrow_c_interface.h)
while(open)
  list(POP_FRONT open header)
  list(APPEND expected ${header})
  file(STRINGS ${SOURCE_DIR}/${header} includes REGEX "^#include <surveydata/")
  list(TRANSFORM includes REPLACE ".*<(.*)>.*" "\\1")
  list(APPEND open ${includes})
  list(REMOVE_DUPLICATES open)
  list(REMOVE_ITEM open ${expected})
endwhile()
file(GLOB_RECURSE installed RELATIVE ${PREFIX}/include ${PREFIX}/include/*)
list(SORT expected)
list(SORT installed)
if(NOT installed STREQUAL expected)
  set(missing ${expected})
  list(REMOVE_ITEM missing ${installed})
  set(surplus ${installed})
  list(REMOVE_ITEM surplus ${expected})
  message(FATAL_ERROR "headers not installed: ${missing}\nheaders that should not be: ${surplus}")
endif()

# Files for debuggers. The path of the script contains the path at which the library was installed.
file(GLOB_RECURSE for_debuggers RELATIVE ${PREFIX}
  ${PREFIX}/*.natvis ${PREFIX}/*.py ${PREFIX}/*.o)
set(expected share/surveydata/surveydata.natvis)
if(FOR_GDB)
  file(GLOB_RECURSE library RELATIVE ${PREFIX} ${PREFIX}/libsurveydata.so.*.*.*)
  list(FILTER library EXCLUDE REGEX "\\.py$")
  cmake_path(GET library PARENT_PATH library_dir)
  list(APPEND expected ${library_dir}/surveydata/printers.py ${library_dir}/surveydata/types.o
    share/gdb/auto-load${PREFIX}.first/${library}-gdb.py)
endif()
list(SORT expected)
list(SORT for_debuggers)
if(NOT for_debuggers STREQUAL expected)
  message(FATAL_ERROR "files for debuggers: ${for_debuggers}\nexpected: ${expected}")
endif()

# No file contains the path of the build or of the first installation.
function(expect_no_path file content)
  foreach(path ${PREFIX}.first ${BUILD_DIR} ${SOURCE_DIR})
    string(FIND "${content}" "${path}" at)
    if(NOT at EQUAL -1)
      message(FATAL_ERROR "${file} contains the path ${path}")
    endif()
  endforeach()
endfunction()
file(GLOB_RECURSE texts ${PREFIX}/*.cmake ${PREFIX}/*.pc ${PREFIX}/*.py ${PREFIX}/*.natvis)
foreach(text ${texts})
  file(READ ${text} content)
  expect_no_path(${text} "${content}")
endforeach()
if(FOR_GDB)
  set(types ${PREFIX}/${library_dir}/surveydata/types.o)
  # READELF is that of binutils, because LLVM's cannot dump strings.
  execute_process(COMMAND ${READELF} --debug-dump=rawline,str ${types}
    OUTPUT_VARIABLE content ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
  if(NOT content MATCHES "surveydata/geodetic")
    message(FATAL_ERROR "${types} does not name the headers")
  endif()
  expect_no_path(${types} "${content}")
  execute_process(COMMAND ${READELF} --syms --wide ${types}
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  if(symbols MATCHES "(FUNC|OBJECT) ")
    message(FATAL_ERROR "${types} contains more than debug information:\n${symbols}")
  endif()
endif()
if(NOT texts)
  message(FATAL_ERROR "no package files below ${PREFIX}")
endif()
