#include "completion/model.h"

#include <map>

#include "query/ops.h"
#include "run/statetable.h"
#include "verify/rules.h"

namespace statecut::completion {

namespace {

std::vector<std::string> ruleNames() {
  std::vector<std::string> names;
  for (const verify::Rule& rule : verify::rules()) names.emplace_back(rule.id);
  return names;
}

std::vector<std::string> operationNames() {
  std::vector<std::string> names;
  for (const auto group : query::opGroups())
    for (const query::Op& op : group) names.emplace_back(op.name);
  return names;
}

// The words of "TEXT:{in,off,first}"; none when the value is not one of some.
std::vector<std::string> wordsOf(const std::string& type) {
  std::vector<std::string> words;
  const std::size_t begin = type.find('{');
  const std::size_t end = type.find('}');
  if (begin == std::string::npos || end == std::string::npos) return words;
  for (std::size_t from = begin + 1; from <= end;) {
    const std::size_t to = std::min(type.find(',', from), end);
    words.push_back(type.substr(from, to - from));
    from = to + 1;
  }
  return words;
}

// By what the help calls a value.
Value valueOf(const std::string& type) {
  static const std::map<std::string, Kind> kKinds = {
      {"FILE", Kind::kFile},    {"CSV", Kind::kFile},
      {"REF", Kind::kFile},     {"RNG", Kind::kFile},
      {"OLD_REF", Kind::kFile}, {"NEW_REF", Kind::kFile},
      {"OLD NEW", Kind::kFile}, {"OLD_REF [OLD_RNG]", Kind::kFile},
      {"REF RNG", Kind::kFile}, {"DIR", Kind::kFolder},
      {"LIST", Kind::kStates},  {"NAME=STATES", Kind::kStates},
      {"STATE", Kind::kState},
  };
  if (type == "RULE") return {Kind::kWords, ruleNames()};
  if (type == "OP") return {Kind::kWords, operationNames()};
  if (const auto words = wordsOf(type); !words.empty()) return {Kind::kWords, words};
  const auto known = kKinds.find(type);
  return {known == kKinds.end() ? Kind::kText : known->second, {}};
}

Option optionOf(const CLI::Option& option) {
  Option made;
  for (const std::string& name : option.get_snames()) made.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) made.names.push_back("--" + name);
  made.description = option.get_description();
  if (option.get_items_expected_max() == 0) return made;
  made.value = valueOf(option.get_type_name());
  made.values = option.get_type_size_max() * option.get_expected_min();
  made.repeats = option.get_expected_max() > option.get_expected_min();
  return made;
}

Argument argumentOf(const CLI::Option& option) {
  const std::string name = option.get_name(true);
  const Value byType = valueOf(option.get_type_name());
  return {name, byType.kind == Kind::kWords ? byType : valueOf(name),
          option.get_expected_max() > option.get_expected_min()};
}

// Those of the option groups too, which the program makes for options that exclude each other.
void collect(const CLI::App& app, std::vector<Option>& options, std::vector<Argument>& arguments) {
  for (const CLI::Option* option : app.get_options()) {
    if (option->nonpositional())
      options.push_back(optionOf(*option));
    else
      arguments.push_back(argumentOf(*option));
  }
  for (const CLI::App* group : app.get_subcommands([](const CLI::App*) { return true; }))
    if (group->get_name().empty()) collect(*group, options, arguments);
}

}  // namespace

Program programOf(const CLI::App& app) {
  Program program;
  program.name = app.get_name();
  std::vector<Argument> none;
  collect(app, program.options, none);
  for (const CLI::App* made : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (made->get_name().empty()) continue;
    Command command{made->get_name(), made->get_description(), {}, {}};
    collect(*made, command.options, command.arguments);
    // The words behind its options, which are in no table.
    if (command.name == "query") command.arguments.push_back({"OP", valueOf("OP"), false});
    program.commands.push_back(std::move(command));
  }
  return program;
}

std::vector<std::string> stateAbbreviations() {
  return {std::begin(abvstates), std::end(abvstates)};
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
    text.replace(at, what.size(), with);
  return text;
}

std::string quoted(const std::string& text) {
  std::string word = "'";
  for (const char c : text) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return word + "'";
}

std::string quotedForFish(const std::string& text) {
  std::string word = "'";
  for (const char c : text) word += (c == '\'' || c == '\\' ? "\\" : "") + std::string(1, c);
  return word + "'";
}

}  // namespace statecut::completion
