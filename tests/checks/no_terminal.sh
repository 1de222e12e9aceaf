#!/usr/bin/env bash
# Without a pseudo-terminal the cases that need one are skipped and say so; others run.
#   no_terminal.sh GOLDEN_DIR KZTNS
set -uo pipefail
golden=$1 kztns=$2
checks=$(dirname "${BASH_SOURCE[0]}")
bin=$(mktemp -d)
trap 'rm -rf "$bin"' EXIT
printf '#!/bin/sh\necho "script: failed to create pseudo-terminal" >&2\nexit 1\n' >"$bin/script"
chmod +x "$bin/script"
export PATH="$bin:$PATH"

output=$("$checks/golden.sh" "$golden/list_on_a_terminal" "$kztns")
[ $? -eq 77 ] || { echo "a case that needs a terminal is not skipped"; exit 1; }
[ "$output" = "skipped: no pseudo-terminal here" ] || { echo "it does not say why: $output"; exit 1; }
"$checks/golden.sh" "$golden/list_tabs" "$kztns" || { echo "another case fails"; exit 1; }
