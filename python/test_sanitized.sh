#!/usr/bin/env bash
# Tests the extension module with the address and undefined-behaviour sanitizers. Leaks are not
# checked here: the interpreter itself leaks, and test_objects.py measures what objects leave.
# The sanitizer's own allocator does not survive a fork while other threads run.
set -euo pipefail
cd "$(dirname "$0")/.."
. python/environment.sh
package=$out/asan/package
cmake -G Ninja -S . -B "$out/asan" -D CMAKE_BUILD_TYPE=Debug -D SURVEYDATA_BUILD_PYTHON=ON \
  -D SURVEYDATA_BUILD_TESTS=OFF -D SURVEYDATA_BUILD_TOOLS=OFF -D SURVEYDATA_BUILD_EXAMPLES=OFF \
  -D SURVEYDATA_BUILD_BENCHMARKS=OFF -D SURVEYDATA_INSTALL=OFF -D SURVEYDATA_LTO=OFF \
  -D SURVEYDATA_SANITIZE=address,undefined -D "Python_EXECUTABLE=$out/venv/bin/python"
cmake --build "$out/asan" --target surveydata_python
rm -rf "$package"
mkdir -p "$package"
cp -r python/surveydata "$package"
cp "$out"/asan/python/_core.*.so "$package/surveydata"
export PYTHONPATH=$package PYTHONMALLOC=malloc ASAN_OPTIONS=detect_leaks=0:allocator_may_return_null=1
# Few examples of each property: code with sanitizers is slow.
LD_PRELOAD="$(g++ -print-file-name=libasan.so) $(g++ -print-file-name=libubsan.so)" \
  python -P -m pytest -q --hypothesis-profile=few \
  python/tests/test_changes.py python/tests/test_records.py \
  python/tests/test_objects.py python/tests/test_areas.py \
  --deselect python/tests/test_objects.py::test_no_object_outlives_its_last_name \
  --deselect python/tests/test_records.py::test_child_processes_read_while_threads_read "$@"
