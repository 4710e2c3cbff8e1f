# Checks that the tests mirror the sources: those of surveydata/X and of tools/X are in tests/X and in
# tests/tools/X. A test is named after the source that it tests, NAME_test or NAME_..._test, or is
# listed here because it tests several; and CMakeLists.txt of its folder builds it. In the folders
# that are listed for it, each source has a test of its own name, or is listed with the tests of it.
#   cmake -D SOURCE_DIR=<the project> -P mirrors.cmake
cmake_minimum_required(VERSION 3.25)

# Folders without their own tests: the time is a struct, which object_model/layout_test checks.
set(surveydata_untested platform)
set(tools_untested "")

# Tests of several sources.
set(surveydata_several
  # every function of the C interface, by subject
  c_interface/c_interface_area c_interface/c_interface_columns c_interface/c_interface_faults
  c_interface/c_interface_measurement c_interface/c_interface_posix c_interface/c_interface_reader
  c_interface/c_interface_texts c_interface/c_interface_threads c_interface/c_interface_values
  # readers and writers with files, failing calls, the samples and invalid texts
  gnss/posix_files gnss/windows_files gnss/record_faults gnss/record_samples
  gnss/invalid_parameter_handler
  # the rules of every pair
  object_model/destruction object_model/heap object_model/memory_faults object_model/ownership_checks
  object_model/pair_rules object_model/random_program object_model/record_rules
  object_model/virtual_slots
  object_model/hardened_format
  # recorded results of all functions
  sphere_geometry/geometry_cases)
set(tools_several
  # the program as a whole
  ./program ./posix_program
  # the area commands, and the parts that they share
  area/area_program area/area_parts
  # manual page, completions and help, which are made from one description
  command_line/descriptions)

# Folders in which each source has a test of its own name, and the sources in them that have none.
set(surveydata_each geodetic gnss imaging object_model scanning sphere_geometry total_station)
set(surveydata_without
  # tested by all that read, write, change and explain frames: record_frame_test, record_encode_test,
  # record_change_test, frame_explanation_test
  gnss/byte_sum gnss/frame_blocks gnss/frame_cursors gnss/frame_fields
  # parts of the reader and the writer: gps_record_file_test, gps_record_reader_test,
  # gps_record_writer_test
  gnss/gps_record_file_info gnss/gps_record_outcome gnss/record_damage gnss/record_source
  # parts of the columns: gps_record_columns_test; dilutions: gps_dops_test, too
  gnss/dilution gnss/record_columns gnss/text_column gnss/time_text
  # macros; ownership_checks_test
  object_model/export object_model/lent_object
  # area_explanation_test
  scanning/explain_direction)
set(tools_each "")
set(tools_without "")

set(violations 0)
set(seen 0)
macro(complain text)
  message(SEND_ERROR "${text}")
  math(EXPR violations "${violations} + 1")
endmacro()

function(check_tests root tests)
  file(GLOB_RECURSE sources RELATIVE ${SOURCE_DIR}/${root}
    ${SOURCE_DIR}/${root}/*.h ${SOURCE_DIR}/${root}/*.cpp)
  set(folders "")
  foreach(source ${sources})
    get_filename_component(folder ./${source} DIRECTORY)
    string(REGEX REPLACE "^\\./" "" folder ${folder})
    get_filename_component(name ${source} NAME_WE)
    string(REGEX REPLACE "_(posix|windows)$" "" name ${name})
    list(APPEND folders ${folder})
    list(APPEND names_${folder} ${name})
  endforeach()
  list(REMOVE_DUPLICATES folders)

  set(several ${${root}_several})
  set(without ${${root}_without})
  foreach(folder ${folders})
    file(GLOB files RELATIVE ${SOURCE_DIR}/${tests}/${folder}
      ${SOURCE_DIR}/${tests}/${folder}/*_test.cpp ${SOURCE_DIR}/${tests}/${folder}/*_test.c)
    if(folder IN_LIST ${root}_untested OR (folder STREQUAL "." AND root STREQUAL "surveydata"))
      if(files AND NOT folder STREQUAL ".")
        complain("${tests}/${folder} has tests and is listed as having none")
      endif()
      continue()
    endif()
    if(NOT files)
      complain("${root}/${folder} has no tests in ${tests}/${folder}")
      continue()
    endif()
    if(folder IN_LIST ${root}_each)
      list(REMOVE_DUPLICATES names_${folder})
      foreach(name ${names_${folder}})
        set(has_test FALSE)
        foreach(file ${files})
          if(file MATCHES "^${name}_([a-z0-9_]+_)?test\\.cp?p?$")
            set(has_test TRUE)
          endif()
        endforeach()
        if(${folder}/${name} IN_LIST without)
          list(REMOVE_ITEM without ${folder}/${name})
          if(has_test)
            complain("${folder}/${name} has a test and is listed as having none")
          endif()
        elseif(NOT has_test)
          complain("${root}/${folder}/${name} has no test of its name in ${tests}/${folder}")
        endif()
      endforeach()
    endif()
    file(READ ${SOURCE_DIR}/${tests}/${folder}/CMakeLists.txt built)
    foreach(file ${files})
      math(EXPR seen "${seen} + 1")
      string(REGEX REPLACE "_test\\.cp?p?$" "" test ${file})
      set(found FALSE)
      foreach(name ${names_${folder}})
        if(test STREQUAL name OR test MATCHES "^${name}_")
          set(found TRUE)
        endif()
      endforeach()
      if(${folder}/${test} IN_LIST several)
        list(REMOVE_ITEM several ${folder}/${test})
        if(found)
          complain("${folder}/${test} is named after a source and need not be listed")
        endif()
      elseif(NOT found)
        complain("${tests}/${folder}/${file} is named after no source of ${root}/${folder}")
      endif()
      # By its name, or by a function whose argument is the last word of the name.
      string(REGEX REPLACE "^.*_" "" last ${test})
      string(FIND "${built}" "${test}_test" place)
      if(place EQUAL -1 AND NOT last MATCHES "^(posix|windows)$"
         AND NOT built MATCHES "surveydata_[a-z_]*test\\(${last}[ )]")
        complain("${tests}/${folder}/CMakeLists.txt does not build ${file}")
      endif()
    endforeach()
  endforeach()
  foreach(test ${several})
    complain("${tests}/${test}_test is listed but does not exist")
  endforeach()
  foreach(name ${without})
    complain("${name} is listed as having no test but does not exist")
  endforeach()
  set(seen ${seen} PARENT_SCOPE)
  set(violations ${violations} PARENT_SCOPE)
endfunction()

check_tests(surveydata tests)
check_tests(tools tests/tools)

if(seen LESS 100)
  complain("only ${seen} tests were found: this check is ineffective")
endif()
if(violations GREATER 0)
  message(FATAL_ERROR "${violations} tests are not where their sources are")
endif()
message(STATUS "${seen} tests mirror their sources")
