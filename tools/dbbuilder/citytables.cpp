#include <algorithm>
#include <tuple>

#include "dbbuilder/bytes.h"
#include "dbbuilder/tables.h"

namespace statecut::builder {

namespace {

Byte lengthOf(const std::optional<Byte>& length, const std::string& text) {
  return length.value_or(static_cast<Byte>(text.size()));
}

std::uint32_t rbaOf(const MultiZipRef& ref, Section section, const RangeLayout& range) {
  if (ref.rba) return *ref.rba;
  return ref.zipCount < 2 ? 0 : range.rba(section, ref.key).value_or(0);
}

Bytes cityData(const Model& model) {
  ByteWriter out;
  for (const CityData& city : model.cityData) {
    out.u32(city.nameUsps);
    out.u32(city.nameStandard);
    out.raw(city.other8);
    out.u16(city.finFlag);
    out.raw(city.other12);
    out.u16(city.zipCount);
    out.raw(city.other20);
    out.u16(city.multiZipRbaKey);
    out.u16(city.finKey);
    out.raw(city.other34);
  }
  return out.take();
}

Bytes cityMultiZip(const Model& model, const RangeLayout& range) {
  ByteWriter out;
  for (const CityMultiZip& city : model.cityMultiZip) {
    out.u16(city.sfh.zipCount);
    out.u16(city.other2);
    out.u32(city.sfh.key);
    out.u32(rbaOf(city.sfh, Section::SfhMulti, range));
    out.u16(city.pob.zipCount);
    out.u16(city.pob.key);
    out.u32(rbaOf(city.pob, Section::PobMulti, range));
    out.u16(city.rr.zipCount);
    out.u16(city.rr.key);
    out.u32(rbaOf(city.rr, Section::RrMulti, range));
  }
  return out.take();
}

Bytes finMultiZip(const Model& model, const RangeLayout& range) {
  ByteWriter out;
  for (const FinMultiZip& area : model.finMultiZip) {
    out.u16(area.zipCount);
    out.u16(area.key);
    out.u32(rbaOf(area, Section::SfhMulti, range));
  }
  return out.take();
}

Bytes cityNames(const Model& model) {
  ByteWriter out;
  for (const CityName& name : model.cityNames) {
    out.u16(name.cityKey);
    out.u8(name.value);
    out.u8(lengthOf(name.length, name.name));
    out.text(name.state, 2);
    out.text(name.name, 28);
  }
  return out.take();
}

// In this table the state stands behind the name.
Bytes namesByState(const Model& model) {
  std::vector<CityName> names;
  if (model.byState) {
    names = *model.byState;
  } else if (!model.cityNames.empty()) {
    names.assign(model.cityNames.begin() + 1, model.cityNames.end());
    std::stable_sort(names.begin(), names.end(), [](const CityName& a, const CityName& b) {
      return std::tie(a.name, a.state) < std::tie(b.name, b.state);
    });
  }
  ByteWriter out;
  for (const CityName& name : names) {
    out.u16(name.cityKey);
    out.u8(name.value);
    out.u8(lengthOf(name.length, name.name));
    out.text(name.name, 28);
    out.text(name.state, 2);
  }
  return out.take();
}

Bytes cityPhonetics(const Model& model) {
  ByteWriter out;
  for (const CityPhonetic& phonetic : model.cityPhonetics) {
    out.u16(phonetic.other0);
    out.text(phonetic.state, 2);
    out.text(phonetic.key, 20);
    out.u8(phonetic.count);
    out.u8(lengthOf(phonetic.length, phonetic.key));
  }
  return out.take();
}

template <typename Records>
std::uint32_t countOf(const Records& records) {
  return static_cast<std::uint32_t>(records.size());
}

}  // namespace

void encodeCityTables(const Model& model, const RangeLayout& range, EncodedTables& tables) {
  tables.of(Table::CityData) = cityData(model);
  tables.count(Table::CityData) = countOf(model.cityData);

  ByteWriter zipLists;
  for (const CityZipEntry& entry : model.cityZipLists) {
    zipLists.u16(entry.zipKey);
    zipLists.u32(entry.zip);
  }
  tables.of(Table::CityZipLists) = zipLists.take();
  tables.count(Table::CityZipLists) = countOf(model.cityZipLists);

  ByteWriter finance;
  for (const std::uint16_t key : model.cityFinanceLists) finance.u16(key);
  tables.of(Table::CityFinanceLists) = finance.take();
  tables.count(Table::CityFinanceLists) = countOf(model.cityFinanceLists);

  tables.of(Table::CityMultiZip) = cityMultiZip(model, range);
  tables.count(Table::CityMultiZip) = countOf(model.cityMultiZip);
  tables.of(Table::FinMultiZip) = finMultiZip(model, range);
  tables.count(Table::FinMultiZip) = countOf(model.finMultiZip);

  tables.of(Table::CityNames) = cityNames(model);
  tables.count(Table::CityNames) = countOf(model.cityNames);
  tables.of(Table::CityNamesByState) = namesByState(model);
  tables.of(Table::CityPhonetics) = cityPhonetics(model);
  tables.count(Table::CityPhonetics) = countOf(model.cityPhonetics);
}

}  // namespace statecut::builder
