# Functions that the scripts share: messages, packages, presets. Sourced, not run.
# The error line is for what fails in functions, too.
set -Eeuo pipefail

project_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$project_dir"

say() { printf '==> %s\n' "$*"; }

stop() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

trap 'stop "$(basename "$0") stopped at line $LINENO: $BASH_COMMAND"' ERR

can_be_root() { [ "$(id -u)" -eq 0 ] || command -v sudo >/dev/null; }

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  else
    sudo "$@"
  fi
}

is_installed() {
  [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# Installs the Debian packages that are missing; does nothing when none is.
need_packages() {
  local missing=() package
  command -v dpkg-query >/dev/null ||
    stop "this script installs Debian packages; elsewhere, install these yourself: $*"
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  can_be_root || stop "missing: ${missing[*]}; installing packages needs root rights or sudo"
  say "Installing ${missing[*]}"
  as_root apt-get update -qq || stop "cannot read the lists of packages (apt-get update); missing: ${missing[*]}"
  as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
    stop "cannot install ${missing[*]}"
}

build_packages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev)
test_packages=("${build_packages[@]}" libgtest-dev clang ccache locales patch pkg-config zsh fish)

# configure PRESET [CMAKE OPTION...]
configure() {
  local preset=$1
  shift
  local cached=()
  # Several builds compile the tests alike; the folder of the build makes no difference.
  # Source paths stay as they are: log records show them.
  if command -v ccache >/dev/null; then
    export CCACHE_NOHASHDIR=true CCACHE_BASEDIR=
    cached=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  fi
  say "Configuring the $preset preset"
  # What is built from nothing takes half the time where files are compiled together.
  cmake --preset "$preset" -DCMAKE_UNITY_BUILD=ON "${cached[@]}" "$@" >/dev/null
}

# build PRESET [TARGET...]: everything when no target is named.
build() {
  local preset=$1
  shift
  say "Building"
  cmake --build --preset "$preset" ${1:+--target "$@"} -- --quiet
}

# configure_and_build PRESET [CMAKE OPTION...]
configure_and_build() {
  configure "$@"
  build "$1"
}

# build_googletest PRESET TOOLCHAIN [CMAKE OPTION...]: of Debian's sources, below build/PRESET,
# where the preset looks.
build_googletest() {
  local folder=build/$1 toolchain=$2
  [ ! -e "$folder/googletest/lib/libgtest.a" ] || return 0
  say "Building GoogleTest for $1"
  shift 2
  cmake -S /usr/src/googletest -B "$folder/googletest-build" -G Ninja \
    --toolchain "$project_dir/$toolchain" "$@" \
    -DCMAKE_BUILD_TYPE=Debug -DBUILD_GMOCK=OFF -DCMAKE_INSTALL_LIBDIR=lib \
    -DCMAKE_INSTALL_PREFIX="$project_dir/$folder/googletest" >/dev/null
  cmake --build "$folder/googletest-build" --target install -- --quiet >/dev/null
}
