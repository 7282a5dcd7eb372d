# bash completion of statecut. A letter may be in upper case.
_statecut() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}
  COMPREPLY=()
  case $before in
    -[sSlLfFgGoOzZ]) compopt -o default ;;
    -[vV]) COMPREPLY=($(compgen -W '0 1 2 3 4 5' -- "$word")) ;;
    -[rR]) ;;
    *) COMPREPLY=($(compgen -W '-s -l -f -g -o -z -v -r -t -i -h -?' -- "$word")) ;;
  esac
}
complete -F _statecut statecut
