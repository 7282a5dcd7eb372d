# Turns an expectation into the text that the run should have written.
# Arguments: the normalised text, then the expectation; `words` names a file of "name value" lines.

function value(expr,   parts, n, v, i) {
  if (match(expr, /-[0-9]+$/)) {
    v = substr(expr, RSTART + 1)
    return value(substr(expr, 1, RSTART - 1)) - v
  }
  n = split(expr, parts, "*")
  if (!(parts[1] in word)) return "<no word " parts[1] ">"
  v = word[parts[1]]
  for (i = 2; i <= n; i++) v *= parts[i]
  return v
}

function expand(line,   out, hole, width, brace, rest) {
  out = ""
  while (match(line, /%[0-9]*\{[^}]*\}/)) {
    hole = substr(line, RSTART + 1, RLENGTH - 2)
    rest = substr(line, RSTART + RLENGTH)
    out = out substr(line, 1, RSTART - 1)
    brace = index(hole, "{")
    width = substr(hole, 1, brace - 1) + 0
    out = out sprintf("%" width "s", value(substr(hole, brace + 1)) "")
    line = rest
  }
  return out line
}

# The line number that the run wrote, where the expectation leaves it open.
function open_line(line, written,   at, rest) {
  at = index(line, ":----;")
  if (at == 0 || substr(written, 1, at) != substr(line, 1, at)) return line
  rest = substr(written, at + 1)
  if (!match(rest, /^[0-9][0-9][0-9][0-9]+;/)) return line
  return substr(line, 1, at) substr(rest, 1, RLENGTH) substr(line, at + 6)
}

BEGIN {
  while ((getline entry < words) > 0) {
    split(entry, pair, " ")
    word[pair[1]] = pair[2]
  }
}

FILENAME == ARGV[1] { actual[++lines] = $0; next }

FNR == 1 { next_line = 1 }

/^%\* / {
  pattern = substr($0, 4)
  while (next_line <= lines && actual[next_line] ~ pattern) print actual[next_line++]
  next
}

{
  line = open_line(expand($0), actual[next_line])
  next_line++
  print line
}
