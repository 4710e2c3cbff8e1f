# Installs the build BUILD_DIR, then moves the tree to PREFIX: everything in it must find the rest
# from where it stands.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${PREFIX} ${PREFIX}.first)
execute_process(
  COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX}.first
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${PREFIX}.first ${PREFIX})

# The public headers and what they include are installed; the internal ones stay.
set(expected "")
set(open surveydata/surveydata.h)
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

# No file says where it was built or first installed.
file(GLOB_RECURSE texts ${PREFIX}/*.cmake ${PREFIX}/*.pc)
foreach(text ${texts})
  file(READ ${text} content)
  foreach(path ${PREFIX}.first ${BUILD_DIR} ${SOURCE_DIR})
    string(FIND "${content}" "${path}" at)
    if(NOT at EQUAL -1)
      message(FATAL_ERROR "${text} names ${path}")
    endif()
  endforeach()
endforeach()
if(NOT texts)
  message(FATAL_ERROR "no package files below ${PREFIX}")
endif()
