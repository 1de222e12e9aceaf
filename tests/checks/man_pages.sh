#!/usr/bin/env bash
# The man pages and docs/kztns.md against what they describe: each function of the public headers with its
# declaration, each option of the command with the words that it takes, each exit status, the example
# program.
#   man_pages.sh PROJECT MAN_DIR LIBRARY_DIR KZTNS C_COMPILER [FLAG...]
set -euo pipefail
project=$1 man=$2 libraries=$3 kztns=$4 cc=$5
shift 5
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
flags=(-std=c99 -Wall -Wextra -Wpedantic -Werror -I"$project" "$@")
failed=0

fail() {
  printf '%s\n' "$*"
  failed=1
}

# same WHAT EXPECTED ACTUAL
same() {
  [ -n "$2" ] || fail "$1: nothing expected"
  diff -u --label "$1" --label "man page" <(sort -u <<<"$2") <(sort -u <<<"$3") || failed=1
}

# section PAGE FIRST [LAST]: the lines after the one that begins with the first text, up to
# one that begins with the last, or to the next heading.
section() {
  awk -v first="$2" -v last="${3-}" '
    (last == "" ? /^\.S[hs] / : index($0, last) == 1) {on = 0}
    on {print}
    index($0, first) == 1 {on = 1}' "$man/$1"
}

# ------------------------------------------------------------------ kzoci_tnsname(3)

# The synopsis as C declarations.
declarations() {
  section kzoci_tnsname.3 '.Sh SYNOPSIS' '.Sh DESCRIPTION' | awk '
    function arguments(text) { gsub(/" "/, ", ", text); gsub(/"/, "", text); return text }
    /^\.Ft / { type = substr($0, 5) }
    /^\.Fn / { name = $2; sub(/^\.Fn [^ ]+ /, ""); print type " " name "(" arguments($0) ");" }
    /^\.Fo / { name = $2; list = "" }
    /^\.Fa / { sub(/^\.Fa /, ""); list = list (list == "" ? "" : ", ") arguments($0) }
    /^\.Fc/ { print type " " name "(" list ");" }'
}

declarations >"$scratch/declarations"
of_headers=$(sed -nE 's/^(KZOCI_[A-Z]+ )?(sword|boolean|static inline).* \*?([A-Za-z]+)\(.*/\3/p' \
  "$project"/kzoci/oci_tnsname.h "$project"/kzoci/oci_tnsname_parser.h)
of_headers+=$'\n'$(sed -nE 's/^KZOCI_API .*[ *]([a-z_]+)\(.*/\1/p' \
  "$project"/kzoci/platform/default_logger.h "$project"/kzoci/explain.h)
same "functions of the headers" "$of_headers" \
  "$(sed -E 's/\(.*//; s/.*[ *]//' "$scratch/declarations")"
# Those that walk the tree are described together, by the ends of their names.
same "functions of the headers, described" "$(grep -vE '(Next|OfEntry)$' <<<"$of_headers")" \
  "$(section kzoci_tnsname.3 '.Sh DESCRIPTION' '.Ss Ownership' |
    sed -nE 's/^\.Fn (K[A-Za-z]+|IsDescriptionTns|kzoci_(log|expl)[a-z_]*).*/\1/p' |
    grep -vx kzoci_log_inner)"
{ printf '#include <kzoci/%s.h>\n' oci_tnsname platform/default_logger explain &&
  cat "$scratch/declarations"; } |
  "$cc" "${flags[@]}" -fsyntax-only -x c - || fail "the synopsis is not that of the headers"

section kzoci_tnsname.3 '.Sh EXAMPLES' '.Sh SEE' |
  awk '/^\.Ed/ {exit} on {print} /^\.Bd/ {on = 1}' | sed 's/\\e/\\/g' >"$scratch/servers.c"
"$cc" "${flags[@]}" -c "$scratch/servers.c" -o "$scratch/servers.o" || fail "the example does not compile"
if [ -z "${KZOCI_INSTRUMENTED-}" ]; then
  "$cc" "$scratch/servers.o" -L"$libraries" -lkzoci_tnsname -lkzoci_platform -o "$scratch/servers"
  same "servers of the example" $'10.0.1.11:2881\n10.0.1.12:2881\n10.0.1.13:2881' \
    "$(KZCI_TNS_FILE=$project/examples/tnsnames.ora "$scratch/servers" sales)"
fi

# -------------------------------------------------------------------------- kztns(1)

# The options in a help, one a line; those that every subcommand has are left out.
options_of_help() { "$kztns" "$@" --help | grep -oE '^ +-[^ ]+' | grep -oE -- '--[a-z-]+'; }
options_of_page() { { grep '^\.It Fl' || true; } | grep -oE 'Fl Fl [a-z-]+' | sed 's/Fl Fl /--/'; }

# "--format text,json": an option whose words the help of a subcommand lists, one a line.
words_of_help() { "$kztns" "$1" --help | sed -nE 's/^ +(-[a-z],)?(--[a-z-]+) [A-Z]+:\{([^}]*)\}.*/\2 \3/p'; }
words_of_page() {
  section kztns.1 ".Ss $1:" |
    awk -v option=".It Fl Fl ${2#--} " '/^\.(It|El)/ {on = 0} on {print} index($0, option) == 1 {on = 1}' |
    sed -nE 's/^\.Cm ([a-z]+).*/\1/p'
}
# Of the synopsis, where a subcommand may go on over several lines.
words_of_document() {
  awk -v call="kztns $1 " '/^(kztns |```)/ {on = 0} index($0, call) == 1 {on = 1} on {print}' \
    "$project/docs/kztns.md" | { grep -oE -- "$2 [a-z|]+" || true; } | sed "s/^$2 //" | tr '|' '\n'
}

common=$(section kztns.1 '.Ss Options of' '.Ss show' | options_of_page)
subcommands=(show why check fix format lsp list settings)
same "subcommands" "$(printf '%s\n' "${subcommands[@]}")" \
  "$("$kztns" --help | sed -n '/^Subcommands:/,$ s/^  \([a-z]*\) .*/\1/p')"
of_helps=$(options_of_help)
listed=
for subcommand in "${subcommands[@]}"; do
  own=$(section kztns.1 ".Ss $subcommand:" | options_of_page || true)
  in_help=$(options_of_help "$subcommand")
  of_helps+=$'\n'$in_help
  while read -r option words; do
    same "words of $subcommand $option" "${words//,/$'\n'}" "$(words_of_page "$subcommand" "$option")"
    same "words of $subcommand $option, in the document" "${words//,/$'\n'}" \
      "$(words_of_document "$subcommand" "$option")"
    listed+=" $option"
  done < <(words_of_help "$subcommand")
  same "options of $subcommand" "$(grep -vxF -- "$common" <<<"$in_help" || echo none)" "${own:-none}"
done
[ -n "$listed" ] || fail "no help lists the words of an option"
same "options of several subcommands" "$common" "$(grep -xF -- "$common" <<<"$of_helps")"

statuses=$(for subcommand in "${subcommands[@]}"; do
  "$kztns" "$subcommand" --help | sed -n '/^Exit status:/,$p' |
    tr ',\n' '\n\n' | sed -nE 's/^ *(Exit status: )?([0-9]+) .*/\2/p'
done)
same "exit statuses" "$statuses" \
  "$(section kztns.1 '.Sh EXIT STATUS' '.Sh EXAMPLES' | sed -n 's/^\.It \([0-9]*\)$/\1/p')"
same "exit statuses" "$statuses" "$(sed -nE 's/^\| ([0-9]+) \|.*/\1/p' "$project/docs/kztns.md")"
same "options of all subcommands" "$(grep -vE -- '^--(help|version)$' <<<"$of_helps")" \
  "$(grep -oE -- '--[a-z][a-z-]+' "$project/docs/kztns.md")"

version=$("$kztns" --version)
for page in kztns.1 kzoci_tnsname.3 kzoci_tnsnames.5; do
  grep -qx "\.Os \"kzoci ${version#kztns }\"" "$man/$page" || fail "$page: not of version ${version#kztns }"
done

exit $failed
