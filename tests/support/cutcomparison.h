#pragma once
// Runs the program on a random case and holds it against the second derivation.

#include <optional>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/randomdb.h"
#include "support/secondcut.h"

namespace statecut::test {

struct ComparedRun {
  ProcessResult process;
  secondcut::Outcome expected;
  std::optional<FileBytes> ref;  // none: not created
  std::optional<FileBytes> rng;
  std::optional<std::string> log;
};

// What decides the run, for the second derivation.
secondcut::Inputs inputsOf(const RandomCase& made);

// Runs both in a folder of their own: STATECUT_CUT_KEEP when set (for a look at the files), else
// a temporary one.
ComparedRun runBoth(const RandomCase& made);

// Each is empty when there is no difference, else the first one in words.
std::string compareResults(const ComparedRun& run);  // status, both outputs, both streams
std::string compareLog(const ComparedRun& run);
std::string compareFile(const std::string& name, const secondcut::OutputFile& expected,
                        const std::optional<FileBytes>& actual);

}  // namespace statecut::test
