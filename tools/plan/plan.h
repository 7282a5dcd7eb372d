#pragma once
// What a cut of a pair would hold, and how large it would be, without making it. Derived a second
// time from the source, by none of the code of the cut.

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "verify/pair.h"

namespace statecut::plan {

struct Group {
  std::uint64_t partitions = 0;  // of at least a byte
  std::uint64_t bytes = 0;
};

struct Kinds {
  Group sfh, pob, rr;
  Group all() const;
};

struct Plan {
  std::vector<std::string> states;  // sorted, each once
  std::uint64_t zips = 0;
  std::uint64_t cities = 0;  // names, as `info` counts them
  std::uint64_t referenceBytes = 0;
  Kinds single;  // partitions of one ZIP code
  Kinds multi;   // multi-ZIP partitions
  std::vector<std::string> warnings;

  std::uint64_t rangeBytes() const;
  std::uint64_t bytes() const { return referenceBytes + rangeBytes(); }
  std::uint64_t spaceBytes() const;  // what both files take of a disk, in its blocks of 4096 bytes
};

// `source` has no sourceProblem. A state named twice counts once, with a warning.
Plan make(const verify::Pair& source, const std::vector<std::string>& states);

// An abbreviation of the table of states.
bool isState(const std::string& abbreviation);

struct Named {
  std::string name;  // empty: a list of states without a name
  Plan plan;
};

// One plan in full, several in a table with their total.
void printText(std::ostream& out, const std::vector<Named>& plans);
void printJson(std::ostream& out, const std::vector<Named>& plans);

}  // namespace statecut::plan
