#include "reader/database.h"

#include <algorithm>
#include <new>

#include "hash/findname.h"
#include "lookup/inmemory.h"
#include "reader/loaded.h"

namespace statecut {

using Ref = RefControlRec;

std::int32_t Database::Loaded::find(std::uint32_t type, const void* name, std::int32_t length,
                                    std::int32_t longest) const {
  const NameIndexes* indexes = names.get();
  if (indexes == nullptr || !(*indexes)[type])
    return memory::findName(view, type, name, length, longest);
  if (length > longest) return -1;
  return static_cast<std::int32_t>(
      (*indexes)[type].find(static_cast<const unsigned char*>(name), length));
}

inline namespace v1 {

namespace {

std::string_view textOf(std::span<const unsigned char> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// What an index of the names of a type is made from.
NameSource sourceOf(const TableView& view, std::uint32_t type) {
  constexpr struct {
    SlotNumber slot;
    std::size_t boundAt;
    std::uint32_t unit;
  } kTables[] = {{kSlotFirms, Ref::firmsBytes.at, 1},
                 {kSlotStreetNames, Ref::streetNamesBytes.at, 1},
                 {kSlotCityNames, Ref::cityNamesCount.at, CityNameRow::size},
                 {kSlotStreetStandards, Ref::streetStandardsBytes.at, 1},
                 {kSlotStreetPhonetics, Ref::streetPhoneticsBytes.at, 1},
                 {kSlotCityPhonetics, Ref::cityPhoneticsCount.at, CityPhoneticRow::size}};
  const auto& table = kTables[type];
  const std::uint32_t bound = le::get<4>(view.record->bytes.data() + table.boundAt);
  const std::uint32_t slots = view.word(Ref::hashTableCount);
  return {{view.table(kSlotHashTable), std::size_t{slots} * HashSlotRow::size},
          {view.table(kSlotHashOverflow),
           std::size_t{view.word(Ref::hashOverflowCount)} * HashOverflowRow::size},
          slots - 1,
          {view.table(table.slot), std::size_t{bound} * table.unit},
          bound,
          type};
}

}  // namespace

Database::Database(std::unique_ptr<Loaded> loaded) noexcept : loaded_(std::move(loaded)) {}

Database::~Database() = default;

std::uint32_t Database::buildTime() const noexcept {
  return loaded_->view.word(Ref::buildTimeStamp);
}

std::string_view Database::copyright() const noexcept {
  return textOf(loaded_->view.record->get(Ref::copyrightDate));
}

std::string_view Database::version() const noexcept {
  return textOf(loaded_->view.record->get(Ref::version));
}

bool Database::isCut() const noexcept {
  return (loaded_->view.word(Ref::typeFlags) & kTypeStateCut) != 0;
}

std::optional<std::uint32_t> Database::cutTime() const noexcept {
  if (!isCut()) return std::nullopt;
  return loaded_->view.word(Ref::stateCutTimeStamp);
}

std::vector<std::string> Database::states() const {
  std::vector<std::string> states;
  for (const CityName& city : cityNames())
    if (states.empty() || states.back() != v1::stateOf(*city))
      states.emplace_back(v1::stateOf(*city));
  std::sort(states.begin(), states.end());
  states.erase(std::unique(states.begin(), states.end()), states.end());
  return states;
}

const std::string& Database::referenceFile() const noexcept { return loaded_->file; }

const RefControlRec& Database::referenceRecord() const noexcept { return *loaded_->view.record; }

const std::string& Database::rangeFile() const noexcept { return loaded_->range; }

const RngControlRec* Database::rangeRecord() const noexcept {
  return loaded_->range.empty() ? nullptr : &loaded_->rangeRecord;
}

std::uint64_t Database::rangeFileBytes() const noexcept { return loaded_->rangeBytes; }

std::uint64_t Database::offsetOf(const void* given) const noexcept {
  return static_cast<std::uint64_t>(static_cast<const unsigned char*>(given) -
                                    loaded_->bytes.data());
}

bool Database::indexNames() const noexcept {
  if (loaded_->names.get() != nullptr) return true;
  std::unique_ptr<NameIndexes> made(new (std::nothrow) NameIndexes);
  if (made == nullptr) return false;
  bool noMemory = false;
  for (std::uint32_t type = 0; type < kNameTypes; ++type)
    (*made)[type] = NameIndex::build(sourceOf(loaded_->view, type), &noMemory);
  if (noMemory) return false;
  loaded_->names.set(std::move(made));
  return true;
}

}  // namespace v1
}  // namespace statecut
