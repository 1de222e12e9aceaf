# Draws times over the number of entries of a file, both on logarithmic axes, as SVG.
#
#   awk -v title=TITLE -v axis=TEXT -v curves="NAME..." -f bench/cost_plot.awk
#
# axis is the text beside the times, curves those that are drawn, in their order. A line of
# input is a point: curve, entries, seconds; separated by tabs, the points of a curve in
# their order.
BEGIN {
  FS = "\t"
  width = 760; height = 500
  left = 86; right = 46; top = 58; bottom = 64
  colour["ours"] = "#1261a0"; label["ours"] = "a name, looked up by this library"
  colour["libpq"] = "#c2571a"; label["libpq"] = "a service, looked up by libpq in its own file"
  colour["check"] = "#1261a0"; label["check"] = "kztns check"
  colour["list"] = "#2e7d4f"; label["list"] = "kztns list"
  colour["fix"] = "#c2571a"; label["fix"] = "kztns fix"
  colour["R"] = "#6b6b6b"; label["R"] = "R: the names file read and nothing more"
  dashes["R"] = " stroke-dasharray=\"6 4\""
  split(curves, order, " ")
}

function log10(x) { return log(x) / log(10) }
function floor(x,    whole) { whole = int(x); return whole > x ? whole - 1 : whole }
function ceiling(x) { return -floor(-x) }
function x_of(value) { return left + (log10(value) - x_low) / (x_high - x_low) * (width - left - right) }
function y_of(value) { return height - bottom - (log10(value) - y_low) / (y_high - y_low) * (height - top - bottom) }

function text(x, y, attributes, content) {
  printf "<text x=\"%.1f\" y=\"%.1f\" %s>%s</text>\n", x, y, attributes, content
}

function line(x1, y1, x2, y2, stroke) {
  printf "<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"%s\"/>\n", x1, y1, x2, y2, stroke
}

# 100, 1,000, 10,000 and so on.
function entries_name(power,    name, i) {
  name = sprintf("%d", 10 ^ power)
  for (i = length(name) - 3; i > 0; i -= 3) name = substr(name, 1, i) "," substr(name, i + 1)
  return name
}

# 1 us, 10 us and so on.
function seconds_name(power) {
  if (power >= 0) return sprintf("%d s", 10 ^ power)
  if (power >= -3) return sprintf("%d ms", 10 ^ (power + 3))
  return sprintf("%d us", 10 ^ (power + 6))
}

function draw_axes(    power, factor, at) {
  for (power = x_low; power <= x_high; power++) {
    at = x_of(10 ^ power)
    line(at, top, at, height - bottom, "#d9d9d9")
    text(at, height - bottom + 20, "text-anchor=\"middle\"", entries_name(power))
    for (factor = 2; factor < 10 && power < x_high; factor++)
      line(x_of(factor * 10 ^ power), height - bottom, x_of(factor * 10 ^ power), height - bottom + 4, "#8c8c8c")
  }
  for (power = y_low; power <= y_high; power++) {
    at = y_of(10 ^ power)
    line(left, at, width - right, at, "#d9d9d9")
    text(left - 10, at + 4, "text-anchor=\"end\"", seconds_name(power))
    for (factor = 2; factor < 10 && power < y_high; factor++)
      line(left - 4, y_of(factor * 10 ^ power), left, y_of(factor * 10 ^ power), "#8c8c8c")
  }
  printf "<rect x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\" fill=\"none\" stroke=\"#8c8c8c\"/>\n", left, top, width - left - right, height - top - bottom
  text((left + width - right) / 2, height - 18, "text-anchor=\"middle\"", "entries in the file")
  printf "<text transform=\"translate(20 %.1f) rotate(-90)\" text-anchor=\"middle\">%s</text>\n", (top + height - bottom) / 2, axis
}

function draw_curve(curve,    i) {
  printf "<polyline fill=\"none\" stroke=\"%s\" stroke-width=\"2\"%s points=\"", colour[curve], dashes[curve]
  for (i = 1; i <= points[curve]; i++)
    printf "%s%.1f,%.1f", (i > 1 ? " " : ""), x_of(entries[curve, i]), y_of(seconds[curve, i])
  print "\"/>"
  for (i = 1; i <= points[curve]; i++)
    printf "<circle cx=\"%.1f\" cy=\"%.1f\" r=\"3.5\" fill=\"%s\"/>\n", x_of(entries[curve, i]), y_of(seconds[curve, i]), colour[curve]
}

function draw_legend(    i, curve, y) {
  for (i = 1; i in order; i++) if (points[order[i]]) y += 20
  printf "<rect x=\"%d\" y=\"%d\" width=\"340\" height=\"%d\" fill=\"#fdfdfb\" stroke=\"#d9d9d9\"/>\n", left + 8, top + 8, y + 12
  y = top + 24
  for (i = 1; i in order; i++) {
    curve = order[i]
    if (!points[curve]) continue
    printf "<line x1=\"%d\" y1=\"%d\" x2=\"%d\" y2=\"%d\" stroke=\"%s\" stroke-width=\"2\"%s/>\n", left + 16, y, left + 46, y, colour[curve], dashes[curve]
    printf "<circle cx=\"%d\" cy=\"%d\" r=\"3.5\" fill=\"%s\"/>\n", left + 31, y, colour[curve]
    text(left + 56, y + 4, "", label[curve])
    y += 20
  }
}

$1 in colour {
  points[$1]++
  entries[$1, points[$1]] = $2
  seconds[$1, points[$1]] = $3
  if (!total++) { x_min = x_max = $2; y_min = y_max = $3 }
  if ($2 < x_min) x_min = $2
  if ($2 > x_max) x_max = $2
  if ($3 < y_min) y_min = $3
  if ($3 > y_max) y_max = $3
}

END {
  if (!total) exit 1
  # Whole decades; the logarithm of a power of ten may be off by a rounding error.
  x_low = floor(log10(x_min) + 1e-9); x_high = ceiling(log10(x_max) - 1e-9)
  y_low = floor(log10(y_min) + 1e-9); y_high = ceiling(log10(y_max) - 1e-9)
  printf "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %d %d\" width=\"%d\" height=\"%d\" font-family=\"Helvetica, Arial, sans-serif\" font-size=\"13\" fill=\"#333333\">\n", width, height, width, height
  printf "<rect width=\"%d\" height=\"%d\" fill=\"#fdfdfb\"/>\n", width, height
  text(left, 32, "font-size=\"17\" font-weight=\"bold\"", title)
  draw_axes()
  for (i = 1; i in order; i++) if (points[order[i]]) draw_curve(order[i])
  draw_legend()
  print "</svg>"
}
