# Sourced in the root folder: creates a virtual environment from the lock file in build/python, and
# defines what the scripts in this folder share.
out=$PWD/build/python
mkdir -p "$out"

step() { printf '\n== %s\n' "$*"; }

step "environment of the lock file"
if ! cmp -s python/requirements-test.txt "$out/venv/requirements-test.txt"; then
  rm -rf "$out/venv"
  python3 -m venv "$out/venv"
  "$out/venv/bin/pip" install --disable-pip-version-check -q --require-hashes --only-binary :all: \
    -r python/requirements-test.txt
  cp python/requirements-test.txt "$out/venv"
fi
export PATH="$out/venv/bin:$PATH"
