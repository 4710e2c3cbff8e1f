# Run by CPack after it has created the packages, to correct them: replaces maintainer scripts that
# call ldconfig with a trigger, marks library packages as co-installable (Multi-Arch: same), and
# sets modes that do not depend on the umask.
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
  execute_process(
    COMMAND find ${tree} -type d -exec chmod 755 {} + -o
            -type f -path ${tree}/usr/bin/* -exec chmod 755 {} + -o -type f -exec chmod 644 {} +
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND dpkg-deb --root-owner-group --build ${tree} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${tree})
endforeach()
