# Runs PROGRAM in GDB with the library installed at ROOT. Writes its variables, as gdb shows them,
# to OUTPUT, which must equal EXPECTED.
cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE library ${ROOT}/libsurveydata.so)
cmake_path(GET library PARENT_PATH library_dir)
set(ENV{LD_LIBRARY_PATH} ${library_dir})
set(ENV{LC_ALL} C.UTF-8)
file(REMOVE ${OUTPUT})
execute_process(
  COMMAND ${GDB} -nx -batch
    -iex "add-auto-load-scripts-directory ${ROOT}/share/gdb/auto-load"
    -iex "add-auto-load-safe-path ${ROOT}/share/gdb/auto-load"
    -ex "set $output = \"${OUTPUT}\"" -x ${CMAKE_CURRENT_LIST_DIR}/show_variables.py ${PROGRAM}
  RESULT_VARIABLE result OUTPUT_VARIABLE session ERROR_VARIABLE session)
if(session MATCHES "ptrace: Operation not permitted")
  message("skipped: gdb is not permitted to trace programs here")
  return()
endif()
if(NOT result EQUAL 0 OR NOT EXISTS ${OUTPUT})
  message(FATAL_ERROR "gdb: ${result}\n${session}")
endif()
execute_process(COMMAND diff -u ${EXPECTED} ${OUTPUT}
  RESULT_VARIABLE result OUTPUT_VARIABLE differences ERROR_VARIABLE differences)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${differences}\nIf the change is intended:\n  cp ${OUTPUT} ${EXPECTED}")
endif()
