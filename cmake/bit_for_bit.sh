#!/usr/bin/env bash
# The sphere geometry gives the same answers bit for bit with every compiler: builds it with each of
# these compilers and compares its answers with those in tests/data/geometry_cases.txt. For Windows,
# ./test.sh --windows does. It is compiled here without the rest of the library, of which it needs
# nothing.
set -euo pipefail
cd "$(dirname "$0")/.."

builds=("g++ -O0" "g++ -O3" "clang++ -O2")
# On a processor with fused multiply-add, a compiler could use it.
if grep -qw fma /proc/cpuinfo; then
  builds+=("g++ -O3 -march=x86-64-v3" "clang++ -O3 -march=x86-64-v3")
fi

sources=(surveydata/sphere_geometry/*.cpp tests/sphere_geometry/geometry_cases_test.cpp
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
