# Prints rows as an aligned table. A line of input is a row: name, ratio, a and b
# in nanoseconds (bytes where that is the unit), unit, must, goal, whether these are lower bounds, and whether
# each is kept ("true", "false"); separated by tabs, empty where a row has none.
BEGIN {
  FS = "\t"
  layout = "%-52s %7s %10s %10s  %-8s %6s %6s  %s\n"
  printf layout, "a / b", "ratio", "a", "b", "per", "must", "goal", "kept"
}

function time(ns) {
  if (ns == "") return ""
  if (ns < 1000) return sprintf("%.1f ns", ns)
  if (ns < 1000000) return sprintf("%.2f us", ns / 1000)
  return sprintf("%.2f ms", ns / 1000000)
}

function size(bytes) { return sprintf("%.1f MB", bytes / 1e6) }
function cost(value) { return value != "" && $5 == "bytes" ? size(value) : time(value) }

function bound(value) { return value == "" ? "" : sprintf("%s%.2f", ($8 == "true" ? ">" : ""), value) }

function kept() {
  if ($9 == "") return ""
  if ($9 == "false") return "NO"
  return $10 == "false" ? "must" : "yes"
}

{ printf layout, $1, sprintf("%.2f", $2), cost($3), cost($4), $5, bound($6), bound($7), kept() }
