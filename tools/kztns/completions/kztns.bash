# Completion of kztns for bash. The subcommands, the options and the words that they take
# are read from the command's help when they are needed.
#
# Neither the line nor a name of a names file is ever expanded: names are copied and quoted.

# Splits a line into words without their quotes. Sets words, raw (the last word as it is
# written) and quote (the one that is open at the end).
_kztns_split() {
  local line=$1 word= begun= char next i
  words=() raw= quote=
  for ((i = 0; i < ${#line}; ++i)); do
    char=${line:i:1} next=${line:i+1:1}
    raw+=$char
    case $quote$char in
      "''" | '""') quote= ;;
      "'"?) word+=$char ;;
      '"\' | '\')
        [[ -z $quote || $next == [\"\\\$\`] ]] || word+=$char
        word+=$next raw+=$next
        i=$((i + 1))
        ;;
      '"'?) word+=$char ;;
      "'" | '"') quote=$char ;;
      ' ' | $'\t')
        [[ -z $begun ]] || words+=("$word")
        word= begun= raw=
        continue
        ;;
      *) word+=$char ;;
    esac
    begun=1
  done
  words+=("$word")
}

# A path as the shell takes it: only a "~" or a variable that it begins with is expanded.
_kztns_path() {
  local path=${1/#\~\//"$HOME/"} name
  if [[ $path =~ ^\$\{?([A-Za-z_][A-Za-z0-9_]*)\}?(/.*)$ ]]; then
    name=${BASH_REMATCH[1]} path=${!name}${BASH_REMATCH[2]}
  fi
  printf %s "$path"
}

# What the command prints; nothing when it fails.
_kztns_ask() { "$(_kztns_path "${words[0]}")" "$@" 2>/dev/null </dev/null; }

# Reads a help: subcommands, options, kind_of (what an option takes: FILE, RULE ...), choices_of
# (the words that it may be), is_list (of whether they are separated by commas), positional, and
# repeats (whether there may be several).
_kztns_read_help() {
  local line section= names name
  local option='^  (-[^ ]+)( ([A-Z][A-Z]+)(,\.\.\.)?(:\{([^}]*)\})?( |$))?'
  local choices=': ([a-z]+(, [a-z]+)*) or ([a-z]+)$'
  while IFS= read -r line; do
    case $line in
      [A-Z]*:) section=$line ;;
      [^\ ]*) section= ;;
    esac
    case $section in
      Subcommands:) [[ $line =~ ^\ \ ([a-z]+) ]] && subcommands+=("${BASH_REMATCH[1]}") ;;
      Positionals:)
        [[ $line =~ ^\ \ ([A-Z]+)(\ \.\.\.)? ]] || continue
        positional=${BASH_REMATCH[1]} repeats=${BASH_REMATCH[2]}
        ;;
      Options:)
        if [[ $line =~ $option ]]; then
          IFS=, read -ra names <<<"${BASH_REMATCH[1]}"
          options+=("${names[@]}")
          for name in "${names[@]}"; do
            kind_of[$name]=${BASH_REMATCH[3]} is_list[$name]=${BASH_REMATCH[4]}
            choices_of[$name]=${BASH_REMATCH[6]//,/ }
          done
        fi
        [[ -n $name && -n ${kind_of[$name]} && -z ${choices_of[$name]} && $line =~ $choices ]] &&
          choices_of[$name]="${BASH_REMATCH[1]//,/} ${BASH_REMATCH[3]}"
        ;;
    esac
  done < <(_kztns_ask "$@" --help)
}

# Names that could be taken for an option, or that a terminal would obey, are left out.
_kztns_entries() {
  local file
  file=$(_kztns_path "$1")
  [[ -z $file || -f $file ]] || return
  _kztns_ask list ${file:+--file "$file"} | command cut -f 1 |
    LC_ALL=C command grep -av -e '^-' -e '^$' -e '\\x[0-9a-f][0-9a-f]'
}

# Adds those of the lines on standard input that, after the first argument, continue the word.
_kztns_offer() {
  local line
  while IFS= read -r line; do
    [[ $1$line == "${words[-1]}"* ]] && found+=("$1$line")
  done
}

_kztns_offer_files() { compopt -o default; }

# _kztns_offer_value OPTION BEFORE: BEFORE is what the word has before the value.
_kztns_offer_value() {
  local option=$1 before=$2 given=${words[-1]}
  if [[ -n ${is_list[$option]} && ${given#"$before"} == *,* ]]; then before=${given%,*},; fi
  case ${kind_of[$option]} in
    FILE | PATH) _kztns_offer_files ;;
    RULE) _kztns_offer "$before" < <(_kztns_ask check --rules | command cut -d ' ' -f 1) ;;
    *) _kztns_offer "$before" <<<"${choices_of[$option]// /$'\n'}" ;;
  esac
}

# _kztns_offer_positional FILE GIVEN...: FILE is that of --file, GIVEN what is there already.
_kztns_offer_positional() {
  local file=$1
  shift
  [[ $# -eq 0 || -n $repeats ]] || return
  case $positional in
    FILE) _kztns_offer_files ;;
    IDENTIFIER) _kztns_offer '' < <(_kztns_entries "$file") ;;
    NAME)
      # The first one may be the file.
      if [[ -z $file && $# -eq 0 ]]; then _kztns_offer_files; fi
      if [[ -z $file && -f $(_kztns_path "$1") ]]; then file=$1; fi
      _kztns_offer '' < <(_kztns_entries "$file")
      ;;
  esac
}

# What may stand at the end of the line of a subcommand.
_kztns_offer_argument() {
  local word option= file= only_positionals= given=() last=${words[-1]}
  local names=("${words[@]:2:${#words[@]}-3}")
  for word in "${names[@]}"; do
    if [[ -n $option ]]; then
      [[ $option == --file ]] && file=$word
      option=
    elif [[ -n $only_positionals || $word != -?* ]]; then
      given+=("$word")
    else
      case $word in
        --) only_positionals=1 ;;
        --file=*) file=${word#*=} ;;
        *) [[ -n ${kind_of[$word]} ]] && option=$word ;;
      esac
    fi
  done
  if [[ -n $option ]]; then
    _kztns_offer_value "$option" ''
  elif [[ -n $only_positionals || $last != -* ]]; then
    _kztns_offer_positional "$file" "${given[@]}"
  elif [[ $last == --*=* ]]; then
    _kztns_offer_value "${last%%=*}" "${last%%=*}="
  else
    _kztns_offer '' < <(printf '%s\n' "${options[@]}")
  fi
}

# Quotes what is found, without the first KEPT characters, which stay on the line.
_kztns_reply() {
  local kept=$1 text
  for text in "${found[@]}"; do
    text=${text:kept}
    case $quote in
      '')
        printf -v text %q "$text"
        text=${text//\\,/,}  # A comma means something in braces only, and they are quoted.
        ;;
      "'") text=${text//\'/"'\\''"} ;;
      '"')
        [[ $text != *!* ]] || continue  # It cannot be quoted here.
        text=${text//\\/\\\\} text=${text//\"/\\\"} text=${text//\$/\\\$} text=${text//\`/\\\`}
        ;;
    esac
    COMPREPLY+=("$text")
  done
}

_kztns() {
  local IFS=$' \t\n' words raw quote found=() subcommands=() options=() positional= repeats=
  local -A kind_of=() choices_of=() is_list=()
  COMPREPLY=()
  _kztns_split "${COMP_LINE:0:COMP_POINT}"
  if [[ ${#words[@]} -eq 2 ]]; then
    _kztns_read_help
    if [[ ${words[1]} == -* ]]; then subcommands=("${options[@]}"); fi
    _kztns_offer '' < <(printf '%s\n' "${subcommands[@]}")
  elif [[ ${words[-2]} == *[\<\>] ]]; then
    _kztns_offer_files
  elif [[ ${words[1]} == [a-z]* ]]; then
    _kztns_read_help "${words[1]}"
    # After a word that is no subcommand the help is that of the command.
    if [[ ${#subcommands[@]} -eq 0 ]]; then _kztns_offer_argument; fi
  fi
  # Readline replaces the word from its last ":" or "=" on.
  local kept=${raw%"$2"} open=$quote
  _kztns_split "$kept"
  quote=$open
  _kztns_reply "${#words[-1]}"
}

complete -F _kztns kztns
