# A table of what is reached of each file, from two inputs: rows of functions without code and
# of files, and the lines in the form of lcov. PREFIX is left out of the files' names.
function ratio(reached, all) {
  if (reached < all) missing = " missing"
  return sprintf("%d of %d", reached, all)
}
function print_row(name, a, b, c, d, e, f) {
  missing = ""
  row = sprintf("%-46s %14s %12s %12s", name, ratio(a, b), ratio(c, d), ratio(e, f))
  print row missing
}

$1 == "unused" { for (line = $3; line <= $4; ++line) without_code[$2, line] = 1; next }
$1 == "file" { branches[$2] = $3; all_branches[$2] = $4; conditions[$2] = $5; all_conditions[$2] = $6; next }

/^SF:/ { file = substr($0, 4); files[++count] = file }
/^DA:/ {
  split(substr($0, 4), number, ",")
  if (number[2] == 0 && (file, number[1]) in without_code) next
  ++all_lines[file]
  lines[file] += number[2] > 0
}

END {
  printf "%-46s %14s %12s %12s\n", "", "lines", "branches", "conditions"
  for (i = 1; i <= count; ++i) {
    file = files[i]
    name = index(file, prefix) == 1 ? substr(file, length(prefix) + 1) : file
    if (!all_lines[file]) continue
    print_row(name, lines[file], all_lines[file], branches[file], all_branches[file],
              conditions[file], all_conditions[file])
    sum[1] += lines[file]; sum[2] += all_lines[file]; sum[3] += branches[file]
    sum[4] += all_branches[file]; sum[5] += conditions[file]; sum[6] += all_conditions[file]
  }
  print_row("in all", sum[1], sum[2], sum[3], sum[4], sum[5], sum[6])
}
