#!/usr/bin/env bash
# Builds the library alone from scratch with two processes; reports the time and the size of the
# result.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/library_weight
rm -rf "$build"
CMAKE_CXX_COMPILER_LAUNCHER='' cmake --preset release -B "$build" \
  -DSURVEYDATA_BUILD_{TESTS,TOOLS,BENCHMARKS,EXAMPLES}=OFF >/dev/null
start=$(date +%s.%N)
cmake --build "$build" --target surveydata -j2 >/dev/null
end=$(date +%s.%N)
echo "-- clean build: $(echo "$end $start" | awk '{printf "%.1f", $1 - $2}') s"
cmake -D LIBRARY="$build/surveydata/libsurveydata.so" -D WORK_DIR="$build" \
  -D STRIP=strip -D READELF=readelf -P benchmarks/library_weight.cmake
