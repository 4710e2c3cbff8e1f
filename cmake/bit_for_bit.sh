#!/usr/bin/env bash
# The sphere geometry gives the same answers bit for bit with every compiler: builds it with each of
# these compilers and compares its answers with those in tests/data/geometry_cases.txt. For Windows,
# ./test.sh --windows does.
set -euo pipefail
cd "$(dirname "$0")/.."

builds=("g++ -O0" "g++ -O3" "clang++ -O2")
# On a processor with fused multiply-add, a compiler could use it.
if grep -qw fma /proc/cpuinfo; then
  builds+=("g++ -O3 -march=x86-64-v3" "clang++ -O3 -march=x86-64-v3")
fi

for build in "${builds[@]}"; do
  folder="build/bit_for_bit/${build//[^a-z0-9]/_}"
  compiler=${build%% *}
  cmake -S . -B "$folder" -G Ninja \
    -D CMAKE_BUILD_TYPE=Debug -D CMAKE_CXX_COMPILER="$compiler" \
    -D CMAKE_CXX_FLAGS_DEBUG="${build#* }" \
    -D SURVEYDATA_BUILD_TOOLS=OFF -D SURVEYDATA_BUILD_EXAMPLES=OFF \
    -D SURVEYDATA_BUILD_BENCHMARKS=OFF >/dev/null
  cmake --build "$folder" --target geometry_cases_test >/dev/null
  echo "== $build"
  "$folder/tests/sphere_geometry/geometry_cases_test" --gtest_brief=1
done
