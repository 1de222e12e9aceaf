# Completion of kztns for fish. The subcommands, the options and the words that they take
# are read from the command's help when they are needed.
#
# Neither the line nor a name of a names file is ever expanded: names are printed as
# candidates, which fish quotes.

# A path as the shell takes it: only a "~" or a variable that it begins with is expanded.
function __kztns_path
    set -l path (string replace -r '^~/' "$HOME/" -- $argv[1])
    set -l parts (string match -r '^\$([A-Za-z_][A-Za-z0-9_]*)(/.*)$' -- $path)
    and set path (string join ' ' -- $$parts[2])$parts[3]
    printf '%s\n' $path
end

# What the command prints; nothing when it fails.
function __kztns_ask
    set -l words (commandline -opc)
    set -l program (__kztns_path $words[1])
    command -q $program
    and $program $argv 2>/dev/null </dev/null
end

# __kztns_section SECTION [SUBCOMMAND]: the items of a section of a help, a line each.
function __kztns_section
    set -l help (__kztns_ask $argv[2] --help | string collect)
    set -l current
    # A long item continues on a line that begins far to the right.
    for line in (string replace -ra '\n {10,}' '  ' -- $help | string split \n)
        if string match -qr '^\S' -- $line
            set current $line
        else if test "$current" = "$argv[1]:" -a -n "$line"
            printf '%s\n' $line
        end
    end
end

# __kztns_options [SUBCOMMAND]: each option with what it takes (FILE, RULE ...), "," for a list
# of these, the words that it may be, and its text, between tabs.
function __kztns_options
    set -l item '^  (-[^ ]+) ?((?:[A-Z]{2,}(?=[ ,:]))?)((?:,\.\.\.)?)((?::\{[^}]*\})?)(?: \.\.\.)?(?: Excludes:(?: [A-Za-z-]+)*)? +(.*)$'
    set -l listed ': ([a-z]+(?:, [a-z]+)*) or ([a-z]+)$'
    for line in (__kztns_section Options $argv)
        set -l parts (string match -r $item -- $line)
        or continue
        set -l choices (string match -r '[a-z,]+' -- "$parts[5]")
        if test -n "$parts[3]" -a -z "$choices"
            set -l words (string match -r $listed -- $parts[6])
            and set choices (string replace -a ' ' '' -- $words[2]),$words[3]
        end
        for name in (string split , -- $parts[2])
            printf '%s\t%s\t%s\t%s\t%s\n' $name "$parts[3]" (string sub -l 1 -- "$parts[4]") \
                "$choices" "$parts[6]"
        end
    end
end

# Names that could be taken for an option, or that a terminal would obey, are left out, and those
# that begin with "~", which fish does not quote.
function __kztns_entries
    set -l file
    if test -n "$argv[1]"
        set file --file (__kztns_path $argv[1])
        test -f "$file[2]"
        or return
    end
    __kztns_ask list $file | command cut -f 1 |
        LC_ALL=C command grep -av -e '^[-~]' -e '^$' -e '\\\\x[0-9a-f][0-9a-f]'
end

# __kztns_value OPTION BEFORE OPTIONS...: what __kztns_place prints of an option's value.
function __kztns_value
    for option in $argv[3..-1]
        set -l parts (string split \t -- $option)
        test "$parts[1]" = "$argv[1]"
        or continue
        printf '%s\n' $parts[2] $argv[2] $parts[3] $parts[4]
    end
end

# What is expected at the cursor: its kind (FILE, RULE ...), what the word has before it, and of
# a value "," for a list and the words that it may be, of an entry the file.
function __kztns_place
    set -l words (commandline -opc)
    set -l token (commandline -ct)
    set -l subcommand $words[2]
    if test (count $words) -lt 2
        string match -q -- '-*' $token
        and printf '%s\n' OPTION ''
        or printf '%s\n' SUBCOMMAND ''
        return
    end
    # After a word that is no subcommand the help is that of the command.
    string match -qr '^[a-z]+$' -- $subcommand
    and not __kztns_section Subcommands $subcommand | string length -q
    or return
    set -l options (__kztns_options $subcommand)
    set -l takes (string replace -rf '^(\S+)\t[A-Z].*' '$1' -- $options)
    set -l option
    set -l only_positionals
    set -l file
    set -l given
    set -e words[1..2]
    for word in $words
        if test -n "$option"
            test $option = --file
            and set file $word
            set option
        else if test -n "$only_positionals"; or not string match -q -- '-?*' $word
            set -a given $word
        else if test $word = --
            set only_positionals 1
        else if string match -q -- '--file=*' $word
            set file (string sub -s 8 -- $word)
        else if contains -- $word $takes
            set option $word
        end
    end
    if test -n "$option"
        __kztns_value $option '' $options
    else if test -n "$only_positionals"; or not string match -q -- '-*' $token
        __kztns_positional $subcommand "$file" $given
    else if set -l parts (string match -r '^(--[a-z-]+)=' -- $token)
        __kztns_value $parts[2] $parts[1] $options
    else
        printf '%s\n' OPTION ''
    end
end

# __kztns_positional SUBCOMMAND FILE GIVEN...: what __kztns_place prints of a positional.
function __kztns_positional
    set -l item (__kztns_section Positionals $argv[1])
    set -l kind (string match -r '[A-Z]+' -- "$item")
    set -l file $argv[2]
    set -e argv[1..2]
    set -q argv[1]; and not string match -q '  * ... *' -- "$item"
    and return
    if test "$kind" = NAME -a -z "$file"
        # The first one may be the file.
        if not set -q argv[1]
            set kind NAME_OR_FILE
        else if test -f (__kztns_path $argv[1])
            set file $argv[1]
        end
    end
    printf '%s\n' $kind '' "$file"
end

function __kztns_candidates
    set -l place (__kztns_place)
    set -l words (commandline -opc)
    set -l before $place[2]
    if test "$place[3]" = ,
        set -l value (string sub -s (math 1 + (string length -- "$before")) -- (commandline -ct))
        set before $before(string replace -r '[^,]*$' '' -- "$value")
    end
    switch "$place[1]"
        case SUBCOMMAND
            __kztns_section Subcommands | string replace -r '^  (\S+) +' '$1'\t
        case OPTION
            __kztns_options $words[2] | string replace -r '\t.*\t' \t
        case IDENTIFIER NAME NAME_OR_FILE
            __kztns_entries "$place[3]"
        case RULE
            printf '%s\n' "$before"(__kztns_ask check --rules | string replace -r '^(\S+) +\S+ +' '$1'\t)
        case '*'
            set -q place[4]; and test -n "$place[4]"
            and printf '%s\n' "$before"(string split , -- $place[4])
    end
end

function __kztns_wants_file
    set -l place (__kztns_place)
    contains -- "$place[1]" FILE PATH NAME_OR_FILE
end

complete -c kztns -f -a '(__kztns_candidates)'
complete -c kztns -n __kztns_wants_file -F
