#!/usr/bin/env bash
# A shell completes the command's arguments: every subcommand and option of the helps, the words
# that options take, rules, files, and the names of a names file, none of which is executed.
# Status 77 where the shell is not installed; zsh also needs a pseudo-terminal.
#   completions.sh bash|zsh|fish KZTNS
set -uo pipefail
shell=$1 kztns=$2
command -v "$shell" >/dev/null || { echo "skipped: $shell is not installed"; exit 77; }
if [ "$shell" = zsh ]; then
  zsh -fc 'zmodload zsh/zpty && zpty shell true' 2>/dev/null ||
    { echo "skipped: no pseudo-terminal here"; exit 77; }
fi
checks=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
completions=$checks/../../tools/kztns/completions
export completions
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/bin" "$scratch/home" "$scratch/work" && ln -s "$kztns" "$scratch/bin/kztns"
export HOME=$scratch/home ZDOTDIR=$scratch/home XDG_CONFIG_HOME=$scratch/home LC_ALL=C.UTF-8
export scratch PATH=$scratch/bin:$PATH
unset KZCI_TNS_FILE TNS_ADMIN ORACLE_HOME
cd "$scratch/work" || exit 1
failed=0

# offered LINE: what the shell offers at the end of the line, and what it complains of.
offered() {
  timeout 60 "$checks/completions/$shell.sh" "$1" 2>"$scratch/errors"
  local status=$?
  [ $status -eq 0 ] || echo "failed with status $status"
  cat "$scratch/errors"
}

# section NAME [SUBCOMMAND]: the first words of the items of a section of a help.
section() {
  local name=$1
  shift
  "$kztns" "$@" --help | awk -v name="$name:" '
    /^[^ ]/ { inside = $0 == name; next }
    inside && /^  [^ ]/ { print $1 }'
}

# is LINE: what is offered at the end of the line is what standard input has, in any order.
# What the word has already before a "=" or a "," makes no difference.
is() {
  local actual
  actual=$(offered "$1" | sed 's/^--[a-z-]*=//; s/.*,\(.\)/\1/; s/,$//' | sort -u)
  actual=$(diff <(sort -u) <(printf "${actual:+%s\n}" "$actual")) && return
  printf '%s: < expected, > offered\n%s\n' "$1" "$actual"
  failed=1
}
words() { tr ' ' '\n' <<<"$*"; }

# What the helps have.
subcommands=$(section Subcommands)
[ "$(wc -w <<<"$subcommands")" -eq 8 ] || { echo "the help has no subcommands"; exit 1; }
is 'kztns ' <<<"$subcommands"
is 'kztns --' < <(section Options | grep -o -- '--.*')
for subcommand in $subcommands; do
  is "kztns $subcommand --" < <(section Options "$subcommand" | grep -o -- '--.*')
done
is 'kztns check --explain ' < <("$kztns" check --rules | cut -d ' ' -f 1)

# Words that options take, also of a list.
is 'kztns sh' < <(words show)
is 'kztns fix -' < <(words -h -o; section Options fix | grep -o -- '--.*')
is 'kztns show --format ' < <(words dot json svg tree)
is 'kztns show --format=' < <(words dot json svg tree)
is 'kztns check --format j' < <(words json)
is 'kztns check --fail-on=n' < <(words never)
is 'kztns show --log ' < <(words trace debug info warn error)
is 'kztns fix --keep ' < <(words first last)
is 'kztns list --verdict re' < <(words refused reserved)
is 'kztns list --verdict=ok,s' < <(words shadowed)
is 'kztns check --disable no-p' < <(words no-port)
is 'kztns check --disable no-port --dis' < <(words --disable)
is 'kztns check --disable unknown-key,no-h' < <(words no-host)
is 'kztns show --max-size ' </dev/null

# Names, which reach the command as they are in the file.
cat >odd.ora <<'END'
plain = (DESCRIPTION = (ADDRESS = (HOST = h))(CONNECT_DATA = (SID = s)))
"two words" = (X = 1)
"$(touch made)" = (X = 1)
"`touch made`" = (X = 1)
"'; touch made; '" = (X = 1)
it's = (X = 1)
back\slash = (X = 1)
$HOME = (X = 1)
* = (X = 1)
db:1 = (X = 1)
db:2 = (X = 1)
now! = (X = 1)
cost$HOME = (X = 1)
"run`touch made`" = (X = 1)
"~/x" = (X = 1)
--file = (X = 1)
a\x41 = (X = 1)
END
printf 'b\xff = (X = 1)\n' >>odd.ora
cp odd.ora 'odd names.ora'
printf 'other = (X = 1)\n' >other.ora
mkfifo pipe
names() {
  cat <<'END'
plain
two words
$(touch made)
`touch made`
'; touch made; '
it's
back\slash
$HOME
*
db:1
db:2
now!
cost$HOME
run`touch made`
END
  # Fish does not quote a "~".
  [ "$shell" = fish ] || echo '~/x'
}
for line in 'show --file odd.ora' 'why --file=odd.ora' 'list --file odd\ names.ora' \
  'show --log info --file "odd names.ora"' 'list odd.ora'; do
  is "kztns $line " < <(names)
done
KZCI_TNS_FILE=odd.ora is 'kztns show ' < <(names)
KZCI_TNS_FILE=odd.ora is 'kztns show --file other.ora ' < <(words other)
KZCI_TNS_FILE=odd.ora is 'kztns list plain ' < <(names)
is 'kztns show --file odd.ora tw' <<<'two words'
is 'kztns show --file odd.ora "tw' <<<'two words'
is "kztns show --file odd.ora 'it" <<<"it's"
is 'kztns show --file odd.ora "cost' <<<'cost$HOME'
is 'kztns show --file odd.ora "run' <<<'run`touch made`'
# Bash reads no "!" back from double quotes.
[ "$shell" != bash ] || is 'kztns show --file odd.ora "now' </dev/null
is 'kztns show --file odd.ora db:' < <(words db:1 db:2)
is 'kztns show --file odd.ora -- pl' < <(words plain)
is 'kztns show --file odd.ora -- --f' </dev/null
here=$PWD is 'kztns show --file $here/other.ora ' < <(words other)
HOME=$PWD is 'kztns show --file ~/other.ora ' < <(words other)
KZCI_TNS_FILE=odd.ora is 'kztns show plain p' </dev/null
is 'kztns show --file $(touch${IFS}made) ' </dev/null
is 'kztns show --file nowhere.ora ' </dev/null
is 'kztns show --file pipe ' </dev/null
is 'kztns show ' </dev/null
[ ! -e made ] || { echo "a name is executed"; failed=1; }

# Files, also as the first argument of list.
is 'kztns settings ot' < <(words other.ora)
is 'kztns check odd.ora ot' < <(words odd.ora other.ora | grep ot)
is 'kztns fix --output ot' < <(words other.ora)
is 'kztns show --file=ot' < <(words other.ora)
is 'kztns list ot' < <(words other.ora)
is 'kztns show plain > od' < <(printf '%s\n' odd.ora 'odd names.ora')

# Nothing is said where there is nothing to offer, and without the command.
is 'kztns nothing ' </dev/null
is 'kztns nothing --' </dev/null
rm "$scratch/bin/kztns"
is 'kztns show --' </dev/null
exit $failed
