// The name hash: every name is found at its own number, every entry leads to a name.

#include <bit>
#include <string>

#include "format/names.h"
#include "verify/pairrules.h"

namespace statecut::verify {

namespace {

class HashRules {
 public:
  HashRules(const Pair& pair, Report& report)
      : pair_(pair),
        report_(report),
        hash_{pair.table(TableId::HashTable), pair.table(TableId::HashOverflow)},
        tables_(nameTables(pair)),
        cut_(pair.isCut()) {
    // Past a break in the packing, or in a table that does not fit, names can't be told.
    for (unsigned type = 0; type < kNameTypes; ++type)
      known_[type] = pair.usable(tableOfType(type)) &&
                     (isRecordType(type) ||
                      forEachName(type, tables_[type], [](std::uint64_t, std::string_view) {}) ==
                          tables_[type].size());
  }

  void checkEntries() {
    for (std::uint32_t slot = 0; slot < hash_.slotCount(); ++slot) {
      const bool chainOk = forEachEntry(hash_, slot, [&](const HashEntry& entry) {
        checkEntry(slot, entry);
        return false;
      });
      if (!chainOk)
        report_.add(RuleId::HashChain, File::Reference, slot,
                    pair_.place(TableId::HashTable).rba + slot * 7ULL,
                    "overflow entries past the end of the overflow table");
    }
  }

  void checkNames() {
    for (unsigned type = 0; type < kNameTypes; ++type) {
      if (!known_[type]) continue;
      forEachName(type, tables_[type], [&](std::uint64_t number, std::string_view name) {
        if (!name.empty()) checkName(type, number, name);
      });
    }
  }

 private:
  void checkName(unsigned type, std::uint64_t number, std::string_view name) {
    const HashResult result = findName(hash_, tables_, name, type);
    if (result.entry ? result.entry->number == number : !result.chainOk) return;
    const std::uint64_t width = isRecordType(type) ? tableDef(tableOfType(type)).width : 1;
    report_.add(RuleId::HashMissing, File::Reference, static_cast<std::int64_t>(number),
                pair_.place(tableOfType(type)).rba + number * width, [&] {
                  return std::string(labelOfType(type)) + " " + std::to_string(number) +
                         (result.entry ? " is found as " + std::to_string(result.entry->number)
                                       : std::string(" is not found"));
                });
  }

  void checkEntry(std::uint32_t slot, const HashEntry& entry) {
    for (unsigned type = 0; type < kNameTypes; ++type) {
      if ((entry.check & type) != type) continue;
      // An entry of a name that a cut dropped.
      if (cut_ && isRecordType(type) && entry.number == 0) return;
      if (!known_[type] || belongs(slot, entry, type)) return;
    }
    const TableId table = entry.inOverflow ? TableId::HashOverflow : TableId::HashTable;
    report_.add(RuleId::HashWrong, File::Reference, slot, pair_.place(table).rba + entry.numberAt,
                [&] {
                  return "hash slot " + std::to_string(slot) + " holds number " +
                         std::to_string(entry.number) + " with check " +
                         std::to_string(entry.check) + ", no name of that hash";
                });
  }

  // Also when the name's length is wrong, which is a finding of its own.
  bool belongs(std::uint32_t slot, const HashEntry& entry, unsigned type) const {
    const auto name = nameAt(type, entry.number, tables_[type]);
    if (!name)
      return isRecordType(type) &&
             entry.number < tables_[type].size() / tableDef(tableOfType(type)).width;
    const std::uint32_t hash = nameHash(*name, type);
    return hash_.slotOf(hash) == slot && hash_.checkOf(hash, type) == entry.check;
  }

  const Pair& pair_;
  Report& report_;
  HashView hash_;
  NameTables tables_;
  bool cut_;
  bool known_[kNameTypes] = {};
};

}  // namespace

void checkHash(const Pair& pair, Report& report) {
  if (!pair.usable(TableId::HashTable) || !pair.usable(TableId::HashOverflow)) return;
  const std::uint64_t slots = pair.place(TableId::HashTable).count;
  if (slots != 0 && !std::has_single_bit(slots)) {
    report.add(RuleId::HashSize, File::Reference, kNoRecord, RefControlRec::hashTableCount.at,
               std::to_string(slots) + " slots");
    return;
  }
  HashRules rules(pair, report);
  rules.checkEntries();
  rules.checkNames();
}

}  // namespace statecut::verify
