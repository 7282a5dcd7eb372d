# Turns what a run wrote into a section: bytes that no text has become variables, and so do the lines
# of a text. Arguments: the texts, then what was written.

FILENAME != ARGV[ARGC - 1] {
  if (FNR == 1) {
    count++
    name[count] = substr(FILENAME, length(texts) + 2)
  }
  text[count, FNR] = $0
  height[count] = FNR
  next
}

{ written[++lines] = $0 }

function stands_at(t, first,   i) {
  for (i = 1; i <= height[t]; i++)
    if (first + i - 1 > lines || written[first + i - 1] != text[t, i]) return 0
  return 1
}

END {
  for (at = 1; at <= lines; at++) {
    for (t = 1; t <= count && !stands_at(t, at); t++);
    if (t <= count) {
      print "%{" name[t] "}"
      at += height[t] - 1
    } else {
      gsub(/\r/, "%{x0d}", written[at])
      print written[at]
    }
  }
}
