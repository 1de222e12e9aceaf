#!/usr/bin/env bash
# Runs every example of docs/diagnostics.md and compares: a block that makes a
# names file, followed by a block with what check says of it, the last line
# excepted, and by what fix makes of it: "fixed", "fixed-unsafe" with --unsafe. Every
# rule has its section.
#
#   diagnostics.sh PROJECT KZTNS
set -uo pipefail
document=$1/docs/diagnostics.md
kztns=$(realpath "$2")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
failed=0
examples=0
rule=

# make_file KIND: the names file of a block, from standard input.
make_file() {
  case $1 in
    names) cat ;;
    names-without-end) printf '%s' "$(cat)" ;;
    bytes) printf '%b' "$(cat)" ;;
    shell) bash ;;
  esac >names.ora
}

compare() {
  "$kztns" check --no-color names.ora | grep -v '^names.ora: ' >actual
  diff -u --label "$rule: expected" --label "$rule: actual" expected actual || failed=1
  grep -q "\[$rule\]$" actual || { echo "$rule: no example of the rule"; failed=1; }
  examples=$((examples + 1))
}

# compare_fixed KIND: the names file as fix prints it.
compare_fixed() {
  local options=()
  [ "$1" = fixed ] || options=(--unsafe)
  "$kztns" fix "${options[@]}" names.ora >actual 2>/dev/null
  # Some examples have no line feed at their end.
  [ -z "$(tail -c 1 actual)" ] || echo >>actual
  diff -u --label "$rule: expected, $1" --label "$rule: actual" block actual || failed=1
}
"$kztns" --help | grep -q '^ *fix ' || compare_fixed() { :; }

kind=
while IFS= read -r line; do
  case $kind:$line in
    :'#### '*) rule=${line#'#### '} && echo "$rule" >>rules ;;
    :'```names' | :'```names-without-end' | :'```bytes' | :'```shell' | :'```output' | \
      :'```fixed' | :'```fixed-unsafe')
      kind=${line#'```'}
      : >block
      ;;
    output:'```') mv block expected && compare && kind= ;;
    fixed*:'```') compare_fixed "$kind"; kind= ;;
    ?*:'```') make_file "$kind" <block && kind= ;;
    ?*:*) printf '%s\n' "$line" >>block ;;
  esac
done <"$document"

# The rules that the command knows, as its reports name them.
: >empty.ora
"$kztns" check --format sarif empty.ora | sed -n 's/^ *"id": "\(.*\)",$/\1/p' | sort >known
sort rules | diff -u --label "rules of the command" --label "sections" known - || failed=1
echo "$examples examples"
[ "$examples" -gt 0 ] && exit $failed
