#pragma once
// Child processes: programs, and functions of this one that are to fail by themselves. A child dies
// with its parent. Signals that ask the whole run to end are the parent's to answer: its children
// ignore them.

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "cuts/descriptor.h"

namespace statecut::cuts {

// A program beside this one, else the first of the name in PATH; empty when there is none.
std::string findProgram(const std::string& name);

struct Child {
  pid_t pid = -1;  // -1: could not be started
  Descriptor output;

  // What the child wrote, to be asked for when it has ended.
  [[nodiscard]] std::string written() const;
};

// Runs a program in a folder. `input` is its standard input, `output` gets its standard error; what
// it writes to standard output is lost.
Child startProgram(const std::string& program, const std::vector<std::string>& arguments,
                   const std::string& folder, const std::string& input);

// Runs a function in a process of its own; what it returns is the child's output.
Child startFunction(const std::function<std::string()>& function);

struct Ended {
  bool ended = false;
  int signal = 0;  // that ended it, 0 = none
  int status = 0;
};

Ended poll(const Child& child);
Ended waitFor(const Child& child);
void killChild(const Child& child);  // and waits for its end

std::string describe(const Ended& ended);  // "ended with status 1", "ended by signal 9 (Killed)"

}  // namespace statecut::cuts
