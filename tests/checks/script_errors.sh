#!/usr/bin/env bash
# When packages cannot be installed, a script ends with its own error line.
#   script_errors.sh PROJECT_DIR
set -uo pipefail
project=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/bin"

# fake NAME: a command that does what standard input says.
fake() {
  { echo '#!/bin/sh'; cat; } >"$scratch/bin/$1"
  chmod +x "$scratch/bin/$1"
}
fake dpkg-query <<<'exit 1'
fake sudo <<<'exec "$@"'

# stops_with TEXT: the script fails, and its last line is an error line with this text.
stops_with() {
  local last
  if PATH="$scratch/bin:$PATH" "$project/scripts/test" >"$scratch/out" 2>"$scratch/err"; then
    echo "the script goes on"
    exit 1
  fi
  last=$(tail -n 1 "$scratch/err")
  [[ $last == "error: "*"$1"* ]] || { printf 'no error line with %s:\n' "$1"; cat "$scratch/err"; exit 1; }
}

fake apt-get <<<'echo "E: no network" >&2; exit 100'
stops_with "cannot read the lists of packages"
fake apt-get <<<'[ "$1" = update ] || { echo "E: Unable to locate package" >&2; exit 100; }'
stops_with "cannot install g++ cmake"

# Without the right to install, nothing is tried.
mkdir "$scratch/few"
for tool in bash dirname basename; do ln -s "$(command -v $tool)" "$scratch/few/"; done
cp "$scratch/bin/dpkg-query" "$scratch/few/"
printf '#!/bin/sh\necho 1000\n' >"$scratch/few/id"
chmod +x "$scratch/few/id"
PATH=$scratch/few bash "$project/scripts/test" >"$scratch/out" 2>"$scratch/err" && { echo "the script goes on"; exit 1; }
grep -q '^error: missing: g++ cmake .*; installing packages needs root rights or sudo$' "$scratch/err" ||
  { echo "what is missing is not told:"; cat "$scratch/err"; exit 1; }

# What fails without a message of its own, inside a function.
mkdir "$scratch/scripts" && cp "$project/scripts/lib.sh" "$scratch/scripts/"
cat >"$scratch/scripts/stumble" <<'END'
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
stumble() { false; }
stumble
END
bash "$scratch/scripts/stumble" 2>"$scratch/err"
[ $? -eq 1 ] && grep -qx 'error: stumble stopped at line 2: false' "$scratch/err" ||
  { echo "a failure inside a function:"; cat "$scratch/err"; exit 1; }
[ "$(wc -l <"$scratch/err")" -eq 1 ] || { echo "more than one line:"; cat "$scratch/err"; exit 1; }
