# Turns a section of a case into the text that the run should have written.
# Arguments: the text that it wrote, then the section; `words` names a file of "name value" lines,
# `texts` the folder of the texts.

function stop(text) {
  print FILENAME ":" FNR ": " text >"/dev/stderr"
  stopped = 1
  exit 2
}

function byte(digits) {
  return sprintf("%c", 16 * (index(hex, substr(digits, 1, 1)) - 1) + index(hex, substr(digits, 2)) - 1)
}

function value(expr,   parts, n, v, i) {
  if (match(expr, /-[0-9]+$/)) {
    v = substr(expr, RSTART + 1)
    return value(substr(expr, 1, RSTART - 1)) - v
  }
  n = split(expr, parts, "*")
  if (!(parts[1] in word)) stop("no variable: " expr)
  v = word[parts[1]]
  for (i = 2; i <= n; i++) v *= parts[i]
  return v
}

function expand(line,   out, hole, rest, brace, name) {
  out = ""
  while (match(line, /%[0-9]*\{[^}]*\}/)) {
    hole = substr(line, RSTART, RLENGTH)
    rest = substr(line, RSTART + RLENGTH)
    out = out substr(line, 1, RSTART - 1)
    brace = index(hole, "{")
    name = substr(hole, brace + 1, length(hole) - brace - 1)
    if (hole ~ masks) out = out hole
    else if (name ~ /^x[0-9a-f][0-9a-f]$/) out = out byte(substr(name, 2))
    else out = out sprintf("%" substr(hole, 2, brace - 2) "s", sprintf("%.0f", value(name)))
    line = rest
  }
  return out line
}

# The line number that the run wrote, where the case leaves it open.
function open_line(line, written,   at, rest) {
  at = index(line, ":%{line};")
  if (at == 0 || substr(written, 1, at) != substr(line, 1, at)) return line
  rest = substr(written, at + 1)
  if (!match(rest, /^[0-9][0-9][0-9][0-9]+;/)) return line
  return substr(line, 1, at) substr(rest, 1, RLENGTH) substr(line, at + 9)
}

BEGIN {
  hex = "0123456789abcdef"
  masks = "^%[{](time|date|pid|line|dir|pair|statecut|statedb)[}]$"
  while ((getline entry <words) > 0) {
    split(entry, pair, " ")
    word[pair[1]] = pair[2]
  }
  next_line = 1
}

FILENAME == ARGV[1] { actual[++lines] = $0; next }

/^%\* / {
  pattern = substr($0, 4)
  gsub(/%\{/, "%[{]", pattern)
  while (next_line <= lines && actual[next_line] ~ pattern) print actual[next_line++]
  next
}

/^%\{[a-z-]+\}$/ {
  text = texts "/" substr($0, 3, length($0) - 3)
  found = 0
  while ((getline entry <text) > 0) {
    found = 1
    next_line++
    print entry
  }
  close(text)
  if (found) next
}

{
  line = open_line(expand($0), actual[next_line])
  next_line++
  print line
}
