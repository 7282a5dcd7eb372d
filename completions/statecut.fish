# fish completion of statecut. A letter may be in upper case.
complete -c statecut -f
for letter in s S
  complete -c statecut -s $letter -r -F -d 'State list'
end
for letter in l L
  complete -c statecut -s $letter -r -F -d 'Log'
end
for letter in f F
  complete -c statecut -s $letter -r -F -d 'Reference file to cut'
end
for letter in g G
  complete -c statecut -s $letter -r -F -d 'Range file to cut'
end
for letter in o O
  complete -c statecut -s $letter -r -F -d 'Reference file to write'
end
for letter in z Z
  complete -c statecut -s $letter -r -F -d 'Range file to write'
end
for letter in v V
  complete -c statecut -s $letter -r -f -a '0 1 2 3 4 5' -d 'Log level'
end
for letter in r R
  complete -c statecut -s $letter -r -f -d 'Without effect'
end
for letter in t T
  complete -c statecut -s $letter -d 'Wait for the Enter key at the end'
end
for letter in i I
  complete -c statecut -s $letter -d 'List the states'
end
for letter in h H
  complete -c statecut -s $letter -d 'Show the usage'
end
complete -c statecut -s '?' -d 'Show the usage'
