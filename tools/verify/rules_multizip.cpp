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
    forEachEntry([this](const Kind& kind, const Entry& entry, std::size_t i, std::uint64_t offset) {
      checkEntry(kind, entry, i, offset);
    });
    forEachEntry([this](const Kind& kind, const Entry& entry, std::size_t i, std::uint64_t offset) {
      checkUnlisted(kind, entry, i, offset);
    });
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

  struct Place {
    std::uint32_t rba;
    std::int32_t bytes;
    bool operator==(const Place&) const = default;
  };
  static std::string nameOf(const Place& place) {
    return std::to_string(place.rba) + " with " + std::to_string(place.bytes) + " bytes";
  }

  template <typename Visit>
  void forEachEntry(Visit&& visit) const {
    constexpr Kind kSfh = {TableId::SfhMultiZipBytes, MultiZipForm::Long, "SFH"};
    constexpr Kind kPob = {TableId::PobMultiZipBytes, MultiZipForm::Short, "POB"};
    constexpr Kind kRr = {TableId::RrMultiZipBytes, MultiZipForm::Short, "RR"};
    constexpr Kind kFinance = {TableId::SfhMultiZipBytes, MultiZipForm::Short, "finance"};
    using F = FinMultiZipRow;
    const auto cities = pair_.records<M>(TableId::CityMultiZipRbas);
    for (std::size_t i = 1; i < cities.size(); ++i) {
      const M& city = cities[i];
      const std::uint64_t at = cities.offset(i);
      visit(kSfh, {city.get(M::sfhZipCount), city.get(M::sfhKey), city.get(M::sfhRba)}, i, at);
      visit(kPob, {city.get(M::pobZipCount), city.get(M::pobKey), city.get(M::pobRba)}, i,
            at + M::pobZipCount.at);
      visit(kRr, {city.get(M::rrZipCount), city.get(M::rrKey), city.get(M::rrRba)}, i,
            at + M::rrZipCount.at);
    }
    const auto areas = pair_.records<F>(TableId::FinMultiZipRbas);
    for (std::size_t i = 1; i < areas.size(); ++i)
      visit(kFinance, {areas[i].get(F::zipCount), areas[i].get(F::key), areas[i].get(F::rba)}, i,
            areas.offset(i));
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
      checkShared(kind, entry, *bytes, record, offset, label);
  }

  // What has the key or the partition of a list is an entry itself, or no cut takes it along.
  void checkUnlisted(const Kind& kind, const Entry& entry, std::size_t i, std::uint64_t offset) {
    const auto& known = places_[indexOf(kind.sizes)];
    const auto listed = known.find(entry.key);
    if (listed == known.end()) return;
    const bool noPartition = entry.zipCount >= 2 && entry.rba == 0;
    const bool noList = entry.zipCount < 2 && entry.rba == listed->second.rba;
    if (!noPartition && !noList) return;
    report_.add(RuleId::MultiZipKey, File::Reference, static_cast<std::int64_t>(i), offset, [&] {
      return std::string(kind.name) + " multi-ZIP key " + std::to_string(entry.key) + " at " +
             std::to_string(entry.rba) + " with " + std::to_string(entry.zipCount) +
             " ZIP codes, another record has its list and partition";
    });
  }

  // All records of a key share one partition, of one size whatever the form that finds it.
  void checkShared(const Kind& kind, const Entry& entry, std::int32_t bytes, std::int64_t record,
                   std::uint64_t offset, const std::string& label) {
    const Place place = {entry.rba, bytes};
    const Place other = places_[indexOf(kind.sizes)].emplace(entry.key, place).first->second;
    if (other == place) return;
    report_.add(RuleId::MultiZipKey, File::Reference, record, offset, [&] {
      return label + " at " + nameOf(place) + ", another record has it at " + nameOf(other);
    });
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
