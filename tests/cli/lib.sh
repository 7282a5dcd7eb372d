# Functions for the cmd files of the cases.

# Copies the pair into the current folder under the default names.
pair() {
  cp "$PAIR/city.dir" "$PAIR/zip4us.dir" . && chmod u+w city.dir zip4us.dir
}

# states AB...: writes the state file "states".
states() {
  printf '%s\n' "$@" >states
}

# poke FILE OFFSET BYTE...: overwrites bytes in place.
poke() {
  poke_file=$1 poke_at=$2
  shift 2
  for poke_byte; do
    printf "\\$(printf '%03o' "$poke_byte")"
  done | dd of="$poke_file" bs=1 seek="$poke_at" conv=notrunc 2>/dev/null
}

# word FILE OFFSET: prints the 32-bit number there.
word() {
  od -An -tu4 -j "$2" -N4 "$1" | tr -d ' '
}

# path_of N NAME: prints a path of N bytes that leads to NAME in the current folder.
path_of() {
  awk -v n="$1" -v name="$2" 'BEGIN {
    left = n - length(name)
    if (left % 2) { path = ".//"; left -= 3 }
    while (left > 0) { path = path "./"; left -= 2 }
    print path name
  }'
}

# name_of N: prints N times the letter x.
name_of() {
  awk -v n="$1" 'BEGIN { while (n-- > 0) printf "x"; print "" }'
}

# Checksums of the files, to show that none changed.
sums() {
  cksum "$@" | awk '{ print $1, $2, $3 }'
}
