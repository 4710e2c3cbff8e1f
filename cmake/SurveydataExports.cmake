# surveydata_export(<target> <list>): makes the shared library export the symbols in the list.
# Writes the version script of an ELF library, or the module definition file of a Windows one, which
# exports by ordinal, and only the functions of the C interface by name as well.
include(${PROJECT_SOURCE_DIR}/abi/Exports.cmake)

function(surveydata_export target list)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
  exports_read(${list})
  if(WIN32)
    set(file ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
    set(lines "EXPORTS")
    foreach(entry IN LISTS exports_numbers)
      string(REPLACE ":" ";" entry ${entry})
      list(GET entry 0 number)
      list(GET entry 1 symbol)
      if(symbol IN_LIST exports_windows)
        string(APPEND lines "\n  ${symbol} @${number}")
        if(NOT symbol MATCHES "${exports_c}")
          string(APPEND lines " NONAME")
        endif()
      endif()
    endforeach()
    file(CONFIGURE OUTPUT ${file} CONTENT "${lines}\n" @ONLY)
    target_sources(${target} PRIVATE ${file})
  elseif(NOT APPLE)
    set(file ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
    set(exports_of_c ${exports_elf})
    list(FILTER exports_of_c INCLUDE REGEX "${exports_c}")
    list(FILTER exports_elf EXCLUDE REGEX "${exports_c}")
    if(NOT CMAKE_SIZEOF_VOID_P EQUAL 8)
      # The list has the mangled names of 64-bit platforms, which encode the width of std::size_t.
      # Other platforms export everything that is marked as exported.
      set(exports_elf "")
      foreach(namespace API SDI ODM)
        string(LENGTH ${namespace} length)
        list(APPEND exports_elf _ZN${length}${namespace}* _ZNK${length}${namespace}*
          _ZT[IV]${length}${namespace}* _ZT[IV]N${length}${namespace}*)
      endforeach()
    endif()
    list(JOIN exports_elf ";\n    " symbols)
    list(JOIN exports_of_c ";\n    " c_symbols)
    file(CONFIGURE OUTPUT ${file} CONTENT
      "SURVEYDATA_1 {\n  global:\n    ${symbols};\n  local:\n    *;\n};\n\
SURVEYDATA_C_1 {\n  global:\n    ${c_symbols};\n};\n" @ONLY)
    target_link_options(${target} PRIVATE LINKER:--version-script=${file})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${file})
    # If the list is out of date, linking a caller fails with an undefined reference. This reports
    # the missing symbols before that. Precompiled headers count as objects.
    if(SURVEYDATA_BUILD_TESTS AND CMAKE_SIZEOF_VOID_P EQUAL 8 AND
       CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND
       NOT SURVEYDATA_SANITIZE AND NOT SURVEYDATA_COVERAGE)
      add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -D SHARED_LIBRARY=$<TARGET_FILE:${target}>
                "-D OBJECTS=$<FILTER:$<TARGET_OBJECTS:surveydata_objects>,EXCLUDE,[.]gch>"
                -D READELF=${CMAKE_READELF} -D CXXFILT=c++filt
                -D COMPARE_OBJECTS=ON -D COMPARE_TYPES=ON
                -P ${PROJECT_SOURCE_DIR}/abi/compare_exports.cmake || ${CMAKE_COMMAND} -E true
        VERBATIM)
    endif()
  endif()
endfunction()
