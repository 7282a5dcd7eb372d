#pragma once
// A cut of the files of a folder in a child of the test's own process, so that it can be made to
// fail or be killed from inside.
//
// Inputs: city.dir, zip4us.dir, states. Outputs: city.sc, zip4us.sc, log; what the program prints
// goes to the files out and err.

#include <functional>

#include "support/process.h"

namespace statecut::test {

struct ChildCut {
  int signal = 0;  // that ended it, 0 = none
  int status = 0;
};

// Runs the program's main function with -v `level` to its end; `arm` is called in the child right
// before. A run of more than a minute ends by SIGALRM.
ChildCut runChildCut(const TempDir& folder, int level, const std::function<void()>& arm);

void removeOutputs(const TempDir& folder);  // of the three that the child writes itself

}  // namespace statecut::test
