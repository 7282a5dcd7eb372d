#include "diff/diff.h"

#include <ostream>

#include "diff/partitions.h"
#include "diff/places.h"
#include "diff/tables.h"
#include "plan/plan.h"
#include "verify/verify.h"

namespace statecut::diff {

namespace {

constexpr int kEqual = 0, kDifferent = 1, kCannotRun = 2;

int fail(std::ostream& err, const std::string& reason) {
  err << "statedb diff: " << reason << '\n';
  return kCannotRun;
}

}  // namespace

Changes compare(const Release& before, const Release& after, const std::vector<std::string>& states,
                bool ranges) {
  Changes changes;
  Comparison comparison{before, after, states, before.isCut() || after.isCut()};
  if (before.isCut() != after.isCut())
    changes.notes.push_back((before.isCut() ? before : after).path() +
                            " is a state cut: the tables that a cut leaves out are not compared");
  compareCities(comparison, changes);
  compareZips(comparison, changes);
  changes.statelessCompared = states.empty();
  compareNames(comparison, changes);
  if (ranges) comparePartitions(comparison, changes);
  if (states.empty()) compareTables(comparison, changes);
  return changes;
}

int run(const Options& options, std::ostream& out, std::ostream& err) {
  std::vector<std::string> states;
  if (!options.states.empty()) {
    const auto parsed = verify::parseStates(options.states);
    if (!parsed) return fail(err, "not a list of two-letter states: \"" + options.states + "\"");
    for (const std::string& state : *parsed)
      if (!plan::isState(state)) return fail(err, "no such state: " + state);
    states = *parsed;
  }
  const bool ranges = !options.rng.empty();
  std::string error;
  const Release before = Release::open(options.oldRef, ranges ? options.rng[0] : "", error);
  if (!error.empty()) return fail(err, error);
  const Release after = Release::open(options.newRef, ranges ? options.rng[1] : "", error);
  if (!error.empty()) return fail(err, error);
  const Changes changes = compare(before, after, states, ranges);
  for (const std::string& note : changes.notes) err << "statedb diff: " << note << '\n';
  if (options.json)
    printJson(out, before, after, changes, options.summary);
  else
    printText(out, changes, options.summary);
  return changes.none() ? kEqual : kDifferent;
}

}  // namespace statecut::diff
