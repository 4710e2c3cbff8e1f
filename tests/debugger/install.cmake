# Installs the build BUILD_DIR to ROOT and strips LIBRARY there.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${ROOT})
foreach(component runtime development)
  execute_process(
    COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --component ${component} --prefix ${ROOT}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(GLOB_RECURSE library ${ROOT}/${LIBRARY})
execute_process(COMMAND ${STRIP} ${library} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${READELF} -SW ${library}
  OUTPUT_VARIABLE sections COMMAND_ERROR_IS_FATAL ANY)
if(NOT sections MATCHES "\\.dynsym" OR sections MATCHES "\\.symtab|\\.debug")
  message(FATAL_ERROR "${library} is not stripped:\n${sections}")
endif()

# gdb finds the printers through the path of the library.
cmake_path(RELATIVE_PATH library BASE_DIRECTORY / OUTPUT_VARIABLE path)
if(NOT EXISTS ${ROOT}/share/gdb/auto-load/${path}-gdb.py)
  message(FATAL_ERROR "gdb finds no printers for ${library}")
endif()
