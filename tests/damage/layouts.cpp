#include "layouts.h"

#include <algorithm>

#include "dbbuilder/profiles.h"

namespace statecut::test {

namespace {

using format::TableId;
using R = RefControlRec;
using G = RngControlRec;

struct Part {
  std::string name;
  std::uint32_t width;
};
using Layout = std::vector<Part>;

template <typename RowType>
Layout layoutOf() {
  Layout layout;
  forEachField<RowType>([&](const auto& field) {
    layout.push_back({field.name, static_cast<std::uint32_t>(field.width)});
  });
  return layout;
}

// The records of fixed size. Tables that are only carried have no row; their words are told apart
// by width alone.
Layout recordLayout(TableId id) {
  switch (id) {
    case TableId::StreetPatterns:
    case TableId::PobPatterns:
    case TableId::RrPatterns:
      return {{"first", 2}, {"words", 14}, {"last", 2}};
    case TableId::CityData:
      return layoutOf<CityDataRow>();
    case TableId::CityMultiZipLists:
      return {{"zipKey", 2}, {"zip", 4}};
    case TableId::CityMultiZipRbas:
      return layoutOf<CityMultiZipRow>();
    case TableId::FinMultiZipRbas:
      return layoutOf<FinMultiZipRow>();
    case TableId::CityNames:
      return layoutOf<CityNameRow>();
    case TableId::CityNamesByState:
      return layoutOf<CityByStateRow>();
    case TableId::CityPhonetics:
      return layoutOf<CityPhoneticRow>();
    case TableId::ZipData:
      return layoutOf<ZipDataRow>();
    case TableId::ZipBytes:
      return layoutOf<ZipBytesRow>();
    case TableId::SfhMultiZipBytes:
      return layoutOf<MultiZipBytesLong>();
    case TableId::PobMultiZipBytes:
    case TableId::RrMultiZipBytes:
      return layoutOf<MultiZipBytesShort>();
    case TableId::HashTable:
      return layoutOf<HashSlotRow>();
    case TableId::HashOverflow:
      return layoutOf<HashOverflowRow>();
    case TableId::GeneralDelivery:
      return {{"addOn", 2}, {"zipKey", 2}};
    case TableId::UniqueZips:
      return {{"number", 4}, {"offset", 4}, {"words", 4}};
    case TableId::Counties:
    case TableId::Urbs:
    case TableId::UrbVariations:
      return {{"number", 2}, {"letters", 2}, {"text", 28}};
    case TableId::StreetRbos:
    case TableId::FirmRbos:
    case TableId::StreetPhoneticsRbos:
    case TableId::StreetStandardsRbos:
      return {{"offset", 4}};
    case TableId::Scfs:
      return {{"prefix", 2}, {"state", 2}};
    default:
      return layoutOf<KeyRow>();
  }
}

class Adder {
 public:
  Adder(bool range, std::string table, std::uint64_t count, std::vector<Field>& fields)
      : range_(range), table_(std::move(table)), count_(count), fields_(fields) {}

  void add(std::uint64_t record, std::uint64_t at, const Layout& layout) {
    for (const Part& part : layout) {
      fields_.push_back({range_, table_, record, part.name, at, part.width, count_});
      at += part.width;
    }
  }

 private:
  bool range_;
  std::string table_;
  std::uint64_t count_;
  std::vector<Field>& fields_;
};

// Offsets of the names of a packed table, whose length byte stands `skip` bytes behind them.
std::vector<std::uint64_t> packedOffsets(const Bytes& file, const format::TablePlace& place,
                                         std::uint64_t skip) {
  std::vector<std::uint64_t> offsets;
  for (std::uint64_t at = place.rba; at + skip < place.rba + place.bytes;) {
    offsets.push_back(at);
    at += skip + 1 + (file[at + skip] & 0x7F);
  }
  return offsets;
}

std::vector<std::uint64_t> chosen(std::uint64_t count, Choice choice) {
  std::vector<std::uint64_t> records;
  if (choice == Choice::kAll)
    for (std::uint64_t i = 0; i < count; ++i) records.push_back(i);
  else if (count > 0)
    records = {0, count / 2, count - 1};
  records.erase(std::unique(records.begin(), records.end()), records.end());
  return records;
}

void addPacked(const PairImage& pair, TableId id, Choice choice, Adder& adder) {
  const format::TablePlace place = format::placeTable(id, pair.ref);
  const bool variation = id == TableId::StreetPhonetics || id == TableId::StreetStandards;
  const auto offsets = packedOffsets(pair.ref, place, variation ? 4 : 0);
  Layout layout = variation ? Layout{{"value", 4}, {"flagAndLength", 1}, {"text", 0}}
                            : Layout{{"length", 1}, {"text", 0}};
  for (const std::uint64_t i : chosen(offsets.size(), choice)) {
    const std::uint32_t length = pair.ref[offsets[i] + (variation ? 4 : 0)] & 0x7FU;
    layout.back().width = std::min(length, 3U);
    adder.add(i, offsets[i], layout);
  }
}

// The ambiguous lists: their first entries.
void addLists(const PairImage& pair, TableId id, Adder& adder) {
  const format::TablePlace place = format::placeTable(id, pair.ref);
  std::uint64_t list = 0;
  for (std::uint64_t at = place.rba; at + 9 <= place.rba + place.bytes; ++list) {
    adder.add(list, at, {{"count", 2}, {"street", 4}, {"scfCount", 1}, {"scf", 2}});
    std::uint32_t entries = le::get<2>(pair.ref.data() + at);
    for (at += 2; entries > 0; --entries) at += 5 + 2ULL * pair.ref[at + 4];
  }
}

}  // namespace

void addControlFields(const PairImage& pair, std::vector<Field>& fields) {
  const auto addAll = [&](bool range, auto control) {
    forEachField<decltype(control)>([&](const auto& field) {
      // "count" is the number itself where it is one.
      const std::uint64_t count =
          field.width == 4 ? le::get<4>(pair.file(range).data() + field.at) : 0;
      fields.push_back(
          {range, "", 0, field.name, field.at, static_cast<std::uint32_t>(field.width), count});
    });
  };
  addAll(false, R{});
  addAll(true, G{});
}

void addTableFields(const PairImage& pair, TableId id, Choice choice, std::vector<Field>& fields) {
  const format::TablePlace place = format::placeTable(id, pair.ref);
  if (!place.carried || place.bytes == 0) return;
  Adder adder(false, format::tableDef(id).name, place.count, fields);
  switch (id) {
    case TableId::StreetNames:
    case TableId::Firms:
    case TableId::StreetPhonetics:
    case TableId::StreetStandards:
      return addPacked(pair, id, choice, adder);
    case TableId::StreetPhoneticAmbData:
    case TableId::StreetStandardAmbData:
      return addLists(pair, id, adder);
    case TableId::Military:
      adder.add(0, place.rba, {{"countA", 2}, {"countB", 2}, {"firstText", 38}});
      adder.add(place.count - 1, place.rba + place.bytes - 42, {{"lastText", 42}});
      return;
    case TableId::PobZones:
      adder.add(0, place.rba, {{"countN", 2}});
      for (const std::uint64_t i : chosen(le::get<2>(pair.ref.data() + place.rba), choice))
        adder.add(i, place.rba + 2 + 2 * i, {{"zone", 2}});
      return;
    default:
      break;
  }
  const Layout layout = recordLayout(id);
  std::uint64_t width = 0;
  for (const Part& part : layout) width += part.width;
  // What a table has room for, not only what its count tells.
  for (const std::uint64_t i : chosen(place.bytes / width, choice))
    adder.add(i, place.rba + i * width, layout);
}

std::vector<std::pair<std::uint64_t, std::uint64_t>> rangeAreas(const Bytes& rng) {
  const auto word = [&](auto field) { return std::uint64_t{le::get<4>(rng.data() + field.at)}; };
  return {{word(G::sfhZipStart), word(G::sfhZipBytes)},
          {word(G::sfhMultiZipStart), word(G::sfhMultiZipBytes)},
          {word(G::pobZipStart), word(G::pobZipBytes)},
          {word(G::pobMultiZipStart), word(G::pobMultiZipBytes)},
          {word(G::rrZipStart), word(G::rrZipBytes)},
          {word(G::rrMultiZipStart), word(G::rrMultiZipBytes)}};
}

builder::Model microModel() {
  const std::vector<builder::Place> places = {
      {73501, "OK", "LAWTON", "COMANCHE"}, {73502, "OK", "LAWTON", "COMANCHE"},
      {75201, "TX", "DALLAS", "DALLAS"},   {75202, "TX", "DALLAS", "DALLAS"},
      {75203, "TX", "DALLAS", "DALLAS"},   {77373, "TX", "SPRING", "HARRIS"},
      {5401, "VT", "BURLINGTON", ""},      {5402, "VT", "BURLINGTON", ""},
      {5478, "VT", "SAINT ALBANS", ""}};
  builder::ProfileOptions options = builder::tinyOptions();
  options.rangeBytes = 2048;
  options.streets = 8;
  options.firms = 2;
  options.severalCitiesEvery = 3;
  builder::Model model = builder::makeModel(places, options);
  for (auto* patterns : {&model.sfhPatterns, &model.pobPatterns, &model.rrPatterns})
    patterns->resize(2);
  model.military->first.resize(1);
  model.military->second.resize(1);
  return model;
}

}  // namespace statecut::test
