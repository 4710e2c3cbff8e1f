#!/usr/bin/env bash
# Builds everything and runs every test: as built for development, then with address and
# undefined-behaviour checks. ./test.sh --quick leaves the second out.
set -euo pipefail
cd "$(dirname "$0")"

presets=(dev asan)
case "${1:-}" in
  "") ;;
  --quick) presets=(dev) ;;
  *) echo "usage: ./test.sh [--quick]" >&2; exit 2 ;;
esac

. cmake/install_dependencies.sh
install_dependencies "${build_packages[@]}" "${test_packages[@]}"

for preset in "${presets[@]}"; do
  cmake --workflow --preset "$preset"
done
