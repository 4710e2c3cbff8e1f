#!/usr/bin/env bash
# Checks that the sphere geometry gives the same results bit for bit with every compiler and
# optimisation level: builds it with each of these and compares its results with those in
# tests/data/geometry_cases.txt. Compiles only the sphere geometry, which does not depend on the rest of
# the library. ./test.sh --windows checks this for Windows.
set -euo pipefail
cd "$(dirname "$0")/.."

builds=("g++ -O0" "g++ -O3" "clang++ -O2")
# Where the processor has fused multiply-add, check that the compiler does not use it.
if grep -qw fma /proc/cpuinfo; then
  builds+=("g++ -O3 -march=x86-64-v3" "clang++ -O3 -march=x86-64-v3")
fi

# The sources of the library are compiled as one, which takes half the time.
mkdir -p build/bit_for_bit
printf '#include "%s"\n' surveydata/sphere_geometry/*.cpp >build/bit_for_bit/sphere_geometry.cpp
sources=(build/bit_for_bit/sphere_geometry.cpp tests/sphere_geometry/geometry_cases_test.cpp
         tests/support/{geometry_cases,literal_sphere_area,ring_generator}.cpp)
export options="-std=c++20 -ffp-contract=off -fno-semantic-interposition -I. -Itests/support
                -DSURVEYDATA_STATIC -DSURVEYDATA_TEST_DATA=\"tests/data/\""

for build in "${builds[@]}"; do
  export build folder="build/bit_for_bit/${build//[^a-z0-9]/_}"
  rm -rf "$folder"
  mkdir -p "$folder"
  printf '%s\n' "${sources[@]}" |
    xargs -P "$(nproc)" -I '{}' bash -c '$build $options -c "$1" -o "$folder/$(basename "$1").o"' - '{}'
  ${build%% *} "$folder"/*.o -lgtest -lgtest_main -o "$folder/geometry_cases_test"
  echo "== $build"
  "$folder/geometry_cases_test" --gtest_brief=1
done
