#pragma once
// Cuts to be measured, and finished ones to compare with and to copy.

#include <string>
#include <vector>

#include "processes/setup.h"

namespace statecut::bench {

using States = std::vector<std::string>;

States allStates();
std::string joined(const States& states);  // "TX,OK"

// A run of the program and where it puts its files.
struct Cut {
  Command command;
  Paths outputs;  // city.sc, zip4us.sc
  Path log;

  void remove() const;  // outputs and log
};

// In `folder`, which is made. `level` is that of the log.
Cut prepareCut(const Setup& setup, const Path& folder, const States& states,
               const char* level = "3");
// The same for another pair.
Cut prepareCut(const Setup& setup, const Path& folder, const States& states, const Path& ref,
               const Path& rng, const char* level = "3");

// Makes a cut to copy from, in work/NAME, and checks it against its source.
Paths finishedCut(const Setup& setup, const std::string& name, const States& states);

// The cut as it will be measured, in a folder
// of its own. Throws when it differs from the finished one.
Cut checkedCut(const Setup& setup, const States& states, const Paths& finished);

// Removes the files, and waits until the disk has nothing to do for them.
void settle(const Paths& files);

}  // namespace statecut::bench
