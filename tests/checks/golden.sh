#!/usr/bin/env bash
# One case of a program: a text file of a comment and sections, each under a line
# "-- NAME --". docs/testing.md describes the form. A case that needs
# a terminal calls script(1); where that can make none the case is skipped, status 77.
#
#   golden.sh CASE SOURCE_DIR PROGRAM...
set -uo pipefail
case_file=$1
source_dir=$(realpath "$2")
shift 2
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
mkdir "$out"/{bin,case,scratch,expected,actual}
# Links keep the names of the programs, which may be links themselves.
for program; do
  ln -s "$(realpath -s "$program")" "$out/bin/"
done
ln -s "$source_dir"/{examples,docs} "$out/case/"

# Each section into a file of its name; the names of escaped ones to standard output.
unpack() {
  LC_ALL=C awk -v out="$out" '
    /^-- [^ ]+ (\(escaped\) )?--$/ {
      file = out ($2 ~ /^(stdout|stderr|status|command)$/ ? "/expected/" : "/case/") $2
      printf "" >file
      if ($3 == "(escaped)") print file
      next
    }
    file { print >file }
    !file && !/^# ./ { print "not a comment: " $0 >"/dev/stderr"; exit 1 }
  ' "$case_file"
}
unpack >"$out/escaped" || exit 1
while read -r file; do
  printf '%b\n' "$(<"$file")" >"$out/bytes" && mv "$out/bytes" "$file"
done <"$out/escaped"
if ! head -n 1 "$case_file" | grep -q '^# ' || [ ! -s "$out/expected/command" ]; then
  echo "$case_file: no comment or no command" >&2
  exit 1
fi

if grep -qw '^script' "$out/expected/command" && ! script -qec true /dev/null >/dev/null 2>&1; then
  echo "skipped: no pseudo-terminal here"
  exit 77
fi

cd "$out/case" || exit 1
unset KZCI_TNS_FILE TNS_ADMIN ORACLE_HOME KZCI_TNS_DISPLAY NO_COLOR
export scratch=$out/scratch examples=$out/case/examples
(
  # Nothing that the caller left open: some cases count descriptors.
  for descriptor in /proc/self/fd/*; do
    descriptor=${descriptor##*/}
    [ "$descriptor" -le 2 ] || eval "exec $descriptor>&-"
  done
  PATH="$out/bin:$PATH" exec bash "$out/expected/command" </dev/null
) >"$out/actual/stdout" 2>"$out/actual/stderr"
echo $? >"$out/actual/status"

failed=0
# expect NAME [DEFAULT]: compares with the case's section, or with the default.
expect() {
  [ -e "$out/expected/$1" ] || printf "${2-}" >"$out/expected/$1"
  diff -u --label "expected $1" --label "actual $1" "$out/expected/$1" "$out/actual/$1" || failed=1
}
expect stdout
expect stderr
expect status '0\n'
exit $failed
