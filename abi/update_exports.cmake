# Updates abi/surveydata.exports and abi/recorded_numbers from a static library built for this
# platform (ELF_LIBRARY) and one built for Windows (WINDOWS_LIBRARY), with the compiler and the nm
# of the latter. New symbols are appended; the ordinal of a removed symbol is never reused.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/Exports.cmake)

set(list ${CMAKE_CURRENT_LIST_DIR}/surveydata.exports)
set(record ${CMAKE_CURRENT_LIST_DIR}/recorded_numbers)
set(exports_numbers "")
set(exports_last 0)
if(EXISTS ${list})
  exports_read(${list})
endif()

exports_of_objects(readelf c++filt ${ELF_LIBRARY} elf)

# The linker lists the symbols that Windows objects export.
set(definition ${WINDOWS_LIBRARY}.def)
execute_process(
  COMMAND ${WINDOWS_COMPILER} -shared -o ${WINDOWS_LIBRARY}.dll -Wl,--output-def,${definition}
          -Wl,--whole-archive ${WINDOWS_LIBRARY} -Wl,--no-whole-archive
  COMMAND_ERROR_IS_FATAL ANY)
file(STRINGS ${definition} windows REGEX "@[0-9]+")
list(TRANSFORM windows REPLACE "^ *([A-Za-z0-9_]+) .*" "\\1")
# The objects also contain inline members, which g++ does not export. Unoptimised callers need those
# of templates that the library instantiates.
execute_process(COMMAND ${WINDOWS_NM} --defined-only ${WINDOWS_LIBRARY}
  OUTPUT_VARIABLE defined ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL " [TW] _ZN[^ \n]+" defined "${defined}")
list(TRANSFORM defined REPLACE ".* " "")
foreach(symbol IN LISTS defined)
  if(symbol IN_LIST elf)
    list(APPEND windows ${symbol})
  endif()
endforeach()
exports_in_scope(c++filt "${windows}" windows)

if(NOT elf OR NOT windows)
  message(FATAL_ERROR "no symbols found")
endif()

set(lines "")
set(known "")
foreach(entry IN LISTS exports_numbers)
  string(REPLACE ":" ";" entry ${entry})
  list(GET entry 0 number)
  list(GET entry 1 symbol)
  list(APPEND known ${symbol})
  if(NOT symbol IN_LIST windows)
    set(platforms gone)
  elseif(symbol IN_LIST elf)
    set(platforms both)
  else()
    set(platforms windows)
  endif()
  list(APPEND lines "${number} ${platforms} ${symbol}")
endforeach()
exports_difference(fresh "${windows}" "${known}")
foreach(symbol IN LISTS fresh)
  math(EXPR exports_last "${exports_last} + 1")
  if(symbol IN_LIST elf)
    list(APPEND lines "${exports_last} both ${symbol}")
  else()
    list(APPEND lines "${exports_last} windows ${symbol}")
  endif()
endforeach()
exports_difference(elf_alone "${elf}" "${windows}")
list(TRANSFORM elf_alone PREPEND "- elf ")
list(LENGTH fresh count)

list(JOIN lines "\n" text)
list(JOIN elf_alone "\n" elf_text)
file(WRITE ${list} "\
# The exported symbols: Windows ordinal, platforms, mangled name. Written by abi/update_exports;
# read it with c++filt. The names differ between the platforms if a parameter is a size_t. A removed
# symbol keeps its ordinal.
${text}
# Type symbols, and symbols with another name on Windows. They have no ordinal.
${elf_text}
")

list(TRANSFORM lines REPLACE "^([0-9]+) [a-z]+ " "\\1 ")
list(JOIN lines "\n" text)
file(WRITE ${record} "\
# All assigned ordinals, in order. Only append lines.
${text}
")
message(STATUS "${count} new ordinals")
