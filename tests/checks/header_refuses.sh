#!/usr/bin/env bash
# A program whose time_t has 32 bits is refused, and told what to define.
#   header_refuses.sh PROJECT_DIR C_COMPILER CXX_COMPILER
set -uo pipefail
project=$1 cc=$2 cxx=$3
advice='define _TIME_BITS=64 and _FILE_OFFSET_BITS=64'

# refuses COMPILER LANGUAGE STANDARD
refuses() {
  local errors
  if errors=$(echo '#include "kzoci/oci_tnsname.h"' |
    "$1" -std="$3" -x "$2" -I"$project" -fsyntax-only - 2>&1); then
    echo "$3: not refused"
    exit 1
  fi
  grep -qF "$advice" <<<"$errors" || { printf '%s: no advice in\n%s\n' "$3" "$errors"; exit 1; }
}
refuses "$cc" c c99
refuses "$cc" c c11
refuses "$cxx" c++ c++17
