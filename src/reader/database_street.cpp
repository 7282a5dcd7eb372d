// Streets, their variations, and firms.

#include "hash/namehash.h"
#include "lookup/inmemory.h"
#include "reader/loaded.h"

namespace statecut {

using Ref = RefControlRec;

namespace {

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

std::span<const unsigned char> streetTable(const TableView& view) {
  return table(view, kSlotStreetNames, view.word(Ref::streetNamesBytes));
}
std::span<const unsigned char> firmTable(const TableView& view) {
  return table(view, kSlotFirms, view.word(Ref::firmsBytes));
}

// The name that was found is that at its number.
NamedKey namedKey(std::int32_t number, std::span<const unsigned char> names) {
  if (number == -1) return {};
  const auto key = static_cast<std::uint32_t>(number);
  return {key, packedName(names, key).value_or(std::string_view()), true};
}

std::int32_t lengthOf(std::string_view name, std::int32_t longest) {
  const bool fits = name.size() <= static_cast<std::size_t>(longest);
  return fits ? static_cast<std::int32_t>(name.size()) : longest + 1;
}

}  // namespace

inline namespace v1 {

NamedKey Database::findStreet(std::string_view name) const noexcept {
  constexpr std::int32_t kLongest = memory::kLongestStreet;
  return namedKey(loaded_->find(kStreetNames, name.data(), lengthOf(name, kLongest), kLongest),
                  streetTable(loaded_->view));
}

std::optional<std::string_view> Database::streetName(std::uint32_t key) const noexcept {
  return packedName(streetTable(loaded_->view), key);
}

NamedKey Database::findFirm(std::string_view name) const noexcept {
  constexpr std::int32_t kLongest = memory::kLongestFirm;
  return namedKey(loaded_->find(kFirmNames, name.data(), lengthOf(name, kLongest), kLongest),
                  firmTable(loaded_->view));
}

std::optional<std::string_view> Database::firmName(std::uint32_t key) const noexcept {
  return packedName(firmTable(loaded_->view), key);
}

bool Database::NameCursor::next(NamedKey& item) noexcept {
  const std::optional<std::string_view> name = packedName(names, at);
  if (!name) return false;
  item = {static_cast<std::uint32_t>(at), *name, true};
  at += name->size() + 1;
  return true;
}

Walk<Database::NameCursor> Database::streets() const noexcept {
  return Walk<NameCursor>({streetTable(loaded_->view), 0});
}

Walk<Database::NameCursor> Database::firms() const noexcept {
  return Walk<NameCursor>({firmTable(loaded_->view), 0});
}

Walk<Database::VariationCursor> Database::variations(
    VariationKind kind, std::string_view name, std::optional<std::uint16_t> scf) const noexcept {
  constexpr std::int32_t kLongest = memory::kLongestStreet;
  const TableView& view = loaded_->view;
  const bool phonetic = kind == VariationKind::kPhonetic;
  VariationCursor cursor;
  cursor.scf = scf;
  const std::int32_t found = loaded_->find(phonetic ? kStreetPhonetics : kStreetStandards,
                                           name.data(), lengthOf(name, kLongest), kLongest);
  const auto index = phonetic
                         ? table(view, kSlotStreetPhonetics, view.word(Ref::streetPhoneticsBytes))
                         : table(view, kSlotStreetStandards, view.word(Ref::streetStandardsBytes));
  const auto lists =
      phonetic ? table(view, kSlotStreetPhoneticAmb, view.word(Ref::streetPhoneticAmbDataBytes))
               : table(view, kSlotStreetStandardAmb, view.word(Ref::streetStandardAmbDataBytes));
  const VariationRow* row = memory::variationAt(index, found);
  if (row == nullptr) return Walk<VariationCursor>(cursor);
  const std::uint32_t value = row->get(VariationRow::value);
  if (memory::flagOf(*row) >= 0) {
    cursor.single = value;
  } else if (value < lists.size()) {
    const memory::StreetWalk walk(lists.subspan(value), scf.has_value(), nullptr);
    cursor.streets = walk.rest();
    cursor.left = walk.left();
  }
  return Walk<VariationCursor>(cursor);
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
