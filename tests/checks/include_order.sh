#!/usr/bin/env bash
# Whether each folder of a program includes only itself and the folders before it.
#
#   include_order.sh ROOT FOLDER...
set -uo pipefail
cd "$1" || exit 1
shift
failed=0
later=" $* "
for folder; do
  later=" ${later#" $folder "}"
  for header in $(grep -rhoP '^#include "\K[a-z]+(?=/)' "$folder" | sort -u); do
    case $later in *" $header "*)
      grep -rn "#include \"$header/" "$folder"
      echo "$folder includes $header, which comes after it"
      failed=1
    esac
  done
done
[ -z "$(find . -maxdepth 1 -name '*.cpp' -o -maxdepth 1 -name '*.h')" ] || {
  echo "a source is in no folder"
  failed=1
}
exit $failed
