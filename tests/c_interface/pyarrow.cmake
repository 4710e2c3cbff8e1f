# Runs TEST with ARGUMENTS in the virtual environment FOLDER, which is created from REQUIREMENTS and PyPI
# if it does not exist. If PyPI cannot be reached, the test is skipped, except in continuous integration
# (the environment variable CI).
cmake_minimum_required(VERSION 3.25)

set(installed "")
if(EXISTS ${FOLDER}/requirements.txt)
  file(READ ${FOLDER}/requirements.txt installed)
endif()
file(READ ${REQUIREMENTS} wanted)
if(NOT installed STREQUAL wanted)
  file(REMOVE_RECURSE ${FOLDER})
  execute_process(COMMAND ${PYTHON} -m venv ${FOLDER} COMMAND_ERROR_IS_FATAL ANY)
  execute_process(
    COMMAND ${FOLDER}/bin/python -m pip install --disable-pip-version-check --quiet
            --require-hashes --only-binary :all: --requirement ${REQUIREMENTS}
    RESULT_VARIABLE result ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    if(errors MATCHES "ConnectionError|NewConnectionError|connection broken|timed out"
       AND NOT DEFINED ENV{CI})
      message("skipped: PyPI cannot be reached")
      return()
    endif()
    message(FATAL_ERROR "cannot install pyarrow:\n${errors}")
  endif()
  configure_file(${REQUIREMENTS} ${FOLDER}/requirements.txt COPYONLY)
endif()
execute_process(COMMAND ${FOLDER}/bin/python -I ${TEST} ${ARGUMENTS} COMMAND_ERROR_IS_FATAL ANY)
