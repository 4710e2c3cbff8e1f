# s2_peer: the S2 geometry library as a peer in tests and benchmarks. A system include folder
# silences warnings from its headers; Debian's package has no CMake package file.
find_package(OpenSSL REQUIRED)
find_path(S2_INCLUDE_DIR s2/s2loop.h REQUIRED)
find_library(S2_LIBRARY s2 REQUIRED)
find_package(absl REQUIRED)

if(NOT TARGET s2_peer)
  add_library(s2_peer INTERFACE)
  target_include_directories(s2_peer SYSTEM INTERFACE ${S2_INCLUDE_DIR})
  target_link_libraries(s2_peer INTERFACE
    ${S2_LIBRARY} OpenSSL::Crypto absl::base absl::strings absl::hash absl::flat_hash_set)
endif()
