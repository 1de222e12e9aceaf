#!/usr/bin/env bash
# C programs link an installed tree with the C compiler alone, in whatever order they
# name the libraries, with functions of their own and without the platform.
#   embed.sh PROJECT_DIR BUILD_DIR C_COMPILER [CMAKE_ARGUMENT...]
set -uo pipefail
project=$1 build=$2 cc=$3
shift 3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export KZCI_TNS_FILE=$project/examples/tnsnames.ora
unset KZCI_TNS_DISPLAY

fail() {
  echo "$1"
  exit 1
}

# run COMMAND...: shows its output when it fails.
run() {
  "$@" >"$scratch/log" 2>&1 || { cat "$scratch/log"; fail "failed: $*"; }
}

mkdir "$scratch/user" && cd "$scratch/user" || exit 1
awk '$0 == "```" {on = 0} on {print} $0 == "```c" {on = 1}' "$project/README.md" >main.c
cp "$project"/tests/checks/embedding/*.c .

run cmake --install "$build" --prefix "$scratch/installed"
cat >CMakeLists.txt <<'END'
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES C)
find_package(kzoci REQUIRED)
add_executable(module_first main.c)
target_link_libraries(module_first PRIVATE kzoci::tnsname kzoci::platform)
add_executable(platform_first main.c)
target_link_libraries(platform_first PRIVATE kzoci::platform kzoci::tnsname)
add_executable(platform_alone main.c)
target_link_libraries(platform_alone PRIVATE kzoci::platform)
add_executable(own_log main.c own_log.c)
target_link_libraries(own_log PRIVATE kzoci::platform kzoci::tnsname)
add_executable(own_platform main.c own_log.c own_memory.c own_number.c)
target_link_libraries(own_platform PRIVATE kzoci::tnsname)
END
run cmake -S . -B build -DCMAKE_C_COMPILER="$cc" -DCMAKE_PREFIX_PATH="$scratch/installed" "$@"

# tree PROGRAM: builds it; it links without the C++ library and shows the tree.
tree() {
  run cmake --build build --target "$1"
  ! readelf -d "build/$1" | grep -q 'NEEDED.*libstdc++' || fail "$1 needs the C++ library"
  "build/$1" >tree 2>records || fail "$1 does not find the service"
  grep -qx -- '--TnsService:sales' tree || fail "$1 shows no tree"
}

tree own_platform
grep -q 'own log' records || fail "the program's own log is not called"
tree own_log
grep -q 'own log' records || fail "the program's own log is not called"
tree module_first
tree platform_first
tree platform_alone
[ ! -s records ] || fail "the default log writes: $(head -n 1 records)"
