# Run by CPack behind the packages it has made: Debian has a trigger where CPack writes scripts that
# call ldconfig, and packages of several architectures stand beside each other.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(tree ${package}.tree)
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${tree} COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS ${tree}/DEBIAN/shlibs)
    file(REMOVE ${tree}/DEBIAN/postinst ${tree}/DEBIAN/postrm)
    file(WRITE ${tree}/DEBIAN/triggers "activate-noawait ldconfig\n")
  endif()
  file(READ ${tree}/DEBIAN/control control)
  if(control MATCHES "\nSection: lib" AND NOT control MATCHES "\nMulti-Arch:")
    string(STRIP "${control}" control)
    file(WRITE ${tree}/DEBIAN/control "${control}\nMulti-Arch: same\n")
  endif()
  execute_process(COMMAND dpkg-deb --root-owner-group --build ${tree} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${tree})
endforeach()
