#pragma once
// Where an answer from memory and an answer from the file differ, and why that is meant. Any
// difference outside this table is a defect, and so is a row that never occurs.

#include <array>
#include <bitset>
#include <cstdint>

namespace statecut::test {

enum class Difference : std::uint8_t {
  kRecordAtTheCount,
  kListBehindTheTable,
  kIndexEntryAboveTheCount,
  kMultiZipStep,
  kMultiZipMemo,
  kZipKeysFrom65535,
  kFinanceBound,
  kCityKeyAboveTheCount,
  kRivalBehindTheTable,
  kNameOffsetBehindTheEnd,
  kSingleStreetReplaces,
  kFullStreetList,
  kNoStreets,
  kLongPhoneticCode,
  kStreetListBehindTheEnd,
  kOverflowBehindTheTable,
  kTableTooLarge,
  kBehindTheFile,
  kCount_
};
inline constexpr std::size_t kDifferences = static_cast<std::size_t>(Difference::kCount_);

struct DifferenceRow {
  Difference difference;
  const char* reason;
};

inline constexpr std::array<DifferenceRow, kDifferences> kDifferenceTable = {{
    {Difference::kRecordAtTheCount,
     "a key equal to the count is accepted: the zero record behind the loaded table, and the bytes "
     "that follow the table in the file"},
    {Difference::kListBehindTheTable,
     "a list is as long as the caller asks: zeros behind the loaded table, and the bytes that "
     "follow it in the file"},
    {Difference::kIndexEntryAboveTheCount,
     "a ZIP index entry above the count points to no loaded record; the file is read as it stands"},
    {Difference::kMultiZipStep,
     "a multi-ZIP list begins 2 bytes an index from the loaded table, 4 bytes in the file"},
    {Difference::kMultiZipMemo,
     "the file variant keeps the list of the last start, whatever the count asked for"},
    {Difference::kZipKeysFrom65535, "start 65535 always counts as already read from the file"},
    {Difference::kFinanceBound, "the file variant takes the low 16 bits of the finance list count"},
    {Difference::kCityKeyAboveTheCount,
     "the city data key of a name is checked only where a loaded table would be left"},
    {Difference::kRivalBehindTheTable,
     "the neighbour of the last name is the zero record in memory, the next 34 bytes in the file"},
    {Difference::kNameOffsetBehindTheEnd,
     "an offset at or behind the end of the names is refused only in memory"},
    {Difference::kSingleStreetReplaces,
     "a single street is appended in memory; from the file it replaces the list"},
    {Difference::kFullStreetList, "only the memory variant stops at 500 keys"},
    {Difference::kNoStreets,
     "a variation without a fitting street gives null in memory, an empty list from the file"},
    {Difference::kLongPhoneticCode,
     "only the memory variant tests a phonetic code for 28 bytes, before it stores an index"},
    {Difference::kStreetListBehindTheEnd,
     "an ambiguous list ends with its loaded table; the file is read on"},
    {Difference::kOverflowBehindTheTable,
     "the overflow entries of a slot end with the loaded table; the file is read on"},
    {Difference::kTableTooLarge,
     "a table above 2147483647 bytes is not loaded, while the file can still be read"},
    {Difference::kBehindTheFile,
     "what the file lacks is zero in a loaded table; a read leaves its buffer as it was"},
}};

using Differences = std::bitset<kDifferences>;

}  // namespace statecut::test
