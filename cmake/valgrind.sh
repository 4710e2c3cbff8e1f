#!/usr/bin/env bash
# Runs a selection of the tests under valgrind, which reports leaks and, unlike the sanitizers,
# branches that depend on uninitialised memory. Fails if there is a finding.
set -euo pipefail
cd "$(dirname "$0")/.."
. cmake/install_dependencies.sh
install_dependencies "${build_packages[@]}" "${test_packages[@]}" valgrind

# Programs and the tests to run. Tests with millions of cases would take too long, and
# HoldTheirFieldsInOrder reads padding.
selection=(
  "gnss/record_samples_test *"  # first, because it takes longest
  "object_model/base_test *"
  "object_model/compare_test -*ForAnyBits*"
  "object_model/fixed_string_property_test *"
  "object_model/handle_test *"
  "object_model/memory_faults_test *"
  "object_model/pair_rules_test *"
  "object_model/random_program_test RandomProgram/0.*:RandomProgram/20.*"
  "object_model/record_rules_test -Records.HoldTheirFieldsInOrder*"
  "gnss/gps_meas_data_test *"
  "gnss/gps_record_file_test *"
  "gnss/gps_record_index_test *"
  "gnss/frame_explanation_test *"
  "gnss/record_change_test *"
  "gnss/record_faults_test *"
  "scanning/scan_area_test *"
  "scanning/scan_test *"
  "sphere_geometry/area_edges_test *"
  "sphere_geometry/great_circle_arc_test *"
)
fuzz_targets=(record_read record_write record_index fixed_string sphere_area scan_calls)

cmake --preset dev >/dev/null
targets=("${fuzz_targets[@]/#/fuzz_}")
for entry in "${selection[@]}"; do
  program=${entry%% *}
  targets+=("${program#*/}")
done
cmake --build --preset dev --target "${targets[@]}" >/dev/null

# Runs a command, given as a line of tab-separated words. Prints its output when it ends, because
# others run at the same time. soname-synonyms keeps valgrind from replacing a program's own operator
# `new`, which injects allocation failures.
checked() {
  local words output result=0
  IFS=$'\t' read -ra words <<<"$1"
  output=$(valgrind --quiet --error-exitcode=1 \
    --soname-synonyms=somalloc=nouserintercepts \
    --leak-check=full --errors-for-leak-kinds=definite,indirect "${words[@]}" 2>&1) || result=1
  printf '%s\n' "== ${words[*]}" "$output"
  return $result
}
export -f checked
export RC_PARAMS="seed=20260101 max_success=50"

commands=()
for entry in "${selection[@]}"; do
  program="build/dev/tests/${entry%% *}"
  filter="--gtest_filter=${entry#* }"
  tests=$("$program" "$filter" --gtest_list_tests)
  grep -q '^  ' <<<"$tests" || { echo "no such test: $entry" >&2; exit 1; }
  commands+=("$program"$'\t'"--gtest_brief=1"$'\t'"$filter")
done
for target in "${fuzz_targets[@]}"; do
  commands+=("build/dev/tests/fuzz/fuzz_$target"$'\t'"tests/fuzz/corpus/$target")
done
printf '%s\n' "${commands[@]}" | xargs -d '\n' -n 1 -P "$(nproc)" bash -c 'checked "$0"'
