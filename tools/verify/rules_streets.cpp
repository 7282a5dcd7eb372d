// Packed name tables and the street variations.

#include <algorithm>
#include <string>
#include <vector>

#include "format/names.h"
#include "verify/pairrules.h"

namespace statecut::verify {

namespace {

// Which bytes of the street names begin a name.
std::vector<bool> streetStarts(std::span<const unsigned char> streets) {
  std::vector<bool> starts(streets.size());
  forEachName(1, streets, [&](std::uint64_t at, std::string_view) { starts[at] = true; });
  return starts;
}

// Offset of the number of names of a packed table.
std::size_t countFieldOf(unsigned type) {
  using R = RefControlRec;
  switch (type) {
    case 0:
      return R::firmsCount.at;
    case 1:
      return R::streetNamesCount.at;
    case 3:
      return R::streetStandardsCount.at;
    default:
      return R::streetPhoneticsCount.at;
  }
}

class StreetLinks {
 public:
  StreetLinks(const Pair& pair, Report& report)
      : pair_(pair), report_(report), starts_(streetStarts(pair.table(TableId::StreetNames))) {}

  // The variations of a type and their ambiguous lists.
  void check(unsigned type, TableId listTable) {
    const TableId table = tableOfType(type);
    if (!pair_.usable(table) || !pair_.usable(listTable)) return;
    const auto bytes = pair_.table(table);
    const auto lists = pair_.table(listTable);
    // Lists do not overlap, so that all of them take no more than their table.
    std::uint64_t budget = lists.size();
    std::int64_t record = 0;
    forEachName(type, bytes, [&](std::uint64_t at, std::string_view) {
      const std::uint32_t value = le::get<4>(bytes.data() + at);
      const bool ambiguous = bytes[at + 4] > 127;
      const bool ok = ambiguous ? listOk(lists, value, budget) : isStreet(value);
      if (!ok)
        report_.add(RuleId::StreetLinks, File::Reference, record, pair_.place(table).rba + at, [&] {
          return std::string(labelOfType(type)) + " leads to " +
                 (ambiguous ? "a bad ambiguous list at " : "no street name at ") +
                 std::to_string(value);
        });
      ++record;
    });
  }

 private:
  bool isStreet(std::uint32_t key) const { return key < starts_.size() && starts_[key]; }

  // Count, then street key, SCF count and SCF keys of each entry.
  bool listOk(std::span<const unsigned char> lists, std::uint64_t at, std::uint64_t& budget) const {
    if (at + 2 > lists.size()) return false;
    const std::uint64_t begin = at;
    std::uint32_t entries = le::get<2>(lists.data() + at);
    bool ok = true;
    for (at += 2; ok && entries > 0; --entries) {
      ok =
          at + 5 <= lists.size() && at - begin <= budget && isStreet(le::get<4>(lists.data() + at));
      if (!ok) break;
      const std::uint32_t scfs = lists[at + 4];
      at += 5 + scfs * 2ULL;
      ok = scfs <= 127 && at <= lists.size();
    }
    ok = ok && at - begin <= budget;
    budget -= std::min(budget, at - begin);
    return ok;
  }

  const Pair& pair_;
  Report& report_;
  std::vector<bool> starts_;
};

}  // namespace

void checkNamePacking(const Pair& pair, Report& report) {
  for (unsigned type = 0; type < kNameTypes; ++type) {
    if (isRecordType(type)) continue;
    const auto table = pair.table(tableOfType(type));
    std::int64_t record = 0;
    const std::uint64_t end =
        forEachName(type, table, [&](std::uint64_t, std::string_view) { ++record; });
    const std::size_t countAt = countFieldOf(type);
    const std::int64_t count = le::get<4>(pair.refBytes().data() + countAt);
    if (end == table.size() && count != record && pair.usable(tableOfType(type)))
      report.add(RuleId::NamePacking, File::Reference, kNoRecord, countAt,
                 std::to_string(record) + " " + labelOfType(type) + "s, the control record has " +
                     std::to_string(count));
    if (end < table.size())
      report.add(RuleId::NamePacking, File::Reference, record,
                 pair.place(tableOfType(type)).rba + end,
                 std::string(labelOfType(type)) + " runs out of its table");
  }
}

void checkStreetLinks(const Pair& pair, Report& report) {
  if (!pair.usable(TableId::StreetNames)) return;
  // Past a break in the packing every street seems to be missing.
  if (report.count(RuleId::NamePacking) > 0) return;
  StreetLinks links(pair, report);
  links.check(3, TableId::StreetStandardAmbData);
  links.check(4, TableId::StreetPhoneticAmbData);
}

}  // namespace statecut::verify
