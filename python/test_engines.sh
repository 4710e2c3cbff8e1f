#!/usr/bin/env bash
# Builds and installs the Python package with the engines that read archives, and tests it with them.
# Everything is in build/engines.
set -euo pipefail
cd "$(dirname "$0")/.."
out=$PWD/build/engines
mkdir -p "$out"

step() { printf '\n== %s\n' "$*"; }

step "environment of the lock file"
if ! cmp -s python/requirements-engines.txt "$out/venv/requirements-engines.txt"; then
  rm -rf "$out/venv"
  python3 -m venv "$out/venv"
  "$out/venv/bin/pip" install --disable-pip-version-check -q --require-hashes --only-binary :all: \
    -r python/requirements-engines.txt
  cp python/requirements-engines.txt "$out/venv"
fi
export PATH="$out/venv/bin:$PATH"

step "package"
pip install --disable-pip-version-check -q --no-deps --no-build-isolation --force-reinstall \
  -C build-dir="$out/cmake" . >"$out/build.log" 2>&1 || { cat "$out/build.log"; exit 1; }

step "types"
(cd "$out" && mypy --config-file ../../pyproject.toml -p surveydata)

step "tests"
# The package that is tested is the installed one: its sources are not on the path.
python -P -m pytest -q --import-mode=importlib --durations=10 python/engine_tests "$@"
