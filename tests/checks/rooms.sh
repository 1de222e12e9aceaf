#!/usr/bin/env bash
# Whether each folder of a program includes only itself and the folders before it.
#
#   rooms.sh ROOT FOLDER...
set -uo pipefail
cd "$1" || exit 1
shift
failed=0
later=" $* "
for room; do
  later=" ${later#" $room "}"
  for header in $(grep -rhoP '^#include "\K[a-z]+(?=/)' "$room" | sort -u); do
    case $later in *" $header "*)
      grep -rn "#include \"$header/" "$room"
      echo "$room includes $header, which comes after it"
      failed=1
    esac
  done
done
[ -z "$(find . -maxdepth 1 -name '*.cpp' -o -maxdepth 1 -name '*.h')" ] || {
  echo "a source is in no folder"
  failed=1
}
exit $failed
