// City and finance multi-ZIP records: who points at them, their keys and their partitions.

#include <map>
#include <string>

#include "tables/rows.h"
#include "verify/pairrules.h"
#include "verify/sharedentries.h"

namespace statecut::verify {

namespace {

class MultiZipRules {
 public:
  MultiZipRules(const Pair& pair, Report& report) : pair_(pair), report_(report) {}

  void checkLinks() {
    const auto cities = pair_.records<CityDataRow>(TableId::CityData);
    for (std::size_t i = 1; i < cities.size(); ++i) {
      checkLink(cities[i].get(CityDataRow::multiZipRbaKey), TableId::CityMultiZipRbas, i,
                cities.offset(i) + CityDataRow::multiZipRbaKey.at);
      if (cities[i].get(CityDataRow::finMultiZipFlag) == 1)
        checkLink(cities[i].get(CityDataRow::finMultiZipKey), TableId::FinMultiZipRbas, i,
                  cities.offset(i) + CityDataRow::finMultiZipKey.at);
    }
    const auto zips = pair_.records<ZipDataRow>(TableId::ZipData);
    for (std::size_t i = 1; i < zips.size(); ++i)
      checkLink(zips[i].get(ZipDataRow::finMultiZipKey), TableId::FinMultiZipRbas, i,
                zips.offset(i) + ZipDataRow::finMultiZipKey.at);
  }

  void checkOrder(TableId sizes) {
    const auto table = pair_.table(sizes);
    const std::uint64_t shortForm = firstUnsorted(table, MultiZipForm::Short);
    if (shortForm == table.size() / 8 ||
        firstUnsorted(table, MultiZipForm::Long) == table.size() / 8)
      return;
    report_.add(RuleId::MultiZipOrder, File::Reference, static_cast<std::int64_t>(shortForm),
                pair_.place(sizes).rba + shortForm * 6,
                std::string(tableDef(sizes).name) + ": a key sorts before the one ahead of it");
    unsorted_[indexOf(sizes)] = true;
  }

  void checkRecords() {
    forEachSharedEntry(pair_, [this](const SharedEntry& entry) { checkEntry(entry); });
    forEachSharedEntry(pair_, [this](const SharedEntry& entry) { checkUnlisted(entry); });
  }

 private:
  struct Place {
    std::uint32_t rba;
    std::int32_t bytes;
    bool operator==(const Place&) const = default;
  };
  static std::string nameOf(const Place& place) {
    return std::to_string(place.rba) + " with " + std::to_string(place.bytes) + " bytes";
  }

  static std::size_t indexOf(TableId sizes) {
    return static_cast<std::size_t>(sizes) - static_cast<std::size_t>(TableId::SfhMultiZipBytes);
  }

  void checkLink(std::uint32_t key, TableId table, std::size_t record, std::uint64_t offset) {
    if (key == 0 || !pair_.usable(table) || key < pair_.place(table).count) return;
    report_.add(RuleId::MultiZipLink, File::Reference, static_cast<std::int64_t>(record), offset,
                [&] {
                  return "key " + std::to_string(key) + " of " +
                         std::to_string(pair_.place(table).count) + " " + tableDef(table).name;
                });
  }

  static std::string labelOf(const SharedEntry& entry) {
    return std::string(entry.kind) + " multi-ZIP key " + std::to_string(entry.key);
  }

  void checkEntry(const SharedEntry& entry) {
    if (entry.zipCount < 2 || entry.rba == 0) return;
    const std::uint32_t keys = pair_.ref().get(RefControlRec::multiZipListsCount);
    if (entry.key >= keys) {
      report_.add(RuleId::MultiZipKey, File::Reference, entry.record, entry.offset,
                  labelOf(entry) + " of " + std::to_string(keys));
      return;
    }
    checkList(entry);
    // A cut has no sizes, and what it did not copy keeps the RBA of the source.
    if (pair_.isCut() || !pair_.usable(entry.sizes) || unsorted_[indexOf(entry.sizes)]) return;
    const auto bytes = multiZipSize(pair_.table(entry.sizes), entry.form, entry.key);
    if (!bytes) {
      report_.add(RuleId::MultiZipBytes, File::Reference, entry.record, entry.offset,
                  labelOf(entry) + " has no entry in " + tableDef(entry.sizes).name);
      return;
    }
    const std::uint64_t end = std::uint64_t{entry.rba} + static_cast<std::uint32_t>(*bytes);
    if (entry.rba < RngControlRec::size || end > pair_.rngBytes().size())
      report_.add(RuleId::MultiZipBounds, File::Reference, entry.record, entry.offset, [&] {
        return labelOf(entry) + ": bytes " + std::to_string(entry.rba) + " to " +
               std::to_string(end) + ", the range file has " +
               std::to_string(pair_.rngBytes().size());
      });
    else
      checkShared(entry, *bytes);
  }

  // What has the key or the partition of a list is an entry itself, or no cut takes it along.
  void checkUnlisted(const SharedEntry& entry) {
    const auto& known = places_[indexOf(entry.sizes)];
    const auto listed = known.find(entry.key);
    if (listed == known.end()) return;
    const bool noPartition = entry.zipCount >= 2 && entry.rba == 0;
    const bool noList = entry.zipCount < 2 && entry.rba == listed->second.rba;
    if (!noPartition && !noList) return;
    report_.add(RuleId::MultiZipKey, File::Reference, entry.record, entry.offset, [&] {
      return labelOf(entry) + " at " + std::to_string(entry.rba) + " with " +
             std::to_string(entry.zipCount) +
             " ZIP codes, another record has its list and partition";
    });
  }

  // All records of a key share one partition, of one size whatever the form that finds it.
  void checkShared(const SharedEntry& entry, std::int32_t bytes) {
    const Place place = {entry.rba, bytes};
    const Place other = places_[indexOf(entry.sizes)].emplace(entry.key, place).first->second;
    if (other == place) return;
    report_.add(RuleId::MultiZipKey, File::Reference, entry.record, entry.offset, [&] {
      return labelOf(entry) + " at " + nameOf(place) + ", another record has it at " +
             nameOf(other);
    });
  }

  // The key is where the list of the ZIP codes begins.
  void checkList(const SharedEntry& entry) {
    if (!pair_.usable(TableId::MultiZipLists) || !pair_.usable(TableId::ZipData)) return;
    const auto lists = pair_.table(TableId::MultiZipLists);
    const std::uint64_t end = std::uint64_t{entry.key} + entry.zipCount;
    bool ok = end <= pair_.place(TableId::MultiZipLists).count;
    for (std::uint64_t i = entry.key; ok && i < end; ++i) {
      const std::uint32_t zip = number16(lists, i);
      ok = zip != 0 && zip < pair_.place(TableId::ZipData).count;
    }
    if (!ok)
      report_.add(RuleId::MultiZipLists, File::Reference, entry.record, entry.offset, [&] {
        return labelOf(entry) + ": no list of " + std::to_string(entry.zipCount) + " ZIP keys";
      });
  }

  const Pair& pair_;
  Report& report_;
  std::map<std::uint32_t, Place> places_[3];  // by key: SFH, POB, RR
  bool unsorted_[3] = {};                     // SFH, POB, RR
};

}  // namespace

void checkMultiZip(const Pair& pair, Report& report) {
  MultiZipRules rules(pair, report);
  rules.checkLinks();
  for (const TableId sizes :
       {TableId::SfhMultiZipBytes, TableId::PobMultiZipBytes, TableId::RrMultiZipBytes})
    rules.checkOrder(sizes);
  rules.checkRecords();
}

}  // namespace statecut::verify
