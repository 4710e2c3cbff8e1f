#!/usr/bin/env bash
# Redraws the pictures of the documentation: docs/pictures/redraw.sh [FOLDER]. The program
# `surveydata` must be on the path.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
out=$(cd "${1:-$here}" && pwd)
data=$here/../../tests/data

# An invalid area is drawn too, with exit code 4.
plot() {
  local area=$1 picture=$2
  shift 2
  surveydata area plot "$area" -o "$out/$picture.svg" "$@" 2>/dev/null || [ $? -eq 4 ]
}
rule() {
  local name=$1
  shift
  plot "$here/$name.json" "$name" "$@"
}

rule zenith_ring_limit \
  --probe 30,110 --probe 30,130 --probe 80,60 --probe 133,60 --probe 133,140 --probe 165,60
rule opposite_vertex --probe 70,90 --probe 78,90 --probe 88,90 --probe 150,110
rule boundary_band \
  --probe 270,60 --probe 290,60 --probe 310,60 --probe 320,70 --probe 320,85 --probe 320,100 \
  --probe 270,110 --probe 290,110 --probe 310,110 --probe 260,70 --probe 260,85 --probe 260,100 \
  --probe 290,85
rule crossing_arcs --window 30,30,170,90 \
  --probe 60,65 --probe 100,72 --probe 100,60 --probe 130,70 --probe 100,78
rule turning_corner --window -10,30,110,130 \
  --probe 87,60 --probe 90,60 --probe 93,60 --probe 87,80 --probe 90,80 --probe 93,80 \
  --probe 87,100 --probe 90,100 --probe 93,100 --probe 30,80
rule zenith_ring_crossing --probe 10,40 --probe 165,75 --probe 170,85 --probe 140,66 --probe 100,95
rule beyond_nadir --window 0,0,360,360 --probe 100,90 --probe 280,270 --probe 100,200
rule pole_to_pole --probe 50,90 --probe 80,90 --probe 110,90
plot "$data/areas/facade.json" facade --window 10,50,110,120 --probe 57,92 --probe 40,75 \
  --probe 90,85 --probe 62,107
surveydata record plot "$data/valley_drive.rec" -o "$out/valley_drive.svg"
