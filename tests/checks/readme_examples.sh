#!/usr/bin/env bash
# The programs that the README shows compile as they stand.
#   readme_examples.sh PROJECT_DIR C_COMPILER CXX_COMPILER [FLAG...]
set -euo pipefail
project=$1 cc=$2 cxx=$3
shift 3

# block LANGUAGE: the README's fenced blocks of this language.
block() { awk -v fence="\`\`\`$1" '$0 == "```" {on = 0} on {print} $0 == fence {on = 1}' "$project/README.md"; }

flags=(-Wall -Wextra -Wpedantic -Werror -I"$project" -fsyntax-only "$@")
for language in c cpp; do
  [ -n "$(block $language)" ] || { echo "the README shows no $language program"; exit 1; }
done
block c | "$cc" -std=c99 -x c "${flags[@]}" -
block cpp | "$cxx" -std=c++17 -x c++ "${flags[@]}" -
