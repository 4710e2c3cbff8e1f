# Compares abi/surveydata.exports with the shared library and with the objects it is made of.
#
# Missing is what the list names and the library does not let out. Type symbols may be missing: every
# user of a class has a copy of its own. New is what the objects mark as visible and the list does
# not name; only a plain build can tell (COMPARE_OBJECTS), since instrumented ones emit more, and of
# type symbols only one by g++ (COMPARE_TYPES). Whether anything else leaves is asked in every build.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/Exports.cmake)

exports_read(${CMAKE_CURRENT_LIST_DIR}/surveydata.exports)

exports_of_shared_library(${READELF} ${SHARED_LIBRARY} versioned)
set(leaving ${versioned})
list(FILTER versioned EXCLUDE REGEX "@@SURVEYDATA_1$")
exports_complain(${CXXFILT} "These leave without the version SURVEYDATA_1:" "${versioned}")
list(TRANSFORM leaving REPLACE "@.*" "")
if(NOT leaving OR NOT exports_elf)
  message(FATAL_ERROR "no symbols found")
endif()

exports_difference(missing "${exports_elf}" "${leaving}")
list(FILTER missing EXCLUDE REGEX "${exports_type}")
if(NOT COMPARE_TYPES)
  list(FILTER missing EXCLUDE REGEX "C1E")  # of an abstract class, which clang does not emit
endif()
exports_complain(${CXXFILT} "These are in the list and missing in the library:" "${missing}")

exports_difference(surplus "${leaving}" "${exports_elf}")
exports_complain(${CXXFILT} "These leave the library and are not in the list:" "${surplus}")

if(COMPARE_OBJECTS)
  exports_of_objects(${READELF} ${CXXFILT} "${OBJECTS}" visible)
  exports_difference(new "${visible}" "${exports_elf}")
  if(NOT COMPARE_TYPES)
    list(FILTER new EXCLUDE REGEX "${exports_type}")
  endif()
  exports_complain(${CXXFILT}
    "These are new. Run abi/update_exports, and commit the list with the change:" "${new}")
endif()

# The geometry, Boost and the standard library stay inside.
exports_in_scope(${CXXFILT} "${exports_elf};${exports_windows}" in_scope)
set(listed ${exports_elf} ${exports_windows})
exports_difference(foreign "${listed}" "${in_scope}")
exports_complain(${CXXFILT} "These are in the list and do not belong to the library:" "${foreign}")
