# Says what the shared library LIBRARY weighs, and fails when that is more than it may: 400 KB of
# 1024 bytes stripped, the C++ and C runtimes as the only libraries it needs, no initialiser but the
# compiler's. It also fails when the loader would leave writable what it fills in.
cmake_minimum_required(VERSION 3.25)

set(most_bytes 409600)
set(runtimes libstdc++.so.6 libm.so.6 libgcc_s.so.1 libc.so.6)

set(stripped ${WORK_DIR}/stripped.so)
execute_process(COMMAND ${STRIP} -o ${stripped} ${LIBRARY} COMMAND_ERROR_IS_FATAL ANY)
file(SIZE ${stripped} bytes)
file(REMOVE ${stripped})
message(STATUS "stripped size: ${bytes} bytes, of ${most_bytes} at most")
if(bytes GREATER most_bytes OR bytes EQUAL 0)
  message(SEND_ERROR "the library is too large")
endif()

execute_process(COMMAND ${READELF} -d -W ${LIBRARY}
  OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "[][]" " " dynamic "${dynamic}")
string(REGEX MATCHALL "\\(NEEDED\\)[^\n]+" needed "${dynamic}")
list(TRANSFORM needed REPLACE ".*: +([^ ]+) *" "\\1")
list(JOIN needed " " text)
message(STATUS "needed libraries: ${text}")
list(REMOVE_ITEM needed ${runtimes})
if(needed OR text STREQUAL "")
  message(SEND_ERROR "the library needs more than the runtimes: ${needed}")
endif()

execute_process(COMMAND ${READELF} -l -W ${LIBRARY}
  OUTPUT_VARIABLE segments COMMAND_ERROR_IS_FATAL ANY)
if(NOT dynamic MATCHES "BIND_NOW" OR NOT segments MATCHES "GNU_RELRO" OR
   segments MATCHES "GNU_STACK[^\n]+RWE")
  message(SEND_ERROR "tables of addresses stay writable, or the stack is executable")
endif()

# The one entry of the compiler's start files; each initialiser of a source adds one.
execute_process(COMMAND ${READELF} -S -W ${LIBRARY}
  OUTPUT_VARIABLE sections COMMAND_ERROR_IS_FATAL ANY)
if(NOT sections MATCHES "\\.init_array +INIT_ARRAY +[0-9a-f]+ +[0-9a-f]+ +([0-9a-f]+) ")
  message(FATAL_ERROR "no list of initialisers found")
endif()
math(EXPR initialisers "0x${CMAKE_MATCH_1} / 8 - 1")
message(STATUS "dynamic initialisers: ${initialisers}")
if(NOT initialisers EQUAL 0)
  execute_process(COMMAND ${READELF} -s -W ${LIBRARY} OUTPUT_VARIABLE symbols)
  string(REGEX MATCHALL "_GLOBAL__sub_I_[^\n]*" symbols "${symbols}")
  message(SEND_ERROR "code runs when the library is loaded: ${symbols}")
endif()
