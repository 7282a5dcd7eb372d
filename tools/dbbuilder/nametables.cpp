#include "dbbuilder/bytes.h"
#include "dbbuilder/nameindex.h"
#include "dbbuilder/tables.h"

namespace statecut::builder {

namespace {

// Length byte and text, one name after the other; returns where each begins.
std::vector<std::uint32_t> putNames(const std::vector<std::string>& names, Bytes& bytes) {
  ByteWriter out;
  std::vector<std::uint32_t> offsets;
  for (const std::string& name : names) {
    offsets.push_back(out.size());
    out.u8(static_cast<std::uint32_t>(name.size()));
    out.text(name, name.size());
  }
  bytes = out.take();
  return offsets;
}

Bytes offsetTable(const std::vector<std::uint32_t>& offsets) {
  ByteWriter out;
  for (const std::uint32_t offset : offsets) out.u32(offset);
  return out.take();
}

struct VariationTables {
  Table names, lists, rbos;
  unsigned hashType;
};

std::uint32_t streetKey(const Candidate& candidate, const std::vector<std::uint32_t>& streets) {
  if (candidate.key) return *candidate.key;
  return candidate.street < streets.size() ? streets[candidate.street] : 0;
}

void putAmbiguousList(ByteWriter& lists, const Variation& variation,
                      const std::vector<std::uint32_t>& streets) {
  lists.u16(static_cast<std::uint32_t>(variation.candidates.size()));
  for (const Candidate& candidate : variation.candidates) {
    lists.u32(streetKey(candidate, streets));
    lists.u8(static_cast<std::uint32_t>(candidate.scfs.size()));
    for (const std::uint16_t scf : candidate.scfs) lists.u16(scf);
  }
}

// An entry is a 4-byte value, then one byte that holds the name's length in its low 7 bits and
// the ambiguity flag in its sign bit, then the name.
void encodeVariations(const std::vector<Variation>& variations, const VariationTables& which,
                      const std::vector<std::uint32_t>& streets, EncodedTables& tables,
                      std::vector<HashName>& hashed) {
  constexpr std::uint32_t ambiguousFlag = 0x80;
  ByteWriter names;
  ByteWriter lists;
  std::vector<std::uint32_t> offsets;
  for (const Variation& variation : variations) {
    const bool several = variation.candidates.size() > 1;
    const bool ambiguous = variation.ambiguous.value_or(several);
    std::uint32_t value = 0;
    if (several || (ambiguous && !variation.candidates.empty())) {
      value = lists.size();
      putAmbiguousList(lists, variation, streets);
    } else if (!variation.candidates.empty()) {
      value = streetKey(variation.candidates[0], streets);
    }
    offsets.push_back(names.size());
    hashed.push_back({which.hashType, variation.name, names.size()});
    names.u32(variation.value.value_or(value));
    names.u8(static_cast<std::uint32_t>(variation.name.size() & 0x7F) |
             (ambiguous ? ambiguousFlag : 0));
    names.text(variation.name, variation.name.size());
  }
  tables.of(which.names) = names.take();
  tables.of(which.lists) = lists.take();
  tables.of(which.rbos) = offsetTable(offsets);
  tables.count(which.names) = static_cast<std::uint32_t>(tables.of(which.names).size());
  tables.count(which.lists) = static_cast<std::uint32_t>(tables.of(which.lists).size());
  tables.count(which.rbos) = static_cast<std::uint32_t>(offsets.size());
}

void collectCities(const Model& model, std::vector<HashName>& hashed) {
  for (std::uint32_t i = 1; i < model.cityNames.size(); ++i)
    hashed.push_back({2, model.cityNames[i].state + model.cityNames[i].name, i});
  for (std::uint32_t i = 1; i < model.cityPhonetics.size(); ++i)
    hashed.push_back({5, model.cityPhonetics[i].state + model.cityPhonetics[i].key, i});
}

}  // namespace

std::vector<HashName> encodeNameTables(const Model& model, EncodedTables& tables) {
  std::vector<HashName> hashed;
  const auto plain = [&](const std::vector<std::string>& names, Table table, Table rbos,
                         unsigned type) {
    std::vector<std::uint32_t> offsets = putNames(names, tables.of(table));
    tables.of(rbos) = offsetTable(offsets);
    tables.count(table) = static_cast<std::uint32_t>(tables.of(table).size());
    tables.count(rbos) = static_cast<std::uint32_t>(offsets.size());
    for (std::size_t i = 0; i < names.size(); ++i) hashed.push_back({type, names[i], offsets[i]});
    return offsets;
  };
  plain(model.firmNames, Table::FirmNames, Table::FirmRbos, 0);
  const auto streets = plain(model.streetNames, Table::StreetNames, Table::StreetRbos, 1);
  encodeVariations(
      model.streetStandards,
      {Table::StreetStandards, Table::StreetStandardLists, Table::StreetStandardRbos, 3}, streets,
      tables, hashed);
  encodeVariations(
      model.streetPhonetics,
      {Table::StreetPhonetics, Table::StreetPhoneticLists, Table::StreetPhoneticRbos, 4}, streets,
      tables, hashed);
  collectCities(model, hashed);
  return hashed;
}

void encodeHashTables(const Model& model, const std::vector<HashName>& names,
                      EncodedTables& tables) {
  std::vector<HashName> all;
  if (model.hash.indexNames) all = names;
  all.insert(all.end(), model.hash.extra.begin(), model.hash.extra.end());
  NameIndex index = buildNameIndex(all, model.hash.slots);
  tables.of(Table::HashSlots) = std::move(index.slots);
  tables.count(Table::HashSlots) = index.slotCount;
  tables.of(Table::HashOverflow) = std::move(index.overflow);
  tables.count(Table::HashOverflow) = index.overflowCount;
}

}  // namespace statecut::builder
