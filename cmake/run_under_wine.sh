#!/bin/sh
# Runs a Windows program of a build with mingw-w64, which finds the compiler's libraries.
for library in libstdc++-6.dll libwinpthread-1.dll; do
  path=$(x86_64-w64-mingw32-g++-posix -print-file-name=$library)
  WINEPATH="${WINEPATH:+$WINEPATH;}$(dirname "$path")"
done
export WINEPATH
export WINEDEBUG="${WINEDEBUG:--all}"
export LC_ALL=C.UTF-8  # names of files
exec wine "$@"
