# Functions that read abi/surveydata.exports and the symbols of binaries, for the build, the tests
# and abi/update_exports.

# Functions of the C interface.
set(exports_c "^surveydata_[a-z]")
# Prefixes of mangled names in the library's namespaces: members, vtables, type information and its
# names, thunks; and the functions of the C interface.
set(exports_scope "^_Z(T[VIS]|Thn?[0-9]+_)?N?K?3(API|SDI|ODM)|${exports_c}")
# The same, and other symbols that compilers emit: function-local statics, guard variables, VTTs.
set(exports_held "^_Z(T[A-Z]|T[hv]n?[0-9_]+|GV|Z)?N?[KVRO]*3(API|SDI|ODM)")
# Vtables and type information. Every user of a class may have its own copy; exporting them merges
# the copies.
set(exports_type "^_ZT[VI]")
# Symbols that no caller needs on ELF systems, where exported names take space, by their demangled
# names: names of types, type symbols of base templates that only the library derives from, and
# constants, of which every user has a copy.
set(exports_needless "^typeinfo name for " "^((vtable|typeinfo) for )?API::(HandleC|ImplC)<"
  "^((vtable|typeinfo) for )?SDI::GPSMeasFieldsC<" "::k[A-Z][A-Za-z0-9]*(<.*>)?$")
list(JOIN exports_needless "|" exports_needless)

# Sets exports_elf, exports_windows, exports_numbers (ordinal:symbol, including removed symbols) and
# exports_last, the highest ordinal.
macro(exports_read file)
  set(exports_elf "")
  set(exports_windows "")
  set(exports_numbers "")
  set(exports_last 0)
  file(STRINGS ${file} exports_lines REGEX "^[^#]")
  foreach(line IN LISTS exports_lines)
    # Only symbols that Windows exports, or once exported, have an ordinal.
    if(NOT line MATCHES "^([0-9]+ (both|windows|gone)|- elf) [A-Za-z0-9_]+$")
      message(FATAL_ERROR "${file}: invalid line: ${line}")
    endif()
    string(REPLACE " " ";" line "${line}")
    list(GET line 0 number)
    list(GET line 1 platforms)
    list(GET line 2 symbol)
    if(platforms MATCHES "both|elf")
      list(APPEND exports_elf ${symbol})
    endif()
    if(platforms MATCHES "both|windows")
      list(APPEND exports_windows ${symbol})
    endif()
    if(NOT number STREQUAL "-")
      list(APPEND exports_numbers "${number}:${symbol}")
      if(number GREATER exports_last)
        set(exports_last ${number})
      endif()
    endif()
  endforeach()
endmacro()

# Sets `result` to the dynamic symbols that the shared library `file` defines, as NAME@@VERSION.
function(exports_of_shared_library readelf file result)
  execute_process(COMMAND ${readelf} --dyn-syms -W ${file}
    OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "(GLOBAL|WEAK|UNIQUE) +[A-Z]+ +[0-9]+ +[^ \n]+" symbols "${output}")
  list(TRANSFORM symbols REPLACE ".* " "")
  set(${result} ${symbols} PARENT_SCOPE)
endfunction()

# Sets `result` to the visible symbols of the library's namespaces in object files or static
# libraries, without those that no caller needs.
function(exports_of_objects readelf cxxfilt files result)
  execute_process(COMMAND ${readelf} -s -W ${files}
    OUTPUT_VARIABLE output ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "(GLOBAL|WEAK|UNIQUE) +DEFAULT +[0-9]+ +(_Z|surveydata_)[^ \n]+"
    symbols "${output}")
  list(TRANSFORM symbols REPLACE ".* " "")
  exports_in_scope(${cxxfilt} "${symbols}" symbols "${exports_needless}")
  set(${result} ${symbols} PARENT_SCOPE)
endfunction()

# Sets `result` to those of `symbols` in the library's namespaces, sorted, without those whose
# demangled names match an additional argument.
function(exports_in_scope cxxfilt symbols result)
  list(FILTER symbols INCLUDE REGEX "${exports_scope}")
  list(REMOVE_DUPLICATES symbols)
  list(SORT symbols)
  string(REPLACE ";" "\n" lines "${symbols}")
  string(RANDOM input)
  file(WRITE ${input} "${lines}\n")
  execute_process(COMMAND ${cxxfilt} INPUT_FILE ${input}
    OUTPUT_VARIABLE names COMMAND_ERROR_IS_FATAL ANY OUTPUT_STRIP_TRAILING_WHITESPACE)
  file(REMOVE ${input})
  string(REPLACE "\n" ";" names "${names}")
  set(kept "")
  foreach(symbol name IN ZIP_LISTS symbols names)
    if(NOT ARGN OR NOT name MATCHES "${ARGN}")
      list(APPEND kept ${symbol})
    endif()
  endforeach()
  set(${result} ${kept} PARENT_SCOPE)
endfunction()

# Sets `result` to the elements of `a` that are not in `b`.
function(exports_difference result a b)
  if(a AND b)
    list(REMOVE_ITEM a ${b})
  endif()
  set(${result} ${a} PARENT_SCOPE)
endfunction()

# Reports an error with `title` and the demangled symbols, one per line, unless there are none.
function(exports_complain cxxfilt title symbols)
  if(symbols)
    string(REPLACE ";" "\n  " lines "${symbols}")
    string(RANDOM input)
    file(WRITE ${input} "  ${lines}\n")
    execute_process(COMMAND ${cxxfilt} INPUT_FILE ${input} OUTPUT_VARIABLE names)
    file(REMOVE ${input})
    message(SEND_ERROR "${title}\n${names}")
  endif()
endfunction()
