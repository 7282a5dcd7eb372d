#pragma once
// Damage to a sound pair that trips one rule and no other.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "dbbuilder/model.h"
#include "verify/report.h"
#include "verify/rules.h"

namespace statecut::test {

using builder::Bytes;

struct PairBytes {
  Bytes ref;
  Bytes rng;

  // Words of the reference control record, and bytes of the table whose RBA stands there.
  std::uint32_t word(std::size_t at) const;
  void setWord(std::size_t at, std::uint32_t value);
  unsigned char* table(std::size_t rbaAt) { return ref.data() + word(rbaAt); }
};

// Where a finding is expected.
struct Spot {
  std::uint64_t offset = 0;
  std::int64_t record = verify::kNoRecord;
  verify::File file = verify::File::Reference;
};
inline Spot inRange(std::uint64_t offset) {
  return {offset, verify::kNoRecord, verify::File::Range};
}
// A place in record `i` of a table.
Spot inRecord(const PairBytes& pair, std::size_t rbaAt, std::size_t width, std::size_t i,
              std::size_t at = 0);

template <typename RowType>
RowType& row(PairBytes& pair, std::size_t rbaAt, std::size_t i) {
  return *reinterpret_cast<RowType*>(pair.table(rbaAt) + i * RowType::size);
}

struct Case {
  verify::RuleId rule;
  std::function<void(builder::Model&)> model;  // damage before the pair is written, or
  std::function<Spot(PairBytes&)> bytes;       // to its bytes; the first finding of the rule
  std::vector<verify::RuleId> also = {};       // that no damage to this rule alone can avoid
};

// Of aloneCases: those of city tables, and of names, their hash and lists of entries.
std::vector<Case> cityCases();
std::vector<Case> nameCases();

// Damage to an uncut pair, and to a cut that is compared with its source.
const std::vector<Case>& aloneCases();
const std::vector<Case>& cutCases();

}  // namespace statecut::test
