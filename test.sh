#!/usr/bin/env bash
# Builds everything and runs all tests: the preset dev, then the preset asan with address and
# undefined-behaviour sanitizers. An argument selects another check instead. Missing packages are
# installed.
set -euo pipefail
cd "$(dirname "$0")"
. cmake/install_dependencies.sh

usage() {
  cat >&2 <<'END'
usage: ./test.sh [PART]
  (none)          build and run all tests with the preset dev, then with sanitizers (preset asan)
  --quick         build and run all tests with the preset dev only
  --layout        check the formatting of the sources with clang-format
  --tidy          check the sources with clang-tidy and cppcheck
  --windows       build for 64-bit Windows and test under wine
  --m32           build the library for 32-bit x86 and run its unit tests
  --threads       run the multi-threaded tests with the thread sanitizer
  --fuzz SECONDS  run each fuzz target for SECONDS, two at once; continues from build/fuzz/corpus
  --bit-for-bit   compare results of the sphere geometry across compilers and optimisation levels
  --valgrind      run a selection of the tests under valgrind
  --page          build the page for the browser and test it in Chromium
  --python        build, install and test the Python package, in build/python
  --python-asan   test the extension module of the package with sanitizers, in build/python/asan
  --engines       test the Python package with the query engines, in build/engines;
                  --engines --measure measures the figures of docs/scale.md instead
  --docs          build the documentation site, check its links and test it in Chromium, in build/site
END
  exit 2
}

run_workflows() {
  local preset
  for preset in "$@"; do
    cmake --workflow --preset "$preset"
    .ci/skipped_tests "build/$preset/Testing/Temporary/LastTest.log"
  done
}

check_layout() {
  install_dependencies git clang-format
  git ls-files -z '*.h' '*.cpp' '*.c' | xargs -0 clang-format --dry-run -Werror
  echo "$(git ls-files '*.h' '*.cpp' '*.c' | wc -l) files are formatted correctly."
}

test_on_windows() {
  # Keep the server of a private wine prefix running: a server that is shutting down would end a
  # program that starts at that moment.
  export WINEPREFIX="$PWD/build/wine" WINEDEBUG=-all
  mkdir -p "$WINEPREFIX"
  wineserver -p
  trap 'wineserver -k' EXIT
  wine wineboot --init >/dev/null 2>&1
  run_workflows mingw
}

test_page() {
  cmake --preset dev
  cmake --build --preset dev --target surveydata_tool page_containment_hash
  cmake --preset wasm
  cmake --build --preset wasm
  npm ci --prefix web --no-audit --no-fund
  npm run --prefix web check
  mkdir -p build/page
  node web/build.mjs build/wasm/web/surveydata.mjs build/wasm/web/surveydata.wasm build/page/surveydata.html
  SURVEYDATA_PICTURE=$PWD/build/page/page.png \
    node --test --test-reporter=tap web/tests/module.test.mjs web/tests/page.test.mjs
}

part=${1:-}
seconds=${2:-}
if [ "$part" = --fuzz ]; then
  [[ "$seconds" =~ ^[1-9][0-9]*$ ]] && [ $# -eq 2 ] || usage
elif [ "$part" = --engines ]; then
  [ $# -eq 1 ] || [[ "${2:-}" = --measure && $# -eq 2 ]] || usage
else
  [ $# -le 1 ] || usage
fi

case "$part" in
  "" | --quick | --windows | --threads | --fuzz | --bit-for-bit | --valgrind)
    install_dependencies "${build_packages[@]}" "${test_packages[@]}"
    ;;
esac
case "$part" in
  "") run_workflows dev asan ;;
  --quick) run_workflows dev ;;
  --layout) check_layout ;;
  --tidy)
    install_dependencies "${build_packages[@]}" "${tidy_packages[@]}"
    cmake --workflow --preset tidy
    ;;
  --windows)
    install_dependencies "${windows_compiler_packages[@]}" "${windows_test_packages[@]}"
    test_on_windows
    ;;
  --m32)
    install_dependencies "${build_packages[@]}" "${m32_packages[@]}"
    run_workflows m32
    ;;
  --threads) run_workflows tsan ;;
  --fuzz)
    cmake --preset fuzz
    cmake --build --preset fuzz
    tests/fuzz/run_targets.sh build/fuzz "$seconds"
    ;;
  --bit-for-bit) cmake/bit_for_bit.sh ;;
  --valgrind)
    install_dependencies valgrind
    cmake/valgrind.sh
    ;;
  --python)
    install_dependencies "${build_packages[@]}" "${python_packages[@]}"
    python/test_package.sh
    ;;
  --engines)
    install_dependencies "${build_packages[@]}" "${python_packages[@]}" "${engine_packages[@]}"
    python/test_engines.sh "${@:2}"
    ;;
  --python-asan)
    install_dependencies "${build_packages[@]}" "${python_packages[@]}"
    python/test_sanitized.sh
    ;;
  --docs)
    install_dependencies "${site_test_packages[@]}"
    ./docs.sh
    npm ci --prefix web --no-audit --no-fund
    node --test --test-reporter=tap docs/site/site.test.mjs
    ;;
  --page)
    install_dependencies "${build_packages[@]}" "${test_packages[@]}" "${page_packages[@]}"
    test_page
    ;;
  *) usage ;;
esac
