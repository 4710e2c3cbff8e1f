#!/usr/bin/env bash
# run_targets.sh BUILD SECONDS: runs every fuzz target of a build for SECONDS, two at a time, and
# reports executions and edges. Fails if there is a finding, which is saved in BUILD/findings.
set -euo pipefail
source_dir="$(cd "$(dirname "$0")" && pwd)"
build="$(cd "$1" && pwd)"
seconds="$2"
mkdir -p "$build"/{corpus,findings,logs}

run_target() {
  local target="$1" folders dictionary=()
  mkdir -p "$build/corpus/$target"
  folders=("$build/corpus/$target" "$source_dir/corpus/$target")
  [ ! -d "$source_dir/regressions/$target" ] || folders+=("$source_dir/regressions/$target")
  case "$target" in
    c_interface | record_*) dictionary=(-dict="$source_dir/record_frame.dict") ;;
    area_json) dictionary=(-dict="$source_dir/area_file.dict") ;;
  esac
  local log="$build/logs/$target.log" outcome=done
  "$build/tests/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=30 -print_final_stats=1 \
    -artifact_prefix="$build/findings/$target-" ${dictionary[@]+"${dictionary[@]}"} \
    "${folders[@]}" >"$log" 2>&1 || outcome=FOUND
  local executions edges
  executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  edges=$(grep -ao 'cov: [0-9]*' "$log" | tail -n 1 | cut -d ' ' -f 2 || true)
  printf '%-16s %10s executions %8s edges  %s\n' "$target" "${executions:-?}" "${edges:-?}" "$outcome"
  [ "$outcome" = done ] || { tail -n 60 "$log"; return 1; }
}

export -f run_target
export source_dir build seconds
find "$source_dir/corpus" -mindepth 1 -maxdepth 1 -type d -printf '%f\n' | sort |
  xargs -P 2 -I {} bash -c 'set -euo pipefail; run_target {}'
