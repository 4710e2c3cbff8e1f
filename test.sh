#!/usr/bin/env bash
# Builds everything and runs every test: as built for development, then with address and
# undefined-behaviour checks. ./test.sh --quick leaves the second out. ./test.sh --windows builds for
# 64-bit Windows instead, and runs the tests under wine. ./test.sh --fuzz SECONDS runs each fuzz target
# for so long instead, two at once, on from what earlier runs found out (build/fuzz/corpus).
set -euo pipefail
cd "$(dirname "$0")"

presets=(dev asan)
packages=()
. cmake/install_dependencies.sh
case "${1:-}" in
  "") ;;
  --quick) presets=(dev) ;;
  --windows)
    presets=(mingw)
    packages=("${windows_compiler_packages[@]}" "${windows_test_packages[@]}")
    ;;
  --fuzz)
    [[ "${2:-}" =~ ^[1-9][0-9]*$ ]] || { echo "usage: ./test.sh --fuzz SECONDS" >&2; exit 2; }
    ;;
  *) echo "usage: ./test.sh [--quick | --windows | --fuzz SECONDS]" >&2; exit 2 ;;
esac

install_dependencies "${build_packages[@]}" "${test_packages[@]}" ${packages[@]+"${packages[@]}"}

if [ "${1:-}" = --fuzz ]; then
  cmake --preset fuzz
  cmake --build --preset fuzz
  exec tests/fuzz/run_targets.sh build/fuzz "$2"
fi

if [ "${1:-}" = --windows ]; then
  # A wine of our own, whose server stays until the end: one that is about to leave would take along
  # a program that starts then.
  export WINEPREFIX="$PWD/build/wine" WINEDEBUG=-all
  mkdir -p "$WINEPREFIX"
  wineserver -p
  trap 'wineserver -k' EXIT
  wine wineboot --init >/dev/null 2>&1
fi

for preset in "${presets[@]}"; do
  cmake --workflow --preset "$preset"
done
