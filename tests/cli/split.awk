# Writes the command and each section of a case into a file of its own in `folder`. What can't be meant
# ends the run: an unknown section, one that stands twice, an empty one.

function stop(text) {
  print FILENAME ":" FNR ": " text >"/dev/stderr"
  stopped = 1
  exit 2
}

function finish() {
  close(folder "/" section)
  if (lines == 0 && !bare) stop("nothing stands under " section ": leave the section out")
}

function begin(name) {
  finish()
  if (name in seen) stop(name " stands twice")
  seen[name] = 1
  section = name
  lines = bare = 0
  printf "" >(folder "/" section)
}

BEGIN { section = "command" }

/^--- status [1-9][0-9]*$/ {
  begin("status")
  bare = 1
  print $3 >(folder "/" section)
  next
}

/^--- no files$/ { begin("files"); bare = 1; next }

/^--- (stdin|stdout|stderr|log)( without a last newline)?$/ {
  begin($2)
  if (NF > 2) printf "" >(folder "/" section ".unended")
  next
}

/^--- (files|check)$/ { begin($2); next }

/^---/ { stop("no section: " $0) }

bare { stop("a line under a section that has none") }

{ lines++; print >(folder "/" section) }

END { if (!stopped) finish() }
