#!/usr/bin/env bash
# Prints what bash offers at the end of a line, as it would read it back.
#   bash.sh LINE
bash --noprofile --norc -c '
  . "$completions/kztns.bash"
  [ "$(complete -p kztns)" = "complete -F _kztns kztns" ] || exit 1
  files=
  compopt() { [ "$*" = "-o default" ] && files=1; }
  # Readline replaces what comes after an open quote, a "=" or a ":".
  word=${1##* } quote=
  current=${word##*[=:\"\'\'']}
  kept=${word%"$current"}
  case $kept in [\"\'\'']*) quote=${kept:0:1} ;; esac
  COMP_LINE=$1 COMP_POINT=${#1}
  _kztns kztns "$current" ""
  # It offers files where it is told to and nothing else is found.
  if [ ${#COMPREPLY[@]} -eq 0 ] && [ -n "$files" ]; then compgen -f -- "$current"; fi
  for text in "${COMPREPLY[@]}"; do eval "printf \"%s\\n\" $kept$text$quote"; done
' bash "$1"
