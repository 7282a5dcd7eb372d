#pragma once
// Pairs of releases that differ in known ways: one model, changed twice.

#include <string>
#include <vector>

#include "dbbuilder/model.h"
#include "dbbuilder/random.h"
#include "support/process.h"

namespace statecut::test {

struct KnownPair {
  builder::Model before, after;
  std::vector<std::string> changes;  // as `statedb diff` writes them, sorted; without the tables
};

// Valid releases, a function of the seed; up to three changes of each sort.
KnownPair makeKnownPair(std::uint64_t seed);

// The same release with its partitions in another order.
builder::Model inAnotherOrder(builder::Model model, std::uint64_t seed);

// Writes a release as NAME.ref and NAME.rng.
void writeRelease(const TempDir& folder, const std::string& name, const builder::Model& model);

}  // namespace statecut::test
