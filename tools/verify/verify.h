#pragma once
// Checks a database pair, alone or as a cut of a source pair.

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "verify/report.h"

namespace statecut::verify {

struct Options {
  std::string ref;
  std::string rng;
  // All three or none.
  std::string sourceRef;
  std::string sourceRng;
  std::string states;
  std::vector<std::string> ignored;  // ids of rules that make no findings
  bool json = false;
  // The source was checked and nothing is wrong with it: the name index of a cut is right when it
  // is the source's, renumbered, and is not searched for each name again.
  bool soundSource = false;

  bool withSource() const { return !sourceRef.empty() || !sourceRng.empty() || !states.empty(); }
};

// Two-letter abbreviations, upper-cased, from a list separated by commas and blanks; nothing when
// the list holds anything else or is empty.
std::optional<std::vector<std::string>> parseStates(const std::string& list);

// The findings; `error` says why there is no verdict.
Report check(const Options& options, std::string& error);

// 0 nothing wrong, 1 findings, 2 the check can't run (why on `err`).
int run(const Options& options, std::ostream& out, std::ostream& err);

}  // namespace statecut::verify
