#include "completion/model.h"

namespace statecut::completion {

namespace {

// The part that is the same for every program; NAME stands for its own. bash breaks a line at "="
// and
// ":" too, so its words are put together again.
constexpr const char* kEngine = R"sh(
_NAME() {
  COMPREPLY=()
  local line=${COMP_LINE:0:COMP_POINT} part words=()
  for part in "${COMP_WORDS[@]:0:COMP_CWORD+1}"; do
    if [[ ${#words[@]} -eq 0 || $line == [[:blank:]]* ]]; then
      line=${line#"${line%%[![:blank:]]*}"}
      words+=("$part")
    else
      words[${#words[@]}-1]+=$part
    fi
    line=${line#"$part"}
  done
  local last=$((${#words[@]} - 1)) command= option= ends= arguments=0 left=0 i
  for ((i = 1; i < last; i++)); do
    part=${words[i]}
    if ((left > 0)); then
      ((left--))
    elif [[ -z $ends && $part == -- ]]; then
      ends=1
    elif [[ -z $ends && $part == -?* ]]; then
      option=$part
      left=$(_NAME_values "$command:$part")
    elif [[ -z $command ]]; then
      command=$part
    else
      ((arguments++))
    fi
  done

  # What is completed: a word, or what stands behind the equals sign of an option. Only the part that
  # bash took for a word is replaced.
  local word=${COMP_WORDS[COMP_CWORD]} value=${words[last]} what
  if ((left > 0)); then
    what=$(_NAME_value "$command:$option")
  elif [[ -z $ends && $value == --*=* ]]; then
    what=$(_NAME_value "$command:${value%%=*}")
    value=${value#*=}
  elif [[ -z $ends && $value == -* ]]; then
    what="words $(_NAME_options "$command")"
  elif [[ -z $command ]]; then
    what="words $(_NAME_commands)"
  else
    what=$(_NAME_argument "$command:$arguments")
  fi
  [[ $word != = ]] || word=
  [[ ${#word} -le ${#value} ]] || local front=${word:0:${#word}-${#value}} && word=${word#"${front-}"}

  case $what in
    file) compopt -o default ;;
    folder) compopt -o dirnames ;;
    states)
      local before=
      [[ $word != *[,=]* ]] || before=${word%"${word##*[,=]}"}
      [[ $value == *= || $value == *=* || $option != --product ]] || return 0
      COMPREPLY=($(compgen -P "${front-}$before" -W "$(_NAME_states)" -- "${word#"$before"}"))
      compopt -o nospace
      ;;
    state) COMPREPLY=($(compgen -W "$(_NAME_states)" -- "$word")) ;;
    words*) COMPREPLY=($(compgen -P "${front-}" -W "${what#words}" -- "$word")) ;;
  esac
}
complete -F _NAME NAME
)sh";

std::string kindWord(const Value& value) {
  switch (value.kind) {
    case Kind::kFile:
      return "file";
    case Kind::kFolder:
      return "folder";
    case Kind::kState:
      return "state";
    case Kind::kStates:
      return "states";
    case Kind::kWords:
      return "words " + joined(value.words);
    default:
      return {};
  }
}

std::string optionNamesOf(const std::vector<Option>& options) {
  std::vector<std::string> names;
  for (const Option& option : options)
    names.insert(names.end(), option.names.begin(), option.names.end());
  return joined(names);
}

// A function that prints, by "command:word", what the cases say.
std::string caseFunction(const std::string& name, const std::string& cases,
                         const std::string& otherwise) {
  return name + "() {\n  case $1 in\n" + cases +
         (otherwise.empty() ? "" : "    *) " + otherwise + " ;;\n") + "  esac\n}\n";
}

std::string caseLine(const std::string& key, const std::string& text) {
  return "    " + key + ") echo " + quoted(text) + " ;;\n";
}

std::string optionNames(const Program& program) {
  std::string cases = caseLine("''", optionNamesOf(program.options));
  for (const Command& command : program.commands)
    cases += caseLine(command.name, optionNamesOf(command.options));
  return cases;
}

std::string optionValues(const Program& program) {
  std::string cases;
  for (const Command& command : program.commands)
    for (const Option& option : command.options)
      if (const std::string word = kindWord(option.value); !word.empty())
        for (const std::string& name : option.names)
          cases += caseLine(command.name + ":" + name, word);
  return cases;
}

std::string valueCounts(const Program& program) {
  std::string cases;
  for (const Command& command : program.commands)
    for (const Option& option : command.options)
      if (option.values > 0)
        for (const std::string& name : option.names)
          cases += caseLine(command.name + ":" + name, std::to_string(option.values));
  return cases;
}

std::string argumentValues(const Program& program) {
  std::string cases;
  for (const Command& command : program.commands) {
    std::size_t place = 0;
    for (const Argument& argument : command.arguments) {
      const std::string at = argument.repeats ? "*" : std::to_string(place++);
      if (const std::string word = kindWord(argument.value); !word.empty())
        cases += caseLine(command.name + ":" + at, word);
    }
  }
  return cases;
}

}  // namespace

std::string bashScript(const Program& program) {
  const std::string function = "_" + program.name;
  std::vector<std::string> commands;
  for (const Command& command : program.commands) commands.push_back(command.name);
  return "# bash completion of " + program.name + ", written by `" + program.name +
         " completion bash`\n\n" + function + "_commands() { echo " + quoted(joined(commands)) +
         "; }\n" + function + "_states() { echo " + quoted(joined(stateAbbreviations())) + "; }\n" +
         caseFunction(function + "_options", optionNames(program), "") +
         caseFunction(function + "_values", valueCounts(program), "echo 0") +
         caseFunction(function + "_value", optionValues(program), "") +
         caseFunction(function + "_argument", argumentValues(program), "") +
         replaced(kEngine, "NAME", program.name);
}

}  // namespace statecut::completion
