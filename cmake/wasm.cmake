# Builds for WebAssembly with Debian's emscripten, whose compiler needs NODE_PATH; the preset sets it.
set(CMAKE_CROSSCOMPILING_EMULATOR node)
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/host_headers.cmake)
