#!/usr/bin/env bash
# Prints what zsh offers at the end of a line, as it would read it back. It needs a
# pseudo-terminal.
#   zsh.sh LINE
cat >"$scratch/zshrc" <<'END'
fpath=($completions $fpath)
autoload -Uz compinit && compinit -u -d $scratch/zcompdump
LISTMAX=100000
unset zle_bracketed_paste
# Those calls that add matches note which.
noted=()
compadd() {
  local -a added
  [[ ${@[1,(i)(-|--)]} == *-[OAD]\ * ]] || builtin compadd -A added "$@"
  noted+=($added)
  builtin compadd "$@"
}
# A single match is read back from the line, of several each with the quote that is open.
complete_once() {
  local quote=${(M)${BUFFER##* }#[\"\']} text words=()
  zle complete-word
  if (( $#noted == 1 )) && [[ $BUFFER == *' ' ]]; then
    eval "words=($BUFFER)"
    print -r -- $words[-1]
  else
    for text in $noted; do eval "print -r -- $quote$text$quote"; done
  fi >$scratch/offered
  print >$scratch/done
}
zle -N complete_once
bindkey -e
bindkey '^I' complete_once
print >$scratch/ready
END
rm -f "$scratch"/{done,ready}
zsh -f -c '
  zmodload zsh/zpty
  zpty -b shell "TERM=dumb zsh -f -i" || exit 1
  await() { until [[ -e $1 ]]; do zpty -r -t shell output || sleep 0.02; done }
  zpty -w shell ". \$scratch/zshrc"
  await $scratch/ready
  zpty -w -n shell "$1"$'\''\t'\''
  await $scratch/done
  zpty -d shell
' zsh "$1" || exit
cat "$scratch/offered"
