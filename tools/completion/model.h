#pragma once
// What a shell completes, taken from the option tables of the program.

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace statecut::completion {

enum class Kind {
  kNone,    // no value: a flag
  kText,    // anything, not completed
  kFile,    //
  kFolder,  //
  kState,   // an abbreviation
  kStates,  // abbreviations with commas between them, maybe behind an equals sign
  kWords    // one of some words
};

struct Value {
  Kind kind = Kind::kNone;
  std::vector<std::string> words;  // of kWords
};

struct Option {
  std::vector<std::string> names;  // with their dashes
  std::string description;
  Value value;
  int values = 0;  // how many words behind it are its own
  bool repeats = false;
};

struct Argument {
  std::string name;
  Value value;
  bool repeats = false;
};

struct Command {
  std::string name;
  std::string description;
  std::vector<Option> options;
  std::vector<Argument> arguments;
};

struct Program {
  std::string name;
  std::vector<Option> options;  // without a command
  std::vector<Command> commands;
};

[[nodiscard]] Program programOf(const CLI::App& app);

[[nodiscard]] std::vector<std::string> stateAbbreviations();

// The script of a shell.
[[nodiscard]] std::string bashScript(const Program& program);
[[nodiscard]] std::string zshScript(const Program& program);
[[nodiscard]] std::string fishScript(const Program& program);

// The words with a blank between them.
[[nodiscard]] std::string joined(const std::vector<std::string>& words);

// The text with `what` replaced wherever it stands.
[[nodiscard]] std::string replaced(std::string text, const std::string& what,
                                   const std::string& with);

// A text as one word of a shell; the way of fish differs.
[[nodiscard]] std::string quoted(const std::string& text);
[[nodiscard]] std::string quotedForFish(const std::string& text);

}  // namespace statecut::completion
