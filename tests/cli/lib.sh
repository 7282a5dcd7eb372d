# Functions for the commands and checks of the cases.

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

# remember FILE...: takes their checksums, for "unchanged".
remember() {
  cksum "$@" >"$TMPDIR/remembered"
}

# unchanged: whether the remembered files are as they were; shows those that are not.
unchanged() {
  awk '{ print $3 }' "$TMPDIR/remembered" | xargs cksum | diff "$TMPDIR/remembered" -
}

# first_cut: cuts the states of "states" under the names a.city.sc and a.zip4us.sc, the right outputs.
first_cut() {
  "$STATECUT" -s states -o a.city.sc -z a.zip4us.sc -l a.log >/dev/null 2>&1 || exit 99
}

# right [REF RANGE]: whether the outputs (default: city.sc, zip4us.sc) are those of first_cut.
right() {
  cmp -s a.city.sc "${1:-city.sc}" && cmp -s a.zip4us.sc "${2:-zip4us.sc}"
}

# ask: answers the calls on standard input in every mode, shows the answers and ends with their status.
# The modes have to agree.
ask() {
  cat >calls
  for how in "--mode in" "--mode off" "--mode first" "--mode off --cache 64:2"; do
    "$STATEDB" query --ref "$PAIR/city.dir" $how <calls >now
    status=$?
    [ -f answers ] || cp now answers
    cmp -s answers now || { echo "otherwise with $how:"; diff answers now; }
  done
  cat answers
  exit $status
}

# records LOG: the error records of a log, without their times, lines and process ids.
records() {
  [ ! -f "$1" ] || sed -n 's/^[^;]*;\(ERR\|CRITCAL\);\([^;:]*\):[0-9]*;[^;]*;/\1;\2;/p' "$1"
}

# unprivileged CMD...: runs it as a user whom file permissions bind, also when that is root.
unprivileged() {
  if [ "$(id -u)" -eq 0 ]; then
    setpriv --bounding-set=-dac_override,-dac_read_search "$@"
  else
    "$@"
  fi
}

# counts NAME: adds 1 to what the whole run prints at its end under that name.
counts() {
  echo "1 $*" >>"$TMPDIR/counts"
}

# may_mount: whether this machine lets a case mount a file system of its own. The counts tell.
may_mount() {
  if unshare -rm true 2>/dev/null; then
    counts "cases on a disk of their own"
  else
    counts "cases without a disk of their own, as nobody may mount here"
    return 1
  fi
}

# on_small_disk FOLDER SNIPPET: runs the snippet with an empty file system of 64 KiB on FOLDER; where
# nobody may mount, with the full device under every name that a snippet writes.
on_small_disk() {
  if may_mount; then
    unshare -rm sh -c 'mount -t tmpfs -o size=64k none "$2" && . "$1" && eval "$3"' sh \
      "$LIB" "$1" "$2"
  else
    for on_small_name in city.sc zip4us.sc city.dir zip4us.dir log; do
      ln -s /dev/full "$1/$on_small_name"
    done
    eval "$2"
  fi
}

# limit_memory MIB CMD...: an address space of so many MiB. A sanitized program needs terabytes of
# it, so there the largest block is limited instead.
limit_memory() {
  limit_mib=$1
  shift
  if [ -n "$SANITIZED" ]; then
    ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}allocator_may_return_null=1:max_allocation_size_mb=$limit_mib" "$@" 2>memory.err
    limit_status=$?
    grep -v -e '^==' -e '^ *#' -e '^$' memory.err >&2
    rm -f memory.err
    return $limit_status
  fi
  (ulimit -v $((limit_mib * 1024)) && exec "$@")
}
