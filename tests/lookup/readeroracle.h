#pragma once
// The answers of a Database that the bytes of a file call for, and what in the bytes it refuses.

#include <bitset>

#include "oracle.h"

namespace statecut::test {

// Where a Database answers otherwise than the lookups in memory, and why that is meant. Any
// difference outside this table is a defect, and so is a row that never occurs.
enum class ReaderDifference : std::uint8_t {
  kRecordAtTheCount,
  kListBehindTheTable,
  kNameBehindTheTable,
  kNoCityKey,
  kLongSuffix,
  kLongPattern,
  kUpperBits,
  kStreetsOfOneCall,
  kCount_
};
inline constexpr std::size_t kReaderDifferences =
    static_cast<std::size_t>(ReaderDifference::kCount_);

struct ReaderDifferenceRow {
  ReaderDifference difference;
  const char* reason;
};

inline constexpr std::array<ReaderDifferenceRow, kReaderDifferences> kReaderDifferenceTable = {{
    {ReaderDifference::kRecordAtTheCount, "a key equal to the count leads to no record"},
    {ReaderDifference::kListBehindTheTable, "a list that the table does not hold is none"},
    {ReaderDifference::kNameBehindTheTable, "a name ends with its table; a negative length is 0"},
    {ReaderDifference::kNoCityKey, "a name with city key 0 has no city, not the dummy record"},
    {ReaderDifference::kLongSuffix, "a name does not end with a text that is longer than it"},
    {ReaderDifference::kLongPattern, "a pattern is taken whole, however long"},
    {ReaderDifference::kUpperBits, "a start or key is taken whole, not its low 16 bits"},
    {ReaderDifference::kStreetsOfOneCall,
     "a variation gives its own streets, all of them: nothing is kept from call to call"},
}};

using ReaderDifferences = std::bitset<kReaderDifferences>;

class ReaderOracle : public Oracle {
 public:
  explicit ReaderOracle(const Bytes& file);

  // Of a file without flaw.
  std::string answer(const Call& call);
  // Where the last answer is not that of the lookups in memory.
  [[nodiscard]] const ReaderDifferences& readerDifferences() const { return meant_; }

  // Why a Database refuses the file; empty when it opens it.
  [[nodiscard]] std::string flaw() const;

 private:
  [[nodiscard]] bool listsEnd(std::size_t namesRba, std::size_t namesBytes, std::size_t listsRba,
                              std::size_t listsBytes) const;
  void mean(ReaderDifference difference) { meant_.set(static_cast<std::size_t>(difference)); }
  // Record `index` of a table of `count`, or `count` bytes of a list of a table of `end` entries.
  Optional entry(Slot slot, std::uint64_t index, std::uint64_t count, std::uint32_t width);
  std::string list(Slot slot, std::uint64_t start, std::uint64_t wanted, std::uint64_t end,
                   std::uint32_t width);
  std::string zips(const Call& call);
  std::string cities(const Call& call);
  std::string cityData(const Call& call);
  std::string streets(const Call& call);
  std::int64_t search(const Call& call);
  std::string packed(Slot slot, std::uint32_t offset, std::uint32_t bytes);
  std::string variation(const Call& call);

  ReaderDifferences meant_;
};

}  // namespace statecut::test
