#!/usr/bin/env bash
# Builds the Python package as it is published (source distribution, wheel, wheel for other Linux
# systems), installs it and tests it. Everything is in build/python.
set -euo pipefail
cd "$(dirname "$0")/.."
. python/environment.sh
rm -rf "$out/dist" "$out/wheelhouse" "$out/clean"

step "source distribution, and the wheel that it builds in a separate folder"
# Only from files in git: a used checkout contains gigabytes of builds.
rm -rf "$out/source"
mkdir "$out/source"
git ls-files -z | xargs -0 cp --parents -t "$out/source"
python -m build --no-isolation --outdir "$out/dist" "$out/source" >"$out/build.log" 2>&1 ||
  { cat "$out/build.log"; exit 1; }
auditwheel repair -w "$out/wheelhouse" "$out"/dist/*.whl
wheel=$(echo "$out"/wheelhouse/*.whl)
pip install --disable-pip-version-check -q --no-deps --force-reinstall "$wheel"

step "an environment with only NumPy"
python3 -m venv "$out/clean"
numpy=$(pip list --disable-pip-version-check --format=freeze | grep '^numpy==')
"$out/clean/bin/pip" install --disable-pip-version-check -q "$numpy" "$wheel"
(cd "$out" && clean/bin/python -I ../../python/tests/smoke.py)

step "layout, types, stubs"
ruff format --check python docs/site
ruff check python docs/site
(cd "$out" && mypy --config-file ../../pyproject.toml -p surveydata)
(cd "$out" && mypy --config-file ../../pyproject.toml ../../python/tests/smoke.py \
  ../../python/examples/*.py ../../python/benchmarks/*.py)
(cd "$out" && python -m mypy.stubtest --mypy-config-file ../../pyproject.toml \
  --ignore-disjoint-bases --allowlist ../../python/stubtest_allowlist.txt surveydata._core)

step "flags of the extension module"
cmake -S . -B "$out/flags" -G Ninja -DCMAKE_BUILD_TYPE=Release -DSURVEYDATA_BUILD_PYTHON=ON \
  -DSURVEYDATA_BUILD_{TESTS,TOOLS,BENCHMARKS,EXAMPLES}=OFF >/dev/null
cmake -D BUILD_DIR="$out/flags" -D SOURCE_DIR="$PWD" -D LTO=OFF -D READELF=readelf -D NM=nm \
  -D MODULE="$(cd "$out" && python -c 'import surveydata._core; print(surveydata._core.__file__)')" \
  -P tests/package/flags.cmake

step "wheels of a release"
# Only the settings are checked: building these wheels needs the network.
wheels=$(cibuildwheel --print-build-identifiers --platform linux "$out/source")
[ "$wheels" = $'cp311-manylinux_x86_64\ncp312-manylinux_x86_64' ] ||
  { echo "other wheels than those for 3.11 and for 3.12 and later: $wheels"; exit 1; }

step "tests"
# Tests the installed package: its sources are not on the path.
python -P -m pytest -q --cov --cov-report=term "$@"
