# Compares the library with the recorded interface in abi/baseline.tar.xz: names, sizes, fields and
# vtable slots of everything exported. Additions pass; any other change that would require
# recompiling callers is an error. With RECORD, records the interface instead.
#
# Builds the library in WORK_DIR, because only a build with full debug information has its types.
cmake_minimum_required(VERSION 3.25)

cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH source_dir)
set(baseline ${CMAKE_CURRENT_LIST_DIR}/baseline.tar.xz)

# Relative paths make the record independent of the machine.
set(flags "-O0 -g -ffile-prefix-map=${source_dir}=. -ffile-prefix-map=${WORK_DIR}=.")
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${source_dir} -B ${WORK_DIR} -G Ninja
    -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=Debug "-DCMAKE_CXX_FLAGS_DEBUG=${flags}"
    -DSURVEYDATA_UNITY=ON
    -DSURVEYDATA_BUILD_TESTS=OFF -DSURVEYDATA_BUILD_TOOLS=OFF -DSURVEYDATA_BUILD_EXAMPLES=OFF
    -DSURVEYDATA_BUILD_BENCHMARKS=OFF
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR} --target surveydata
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
set(library ${WORK_DIR}/surveydata/libsurveydata.so)

if(RECORD)
  execute_process(
    COMMAND abidw --no-corpus-path --no-comp-dir-path --no-show-locs --no-parameter-names
            --type-id-style hash --out-file baseline.abi ${library}
    WORKING_DIRECTORY ${WORK_DIR} COMMAND_ERROR_IS_FATAL ANY)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E tar cJf ${baseline} --mtime=2000-01-01 baseline.abi
    WORKING_DIRECTORY ${WORK_DIR} COMMAND_ERROR_IS_FATAL ANY)
else()
  execute_process(COMMAND ${CMAKE_COMMAND} -E tar xJf ${baseline}
    WORKING_DIRECTORY ${WORK_DIR} COMMAND_ERROR_IS_FATAL ANY)
  execute_process(
    COMMAND abidiff --no-added-syms --suppressions ${CMAKE_CURRENT_LIST_DIR}/baseline.suppr
            ${WORK_DIR}/baseline.abi ${library}
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${output}\n"
      "The library is not compatible with the recorded interface. If the break is intended, describe it\n"
      "in CHANGELOG.md and run abi/record_baseline.")
  endif()
endif()
