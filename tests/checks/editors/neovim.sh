#!/usr/bin/env bash
# Neovim opens a names file with faults, receives the findings, applies a quick fix, completes a
# key and lays the file out.
#   neovim.sh KZTNS
set -euo pipefail
checks=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp "$checks/broken.ora" "$scratch/tnsnames.ora"
export KZTNS=$1 HOME=$scratch XDG_CONFIG_HOME=$scratch XDG_STATE_HOME=$scratch
cd "$scratch"
timeout 120 nvim --headless --clean +"luafile $checks/neovim.lua" tnsnames.ora 2>&1 | tee output
echo
for step in 'diagnostics: [1-9]' 'quick fix: ' 'completed: ' 'laid out: 10 lines'; do
  grep -q "$step" output || { echo "neovim: not seen: $step" && exit 1; }
done
