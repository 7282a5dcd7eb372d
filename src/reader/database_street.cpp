// Streets, their variations, and firms.

#include <algorithm>

#include "hash/namehash.h"
#include "lookup/inmemory.h"
#include "reader/loaded.h"

namespace statecut {

using Ref = RefControlRec;

namespace {

constexpr std::uint32_t kVariationLength = 0x7F;  // of a flag: the rest tells what the value is

// The packed name at an offset, cut at the end of its table. A negative length is none.
std::optional<std::string_view> packedName(std::span<const unsigned char> names,
                                           std::uint64_t offset) {
  if (offset >= names.size()) return std::nullopt;
  const std::uint64_t there = names.size() - offset - 1;
  const std::uint64_t length = names[offset] > 127 ? 0 : names[offset];
  return std::string_view(reinterpret_cast<const char*>(names.data()) + offset + 1,
                          static_cast<std::size_t>(length < there ? length : there));
}

std::span<const unsigned char> table(const TableView& view, SlotNumber slot, std::uint32_t bytes) {
  return {view.table(slot), bytes};
}

std::span<const unsigned char> variationTable(const TableView& view, VariationKind kind) {
  return kind == VariationKind::kPhonetic
             ? table(view, kSlotStreetPhonetics, view.word(Ref::streetPhoneticsBytes))
             : table(view, kSlotStreetStandards, view.word(Ref::streetStandardsBytes));
}
std::span<const unsigned char> listTable(const TableView& view, VariationKind kind) {
  return kind == VariationKind::kPhonetic
             ? table(view, kSlotStreetPhoneticAmb, view.word(Ref::streetPhoneticAmbDataBytes))
             : table(view, kSlotStreetStandardAmb, view.word(Ref::streetStandardAmbDataBytes));
}

// The entry at a number that a search gave, or none. Its name ends with the table.
Variation variationAt(const TableView& view, VariationKind kind, std::int32_t found) {
  const auto entries = variationTable(view, kind);
  const VariationRow* row = memory::variationAt(entries, found);
  if (row == nullptr) return {};
  const auto key = static_cast<std::uint32_t>(found);
  const std::size_t there = entries.size() - key - VariationRow::size;
  const std::size_t length = row->get(VariationRow::flag) & kVariationLength;
  return {kind,
          key,
          {reinterpret_cast<const char*>(row) + VariationRow::size, std::min(length, there)},
          row};
}

std::int32_t lengthOf(std::string_view name, std::int32_t longest) {
  const bool fits = name.size() <= static_cast<std::size_t>(longest);
  return fits ? static_cast<std::int32_t>(name.size()) : longest + 1;
}

// Names that are packed in a table of their own: those of streets and of firms.
struct PackedNames {
  std::uint32_t type;
  SlotNumber slot;
  std::size_t bytesAt;  // in the control record
  std::int32_t longest;

  [[nodiscard]] std::span<const unsigned char> tableOf(const TableView& view) const {
    return table(view, slot, le::get<4>(view.record->bytes.data() + bytesAt));
  }
  // The name that was found is that at its number.
  [[nodiscard]] NamedKey find(const Database::Loaded& loaded, std::string_view name) const {
    const std::int32_t number = loaded.find(type, name.data(), lengthOf(name, longest), longest);
    if (number == -1) return {};
    const auto key = static_cast<std::uint32_t>(number);
    return {key, packedName(tableOf(loaded.view), key).value_or(std::string_view()), true};
  }
};
constexpr PackedNames kStreets{kStreetNames, kSlotStreetNames, Ref::streetNamesBytes.at,
                               memory::kLongestStreet};
constexpr PackedNames kFirms{kFirmNames, kSlotFirms, Ref::firmsBytes.at, memory::kLongestFirm};

}  // namespace

inline namespace v1 {

NamedKey Database::findStreet(std::string_view name) const noexcept {
  return kStreets.find(*loaded_, name);
}

std::optional<std::string_view> Database::streetName(std::uint32_t key) const noexcept {
  return packedName(kStreets.tableOf(loaded_->view), key);
}

NamedKey Database::findFirm(std::string_view name) const noexcept {
  return kFirms.find(*loaded_, name);
}

std::optional<std::string_view> Database::firmName(std::uint32_t key) const noexcept {
  return packedName(kFirms.tableOf(loaded_->view), key);
}

bool Database::NameCursor::next(NamedKey& item) noexcept {
  const std::optional<std::string_view> name = packedName(names, at);
  if (!name) return false;
  item = {static_cast<std::uint32_t>(at), *name, true};
  at += name->size() + 1;
  return true;
}

Walk<Database::NameCursor> Database::streets() const noexcept {
  return Walk<NameCursor>({kStreets.tableOf(loaded_->view), 0});
}

Walk<Database::NameCursor> Database::firms() const noexcept {
  return Walk<NameCursor>({kFirms.tableOf(loaded_->view), 0});
}

Variation Database::findVariation(VariationKind kind, std::string_view name) const noexcept {
  constexpr std::int32_t kLongest = memory::kLongestStreet;
  const std::int32_t found =
      loaded_->find(kind == VariationKind::kPhonetic ? kStreetPhonetics : kStreetStandards,
                    name.data(), lengthOf(name, kLongest), kLongest);
  return variationAt(loaded_->view, kind, found);
}

Walk<Database::VariationCursor> Database::variations(
    VariationKind kind, std::string_view name, std::optional<std::uint16_t> scf) const noexcept {
  VariationCursor cursor;
  cursor.scf = scf;
  const Variation found = findVariation(kind, name);
  if (!found) return Walk<VariationCursor>(cursor);
  const std::uint32_t value = found.row->get(VariationRow::value);
  const auto lists = listTable(loaded_->view, kind);
  if (memory::flagOf(*found.row) >= 0) {
    cursor.single = value;
  } else if (value < lists.size()) {
    const memory::StreetWalk walk(lists.subspan(value), scf.has_value(), nullptr);
    cursor.streets = walk.rest();
    cursor.left = walk.left();
  }
  return Walk<VariationCursor>(cursor);
}

bool Database::VariationNameCursor::next(Variation& item) noexcept {
  if (table.size() - at < VariationRow::size) return false;
  const auto* row = reinterpret_cast<const VariationRow*>(table.data() + at);
  const std::size_t length = row->get(VariationRow::flag) & kVariationLength;
  if (table.size() - at - VariationRow::size < length) return false;
  item = {kind,
          static_cast<std::uint32_t>(at),
          {reinterpret_cast<const char*>(row) + VariationRow::size, length},
          row};
  at += VariationRow::size + length;
  return true;
}

Database::VariationNameCursor Database::variationCursor(VariationKind kind) const noexcept {
  return {variationTable(loaded_->view, kind), kind, 0};
}

Walk<Database::VariationNameCursor> Database::variationNames(VariationKind kind) const noexcept {
  return Walk<VariationNameCursor>(variationCursor(kind));
}

bool Database::ServedStreetCursor::next(ServedStreet& item) noexcept {
  if (single) {
    item = {*single, {}, true};
    single.reset();
    return true;
  }
  if (left == 0 || rest.size() < StreetListEntryRow::size) return false;
  const auto& entry = *reinterpret_cast<const StreetListEntryRow*>(rest.data());
  const auto counted = static_cast<std::int8_t>(entry.get(StreetListEntryRow::scfCount));
  const std::size_t scfs = counted < 0 ? 0 : static_cast<std::size_t>(counted);
  const std::size_t bytes = StreetListEntryRow::size + scfs * KeyRow::size;
  if (rest.size() < bytes) return false;
  item = {entry.get(StreetListEntryRow::streetKey),
          {reinterpret_cast<const KeyRow*>(rest.data() + StreetListEntryRow::size), scfs},
          counted == 0};
  rest = rest.subspan(bytes);
  --left;
  return true;
}

Walk<Database::ServedStreetCursor> Database::streetsOf(const Variation& variation) const noexcept {
  return Walk<ServedStreetCursor>(streetCursor(variation));
}

Database::ServedStreetCursor Database::streetCursor(const Variation& variation) const noexcept {
  ServedStreetCursor cursor;
  if (!variation) return cursor;
  const std::uint32_t value = variation.row->get(VariationRow::value);
  const auto lists = listTable(loaded_->view, variation.kind);
  if (memory::flagOf(*variation.row) >= 0) {
    cursor.single = value;
  } else {
    cursor.rest = lists.subspan(std::min<std::size_t>(value, lists.size()));
    cursor.left = 1;  // of a list without its count an entry is missing
    if (cursor.rest.size() >= StreetListRow::size) {
      cursor.left =
          reinterpret_cast<const StreetListRow*>(cursor.rest.data())->get(StreetListRow::entries);
      cursor.rest = cursor.rest.subspan(StreetListRow::size);
    } else {
      cursor.rest = {};
    }
  }
  return cursor;
}

bool Database::VariationCursor::next(std::uint32_t& street) noexcept {
  if (single) {
    street = *single;
    single.reset();
    return true;
  }
  memory::StreetWalk walk(streets, left, scf.has_value(), scf ? &*scf : nullptr);
  const bool more = walk.next(&street);
  streets = walk.rest();
  left = walk.left();
  return more;
}

}  // namespace v1
}  // namespace statecut
