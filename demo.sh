#!/usr/bin/env bash
# Builds the program and demonstrates it with a GNSS record file and a scan area. All output goes to
# build/demo and demo/.
set -euo pipefail
cd "$(dirname "$0")"

. cmake/install_dependencies.sh
install_dependencies "${build_packages[@]}"

[ -d build/demo ] || echo "Building the program; this takes a minute or two the first time." >&2
# Compiling takes most of the time: nothing here needs the optimisations of a release.
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { cmake --preset release -B build/demo -D SURVEYDATA_BUILD_TESTS=OFF \
         -D SURVEYDATA_BUILD_BENCHMARKS=OFF -D SURVEYDATA_BUILD_EXAMPLES=OFF \
         -D SURVEYDATA_LTO=OFF -D SURVEYDATA_UNITY=ON -D CMAKE_CXX_FLAGS_RELEASE="-O1 -DNDEBUG" \
         -D SURVEYDATA_WARNINGS_AS_ERRORS=OFF &&
       cmake --build build/demo --target surveydata_tool; } >"$log" 2>&1; then
  cat "$log" >&2
  exit 1
fi

export PATH="$PWD/build/demo/tools:$PATH"
mkdir -p demo
cp tests/data/valley_drive.rec tests/data/desert_highway.rec tests/data/areas/facade.json demo/
chmod u+w demo/*.rec demo/*.json
cd demo

# show PURPOSE COMMAND [STATUS...]: prints the purpose, the command and its output. The command must
# exit with 0 or one of STATUS: `list` exits with 1 if it found gaps, with 141 if `head` stopped
# reading.
show() {
  printf '\n%s\n$ %s\n' "$1" "$2"
  local status=0
  bash -o pipefail -c "$2" || status=$?
  if [[ " 0 ${*:3} " != *" $status "* ]]; then
    echo "demo.sh: the command exited with $status" >&2
    exit 1
  fi
}

show "A record file of a drive through a town: measurements, other records, gaps." \
     "surveydata record list valley_drive.rec | head -n 14" 1 141
show "The summary of the whole file." \
     "surveydata record list valley_drive.rec | tail -n 1" 1
show "One measurement, byte by byte." \
     "surveydata record show valley_drive.rec --offset 36471 --bytes"
show "A dry run: the bytes that a new name and a slant antenna height would change." \
     "surveydata record set valley_drive.rec --offset 36471 --name 'Brücke 7' --antenna-height 1.75 --slant --dry-run"
show "The change itself: made in a copy, which then replaces the file in one step." \
     "surveydata record set valley_drive.rec --offset 36471 --name 'Brücke 7' --antenna-height 1.75 --slant"
show "The changed line." \
     "surveydata record list valley_drive.rec | grep -E 'offset|^ *36471 '" 1
show "All fields for other programs, as JSON Lines." \
     "surveydata record export valley_drive.rec | wc -lc"
show "Dilution of precision and satellites over time, as pictures." \
     "surveydata record plot valley_drive.rec -o valley_drive.svg && surveydata record plot desert_highway.rec -o desert_highway.svg"
show "The area of a facade scan: its validity, bounds and solid angle." \
     "surveydata area info facade.json"
show "Which directions are inside." \
     "surveydata area contains facade.json 57,92 90,85" 1
show "The area as a picture." \
     "surveydata area plot facade.json -o facade.svg --window 10,50,110,120 --probe 57,92 --probe 90,85"

printf '\nThe pictures: %s\n              %s\n              %s\n' \
  "$PWD/valley_drive.svg" "$PWD/desert_highway.svg" "$PWD/facade.svg"
