#!/usr/bin/env bash
# The public headers compile alone, without a warning.
#   header_alone.sh COMPILER STANDARD PROJECT_DIR [FLAG...]
set -euo pipefail
compiler=$1 standard=$2 project=$3
shift 3
case $standard in
  c++*) language=c++ ;;
  *) language=c ;;
esac
for header in kzoci/{oci_tnsname,oci_tnsname_parser,version}.h \
  kzoci/platform/{default_logger,log,memory,my_strtoll10,types}.h; do
  printf '#include "%s"\nint unused;\n' "$header" |
    "$compiler" -std="$standard" -x "$language" -Wall -Wextra -Wpedantic -Werror \
      "$@" -I"$project" -fsyntax-only -
done
