#pragma once
// Whole processes: started, waited for and measured.

#include <string>
#include <string_view>
#include <vector>

namespace statecut::bench {

struct Command {
  std::vector<std::string> words;  // the first is searched for in PATH
  std::string out = "/dev/null";
  std::string err = "/dev/null";
};

struct Usage {
  double wall = 0;  // seconds, from before the start to after the end
  double cpu = 0;   // user and system seconds of the process and what it waited for
  int status = 0;   // exit status, 128 + signal when one ended it

  Usage& operator+=(const Usage& other) {
    wall += other.wall;
    cpu += other.cpu;
    return *this;
  }
};

// Throws std::runtime_error when the command cannot be started.
Usage run(const Command& command);
// The same, and throws when the status is another one than 0.
Usage runWell(const Command& command);

// Feeds `input` through a pipe and takes the output from another, in `output` when it is given.
Usage runPiped(const Command& command, std::string_view input, std::string* output = nullptr);

// The standard output of a command that must end with status 0.
std::string outputOf(const Command& command);

}  // namespace statecut::bench
