# Runs the counting scripts of continuous integration on logs with known contents.
#   cmake -D CI=<folder of the scripts> -D HERE=<folder of the logs> -P count.cmake
cmake_minimum_required(VERSION 3.25)

# expect(<result> <output> <script> <argument>...): runs a script with the text `input` as its input.
function(expect result output script)
  execute_process(COMMAND ${CI}/${script} ${ARGN} INPUT_FILE ${input}
    OUTPUT_VARIABLE found RESULT_VARIABLE code)
  if(NOT code EQUAL result OR NOT found STREQUAL output)
    message(SEND_ERROR "${script} exited with ${code}, not ${result}:\n${found}instead of:\n${output}")
  endif()
endfunction()

set(input ${HERE}/run.log)
expect(0 [[
Skipped: Records.NeedRoot: only root can give a file to another owner
Skipped: package.debian: dpkg is not installed
Skipped: Records.SayNothing: no reason given
]] skipped_tests ${HERE}/ctest.log)

expect(0 [[
skipped: Records.NeedRoot: only root can give a file to another owner
skipped: package.debian: dpkg is not installed
skipped: Slow.Test: too slow under valgrind
skipped: 2 of python/tests/test_arrow.py:12: pyarrow is not installed
skipped: draws a picture: no Chromium
48 passed, 0 failed, 6 skipped
]] count_tests)

# A change of one line of the log, and what follows from it.
file(READ ${HERE}/run.log whole)
function(expect_changed before after result last)
  string(REPLACE "${before}" "${after}" changed "${whole}")
  if(changed STREQUAL whole)
    message(FATAL_ERROR "the log has no ${before}")
  endif()
  set(input ${CMAKE_CURRENT_BINARY_DIR}/ci_changed.log)
  file(WRITE ${input} "${changed}")
  execute_process(COMMAND ${CI}/count_tests INPUT_FILE ${input}
    OUTPUT_VARIABLE found RESULT_VARIABLE code)
  file(REMOVE ${input})
  if(NOT code EQUAL result OR NOT found MATCHES "\n${last}\n$")
    message(SEND_ERROR "with ${after}: ${code}, ${found}")
  endif()
endfunction()
expect_changed("Skipped: package.debian: dpkg is not installed" "Skipped: package.debian: no reason given"
  1 "6 tests skipped, 5 reasons")
expect_changed("Skipped: package.debian: dpkg is not installed\n" "" 1 "6 tests skipped, 5 reasons")
expect_changed("0 tests failed out of 3" "1 tests failed out of 3" 1
  "47 passed, 1 failed, 6 skipped")
expect_changed("678 edges  done" "678 edges  crash" 1 "47 passed, 1 failed, 6 skipped")
