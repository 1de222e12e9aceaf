#!/usr/bin/env bash
# Projects in C99 and in C++ use an installed tree that was moved: by find_package, by
# pkg-config with the shared and with the static library, the static ones in whatever order,
# with the platform's functions of their own. Uninstalling removes what was installed, and
# nothing of others.
#   consumers.sh PROJECT_DIR BUILD_DIR C_COMPILER CXX_COMPILER
set -uo pipefail
project=$1 build=$2 cc=$3 cxx=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export CMAKE_GENERATOR=Ninja  # make need not be there
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

# example LANGUAGE: the README's program in it.
example() { awk -v start="\`\`\`$1" '$0 == "```" {on = 0} on {print} $0 == start {on = 1}' "$project/README.md"; }

# finds PROGRAM: whether it shows the service, the C program as a tree, the other one by its
# addresses.
finds() {
  "$1" >shown 2>records || fail "$1 does not find the service"
  grep -qxe '--TnsService:sales' -e '10.0.1.11:2881' shown || fail "$1 does not show the service"
}

needs_library() { readelf -d "$1" | grep -q 'NEEDED.*libkzoci\.so\.1'; }

# The manifests are kept where nothing of theirs is there.
uninstall() {
  DESTDIR=$scratch/elsewhere run cmake -DFOLDER=. -P "$project/cmake/uninstall.cmake"
  run cmake -DFOLDER=. -P "$project/cmake/uninstall.cmake"
}

# left: what is in the prefix, but for folders that others use as well.
left() { (cd "$1" && find . \( -not -type d -o -name '*kzoci*' -o -name 'empty*' \) | sort); }

mkdir "$scratch/user" && cd "$scratch/user" || exit 1
mkdir "$scratch/first"
run cmake --install "$build" --prefix "$scratch/first"
cp "$build/install_manifest.txt" .
run cmake -E copy_directory "$scratch/first" "$scratch/moved"
uninstall
cmp "$project/LICENSE" "$scratch/moved/share/doc/kzoci/LICENSE" || fail "the licence is not installed"
[ -z "$(left "$scratch/first")" ] || fail "left after uninstalling: $(left "$scratch/first")"

# The prefix looks like a pattern, and one bracket has no other; a link leads to it, and to a
# folder in it; some of what is in it belongs to others.
prefix=$scratch/'app[1] [*'
mkdir -p "$prefix"/{include/kzoci,share/empty,headers} "$prefix/lib/cmake/kzoci/empty"
ln -s "$prefix" "$scratch/linked"
ln -s ../../headers "$prefix/include/kzoci/platform"
echo >"$prefix/include/kzoci/foreign.h"
before=$(left "$prefix")
run cmake --install "$build" --prefix "$scratch/linked"
cp "$build/install_manifest.txt" .
run cmake --install "$build" --prefix "$prefix" --component development
mv "$build/install_manifest_development.txt" .
uninstall
diff <(echo "$before") <(left "$prefix") || fail "uninstalling removes too little or too much"
[ -L "$scratch/linked" ] || fail "uninstalling removes a link"
[ -z "$(find . -name 'install_manifest*')" ] || fail "the manifests are left"

example c >main.c
example cpp >main.cpp
awk '$0 == "```" {exit} on {print} $0 == "```c" {on = 1}' "$project/docs/explain.md" >explain.c
cp "$project"/tests/checks/embedding/*.c .
libraries=$(dirname "$(find "$scratch/moved" -name 'libkzoci.so.1')")
export PKG_CONFIG_PATH=$libraries/pkgconfig

mkdir c cxx
cat >c/CMakeLists.txt <<'END'
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES C)
set(CMAKE_C_STANDARD 99)
find_package(kzoci 1.0 QUIET COMPONENTS nothing)
if(kzoci_FOUND)
  message(FATAL_ERROR "a component is found that is not there")
endif()
find_package(kzoci 1.0 REQUIRED COMPONENTS kzoci explain)
add_executable(main ../main.c)
target_link_libraries(main PRIVATE kzoci::kzoci)
add_executable(own_platform ../main.c ../own_log.c ../own_memory.c ../own_number.c)
target_link_libraries(own_platform PRIVATE kzoci::kzoci)
add_executable(module_first ../main.c)
target_link_libraries(module_first PRIVATE kzoci::tnsname kzoci::platform)
add_executable(platform_first ../main.c)
target_link_libraries(platform_first PRIVATE kzoci::platform kzoci::tnsname)
add_executable(platform_alone ../main.c)
target_link_libraries(platform_alone PRIVATE kzoci::platform)
add_executable(static_own_log ../main.c ../own_log.c)
target_link_libraries(static_own_log PRIVATE kzoci::platform kzoci::tnsname)
add_executable(static_own_platform ../main.c ../own_log.c ../own_memory.c ../own_number.c)
target_link_libraries(static_own_platform PRIVATE kzoci::tnsname)
add_executable(explain ../explain.c)
target_link_libraries(explain PRIVATE kzoci::kzoci kzoci::explain)
add_executable(own_explain ../explain.c ../own_log.c ../own_memory.c ../own_number.c)
target_link_libraries(own_explain PRIVATE kzoci::explain kzoci::kzoci)
END
cat >cxx/CMakeLists.txt <<'END'
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 17)
find_package(kzoci 1.0 REQUIRED)
add_executable(main ../main.cpp)
target_link_libraries(main PRIVATE kzoci::kzoci)
add_executable(static_main ../main.cpp)
target_link_libraries(static_main PRIVATE kzoci::tnsname kzoci::platform)
END
for language in c cxx; do
  run cmake -S "$language" -B "build_$language" -DCMAKE_C_COMPILER="$cc" \
    -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_PREFIX_PATH="$scratch/moved"
  run cmake --build "build_$language"
  finds "build_$language/main"
  needs_library "build_$language/main" || fail "the shared library is not taken"
done
finds build_cxx/static_main
! needs_library build_cxx/static_main || fail "the static libraries are not taken"

# A C compiler links the static libraries: they need nothing of the C++ library.
for program in module_first platform_first platform_alone static_own_log static_own_platform; do
  finds "build_c/$program"
  ! readelf -d "build_c/$program" | grep -qE 'NEEDED.*lib(stdc\+\+|kzoci)' ||
    fail "$program needs another library"
  [[ $program == *own* ]] || [ ! -s records ] || fail "the default log writes: $(head -n 1 records)"
done

# What the program brings comes before what is in the libraries, the shared one, too.
for program in static_own_log static_own_platform own_platform; do
  finds "build_c/$program"
  grep -q 'own log' records || fail "the own log of $program is not called"
done
LD_DEBUG=bindings build_c/own_platform >shown 2>bindings
for function in kzoci_log_inner kzci_malloc kzci_free my_strtoll10; do
  grep -qE "libkzoci\.so\.1 .*to build_c/own_platform .*symbol .$function'" bindings ||
    fail "the shared library does not call the program's $function"
done

# The reasons of a lookup that finds nothing come from a copy of the module that calls nothing
# of the program's.
explains() {
  "$1" sale >shown 2>records
  grep -q '^cannot connect: sale: not found in .*"sales"' shown
}
explains build_c/explain || fail "the reasons are not told"
explains build_c/own_explain || fail "the reasons are not told to a program with its own platform"
LD_BIND_NOW=1 LD_DEBUG=bindings build_c/own_explain sale >shown 2>bindings
grep -q "libkzoci_explain\.so\.1 .*symbol .malloc'" bindings || fail "no bindings are shown"
if grep -E "libkzoci_explain\.so\.1 .*to .*symbol .(kzoci|kzci|KZCI|my_strtoll10)" bindings; then
  fail "the copy of the module is bound to other functions"
fi

if ! find "$scratch/moved" -name oci_tnsname.h | grep -q .; then fail "no headers"; fi
read -ra shared <<<"$(pkg-config --cflags --libs kzoci)"
read -ra static <<<"$(pkg-config --static --cflags --libs kzoci)"
version=$(sed -nE 's/^#define KZOCI_VERSION_[A-Z]+ ([0-9]+)$/\1/p' "$project/kzoci/version.h" | paste -sd .)
[ "$(pkg-config --modversion kzoci)" = "$version" ] ||
  fail "pkg-config tells another version"
run "$cc" -std=c99 main.c "${shared[@]}" -o c_shared
run "$cxx" -std=c++17 main.cpp "${shared[@]}" -o cxx_shared
run "$cc" -std=c99 -static main.c "${static[@]}" -o c_static
run "$cxx" -std=c++17 -static main.cpp "${static[@]}" -o cxx_static
read -ra explain <<<"$(pkg-config --cflags --libs kzoci_explain kzoci)"
run "$cc" -std=c99 explain.c "${explain[@]}" -o c_explain
LD_LIBRARY_PATH=$libraries explains ./c_explain || fail "the reasons are not told"
for program in c_shared cxx_shared; do
  LD_LIBRARY_PATH=$libraries finds "./$program"
  needs_library "$program" || fail "the shared library is not taken"
done
finds ./c_static
finds ./cxx_static
