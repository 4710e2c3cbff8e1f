# Checks the object files in the static library LIBRARY with NM and CXXFILT. CHECK is state: their
# only state is the file handle of GPSRecordFileC; or imports: they take no lock, start no thread,
# and read neither environment nor locale. HAS_ASSERTIONS is true for a debug build.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${NM} -A -f sysv ${LIBRARY}
  OUTPUT_VARIABLE output ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
# object:symbol|value|class|type|size|line|section
string(REGEX MATCHALL "[^:\n]+\\.(o|obj):[^\n]+" lines "${output}")
list(TRANSFORM lines REPLACE " " "")
list(FILTER lines INCLUDE REGEX "^[^|]+[|]")
if("${lines}" MATCHES "unity_[a-z_]+_cxx.cxx.o:")
  message("skipped: an object has the code of several sources")
  return()
endif()
if(NOT "${lines}" MATCHES "base.cpp.o:_ZN3API[A-Za-z0-9_]*[|][^;]*[|].text")
  message("skipped: these objects contain no machine code")
  return()
endif()

# complain(<title> <object:symbol>...): reports an error with the demangled symbols, one per line.
function(complain title)
  set(lines "")
  foreach(entry IN LISTS ARGN)
    string(REPLACE ":" ": " entry ${entry})
    string(APPEND lines "  ${entry}\n")
  endforeach()
  if(lines)
    string(RANDOM input)
    file(WRITE ${input} "${lines}")
    execute_process(COMMAND ${CXXFILT} INPUT_FILE ${input} OUTPUT_VARIABLE lines)
    file(REMOVE ${input})
    message(SEND_ERROR "${title}\n${lines}")
  endif()
endfunction()

# State is anything in writable memory, or initialised or destroyed at run time. Relocated constants
# are read-only after loading (.data.rel.ro).
if(CHECK STREQUAL "state")
  set(state ${lines})
  list(FILTER state INCLUDE REGEX
    "[|]([.](data|bss|tdata|tbss|ldata|lbss)[^|]*|[*]COM[*])$|:_GLOBAL__|:_ZGV|:_ZTH|:_ZTW")
  # Not state: what the loader relocates, and the compiler's references to handlers and to the types of
  # exceptions.
  list(FILTER state EXCLUDE REGEX
    "[|][.]data[.]rel[.]ro[^|]*$|[|][.]data[.]rel[.]local[.]DW[.]ref[.](__gxx_personality_v0|_ZTI[A-Za-z0-9_]+)$")
  list(TRANSFORM state REPLACE "[|].*" "" OUTPUT_VARIABLE symbols)
  set(handle ${symbols})
  list(FILTER handle INCLUDE REGEX "^gps_record_file[.]cpp[.]o:_ZN3SDI.*10recordFileE$")
  list(FILTER symbols EXCLUDE REGEX "^gps_record_file[.]cpp[.]o:_ZN3SDI.*10recordFileE$")
  complain("the library has state besides the file handle of GPSRecordFileC:" ${symbols})
  list(LENGTH handle handles)
  list(FILTER state INCLUDE REGEX "10recordFileE[|]")
  if(NOT handles EQUAL 1 OR NOT "${state}" MATCHES "[|]0*${POINTER_SIZE}[|][|][.]bss[^;]*$")
    message(SEND_ERROR "the file handle of GPSRecordFileC is not one pointer: ${state}")
  endif()
  return()
endif()

# All functions that the library may import. Before adding one, check that it involves no lock,
# thread, environment, locale, output, clock or random numbers.
set(files fopen fopen64 fclose fread fwrite fseek fseeko fseeko64 ftello ftello64 ferror fileno setvbuf
    ftruncate ftruncate64 fstat fstat64 remove)
set(numbers acos atan atan2 ceil cos floor fmod frexp ldexp lround nearbyint pow remainder rint round sin
    sincos sqrt sqrtf tan trunc)
set(memory memchr memcmp memcpy memmove memset strcmp strlen strncmp)
set(texts strtod strtol vsnprintf  # atof, atoi and atol; Format
  _ZSt8to_charsPcS_f[A-Za-z0-9_]*)  # independent of the locale
set(language
  __cxa_allocate_exception __cxa_bad_cast __cxa_begin_catch __cxa_call_unexpected __cxa_end_catch
  __cxa_free_exception __cxa_pure_virtual __cxa_rethrow __cxa_throw
  __cxa_throw_bad_array_new_length __dynamic_cast __errno_location __gxx_personality_v0
  __stack_chk_fail __stack_chk_fail_local _GLOBAL_OFFSET_TABLE_ _Unwind_Resume
  __divdi3 __moddi3 __udivdi3 __umoddi3  # 64-bit division on 32-bit platforms
  __ctzdi2  # the lowest bit of 64 on 32-bit platforms
  __libc_single_threaded)  # reference counts check whether the process has one thread
list(JOIN files "|" files)
list(JOIN numbers "|" numbers)
list(JOIN memory "|" memory)
list(JOIN texts "|" texts)
list(JOIN language "|" language)
set(checked "__(${memory}|fread)_chk")  # the same with FORTIFY
# operator new and delete, functions that throw, exceptions, type information, std::string, ordered
# containers
string(CONCAT runtime
  "_Z(nw|dl|na|da)[A-Za-z0-9_]*|_ZSt[0-9]+__throw_[A-Za-z0-9_]*|_ZSt9terminatev|_ZSt7nothrow"
  "|_ZSt21__glibcxx_assert_fail[A-Za-z0-9_]*|_ZSt20__throw_[A-Za-z0-9_]*"
  "|_ZT[IVS](N10__cxxabiv1[A-Za-z0-9_]*|St9exception|St8bad_cast|St9bad_alloc|St11logic_error|St12length_error)"
  "|_ZNK?St(9exception|8bad_cast|9bad_alloc|11logic_error)[A-Za-z0-9_]*"
  "|_ZNK?St7__cxx1112basic_stringIcSt11char_traitsIcESaIcEE[A-Za-z0-9_]*|_ZSt[0-9]+_Rb_tree_[A-Za-z0-9_]*")
set(allowed "${numbers}|${memory}|${texts}|${language}|${checked}|${runtime}")

set(undefined ${lines})
list(FILTER undefined INCLUDE REGEX "[|][*]UND[*]$")
list(TRANSFORM undefined REPLACE "[|].*" "")
set(defined ${lines})
list(FILTER defined EXCLUDE REGEX "[|][*]UND[*]$")
list(TRANSFORM defined REPLACE "^[^:]*:|[|].*" "")
list(REMOVE_DUPLICATES defined)
set(imports "")
foreach(entry IN LISTS undefined)
  string(REGEX REPLACE "^[^:]*:" "" symbol ${entry})
  if(NOT symbol IN_LIST defined)
    list(APPEND imports ${entry})
  endif()
endforeach()
list(FILTER imports EXCLUDE REGEX ":(${allowed})$")
# Only these files access record files, and only one prints a report.
list(FILTER imports EXCLUDE REGEX "^(gps_record[a-z_]*|record_source|file_access)[.]cpp[.]o:(${files})$")
list(FILTER imports EXCLUDE REGEX "^vectors[.]cpp[.]o:(printf|__printf_chk)$")
# Debug builds end the program on misuse of ownership.
if(HAS_ASSERTIONS)
  list(FILTER imports EXCLUDE REGEX ":__assert_fail$|^base[.]cpp[.]o:__libc_stack_end$")
endif()
complain("the library imports functions that objects.cmake does not list:"
  ${imports})
