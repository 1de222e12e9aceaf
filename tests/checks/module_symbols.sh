#!/usr/bin/env bash
# The module needs its platform and the C library, nothing else: no streams, no
# exceptions, no run-time types.
#   module_symbols.sh LIBRARY
# A build with KZOCI_INSTRUMENTED set also needs its instrumentation's runtime.
set -euo pipefail
platform='kzoci_log_inner|kzci_malloc|kzci_free|my_strtoll10'
libc='(f?open|fclose|fread|fwrite|fprintf|fputc|fputs|v?snprintf|getenv|setvbuf|str(len|ncmp|ncpy|ncasecmp)|mem(cmp|cpy|move|set)|stdout)(64)?'
# What the compiler calls for arithmetic that the processor lacks, and instead of some
# of the above when it fortifies.
compiler='__stack_chk_fail|_GLOBAL_OFFSET_TABLE_|__gxx_personality_v0|__(ctz|u?div|u?mod)di[23]'
fortified='__(fread|v?s?n?printf|fprintf|str(ncpy|cpy)|mem(cpy|move|set))_chk'
instrumentation='__(asan|ubsan|tsan|gcov|sanitizer)_[a-z0-9_]*'
allowed="$platform|$libc|$compiler|$fortified"
[ -z "${KZOCI_INSTRUMENTED:-}" ] || allowed="$allowed|$instrumentation"

undefined=$(nm --undefined-only --format=posix "$1" | awk 'NF > 1 {print $1}' | sort -u)
defined=$(nm --defined-only --format=posix "$1" | awk 'NF > 2 {print $1}' | sort -u)
needed=$(comm -23 <(printf '%s\n' "$undefined") <(printf '%s\n' "$defined"))
surprising=$(grep -vxE "$allowed" <<<"$needed" || true)
[ -z "$surprising" ] || { printf 'needed but not expected:\n%s\n' "$surprising"; exit 1; }
for function in kzoci_log_inner kzci_malloc kzci_free my_strtoll10; do
  grep -qx "$function" <<<"$needed" || { echo "$function is not asked for"; exit 1; }
done
