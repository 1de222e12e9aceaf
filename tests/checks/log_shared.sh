#!/usr/bin/env bash
# Processes that share a rotated log: each of their lines is in one of its files, once and whole.
#   log_shared.sh LOG_WRITER
set -euo pipefail
writer=$1
lines=500
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

processes=()
for name in A B C; do
  "$writer" a.log $name $lines 2>errors.$name &
  processes+=($!)
done
for process in "${processes[@]}"; do wait "$process"; done

for name in A B C; do
  [ ! -s errors.$name ] || { echo "on standard error: $(head -n 1 errors.$name)"; exit 1; }
  for ((i = 0; i < lines; ++i)); do echo "$name $i"; done
done | sort >expected
cat a.log* | sed -nE 's/^[0-9T:.-]+Z ERROR a\.c:1 //p' | sort >written
diff expected written | head -n 5
[ "$(find . -name 'a.log*' -size +4000c | wc -l)" -eq 0 ] || { echo 'a file is too large'; exit 1; }
[ -e a.log.1 ] || { echo 'no rotation'; exit 1; }
cmp expected written
