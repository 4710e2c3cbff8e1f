# Compares the visualizer file for Visual Studio with the classes of the library installed at ROOT,
# using GDB, and checks that each kind of fault is found.
cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE types ${ROOT}/types.o)
set(written ${WORK_DIR}/written.natvis)
execute_process(
  COMMAND ${GDB} -nx -batch -ex "set $types = \"${types}\"" -ex "set $natvis = \"${written}\""
          -x ${DEBUGGER_DIR}/write_natvis.py
  COMMAND_ERROR_IS_FATAL ANY)

# check(<natvis> <faults>): the faults must match a regular expression.
function(check natvis expected)
  set(faults ${WORK_DIR}/natvis_faults.txt)
  file(REMOVE ${faults})
  execute_process(
    COMMAND ${GDB} -nx -batch -ex "set $types = \"${types}\"" -ex "set $natvis = \"${natvis}\""
            -ex "set $written = \"${written}\"" -ex "set $faults = \"${faults}\""
            -x ${CMAKE_CURRENT_LIST_DIR}/check_natvis.py
    OUTPUT_VARIABLE session ERROR_VARIABLE session)
  if(EXISTS ${faults})
    file(READ ${faults} session)
  endif()
  if(NOT session MATCHES "^${expected}$")
    message(FATAL_ERROR "${natvis}:\n${session}")
  endif()
endfunction()

check(${DEBUGGER_DIR}/surveydata.natvis "")

# The expected outputs must cover each class.
file(READ ${CMAKE_CURRENT_LIST_DIR}/every_pair.expected shown)
file(READ ${CMAKE_CURRENT_LIST_DIR}/special_cases.expected more)
string(APPEND shown ${more})
file(STRINGS ${DEBUGGER_DIR}/surveydata.natvis names REGEX "<Type Name=\"(ODM|SDI)::")
foreach(name IN LISTS names)
  string(REGEX REPLACE ".*Name=\"(.*)\".*" "\\1" name "${name}")
  if(NOT shown MATCHES "${name}[^a-zA-Z]")
    message(FATAL_ERROR "no test shows an object of ${name}")
  endif()
endforeach()

# plant(<text> <replacement> <faults>): plants a fault in a copy, and checks that it is found.
function(plant text instead expected)
  file(READ ${DEBUGGER_DIR}/surveydata.natvis content)
  string(FIND "${content}" "${text}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "${text} is not in the visualizer file")
  endif()
  string(REPLACE "${text}" "${instead}" content "${content}")
  file(WRITE ${WORK_DIR}/planted.natvis "${content}")
  check(${WORK_DIR}/planted.natvis "${expected}")
endfunction()
plant("attribute5_</Item>" "attribute6_</Item>"
  "ODM::PositionC: attribute6_: There is no member or method named attribute6_\\.\n[^\n]*out of date[^\n]*\n")
plant("Name=\"ODM::QMatrixC\"" "Name=\"ODM::KMatrixC\"" "(ODM::KMatrixC: [^\n]*\n)+[^\n]*out of date[^\n]*\n")
plant("*(ODM::QMatrixC*)" "*(ODM::KMatrixC*)" "(SDI::QMatrixC: [^\n]*\n)+[^\n]*out of date[^\n]*\n")
plant("<Item Name=\"q33_\">q33_</Item>" "" "[^\n]*out of date[^\n]*\n")
plant("</AutoVisualizer>" "" ".*ParseError.*")
