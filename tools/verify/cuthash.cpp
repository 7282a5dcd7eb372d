// The hash of a cut: the source's with the numbers of city names and phonetic keys renumbered.

#include <algorithm>
#include <string>
#include <vector>

#include "format/names.h"
#include "verify/cutchecks.h"

namespace statecut::verify {

namespace {

// The source's hash, to be renumbered name by name. Candidates are the names of the source, at
// whatever number stands in an entry by then.
class ExpectedHash {
 public:
  explicit ExpectedHash(const Pair& source) : tables_(nameTables(source)) {
    const auto slots = source.table(TableId::HashTable);
    const auto overflow = source.table(TableId::HashOverflow);
    slots_.assign(slots.begin(), slots.end());
    overflow_.assign(overflow.begin(), overflow.end());
  }

  void renumber(unsigned type, const std::vector<std::uint32_t>& map) {
    for (std::uint32_t i = 0; i < map.size(); ++i) {
      if (map[i] != 0 && map[i] == i) continue;
      const auto name = nameAt(type, i, tables_[type]);
      if (!name) continue;
      const HashResult result = findName({slots_, overflow_}, tables_, *name, type);
      if (!result.entry) continue;
      auto& table = result.entry->inOverflow ? overflow_ : slots_;
      le::put<4>(table.data() + result.entry->numberAt, map[i]);
    }
  }

  const std::vector<unsigned char>& slots() const { return slots_; }
  const std::vector<unsigned char>& overflow() const { return overflow_; }

 private:
  NameTables tables_;
  std::vector<unsigned char> slots_;
  std::vector<unsigned char> overflow_;
};

void compare(const CutCase& cut, TableId id, const std::vector<unsigned char>& expected,
             Report& report) {
  const auto table = cut.cut.table(id);
  if (table.size() != expected.size()) return;
  const std::uint64_t width = tableDef(id).width;
  for (std::uint64_t at = 0; at < table.size(); at += width) {
    const auto a = table.begin() + static_cast<std::ptrdiff_t>(at);
    const auto b = expected.begin() + static_cast<std::ptrdiff_t>(at);
    if (std::equal(a, a + static_cast<std::ptrdiff_t>(width), b)) continue;
    report.add(RuleId::CutHash, File::Reference, static_cast<std::int64_t>(at / width),
               cut.cut.place(id).rba + at,
               [&] { return std::string(tableDef(id).name) + " entry differs"; });
  }
}

}  // namespace

void checkCutHash(const CutCase& cut, Report& report) {
  ExpectedHash expected(cut.source);
  expected.renumber(kCityNameType, cut.nameMap);
  expected.renumber(kCityPhoneticType, cut.phoneticMap);
  compare(cut, TableId::HashTable, expected.slots(), report);
  compare(cut, TableId::HashOverflow, expected.overflow(), report);
}

}  // namespace statecut::verify
