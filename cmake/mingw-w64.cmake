# Builds for 64-bit Windows with Debian's g++-mingw-w64-x86-64-posix, and runs under Debian's wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/run_under_wine.sh)

list(APPEND CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Debian has the libraries that are headers alone for this system only. Their headers are the same
# for all systems, and stand in a folder that shows none of its other headers.
get_property(is_try_compile GLOBAL PROPERTY IN_TRY_COMPILE)
if(NOT is_try_compile)
  set(host_headers ${CMAKE_BINARY_DIR}/host_headers)
  file(MAKE_DIRECTORY ${host_headers})
  foreach(name boost CLI fmt nlohmann rapidcheck rapidcheck.h)
    if(EXISTS /usr/include/${name} AND NOT EXISTS ${host_headers}/${name})
      file(CREATE_LINK /usr/include/${name} ${host_headers}/${name} SYMBOLIC)
    endif()
  endforeach()
  set(Boost_NO_BOOST_CMAKE ON)
  set(Boost_INCLUDE_DIR ${host_headers})
endif()
