#!/usr/bin/env bash
# The programs of docs/explain.md compile as C99 and print what stands there.
#   explain_examples.sh PROJECT_DIR C_COMPILER LIBRARY EXPLAIN_LIBRARY [FLAG...]
set -euo pipefail
project=$1 cc=$2 library=$3 explain=$4
shift 4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# block LANGUAGE NUMBER: a fenced block of the document, counted within its language.
block() {
  awk -v start="\`\`\`$1" -v number="$2" '
    $0 == "```" {on = 0}
    on
    $0 == start {on = ++count == number}' "$project/docs/explain.md"
}

cd "$scratch"
flags=(-std=c99 -Wall -Wextra -Wpedantic -Werror "-I$project" "$@")
block c 1 >connect.c
block c 2 >record.c
block text 1 >tnsnames.ora
"$cc" "${flags[@]}" connect.c "$explain" "$library" -o connect
"$cc" "${flags[@]}" record.c "$explain" -o record
LD_LIBRARY_PATH=$(dirname "$library"):$(dirname "$explain")
export LD_LIBRARY_PATH KZCI_TNS_FILE=tnsnames.ora
for name in sales orders user/secret@Sales; do ./connect $name || true; done >shown 2>log
diff -u <(block text 2) shown
unset KZCI_TNS_FILE
for name in sales orders; do ./record $name; done >shown
diff -u <(block text 3) shown
