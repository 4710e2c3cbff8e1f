#!/usr/bin/env bash
# Builds the documentation site: build/site/html/index.html. Needs the network only to install packages.
set -euo pipefail
cd "$(dirname "$0")"
. cmake/install_dependencies.sh
install_dependencies "${build_packages[@]}" "${python_packages[@]}" "${site_packages[@]}"
out=$PWD/build/site
mkdir -p "$out"

step() { printf '\n== %s\n' "$*"; }

step "environment of the lock file"
if ! cmp -s docs/site/requirements.txt "$out/venv/requirements.txt"; then
  rm -rf "$out/venv"
  python3 -m venv "$out/venv"
  "$out/venv/bin/pip" install --disable-pip-version-check -q --require-hashes --only-binary :all: \
    -r docs/site/requirements.txt
  cp docs/site/requirements.txt "$out/venv"
fi
export PATH="$out/venv/bin:$PATH"

step "Python package and program"
# One build of both; nothing here needs the optimisations of a release.
pip install --disable-pip-version-check -q --no-deps --no-build-isolation --force-reinstall \
  -C build-dir="$out/cmake" -C cmake.define.SURVEYDATA_BUILD_TOOLS=ON \
  -C cmake.define.CMAKE_CXX_FLAGS_RELEASE=-O1 \
  -C "build.targets=surveydata_python;surveydata_python_stub;surveydata_tool;surveydata_descriptions" \
  . >"$out/build.log" 2>&1 || { cat "$out/build.log"; exit 1; }

step "reference of C++ and C"
rm -rf "$out/doxygen"
mkdir "$out/doxygen"
{
  cat docs/Doxyfile
  cat <<END
OUTPUT_DIRECTORY = "$out/doxygen"
WARN_AS_ERROR = FAIL_ON_WARNINGS
GENERATE_XML = YES
XML_PROGRAMLISTING = NO
INPUT = surveydata docs/site/doxygen_main.md
USE_MDFILE_AS_MAINPAGE = docs/site/doxygen_main.md
GENERATE_TAGFILE = "$out/doxygen/tags.xml"
HTML_HEADER = docs/site/doxygen_header.html
HTML_FOOTER = docs/site/doxygen_footer.html
HTML_EXTRA_STYLESHEET = docs/site/doxygen_site.css
END
} >"$out/doxygen/Doxyfile"
SURVEYDATA_VERSION=$(python -P -c 'import surveydata; print(surveydata.__version__)') \
  doxygen "$out/doxygen/Doxyfile"

step "pages"
python docs/site/collect.py "$out/source" "$out/cmake/tools" "$out/doxygen"
rm -rf "$out/html"
sphinx-build --quiet --fail-on-warning --keep-going --jobs auto -d "$out/doctrees" "$out/source" "$out/html"
cp -r "$out/doxygen/html" "$out/html/doxygen"

step "links"
python docs/site/check_links.py "$out/html"
echo "The site is $out/html/index.html."
