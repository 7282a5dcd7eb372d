// City and finance multi-ZIP records: who points at them, their keys and their partitions.

#include <map>
#include <string>

#include "tables/rows.h"
#include "verify/alone.h"
#include "verify/multizipsizes.h"

namespace statecut::verify {

namespace {

using M = CityMultiZipRow;

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
    const auto cities = pair_.records<M>(TableId::CityMultiZipRbas);
    for (std::size_t i = 1; i < cities.size(); ++i) {
      checkEntry(
          {TableId::SfhMultiZipBytes, MultiZipForm::Long, "SFH"},
          {cities[i].get(M::sfhZipCount), cities[i].get(M::sfhKey), cities[i].get(M::sfhRba)}, i,
          cities.offset(i));
      checkEntry(
          {TableId::PobMultiZipBytes, MultiZipForm::Short, "POB"},
          {cities[i].get(M::pobZipCount), cities[i].get(M::pobKey), cities[i].get(M::pobRba)}, i,
          cities.offset(i) + M::pobZipCount.at);
      checkEntry({TableId::RrMultiZipBytes, MultiZipForm::Short, "RR"},
                 {cities[i].get(M::rrZipCount), cities[i].get(M::rrKey), cities[i].get(M::rrRba)},
                 i, cities.offset(i) + M::rrZipCount.at);
    }
    const auto areas = pair_.records<FinMultiZipRow>(TableId::FinMultiZipRbas);
    for (std::size_t i = 1; i < areas.size(); ++i)
      checkEntry({TableId::SfhMultiZipBytes, MultiZipForm::Short, "finance"},
                 {areas[i].get(FinMultiZipRow::zipCount), areas[i].get(FinMultiZipRow::key),
                  areas[i].get(FinMultiZipRow::rba)},
                 i, areas.offset(i));
  }

 private:
  struct Kind {
    TableId sizes;
    MultiZipForm form;
    const char* name;
  };
  struct Entry {
    std::uint32_t zipCount;
    std::uint32_t key;
    std::uint32_t rba;
  };

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

  void checkEntry(const Kind& kind, const Entry& entry, std::size_t i, std::uint64_t offset) {
    if (entry.zipCount < 2 || entry.rba == 0) return;
    const auto record = static_cast<std::int64_t>(i);
    const std::string label =
        std::string(kind.name) + " multi-ZIP key " + std::to_string(entry.key);
    const std::uint32_t keys = pair_.ref().get(RefControlRec::multiZipListsCount);
    if (entry.key >= keys) {
      report_.add(RuleId::MultiZipKey, File::Reference, record, offset,
                  label + " of " + std::to_string(keys));
      return;
    }
    checkList(entry, record, offset, label);
    // A cut has no sizes, and what it did not copy keeps the RBA of the source.
    if (pair_.isCut() || !pair_.usable(kind.sizes) || unsorted_[indexOf(kind.sizes)]) return;
    const auto bytes = multiZipSize(pair_.table(kind.sizes), kind.form, entry.key);
    if (!bytes) {
      report_.add(RuleId::MultiZipBytes, File::Reference, record, offset,
                  label + " has no entry in " + tableDef(kind.sizes).name);
      return;
    }
    const std::uint64_t end = std::uint64_t{entry.rba} + static_cast<std::uint32_t>(*bytes);
    if (entry.rba < RngControlRec::size || end > pair_.rngBytes().size())
      report_.add(RuleId::MultiZipBounds, File::Reference, record, offset, [&] {
        return label + ": bytes " + std::to_string(entry.rba) + " to " + std::to_string(end) +
               ", the range file has " + std::to_string(pair_.rngBytes().size());
      });
    else
      checkShared(kind, entry, record, offset, label);
  }

  // All records of a key share one partition.
  void checkShared(const Kind& kind, const Entry& entry, std::int64_t record, std::uint64_t offset,
                   const std::string& label) {
    const auto [other, first] = rbas_[indexOf(kind.sizes)].emplace(entry.key, entry.rba);
    if (!first && other->second != entry.rba)
      report_.add(RuleId::MultiZipKey, File::Reference, record, offset,
                  label + " at " + std::to_string(entry.rba) + ", another record has it at " +
                      std::to_string(other->second));
  }

  // The key is where the list of the ZIP codes begins.
  void checkList(const Entry& entry, std::int64_t record, std::uint64_t offset,
                 const std::string& label) {
    if (!pair_.usable(TableId::MultiZipLists) || !pair_.usable(TableId::ZipData)) return;
    const auto lists = pair_.table(TableId::MultiZipLists);
    const std::uint64_t end = std::uint64_t{entry.key} + entry.zipCount;
    bool ok = end <= pair_.place(TableId::MultiZipLists).count;
    for (std::uint64_t i = entry.key; ok && i < end; ++i) {
      const std::uint32_t zip = number16(lists, i);
      ok = zip != 0 && zip < pair_.place(TableId::ZipData).count;
    }
    if (!ok)
      report_.add(RuleId::MultiZipLists, File::Reference, record, offset, [&] {
        return label + ": no list of " + std::to_string(entry.zipCount) + " ZIP keys";
      });
  }

  const Pair& pair_;
  Report& report_;
  std::map<std::uint32_t, std::uint32_t> rbas_[3];  // by key: SFH, POB, RR
  bool unsorted_[3] = {};                           // SFH, POB, RR
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
