# Compares abi/surveydata.exports with the shared library and with its object files.
#
# A listed symbol that the library does not export is missing. Type symbols may be missing: every
# user of a class has its own copy. A visible symbol in the object files that is not in the list is
# new. Only plain builds check for new symbols (COMPARE_OBJECTS), because instrumented ones emit
# more, and only g++ builds check type symbols (COMPARE_TYPES). Every build checks that nothing else
# is exported.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/Exports.cmake)

exports_read(${CMAKE_CURRENT_LIST_DIR}/surveydata.exports)

exports_of_shared_library(${READELF} ${SHARED_LIBRARY} versioned)
set(exported ${versioned})
list(FILTER versioned EXCLUDE REGEX "^_Z.*@@SURVEYDATA_1$|${exports_c}[a-z_]*@@SURVEYDATA_C_1$")
exports_complain(${CXXFILT}
  "Exported without the version SURVEYDATA_1, or SURVEYDATA_C_1 for the C interface:"
  "${versioned}")
list(TRANSFORM exported REPLACE "@.*" "")
if(NOT exported OR NOT exports_elf)
  message(FATAL_ERROR "no symbols found")
endif()

exports_difference(missing "${exports_elf}" "${exported}")
list(FILTER missing EXCLUDE REGEX "${exports_type}")
if(NOT COMPARE_TYPES)
  # clang does not emit the complete constructor of an abstract class.
  list(FILTER missing EXCLUDE REGEX "C1E")
endif()
exports_complain(${CXXFILT} "In the list, but not exported by the library:" "${missing}")

exports_difference(surplus "${exported}" "${exports_elf}")
exports_complain(${CXXFILT} "Exported by the library, but not in the list:" "${surplus}")

if(COMPARE_OBJECTS)
  exports_of_objects(${READELF} ${CXXFILT} "${OBJECTS}" visible)
  exports_difference(new "${visible}" "${exports_elf}")
  if(NOT COMPARE_TYPES)
    list(FILTER new EXCLUDE REGEX "${exports_type}")
  endif()
  exports_complain(${CXXFILT}
    "New symbols. Run abi/update_exports, and commit the list with the change:" "${new}")
endif()

# Symbols of the geometry, of Boost and of the standard library are not exported.
exports_in_scope(${CXXFILT} "${exports_elf};${exports_windows}" in_scope)
set(listed ${exports_elf} ${exports_windows})
exports_difference(foreign "${listed}" "${in_scope}")
exports_complain(${CXXFILT} "In the list, but not in a namespace of the library:" "${foreign}")
