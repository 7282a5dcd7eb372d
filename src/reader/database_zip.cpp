// ZIP codes, the lists of keys, and the small tables.

#include <algorithm>
#include <new>

#include "lookup/inmemory.h"
#include "reader/loaded.h"
#include "tables/directory.h"

namespace statecut {

using Ref = RefControlRec;

namespace {

// A key as the lookups take it: none has more than 31 bits.
std::int32_t asKey(std::uint32_t key) {
  return key > 0x7FFFFFFF ? -1 : static_cast<std::int32_t>(key);
}

// `count` entries from `first`, which is the record at `start` of a table of `end`, or nothing.
template <typename RowType>
std::span<const RowType> listOf(const RowType* first, std::uint32_t start, std::uint32_t count,
                                std::uint32_t end) {
  if (first == nullptr || std::uint64_t{start} + count > end) return {};
  return {first, count};
}

std::span<const unsigned char> smallRecord(const TableView& view, TableId id,
                                           std::uint32_t position) {
  const TableLine& line = tableLine(id);
  if (position == 0 || position >= tableRecords(*view.record, id)) return {};
  return {view.table(line.slot) + std::size_t{position} * line.width, line.width};
}

}  // namespace

std::unique_ptr<CityZips> CityZips::make(const Database& database, const TableView& view) {
  std::unique_ptr<CityZips> made(new (std::nothrow) CityZips);
  if (made == nullptr) return nullptr;
  const std::uint32_t cities = view.word(Ref::cityDataCount);
  made->cities_ = cities;
  made->starts_ = Block::allocated((std::size_t{cities} + 1) * sizeof(std::uint32_t));
  if (made->starts_.data() == nullptr) return nullptr;
  std::uint32_t* const starts = made->starts();
  // A ZIP code that lists a city twice has it once.
  const auto forEachPair = [&](auto visit) {
    for (const Zip& zip : database.zips()) {
      const std::span<const KeyRow> keys = database.citiesOf(*zip);
      for (std::size_t i = 0; i < keys.size(); ++i) {
        const std::uint32_t city = keys[i].get(KeyRow::key);
        bool seen = city == 0 || city >= cities;
        for (std::size_t j = 0; j < i && !seen; ++j) seen = keys[j].get(KeyRow::key) == city;
        if (!seen) visit(city, static_cast<std::uint16_t>(zip.key));
      }
    }
  };
  std::uint32_t pairs = 0;
  forEachPair([&](std::uint32_t city, std::uint16_t) {
    ++starts[city];
    ++pairs;
  });
  made->zips_ = Block::allocated((std::size_t{pairs} + 1) * sizeof(std::uint16_t));
  if (made->zips_.data() == nullptr) return nullptr;
  // The ends of the lists, which move to their starts while they are filled from behind.
  for (std::uint32_t city = 0, end = 0; city < cities; ++city) starts[city] = end += starts[city];
  starts[cities] = pairs;
  std::uint16_t* const zips = made->zips();
  forEachPair([&](std::uint32_t city, std::uint16_t zip) { zips[--starts[city]] = zip; });
  for (std::uint32_t city = 0; city < cities; ++city)
    std::sort(zips + starts[city], zips + starts[city + 1]);
  return made;
}

std::span<const std::uint16_t> CityZips::of(std::uint32_t cityKey) const {
  if (cityKey >= cities_) return {};
  return {zips() + starts()[cityKey], starts()[cityKey + 1] - starts()[cityKey]};
}

inline namespace v1 {

Zip Database::zip(std::uint32_t code) const noexcept {
  std::uint32_t key = 0;
  const ZipDataRow* row = memory::zipData(loaded_->view, asKey(code), &key);
  if (row == nullptr) return {};
  return {key, row};
}

Zip Database::zipOfKey(std::uint32_t key) const noexcept {
  const ZipDataRow* row = memory::zipDataFromKey(loaded_->view, asKey(key));
  if (row == nullptr) return {};
  return {key, row};
}

bool Database::ZipCursor::next(Zip& item) noexcept {
  if (loaded == nullptr) return false;
  for (; code <= static_cast<std::uint32_t>(memory::kLastZip); ++code) {
    const auto zip = static_cast<std::int32_t>(code);
    if (memory::zipIndex(loaded->view, zip) <= 0) continue;
    item.row = memory::zipData(loaded->view, zip, &item.key);
    ++code;
    return true;  // opening saw that each has its record
  }
  return false;
}

Walk<Database::ZipCursor> Database::zips() const noexcept {
  return Walk<ZipCursor>({loaded_.get(), 1});
}

std::span<const KeyRow> Database::citiesOf(const ZipDataRow& zip) const noexcept {
  const std::uint32_t count = zip.get(ZipDataRow::cityKeysCount);
  const KeyRow* first = memory::cityKeys(loaded_->view, zip);
  if (count == 1) return {first, 1};
  return listOf(first, zip.get(ZipDataRow::cityKeysIndex), count,
                loaded_->view.word(Ref::zipMultiCityListsCount));
}

const FinMultiZipRow* Database::finance(std::uint32_t index) const noexcept {
  return memory::finMultiZip(loaded_->view, asKey(index));
}

const FinMultiZipRow* Database::financeOf(const ZipDataRow& zip) const noexcept {
  return finance(zip.get(ZipDataRow::finMultiZipKey));
}

const FinMultiZipRow* Database::financeOf(const CityDataRow& city) const noexcept {
  return city.get(CityDataRow::finMultiZipFlag) == 1
             ? finance(city.get(CityDataRow::finMultiZipKey))
             : nullptr;
}

std::span<const KeyRow> Database::multiZips(std::uint32_t start,
                                            std::uint32_t count) const noexcept {
  return listOf(memory::multiZips(loaded_->view, start), start, count,
                loaded_->view.word(Ref::multiZipListsCount));
}

std::optional<std::string_view> Database::stateOf(const Zip& zip) const noexcept {
  const auto* row = zip.key == 0
                        ? nullptr
                        : loaded_->view.row<ZipBytesRow>(kSlotZipBytes, zip.key, Ref::zipDataCount);
  if (row == nullptr) return std::nullopt;
  return std::string_view(reinterpret_cast<const char*>(row->bytes.data()), 2);
}

std::optional<std::uint32_t> Database::partitionBytes(const Zip& zip,
                                                      PartitionKind kind) const noexcept {
  const auto* row = zip.key == 0
                        ? nullptr
                        : loaded_->view.row<ZipBytesRow>(kSlotZipBytes, zip.key, Ref::zipDataCount);
  if (row == nullptr) return std::nullopt;
  switch (kind) {
    case PartitionKind::kPoBox:
      return row->get(ZipBytesRow::pobBytes);
    case PartitionKind::kStreet:
      return row->get(ZipBytesRow::sfhBytes);
    case PartitionKind::kRuralRoute:
      return row->get(ZipBytesRow::rrBytes);
  }
  return std::nullopt;
}

std::span<const CityZipKeyRow> Database::cityZipEntries(std::uint32_t start,
                                                        std::uint32_t count) const noexcept {
  return listOf(memory::cityZipKeys(loaded_->view, start), start, count,
                loaded_->view.word(Ref::cityMultiZipListsCount));
}

std::span<const KeyRow> Database::cityFinanceKeys(std::uint32_t start,
                                                  std::uint32_t count) const noexcept {
  return listOf(memory::cityFinKeys(loaded_->view, start), start, count,
                loaded_->view.word(Ref::cityMultiFinanceListsCount));
}

bool Database::indexCityZips() const noexcept {
  if (loaded_->cityZips.get() != nullptr) return true;
  auto made = CityZips::make(*this, loaded_->view);
  if (made == nullptr) return false;
  loaded_->cityZips.set(std::move(made));
  return true;
}

std::optional<std::span<const std::uint16_t>> Database::zipsOfCity(
    std::uint32_t cityKey) const noexcept {
  if (!indexCityZips()) return std::nullopt;
  return loaded_->cityZips.get()->of(cityKey);
}

const GeneralDeliveryRow* Database::generalDelivery(std::uint32_t key) const noexcept {
  return memory::generalDelivery(loaded_->view, key);
}

std::span<const unsigned char> Database::county(std::uint32_t position) const noexcept {
  return smallRecord(loaded_->view, TableId::kCounties, position);
}

std::span<const unsigned char> Database::urbanization(std::uint32_t position) const noexcept {
  return smallRecord(loaded_->view, TableId::kUrbs, position);
}

}  // namespace v1
}  // namespace statecut
