#!/usr/bin/env bash
# The shared library exports what its list says, and the list is what the headers declare.
#   exported_symbols.sh LIBRARY LIST HEADER...
set -euo pipefail
library=$1 list=$2
shift 2

same() {
  diff "$2" "$3" || { echo "$1: < the list, > what is there"; exit 1; }
}

LC_ALL=C sort -c "$list" || { echo "the list is not sorted"; exit 1; }
# The version's own symbol is absolute.
same "exported by $library" "$list" \
  <(nm -D --defined-only "$library" | awk '$2 != "A" {sub(/@.*/, "", $3); print $3}' | LC_ALL=C sort)
same "declared with KZOCI_API" "$list" \
  <(cat "$@" | tr -s '\n ' ' ' | grep -oE 'KZOCI_API [a-z0-9_]+ \*?[A-Za-z0-9_]+\(' |
    sed -E 's/.*[ *]([A-Za-z0-9_]+)\($/\1/' | LC_ALL=C sort)
