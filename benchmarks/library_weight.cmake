# Reports the size of the shared library LIBRARY and the work of the loader. Fails if the library needs
# more than the C++ and C runtimes, or runs code when it is loaded. The size has no limit.
cmake_minimum_required(VERSION 3.25)

set(runtimes libstdc++.so.6 libm.so.6 libgcc_s.so.1 libc.so.6)

set(stripped ${WORK_DIR}/stripped.so)
execute_process(COMMAND ${STRIP} -o ${stripped} ${LIBRARY} COMMAND_ERROR_IS_FATAL ANY)
file(SIZE ${stripped} bytes)
file(REMOVE ${stripped})
message(STATUS "stripped size: ${bytes} bytes")

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
