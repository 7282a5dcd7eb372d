// The checks at opening that a lookup relies on.

#include "lookup/inmemory.h"
#include "reader/placing.h"

namespace statecut {

namespace {

using Ref = RefControlRec;

class Checks {
 public:
  Checks(const Database::Loaded& loaded, Error& error)
      : loaded_(loaded), view_(loaded.view), error_(error) {}

  bool all() { return zipIndex() && zipLists() && cityShares() && financeShares(); }

 private:
  template <typename RowType>
  [[nodiscard]] std::span<const RowType> rows(SlotNumber slot, std::uint32_t count) const {
    return {reinterpret_cast<const RowType*>(view_.table(slot)), count};
  }

  bool damaged(const char* table, const void* at, const std::string& what) {
    const auto offset =
        static_cast<std::uint64_t>(static_cast<const unsigned char*>(at) - loaded_.bytes.data());
    return failedTable(error_, ErrorCode::kDamaged, loaded_.file, table, offset, what);
  }

  // Every ZIP code of the index has a record, and that is its own.
  bool zipIndex() {
    const auto zips = rows<ZipDataRow>(kSlotZipData, view_.word(Ref::zipDataCount));
    const auto index = rows<KeyRow>(kSlotZipIndex, kZipCodes);
    for (std::uint32_t code = 1; code < index.size(); ++code) {
      const std::uint32_t key = index[code].get(KeyRow::key);
      if (key == 0) continue;
      if (key >= zips.size() || zips[key].get(ZipDataRow::zip) != code)
        return damaged("ZIP index", &index[code],
                       "leads to no record of the ZIP code " + std::to_string(code));
    }
    return true;
  }

  bool zipLists() {
    const std::uint64_t end = view_.word(Ref::zipMultiCityListsCount);
    for (const ZipDataRow& zip : rows<ZipDataRow>(kSlotZipData, view_.word(Ref::zipDataCount))) {
      const std::uint32_t count = zip.get(ZipDataRow::cityKeysCount);
      const std::uint64_t first = zip.get(ZipDataRow::cityKeysIndex);
      if (count > 1 && first + count > end)
        return damaged("ZIP data", &zip, "has a list of cities that ends behind its table");
    }
    return true;
  }

  // A list of ZIP keys begins at the multi-ZIP key of a partition that several ZIP codes share.
  bool share(const char* table, const void* at, std::uint32_t zips, std::uint32_t key,
             std::uint32_t rba) {
    const bool isShare = zips > 1 && rba != 0;
    if (!isShare || std::uint64_t{key} + zips <= view_.word(Ref::multiZipListsCount)) return true;
    return damaged(table, at, "has a list of ZIP codes that ends behind its table");
  }

  bool cityShares() {
    using M = CityMultiZipRow;
    constexpr char kName[] = "City multi-ZIP RBAs";
    const auto records = rows<M>(kSlotCityMultiZipRbas, view_.word(Ref::cityMultiZipRbasCount));
    for (std::size_t i = 1; i < records.size(); ++i) {
      const M& record = records[i];
      if (!share(kName, &record, record.get(M::sfhZipCount), record.get(M::sfhKey),
                 record.get(M::sfhRba)) ||
          !share(kName, &record, record.get(M::pobZipCount), record.get(M::pobKey),
                 record.get(M::pobRba)) ||
          !share(kName, &record, record.get(M::rrZipCount), record.get(M::rrKey),
                 record.get(M::rrRba)))
        return false;
    }
    return true;
  }

  bool financeShares() {
    using F = FinMultiZipRow;
    const auto records = rows<F>(kSlotFinMultiZip, view_.word(Ref::finMultiZipRbasCount));
    for (std::size_t i = 1; i < records.size(); ++i)
      if (!share("Finance multi-ZIP RBAs", &records[i], records[i].get(F::zipCount),
                 records[i].get(F::key), records[i].get(F::rba)))
        return false;
    return true;
  }

  const Database::Loaded& loaded_;
  const TableView& view_;
  Error& error_;
};

}  // namespace

bool checkTables(const Database::Loaded& loaded, Error& error) {
  return Checks(loaded, error).all() && checkStreetLists(loaded, error);
}

}  // namespace statecut
