# Doxygen's view of a public header: its plain comments as documentation.
#
#   the first comment                    describes the file
#   a comment on lines of its own        describes what follows
#   a comment after a declaration        describes that
#   a comment between lines of "="       begins a group; its first line is the title
#   " * NAME  text", " * A, B  text"     an argument, with the lines that continue it
#   " * Returns"                         the result
#   " *   text" after an empty line      an example or a table, as it stands
#   a function right below another one   is described with that

function leave_group() {
  if (groups > 0) print "/** @} */"
}

# Doxygen wants four blanks more before what is to stay as it is.
function as_it_stands(line) {
  in_example = line ~ /^ \*   / && (in_example || after_empty) || line ~ /^ \*$/ && in_example
  after_empty = line ~ /^ \*$/
  return in_example ? " *    " substr(line, 3) : line
}

# A line of a comment.
function described(line,    names) {
  if (match(line, /^ \* [a-z_]+(, [a-z_]+)*  +/)) {
    in_argument = 1
    names = substr(line, 4, RLENGTH - 3)
    gsub(/ /, "", names)
    return " * @param " names " " substr(line, RLENGTH + 1)
  }
  if (in_argument && sub(/^ \*  +/, " *   ", line)) return line
  in_argument = 0
  sub(/^ \* Returns /, " * @return ", line)
  return as_it_stands(line)
}

# A comment is printed when the line after it is known: above an assertion or a pragma it
# describes nothing that has a page, and stays plain.
function print_comment(next_line) {
  if (next_line !~ /^KZOCI_REQUIRE|^#if .*__clang__/) sub(/\/\*/, "/**", comment)
  printf "%s", comment
  comment = ""
}

NR == 1 { comment = "/* @file\n"; in_comment = 1; next }

/^\/\* =====/ {
  print_comment($0)
  leave_group()
  getline title
  sub(/^ \* */, "", title)
  file = FILENAME
  sub(/.*\//, "", file)
  gsub(/[^a-z0-9]/, "_", file)
  print "/** @defgroup " file "_" ++groups " " title
  print " *"
  in_banner = 1
  next
}
in_banner && /=====/ { print " * @{ */"; in_banner = 0; next }
in_banner { print as_it_stands($0); next }

!in_comment { print_comment($0) }
!in_comment && /^ *\/\*/ { in_comment = 1 }
in_comment {
  comment = comment described($0) "\n"
  if (/\*\//) in_comment = in_argument = 0
  previous = ""
  next
}

/^KZOCI_API [a-z]+ [A-Za-z]+\(/ {
  if (previous ~ /\);$/) print "/** @copydoc " function_above " */"
  function_above = substr($3, 1, index($3, "(") - 1)
}

# The end of the declarations.
/^#ifdef __cplusplus$/ && ++conditions == 2 { leave_group() }

{
  previous = $0
  if (!/^#e/ && /[^ ] +\/\* /) sub(/\/\* /, "/**< ")
  print
}
