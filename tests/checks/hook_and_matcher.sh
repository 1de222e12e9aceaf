#!/usr/bin/env bash
# The pre-commit hook and the problem matcher of docs/diagnostics.md, used.
#
#   hook_and_matcher.sh PROJECT KZTNS
set -uo pipefail
document=$(realpath "$1")/docs/diagnostics.md
program=$(realpath "$2")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
mkdir bin repository && ln -s "$program" bin/kztns
export PATH="$scratch/bin:$PATH" HOME=$scratch GIT_CONFIG_NOSYSTEM=1
unset GIT_DIR GIT_INDEX_FILE GIT_WORK_TREE

fail() {
  echo "$1"
  exit 1
}

cd repository && git init --quiet . && git config user.name tester &&
  git config user.email tester@localhost || fail "no repository"
# The first shell block is the hook.
awk '/^```sh$/ { inside = 1; next } inside && /^```$/ { exit } inside' "$document" \
  >.git/hooks/pre-commit
grep -q 'kztns check' .git/hooks/pre-commit || fail "no hook in the document"
chmod +x .git/hooks/pre-commit

good='sales = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))'
bad='sales = (DESCRIPTION = (ADDRESS = (HOTS = h)(PORT = 1))(CONNECT_DATA = (SID = s)))'
mkdir 'a folder'
printf '%s\n' "$good" >'a folder/tnsnames.ora'
git add . && git commit --quiet -m good || fail "a sound file is refused"
printf '%s\n' "$bad" >'a folder/tnsnames.ora'
git add .
git commit --quiet -m bad 2>refusal && fail "a file with an error is let through"
# What is about to be committed counts, not what is in the folder.
printf '%s\n' "$good" >'a folder/tnsnames.ora'
git commit --quiet -m bad 2>>refusal && fail "what is staged is not what is checked"
git rm --quiet --force --cached 'a folder/tnsnames.ora' && git commit --quiet -m gone ||
  fail "a file that goes is checked"

printf '%s\n' "$bad" >names.ora
expression=$(sed -n 's/^ *"regexp": "\(.*\)",$/\1/p' "$document" | sed 's/\\\\/\\/g')
[ -n "$expression" ] || fail "no matcher in the document"
kztns check --no-color names.ora >report
matched=$(grep -cP "$expression" report)
[ "$matched" -eq "$(($(wc -l <report) - 1))" ] || fail "lines that the matcher does not match"
[ "$matched" -gt 0 ] || fail "nothing to match"
