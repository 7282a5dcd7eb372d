#include "completion/model.h"

namespace statecut::completion {

namespace {

// What stands in the brackets or behind the colon of an argument of _arguments.
std::string zshEscaped(const std::string& text) {
  std::string word;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') word += '\\';
    word += c;
  }
  return word;
}

std::string zshAction(const Value& value, const std::string& function) {
  switch (value.kind) {
    case Kind::kFile:
      return "_files";
    case Kind::kFolder:
      return "_path_files -/";
    case Kind::kState:
      return function + "_state";
    case Kind::kStates:
      return function + "_states";
    case Kind::kWords:
      return "(" + joined(value.words) + ")";
    default:
      return " ";
  }
}

std::string zshOption(const Option& option, const std::string& function) {
  std::string tail = "[" + zshEscaped(option.description) + "]";
  for (int i = 0; i < option.values; ++i)
    tail +=
        ":" + zshEscaped(option.names.back().substr(2)) + ":" + zshAction(option.value, function);
  const char* equals = option.values == 1 ? "=" : "";
  const bool ends = option.names.back() == "--help" || option.names.back() == "--version";
  std::string lines;
  for (const std::string& name : option.names) {
    std::string word = ends ? "(- *)" : option.repeats ? "*" : "";
    word.append(name).append(name.starts_with("--") ? equals : "").append(tail);
    lines += "    " + completion::quoted(word) + " \\\n";
  }
  return lines;
}

std::string zshArguments(const Command& command, const std::string& function) {
  std::string lines;
  for (const Option& option : command.options) lines += zshOption(option, function);
  for (const Argument& argument : command.arguments)
    lines += "    " +
             quoted((argument.repeats ? "*:" : ":") + zshEscaped(argument.name) + ":" +
                    zshAction(argument.value, function)) +
             " \\\n";
  return lines;
}

}  // namespace

std::string zshScript(const Program& program) {
  const std::string function = "_" + program.name;
  const std::string states = joined(stateAbbreviations());
  std::string text = "#compdef " + program.name + "\n# zsh completion of " + program.name +
                     ", written by `" + program.name + " completion zsh`\n\n";
  text += function + "_state() { compadd " + states + "; }\n";
  // Of NAME=TX,OK the states behind the equals sign.
  text += function +
          "_states() {\n  if [[ $words[CURRENT] == *product* || $words[CURRENT-1] == --product ]]; "
          "then\n" +
          "    compset -P '*=' || return\n  fi\n  compset -P '*,'\n  compadd -q -S '' -- " +
          states + "\n}\n\n";
  text += function + "_commands() {\n  local -a commands=(\n";
  for (const Command& command : program.commands)
    text += "    " + quoted(command.name + ":" + zshEscaped(command.description)) + "\n";
  text += "  )\n  _describe command commands\n}\n\n";
  text += function + "() {\n  local context state state_descr line\n  local -A opt_args\n";
  text += "  _arguments -C \\\n";
  for (const Option& option : program.options) text += zshOption(option, function);
  text += "    ':command:" + function + "_commands' \\\n    '*::argument:->argument' && return\n";
  text += "  [[ $state == argument ]] || return\n  case $words[1] in\n";
  for (const Command& command : program.commands)
    text +=
        "  " + command.name + ") _arguments \\\n" + zshArguments(command, function) + "    ;;\n";
  text += "  esac\n}\n\nif [[ $funcstack[1] == " + function + " ]]; then\n  " + function +
          " \"$@\"\nelse\n  compdef " + function + " " + program.name + "\nfi\n";
  return text;
}

}  // namespace statecut::completion
