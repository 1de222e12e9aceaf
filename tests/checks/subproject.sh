#!/usr/bin/env bash
# A project that takes the sources in keeps its flags, its build type and the settings of its
# other libraries, and installs nothing of ours unless it wants to. It may name the platform before the module.
#   subproject.sh PROJECT_DIR C_COMPILER CXX_COMPILER
set -uo pipefail
project=$1 cc=$2 cxx=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export CMAKE_GENERATOR=Ninja  # make need not be there
cd "$scratch" || exit 1

fail() {
  echo "$1"
  exit 1
}

echo 'int main(void) { return 0; }' >main.c
echo 'int main() { return 0; }' >main.cpp
awk '$0 == "```" {on = 0} on {print} $0 == "```c" {on = 1}' "$project/README.md" >readme.c
awk '$0 == "```" {on = 0} on {print} $0 == "```cpp" {on = 1}' "$project/README.md" >readme.cpp
cat >CMakeLists.txt <<END
cmake_minimum_required(VERSION 3.25)
project(parent LANGUAGES C CXX)
add_subdirectory("$project" kzoci)
add_executable(parent main.c)
add_executable(parent_cxx main.cpp)
add_executable(readme readme.c)
target_link_libraries(readme PRIVATE kzoci::platform kzoci::tnsname)
add_executable(whole readme.c)
add_executable(whole_cxx readme.cpp)
foreach(program IN ITEMS whole whole_cxx)
  target_link_libraries(\${program} PRIVATE kzoci::kzoci)
endforeach()
install(TARGETS parent)
END

# configure FOLDER [OPTION...]
configure() {
  local folder=$1
  shift
  cmake -S . -B "$folder" -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
    -DKZOCI_SANITIZE=address -DKZOCI_COVERAGE=ON -DKZOCI_WARNINGS_AS_ERRORS=ON "$@" >log 2>&1 ||
    { cat log; fail "the parent cannot be configured"; }
}

configure plain -DKZOCI_SANITIZE= -DKZOCI_COVERAGE=OFF
[ -z "$(sed -n 's/^CMAKE_BUILD_TYPE:[A-Z]*=//p' plain/CMakeCache.txt)" ] || fail "a build type is forced"
! grep '^BUILD_SHARED_LIBS:' plain/CMakeCache.txt || fail "the parent's libraries get a setting of ours"
[ ! -e plain/compile_commands.json ] || fail "the parent's compile commands are written"
cmake --build plain --parallel 2 >log 2>&1 || { cat log; fail "the parent cannot be built"; }
KZCI_TNS_FILE=$project/examples/tnsnames.ora
export KZCI_TNS_FILE
for program in readme whole whole_cxx; do
  "plain/$program" >log 2>&1 || { cat log; fail "$program does not find the service"; }
done
cmake --install plain --prefix installed >log || fail "the parent cannot be installed"
[ "$(cd installed && find . -type f)" = ./bin/parent ] ||
  fail "installed with the parent: $(find installed -type f)"

# Whatever is instrumented of ours, the parent's own programs are compiled as it says.
configure instrumented -DCMAKE_EXPORT_COMPILE_COMMANDS=ON
flags=$(sed -nE 's/^ *"command": "[^ ]+ (.*)-o [^ ]*parent(_cxx)?\.dir.*/\1/p' \
  instrumented/compile_commands.json | tr -d ' ')
[ -z "$flags" ] || fail "flags of the parent's programs: $flags"
grep -q 'fsanitize=address.*tokenizer.cpp' instrumented/compile_commands.json ||
  fail "our own sources are not instrumented"

configure wanted -DKZOCI_SANITIZE= -DKZOCI_COVERAGE=OFF -DKZOCI_INSTALL=ON \
  -DBUILD_SHARED_LIBS=ON
grep -q 'kzociConfig.cmake' wanted/kzoci/cmake_install.cmake || fail "KZOCI_INSTALL installs nothing"
grep -q 'libkzoci\.so' wanted/kzoci/cmake_install.cmake || fail "BUILD_SHARED_LIBS of the parent is not heeded"
