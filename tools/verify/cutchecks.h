#pragma once
// The rules that compare a cut with its source, by family.

#include <cstdint>
#include <string>
#include <vector>

#include "verify/pair.h"
#include "verify/report.h"

namespace statecut::verify {

// A cut, the pair that it was cut from, and what follows from the source and the states.
struct CutCase {
  const Pair& cut;
  const Pair& source;
  std::vector<bool> stateChosen;  // by the two letters, see stateIndex

  std::vector<std::uint32_t> zipIndex;     // ZIP code -> ZIP key, 0 = not in the cut
  std::vector<bool> zipKept;               // by ZIP key
  std::vector<std::uint32_t> nameMap;      // source position -> position in the cut, 0 = dropped
  std::vector<std::uint32_t> phoneticMap;  // the same for city phonetic keys
  std::vector<bool> cityKept;              // by city key
};

inline std::size_t stateIndex(const unsigned char* letters) {
  return std::size_t{letters[0]} << 8 | letters[1];
}

// Empty, or why the source can't be compared with.
std::string sourceProblem(const Pair& source);

CutCase deriveCut(const Pair& cut, const Pair& source, const std::vector<std::string>& states);

void checkCutControl(const CutCase& cut, Report& report);
void checkCutLayout(const CutCase& cut, Report& report);
void checkCutTables(const CutCase& cut, Report& report);
void checkCutRangeControl(const CutCase& cut, Report& report);

void checkCutZips(const CutCase& cut, Report& report);
void checkCutCities(const CutCase& cut, Report& report);
void checkCutHash(const CutCase& cut, Report& report);

// ZIP and multi-ZIP partitions, the records that point at them, and the range file as a whole.
void checkCutRange(const CutCase& cut, Report& report);

}  // namespace statecut::verify
