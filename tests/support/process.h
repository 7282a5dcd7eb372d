#pragma once
// Runs a program as a user would and keeps what it wrote.

#include <map>
#include <string>
#include <vector>

#include "support/files.h"

namespace statecut::test {

struct Command {
  std::string program;
  std::vector<std::string> arguments;
  std::string input;                               // standard input, then its end
  std::map<std::string, std::string> environment;  // on top of the caller's
  std::string folder;                              // working folder, empty = the caller's
  int timeoutSeconds = 60;
};

struct ProcessResult {
  bool timedOut = false;
  int signal = 0;      // the signal that ended it, 0 = none
  int exitStatus = 0;  // valid when neither of the above
  std::string out;
  std::string err;
};

// Waits for the end; past the timeout the program is killed.
ProcessResult runProcess(const Command& command);

}  // namespace statecut::test
