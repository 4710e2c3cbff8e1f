# Sourced by demo.sh, test.sh and others. install_dependencies PACKAGE... installs the missing Debian
# packages. If none is missing, it returns quickly and prints nothing.

install_dependencies() {
  if ! command -v dpkg-query >/dev/null 2>&1 || ! command -v apt-get >/dev/null 2>&1; then
    echo "This system has no apt-get. Please install the equivalents of these Debian 12 packages:" >&2
    printf '  %s\n' "$@" >&2
    echo "Continuing, assuming that they are installed." >&2
    return 0
  fi
  local missing=()
  local package
  for package in "$@"; do
    if [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
      missing+=("$package")
    fi
  done
  [ ${#missing[@]} -eq 0 ] && return 0

  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null 2>&1; then
      echo "Missing Debian packages; installing them requires root or sudo:" >&2
      printf '  %s\n' "${missing[@]}" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "Installing with apt-get: ${missing[*]}" >&2
  local log
  log=$(mktemp)
  if ! { "${as_root[@]}" apt-get update &&
         "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
           apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}

# Packages for the library and the program, and additional ones for the tests. clang builds the fuzz
# targets and the tests with sanitizers.
build_packages=(cmake g++ ninja-build libboost-dev libcli11-dev libfmt-dev nlohmann-json3-dev)
test_packages=(abigail-tools clang doxygen dpkg-dev file fish gdb libabsl-dev libbenchmark-dev
               libclang-rt-14-dev libgtest-dev libicu-dev librapidcheck-dev libs2-dev libssl-dev lintian
               lld mandoc pkgconf python3 python3-venv zsh)

# Additional packages for the Windows build and its tests.
windows_compiler_packages=(g++-mingw-w64-x86-64-posix)
windows_test_packages=(googletest wine wine64)

# Additional packages for the 32-bit x86 build and its tests.
m32_packages=(g++-multilib googletest)

# Additional packages for the preset `tidy`.
tidy_packages=(clang clang-tidy cppcheck)

# Additional packages for the Python package. Those from PyPI are in python/requirements-test.txt.
python_packages=(python3-dev python3-venv)

# Additional packages for the query engines. Those from PyPI are in python/requirements-engines.txt
# and python/requirements-spark.txt.
engine_packages=(openjdk-17-jre-headless)

# Additional packages for the documentation site, and for its tests, which use the npm packages of the page.
# Those from PyPI are in docs/site/requirements.txt.
site_packages=(doxygen python3-venv)

# Additional packages for the page for the browser. Those from npm are in web/package-lock.json. A Node.js
# that is not Debian's includes npm.
page_packages=(chromium emscripten)
site_test_packages=(chromium)
if ! command -v npm >/dev/null 2>&1; then
  page_packages+=(nodejs npm)
  site_test_packages+=(nodejs npm)
fi
