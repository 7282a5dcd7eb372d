#include "completion/model.h"

#include <set>

namespace statecut::completion {

namespace {

// Functions of the script; OPTIONS are those with a value. _command prints the command and the
// words behind it that belong to no option.
constexpr const char* kFunctions = R"sh(
function __NAME_words
  set -l skip 0
  for word in (commandline -opc)[2..-1]
    if test $skip -gt 0
      set skip (math $skip - 1)
    else if contains -- $word OPTIONS
      set skip 1
    else if not string match -q -- '-*' $word
      echo -- $word
    end
  end
end
function __NAME_none
  test (count (__NAME_words)) -eq 0
end
function __NAME_is
  set -l words (__NAME_words)
  test (count $words) -gt 0; and test $words[1] = $argv[1]
end
function __NAME_first
  test (count (__NAME_words)) -eq 1; and __NAME_is $argv[1]
end
function __NAME_states
  set -l before (string replace -r '^--[a-z-]+=' '' -- (commandline -ct) | string match -r '^.*[=,]')
  string join \n -- "$before"{STATES}
end
)sh";

std::string fishAction(const Value& value, const std::string& program) {
  switch (value.kind) {
    case Kind::kFile:
      return " -F";
    case Kind::kFolder:
      return " -f -a '(__fish_complete_directories (commandline -ct))'";
    case Kind::kState:
    case Kind::kStates:
      return " -f -a '(__" + program + "_states)'";
    case Kind::kWords:
      return " -f -a " + quotedForFish(joined(value.words));
    default:
      return " -f";
  }
}

std::string fishOption(const Option& option, const std::string& program) {
  std::string text;
  for (const std::string& name : option.names)
    text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  if (option.values > 0) text += " -r" + fishAction(option.value, program);
  return text + " -d " + quotedForFish(option.description) + "\n";
}

std::string withValues(const Program& program) {
  std::set<std::string> names;
  for (const Command& command : program.commands)
    for (const Option& option : command.options)
      if (option.values > 0) names.insert(option.names.begin(), option.names.end());
  return joined({names.begin(), names.end()});
}

}  // namespace

std::string fishScript(const Program& program) {
  const std::string complete = "complete -c " + program.name;
  std::string states;
  for (const std::string& state : stateAbbreviations())
    states += (states.empty() ? "" : ",") + state;
  std::string functions = replaced(kFunctions, "NAME", program.name);
  functions = replaced(replaced(functions, "OPTIONS", withValues(program)), "STATES", states);
  std::string text = "# fish completion of " + program.name + ", written by `" + program.name +
                     " completion fish`\n" + functions + "\n" + complete + " -f\n";
  const std::string none = complete + " -n __" + program.name + "_none";
  for (const Option& option : program.options) text += none + fishOption(option, program.name);
  for (const Command& command : program.commands) {
    text += none + " -a " + command.name + " -d " + quotedForFish(command.description) + "\n";
    const std::string chosen = complete + " -n '__" + program.name + "_is " + command.name + "'";
    const std::string first = complete + " -n '__" + program.name + "_first " + command.name + "'";
    for (const Option& option : command.options) text += chosen + fishOption(option, program.name);
    // Files may stand at any place; everything else is the first word.
    for (const Argument& argument : command.arguments)
      if (argument.value.kind == Kind::kFile)
        text += chosen + " -F\n";
      else if (argument.value.kind != Kind::kText)
        text += first + fishAction(argument.value, program.name) + "\n";
  }
  return text;
}

}  // namespace statecut::completion
