#pragma once
// What changed between two releases, or between two cuts.

#include <iosfwd>
#include <string>
#include <vector>

#include "diff/changes.h"
#include "diff/release.h"

namespace statecut::diff {

struct Options {
  std::string oldRef, newRef;
  std::vector<std::string> rng;  // none, or the old and the new one
  std::string states;            // a list as of the command line; empty: all
  bool json = false;
  bool summary = false;  // counts alone
};

// `states`: what is of no state is left out; none: everything is compared. The texts of the result
// stand in the files.
Changes compare(const Release& before, const Release& after, const std::vector<std::string>& states,
                bool ranges);

// Counts first, then a line a change.
void printText(std::ostream& out, const Changes& changes, bool summary);
void printJson(std::ostream& out, const Release& before, const Release& after,
               const Changes& changes, bool summary);

// 0 equal but for RBAs and stamps, 1 different, 2 can't run.
int run(const Options& options, std::ostream& out, std::ostream& err);

}  // namespace statecut::diff
