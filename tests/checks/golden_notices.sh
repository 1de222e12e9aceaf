#!/usr/bin/env bash
# The runner of the golden cases fails a case for each thing that is not as expected.
#
#   golden_notices.sh SOURCE_DIR
set -uo pipefail
source_dir=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

good='# A case.
-- input (escaped) --
\x00\xffin\c
-- command --
[ "$(od -An -tx1 input)" = " 00 ff 69 6e" ] && printf "out\n\e[m\n"
echo err >&2
exit 3
-- stdout (escaped) --
out
\e[m
-- stderr --
err
-- status --
3'
failed=0
# run EXPECTED CASE: whether the case passes (0) or fails (1).
run() {
  printf '%s\n' "$2" >"$work/case.golden"
  "$source_dir/tests/checks/golden.sh" "$work/case.golden" "$source_dir" /bin/true \
    >"$work/output" 2>&1
  [ $? -eq "$1" ] || { printf 'not %s:\n%s\n' "$1" "$2"; failed=1; }
}
run 0 "$good"
run 0 $'# Nothing expected.\n-- command --\ntrue'
run 1 "${good/\\xffin\\c/\\xffin}"
run 1 "${good/$'\n'out/$'\n'other}"
run 1 "${good/$'\n'err/$'\n'other}"
run 1 "${good%3}4"
run 1 $'# Output, and none expected.\n-- command --\necho'
run 1 $'# A message, and none expected.\n-- command --\necho >&2'
run 1 $'# A failure, and none expected.\n-- command --\nexit 1'
run 1 "${good#*$'\n'}"
run 1 "A case without a comment's mark.${good#*.}"
run 1 $'# No command.\n-- stdout --'

printf '#!/bin/sh\necho here\n' >"$work/program"
chmod +x "$work/program"
printf '# A program.\n-- command --\nprogram\n-- stdout --\nhere\n' >"$work/case.golden"
(cd "$work" && "$source_dir/tests/checks/golden.sh" case.golden "$source_dir" ./program) ||
  { echo "a program with a relative path is not found"; failed=1; }
exit $failed
