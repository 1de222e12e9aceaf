#!/usr/bin/env bash
# Prints what fish offers at the end of a line, as it would read it back.
#   fish.sh LINE
fish --no-config -c '
  source $completions/kztns.fish
  for text in (complete --escape -C $argv[1])
    eval "printf %s\\\\n "(string replace -r "\t.*" "" -- $text)
  end
' "$1"
