# Builds for 32-bit x86 with Debian's g++-multilib; the host runs the binaries. SSE2 rounds every
# operation to double precision, as on other platforms; the registers of the x87 are wider.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")

include(${CMAKE_CURRENT_LIST_DIR}/host_headers.cmake)
