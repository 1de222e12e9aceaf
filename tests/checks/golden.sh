#!/usr/bin/env bash
# One case of the command: a folder with
#   command   a shell line that calls kztns, run in that folder
#   stdout, stderr, status   what comes of it (missing: empty, empty, 0)
#
#   golden.sh KZTNS CASE_DIR
set -uo pipefail
kztns=$1
cd "$2"
unset KZCI_TNS_FILE TNS_ADMIN ORACLE_HOME KZCI_TNS_DISPLAY NO_COLOR
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
mkdir "$out/bin"
ln -s "$kztns" "$out/bin/kztns"
PATH="$out/bin:$PATH" bash ./command >"$out/stdout" 2>"$out/stderr" </dev/null
echo $? >"$out/status"

failed=0
expect() {
  diff -u --label "expected $1" --label "actual $1" "$2" "$out/$1" || failed=1
}
touch "$out/empty"
for stream in stdout stderr; do
  if [ -e $stream ]; then expect $stream $stream; else expect $stream "$out/empty"; fi
done
if [ -e status ]; then expect status status; else expect status <(echo 0); fi
exit $failed
