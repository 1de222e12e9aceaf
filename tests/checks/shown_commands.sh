#!/usr/bin/env bash
# Runs the commands that the documents show and compares what they print. Of a document,
# in order, in a folder of its own:
#
#   ```names [NAME]   a file, names.ora where it has no name
#   ```c NAME         a program, which compiles
#   ```console        commands after "$ ", each followed by what it prints, standard
#                     error included; a last line "..." is any number of lines
#
# Commands that build or test the project are not run: their scripts and presets must
# exist. Options of kztns that a text names in passing must be there, too.
#
#   shown_commands.sh PROJECT KZTNS LIBRARY_DIR C_COMPILER
set -uo pipefail
project=$(realpath "$1") kztns=$(realpath "$2") libraries=$(realpath "$3") cc=$(command -v "$4")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/bin"
ln -s "$kztns" "$scratch/bin/kztns" && ln -s "$cc" "$scratch/bin/cc"
# What it draws is not looked at.
command -v dot >/dev/null || { printf '#!/bin/sh\nexec cat\n' >"$scratch/bin/dot" && chmod +x "$scratch/bin/dot"; }
export PATH="$scratch/bin:$PATH" CPATH=$project LIBRARY_PATH=$libraries LD_RUN_PATH=$libraries
unset KZCI_TNS_FILE TNS_ADMIN ORACLE_HOME KZCI_TNS_DISPLAY NO_COLOR
commands=0
failed=0

fail() {
  printf '%s\n' "$document: $*"
  failed=1
}

# Whether what is expected was printed.
is_printed() {
  [ "$(tail -n 1 expected)" = ... ] || { cmp -s expected actual; return; }
  head -n -1 expected | cmp -s - <(head -n "$(($(wc -l <expected) - 1))" actual)
}

# The preset or the script of a command that is not run.
is_there() {
  local script=${1%% *} preset
  case $script in
    scripts/* | .ci/*) [ -x "$project/$script" ] || fail "no script $script" ;;
  esac
  for preset in $(grep -oE -- '--preset [a-z]+' <<<"$1" | sed 's/.* //'); do
    grep -q "\"name\": \"$preset\"" "$project/CMakePresets.json" || fail "no preset $preset"
  done
}

# What scripts/demo prints at its end: the command that it runs, and the output of that.
run_demo() {
  local command
  [ -s expected ] || return 0
  command=$(sed -n '1s/^==> build\/kztns //p' expected)
  grep -qx "build/kztns $command" "$project/scripts/demo" || fail "scripts/demo does not run $command"
  sed -i 1d expected
  run "kztns $command"
}

# run COMMAND
run() {
  case $1 in
    scripts/* | .ci/* | cmake\ * | ctest\ * | build/*)
      is_there "$1"
      [ "$1" != scripts/demo ] || run_demo
      return
      ;;
  esac
  commands=$((commands + 1))
  bash -c "$1" >actual 2>&1 </dev/null
  is_printed || {
    fail "\$ $1"
    diff -u --label shown --label printed expected actual
  }
}

# A block of commands, in the file block.
run_block() {
  local line command=
  : >expected
  while IFS= read -r line; do
    if [[ $command == *\\ ]]; then
      command=${command%\\}${line#  }
    elif [[ $line == '$ '* ]]; then
      [ -z "$command" ] || run "$command"
      command=$(sed 's/^\$ //; s/  *#.*//' <<<"$line")
      : >expected
    else
      printf '%s\n' "$line" >>expected
    fi
  done <block
  [ -n "$command" ] && run "$command"
}

# The file that a block makes, from its first line.
name_of_block() {
  local words=($1)
  echo "${words[1]:-names.ora}"
}

# make_program FILE
make_program() {
  mv block "$1"
  cc -Wall -Wextra -Wpedantic -Werror -fsyntax-only "$1" || fail "$1 does not compile"
}

run_document() {
  local line kind=
  while IFS= read -r line; do
    case $kind:$line in
      :'```'?*) kind=${line#'```'} && : >block ;;
      :'```') kind=text && : >block ;;
      ?*:'```')
        case $kind in
          console) run_block ;;
          names*) mv block "$(name_of_block "$kind")" ;;
          c\ *) make_program "$(name_of_block "$kind")" ;;
          *) ! grep -q '^\$ ' block || fail "commands that are not run: $(grep -m 1 '^\$ ' block)" ;;
        esac
        kind=
        ;;
      ?*:*) printf '%s\n' "$line" >>block ;;
    esac
  done <"$project/$document"
}

# Each kztns with a subcommand, in the text or in a synopsis: its options are in the help.
check_options() {
  local line subcommand option
  while IFS= read -r line; do
    subcommand=$(cut -d ' ' -f 2 <<<"$line")
    "$kztns" "$subcommand" --help >help 2>&1 || { fail "no subcommand: $line"; continue; }
    for option in $(grep -oE -- '--[a-z][a-z-]+' <<<"$line"); do
      grep -qE -- "$option( |\$)" help || fail "no option $option: $line"
    done
  done < <(tr '\n' ' ' <"$project/$document" | grep -oE '`kztns [a-z]+[^`]*`' | tr -d '`'
    sed -n '/^```$/,/^```$/p' "$project/$document" | grep '^kztns [a-z]')
}

cd "$project" || exit 1
for document in *.md docs/*.md; do
  folder=$scratch/${document//\//_}
  mkdir "$folder" && cd "$folder" && cp -r "$project/docs" "$project/examples" . || exit 1
  run_document
  check_options
done
echo "$commands commands"
[ "$commands" -gt 0 ] && exit $failed
