#!/usr/bin/env bash
# The public headers compile alone, without a warning, and so do the examples in C++.
#   header_alone.sh COMPILER STANDARD PROJECT_DIR [FLAG...]
set -euo pipefail
compiler=$1 standard=$2 project=$3
shift 3
case $standard in
  c++*) language=c++ ;;
  *) language=c ;;
esac
headers=(kzoci/{explain,oci_tnsname,oci_tnsname_parser,version}.h
  kzoci/platform/{api,default_logger,log,memory,my_strtoll10,types}.h)
flags=(-Wall -Wextra -Wpedantic -Werror)
# The headers for C++ also under the flags of programs that do without exceptions.
if [ $language = c++ ]; then
  headers+=(kzoci/{oci_tnsname,oci_tnsname_records}.hpp)
  flags+=(-Wconversion -Wshadow -fno-exceptions -fno-rtti)
fi
for header in "${headers[@]}"; do
  printf '#include "%s"\nint unused;\n' "$header" |
    "$compiler" -std="$standard" -x "$language" "${flags[@]}" "$@" -I"$project" -fsyntax-only -
done

# Its templates are checked where they are used.
[ $language = c ] || for example in "$project"/examples/*.cpp; do
  "$compiler" -std="$standard" "${flags[@]}" "$@" -I"$project" -fsyntax-only "$example"
done
