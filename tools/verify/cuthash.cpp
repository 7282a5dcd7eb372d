// The hash of a cut: the source's with the numbers of city names and phonetic keys renumbered.

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "verify/cutchecks.h"

namespace statecut::verify {

namespace {

void compare(const CutCase& cut, TableId id, std::span<const unsigned char> expected,
             Report& report) {
  const auto table = cut.cut.table(id);
  if (table.size() != expected.size()) return;
  if (std::equal(table.begin(), table.end(), expected.begin())) return;
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
  const std::vector<unsigned char> expected =
      renumberedHash(cut.source, cut.hash, cut.nameMap, cut.phoneticMap);
  const std::size_t slotBytes = cut.source.table(TableId::HashTable).size();
  compare(cut, TableId::HashTable, std::span(expected).first(slotBytes), report);
  compare(cut, TableId::HashOverflow, std::span(expected).subspan(slotBytes), report);
}

}  // namespace statecut::verify
