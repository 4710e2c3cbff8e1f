# Windows programs refer to the library's symbols by ordinal, so ordinals never change: each symbol
# in abi/surveydata.exports has its recorded ordinal, and no ordinal is used twice. Also limits the
# number of functions of the C interface.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/Exports.cmake)

exports_read(${CMAKE_CURRENT_LIST_DIR}/surveydata.exports)
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/recorded_numbers recorded REGEX "^[^#]")
if(NOT recorded)
  message(FATAL_ERROR "no ordinals are recorded")
endif()
list(TRANSFORM recorded REPLACE " " ":")

exports_difference(lost "${recorded}" "${exports_numbers}")
exports_complain(${CXXFILT} "Recorded ordinals that the list lacks or changes:" "${lost}")
exports_difference(unrecorded "${exports_numbers}" "${recorded}")
exports_complain(${CXXFILT} "Ordinals that are not recorded:" "${unrecorded}")

set(expected 0)
foreach(entry IN LISTS recorded)
  math(EXPR expected "${expected} + 1")
  if(NOT entry MATCHES "^${expected}:")
    message(FATAL_ERROR "the record is out of order: expected ordinal ${expected}, found ${entry}")
  endif()
endforeach()
foreach(symbols exports_elf exports_windows)
  set(once ${${symbols}})
  list(REMOVE_DUPLICATES once)
  if(NOT once STREQUAL ${symbols})
    message(SEND_ERROR "${symbols} contains a symbol twice")
  endif()
endforeach()

# The C interface is to stay small: it has no functions that a caller can compose from others.
set(functions ${exports_elf})
list(FILTER functions INCLUDE REGEX "${exports_c}")
list(LENGTH functions count)
if(count EQUAL 0 OR count GREATER 32)
  message(SEND_ERROR "the C interface has ${count} functions; 1 to 32 are allowed")
endif()
