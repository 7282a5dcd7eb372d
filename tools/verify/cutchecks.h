#pragma once
// The rules that compare a cut with its source, by family.

#include <cstdint>
#include <string>
#include <vector>

#include "verify/hashplaces.h"
#include "verify/pair.h"
#include "verify/report.h"

namespace statecut::verify {

// What a cut of a pair to some states holds, as it follows from the two alone.
struct DerivedCut {
  const Pair& source;
  std::vector<bool> stateChosen;  // by the two letters, see stateIndex

  std::vector<std::uint32_t> zipIndex;     // ZIP code -> ZIP key, 0 = not in the cut
  std::vector<std::uint32_t> zipKeys;      // those of the index, in the order of the ZIP codes
  std::vector<bool> zipKept;               // by ZIP key
  std::vector<std::uint32_t> nameMap;      // source position -> position in the cut, 0 = dropped
  std::vector<std::uint32_t> phoneticMap;  // the same for city phonetic keys
  std::vector<bool> cityKept;              // by city key
};

// A cut beside what it must hold.
struct CutCase : DerivedCut {
  const HashPlaces& hash;  // of the source
  const Pair& cut;
};

inline std::size_t stateIndex(const unsigned char* letters) {
  return std::size_t{letters[0]} << 8 | letters[1];
}

// Empty, or why the source can't be compared with.
std::string sourceProblem(const Pair& source);

// How the records of a state are looked for in the city tables: all of them are, or those that are
// found when a table is taken to be sorted by state, as a cut takes it. In a sound source that is
// the same.
enum class CityScan { All, Sorted };

// `states` sorted, each once, for CityScan::Sorted.
DerivedCut deriveCut(const Pair& source, const std::vector<std::string>& states,
                     CityScan scan = CityScan::All);

// Records of a rewritten city table of the cut, the blank first one included.
std::uint32_t keptCount(const std::vector<std::uint32_t>& map);

// Bytes of the cut's reference file.
std::uint64_t cutReferenceBytes(const DerivedCut& cut);

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
