#!/usr/bin/env bash
# One case of a program: a folder with
#   command   a shell line that calls it, run in that folder; $scratch is an empty
#             folder, $examples the project's examples
#   stdout, stderr, status   what comes of it (missing: empty, empty, 0)
# A case that needs a terminal calls script(1); where that can make none the case is
# skipped, status 77.
#
#   golden.sh CASE_DIR PROGRAM...
set -uo pipefail
case_dir=$1
shift
if grep -qw '^script' "$case_dir/command" && ! script -qec true /dev/null >/dev/null 2>&1; then
  echo "skipped: no pseudo-terminal here"
  exit 77
fi
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
mkdir "$out/bin" "$out/scratch"
ln -s "$@" "$out/bin/"

cd "$case_dir"
unset KZCI_TNS_FILE TNS_ADMIN ORACLE_HOME KZCI_TNS_DISPLAY NO_COLOR
export scratch=$out/scratch
export examples=$PWD/../../../examples
PATH="$out/bin:$PATH" bash ./command >"$out/stdout" 2>"$out/stderr" </dev/null
echo $? >"$out/status"

failed=0
touch "$out/empty"
echo 0 >"$out/zero"
# expect NAME DEFAULT: compares with the case's file, or with the default.
expect() {
  local expected=$2
  [ ! -e "$1" ] || expected=$1
  diff -u --label "expected $1" --label "actual $1" "$expected" "$out/$1" || failed=1
}
expect stdout "$out/empty"
expect stderr "$out/empty"
expect status "$out/zero"
exit $failed
