#!/usr/bin/env bash
# Without a pseudo-terminal the cases that need one are skipped and say so; others run.
#   no_terminal.sh SOURCE_DIR KZTNS
set -uo pipefail
source_dir=$1 kztns=$2
bin=$(mktemp -d)
trap 'rm -rf "$bin"' EXIT
printf '#!/bin/sh\necho "script: failed to create pseudo-terminal" >&2\nexit 1\n' >"$bin/script"
chmod +x "$bin/script"
export PATH="$bin:$PATH"

run() { "$source_dir/tests/checks/golden.sh" "$source_dir/tests/golden/$1.golden" "$source_dir" "$kztns"; }
output=$(run list_on_a_terminal)
[ $? -eq 77 ] || { echo "a case that needs a terminal is not skipped"; exit 1; }
[ "$output" = "skipped: no pseudo-terminal here" ] || { echo "it does not say why: $output"; exit 1; }
run list_tabs || { echo "another case fails"; exit 1; }
