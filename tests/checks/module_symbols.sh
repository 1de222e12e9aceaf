#!/usr/bin/env bash
# What a library needs to link: the module its platform and the C library, the
# platform the C library. No streams, no exceptions, no run-time types, nothing else
# of the C++ library.
#   module_symbols.sh module|platform LIBRARY
# A build with KZOCI_INSTRUMENTED set also needs its instrumentation's runtime.
set -euo pipefail
platform='kzoci_log_inner|kzci_malloc|kzci_free|my_strtoll10'
module_libc='(f?open|fclose|fread|fwrite|fprintf|fputc|fputs|v?snprintf|getenv|setvbuf|str(len|ncmp|ncpy)|mem(cmp|cpy|move|set)|stdout)(64)?'
files='(open|fcntl|[fl]stat|ftruncate)(64)?|__(fcntl|[fl]stat64)_time64|close|write|rename|flock|getcwd'
platform_libc="$files|malloc|free|v?snprintf|strlen|mem(chr|cmp|cpy|move|set)|(__)?clock_gettime(64)?|__errno_location|pthread_(mutex_(un)?lock|atfork)"
# Besides what the code asks for: what the compiler calls for arithmetic that the processor
# lacks, and instead of some of the above when it fortifies.
compiler='__stack_chk_fail(_local)?|_GLOBAL_OFFSET_TABLE_|__gxx_personality_v0|__[a-z]+_chk|__(ctz|u?div|u?mod|u?divmod)di[234]|__aeabi_[a-z0-9]+|__x86.get_pc_thunk.[a-z]+'
instrumentation='__(asan|ubsan|tsan|gcov|sanitizer)_[a-z0-9_]*|_?_?tls_get_addr'

case $1 in
  module) asked="$platform" allowed="$platform|$module_libc|$compiler" ;;
  platform) asked=malloc allowed="$platform_libc|$compiler" ;;
  *) echo "unknown kind of library: $1"; exit 1 ;;
esac
[ -z "${KZOCI_INSTRUMENTED:-}" ] || allowed="$allowed|$instrumentation"

# nm prints the name of the library, too: without the folder that is one word.
cd "$(dirname "$2")"
library=$(basename "$2")
undefined=$(nm --undefined-only --format=posix "$library" | awk 'NF > 1 {print $1}' | sort -u)
defined=$(nm --defined-only --format=posix "$library" | awk 'NF > 2 {print $1}' | sort -u)
needed=$(comm -23 <(printf '%s\n' "$undefined") <(printf '%s\n' "$defined"))
surprising=$(grep -vxE "$allowed" <<<"$needed" || true)
[ -z "$surprising" ] || { printf 'needed but not expected:\n%s\n' "$surprising"; exit 1; }
for function in ${asked//|/ }; do
  grep -qx "$function" <<<"$needed" || { echo "$function is not asked for"; exit 1; }
done
