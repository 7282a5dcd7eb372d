#pragma once
// Checks a database pair, alone or as a cut of a source pair.

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "verify/hashplaces.h"
#include "verify/pair.h"
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

  bool withSource() const { return !sourceRef.empty() || !sourceRng.empty() || !states.empty(); }
};

// A pair that many cuts are compared with: open, with what every comparison takes from it.
struct Source {
  Pair pair;
  HashPlaces hash;
  // It was checked and nothing is wrong with it: the name index of a cut is right when it is the
  // source's, renumbered, and is not searched for each name again.
  bool sound = false;
};

// Two-letter abbreviations, upper-cased, from a list separated by commas and blanks; nothing when
// the list holds anything else or is empty.
std::optional<std::vector<std::string>> parseStates(const std::string& list);

// The findings; `error` says why there is no verdict.
Report check(const Options& options, std::string& error);

// The same of a pair that is open. It is not checked when it is no pair: `error` says so.
Report checkPair(const Pair& pair, std::string& error);
Report checkCut(const Pair& cut, const Source& source, const std::vector<std::string>& states,
                std::string& error);

// 0 nothing wrong, 1 findings, 2 the check can't run (why on `err`).
int run(const Options& options, std::ostream& out, std::ostream& err);

}  // namespace statecut::verify
