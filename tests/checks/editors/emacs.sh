#!/usr/bin/env bash
# Emacs with eglot opens a names file with faults, receives the findings, applies a quick fix,
# completes a key and lays the file out.
#   emacs.sh KZTNS
set -euo pipefail
checks=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp "$checks/broken.ora" "$scratch/tnsnames.ora"
export KZTNS=$1 HOME=$scratch
cd "$scratch"
timeout 120 emacs --batch -f package-activate-all -l "$checks/eglot.el" tnsnames.ora 2>&1 | tee output
for step in 'diagnostics: [1-9]' 'quick fix: ' 'completed: ' 'laid out: 10 lines'; do
  grep -q "$step" output || { echo "emacs: not seen: $step" && exit 1; }
done
