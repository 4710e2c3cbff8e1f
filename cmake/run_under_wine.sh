#!/bin/sh
# Runs a Windows program built with mingw-w64 under wine, with the compiler's libraries on its path.
for library in libstdc++-6.dll libwinpthread-1.dll; do
  path=$(x86_64-w64-mingw32-g++-posix -print-file-name=$library)
  WINEPATH="${WINEPATH:+$WINEPATH;}$(dirname "$path")"
done
export WINEPATH
export WINEDEBUG="${WINEDEBUG:--all}"
export LC_ALL=C.UTF-8  # for file names
exec wine "$@"
