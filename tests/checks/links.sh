#!/usr/bin/env bash
# Every link of the documents leads to a file, and to a heading where it names one.
# Every file that the documents for developers name exists, and the drawing's source and
# picture name the same files.
#   links.sh PROJECT_DIR
set -euo pipefail
cd "$1"
failed=0
links=0

fail() {
  printf '%s\n' "$*"
  failed=1
}

# What is outside fenced blocks.
prose() { awk '/^ *```/ {fenced = !fenced; next} !fenced' "$1"; }

# The anchors of a document's headings: small letters, digits, "-" and "_" stay, blanks
# become "-", all else goes.
anchors() {
  prose "$1" | sed -n 's/^##* *//p' | tr '[:upper:]' '[:lower:]' | sed 's/[^a-z0-9 _-]//g; s/ /-/g'
}

check_link() {
  local document=$1 target=$2 file anchor=
  [[ $target != *:* ]] || return 0
  [[ $target != *#* ]] || anchor=${target#*#}
  file=${target%%#*}
  file=$([ -z "$file" ] && echo "$document" || echo "$(dirname "$document")/$file")
  links=$((links + 1))
  [ -e "$file" ] || { fail "$document: no file for the link $target"; return 0; }
  [ -z "$anchor" ] || anchors "$file" | grep -qxF -- "$anchor" ||
    fail "$document: no heading for the link $target"
}

for document in *.md docs/*.md; do
  while IFS= read -r target; do
    check_link "$document" "$target"
  done < <(prose "$document" | grep -o ']([^)]*)' | sed 's/^](//; s/)$//' || true)
done
[ "$links" -gt 0 ] || fail "no links in the documents"

sources=$(find . \( -path './build*' -o -path ./.git \) -prune -o -print)

# A name with a folder is a path of the project or ends one; without, it is a file
# anywhere. "*" and "NAME" mean any characters.
exists() {
  local pattern=${1%/}
  pattern=${pattern//./\\.}
  pattern=${pattern//NAME/*}
  grep -qE "/${pattern//\*/[^/]*}\$" <<<"$sources"
}

# The files and folders that a text names, one a line.
named_files() {
  grep -oE '[A-Za-z0-9_./*-]+(\.(c|h|cpp|hpp|def|in|md|dot|svg|json|tsv|dict|txt|golden|cmake|sh)|/)' "$@" | sort -u
}

# What a document quotes, without its table of mutants, which quotes code.
in_quotes() { sed '/^## Mutants/,/^## /{/^|/d}' "$1" | grep -o '`[^`]*`' | tr -d '`'; }

# check_names FILE NAMES
check_names() {
  local name
  [ -n "$2" ] || fail "$1 names no files"
  for name in $2; do
    exists "$name" || fail "$1: $name does not exist"
  done
}

set -f
for document in docs/design.md docs/testing.md CONTRIBUTING.md; do
  check_names "$document" "$(in_quotes "$document" | named_files)"
done
drawn=$(grep label docs/design.dot | sed 's/\\n/ /g' | named_files)
check_names docs/design.dot "$drawn"
pictured=$(grep '<text' docs/design.svg | sed 's/<[^>]*>/ /g' | named_files)
diff --label docs/design.dot --label docs/design.svg -u <(echo "$drawn") <(echo "$pictured") ||
  fail "docs/design.svg is not made from docs/design.dot"

echo "$links links"
exit $failed
