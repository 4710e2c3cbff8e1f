# Sourced by demo.sh and test.sh: install_dependencies PACKAGE... installs the Debian packages that
# are missing. If none is missing, it is quick and prints nothing.

install_dependencies() {
  if ! command -v dpkg-query >/dev/null 2>&1 || ! command -v apt-get >/dev/null 2>&1; then
    echo "This system has no apt-get. Please install what these Debian 12 packages hold:" >&2
    printf '  %s\n' "$@" >&2
    echo "Going on in the hope that they are here." >&2
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
      echo "Missing Debian packages, and neither root nor sudo to install them:" >&2
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

# The packages for the library and the program, and the further ones for the tests. clang builds the
# tests with sanitizers and the fuzz targets.
build_packages=(cmake g++ ninja-build libboost-dev libcli11-dev libfmt-dev nlohmann-json3-dev)
test_packages=(abigail-tools clang doxygen dpkg-dev file fish gdb libabsl-dev libbenchmark-dev
               libclang-rt-14-dev libgtest-dev libicu-dev librapidcheck-dev libs2-dev libssl-dev lintian
               mandoc pkgconf python3 zsh)

# Further packages for the build for Windows and its tests.
windows_compiler_packages=(g++-mingw-w64-x86-64-posix)
windows_test_packages=(googletest wine wine64)

# What the build for 32-bit x86 and its tests need besides.
m32_packages=(g++-multilib googletest)

# What the static analysis of the preset `tidy` needs besides.
tidy_packages=(clang clang-tidy cppcheck)
