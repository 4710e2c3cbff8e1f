# Builds for 32-bit x86 with Debian's g++-multilib; this system runs what is built. Numbers are kept in
# SSE2 registers, which round a double as everywhere: those of the x87 are wider.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")

include(${CMAKE_CURRENT_LIST_DIR}/host_headers.cmake)
