#!/usr/bin/env bash
# Builds and installs the Python package with the engines that read archives, and tests it with them.
# With --measure it measures the figures of docs/scale.md instead. Everything is in build/engines.
set -euo pipefail
cd "$(dirname "$0")/.."
out=$PWD/build/engines
mkdir -p "$out"

step() { printf '\n== %s\n' "$*"; }

step "environment of the lock files"
if ! cat python/requirements-{engines,spark}.txt | cmp -s - "$out/venv/installed"; then
  rm -rf "$out/venv"
  python3 -m venv "$out/venv"
  install=("$out/venv/bin/pip" install --disable-pip-version-check -q --require-hashes)
  "${install[@]}" --only-binary :all: -r python/requirements-engines.txt
  # Built from its source distribution with the setuptools of the lock file.
  "${install[@]}" --no-deps --no-build-isolation -r python/requirements-spark.txt
  cat python/requirements-{engines,spark}.txt >"$out/venv/installed"
fi
export PATH="$out/venv/bin:$PATH"

step "package"
pip install --disable-pip-version-check -q --no-deps --no-build-isolation --force-reinstall \
  -C build-dir="$out/cmake" . >"$out/build.log" 2>&1 || { cat "$out/build.log"; exit 1; }

if [ "${1:-}" = --measure ]; then
  shift
  step "figures"
  exec python -P python/engine_tests/measure.py "$@"
fi

step "types"
(cd "$out" && mypy --config-file ../../pyproject.toml -p surveydata)

step "tests"
# Tests the installed package: its sources are not on the path.
python -P -m pytest -q --import-mode=importlib --durations=10 python/engine_tests "$@"
