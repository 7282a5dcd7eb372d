#include "readerrows.h"

#include <cstdio>

namespace statecut::test {

namespace {

std::string some(std::uint64_t number) { return number == 0 ? "null" : shown(number); }

std::string_view chars(std::span<const unsigned char> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string joined(std::initializer_list<std::string> values) {
  std::string row;
  for (const std::string& value : values) row += (row.empty() ? "" : "|") + value;
  return row;
}

CityName uspsName(const Database& database, std::uint32_t cityKey) {
  const City city = database.cityData(cityKey);
  return city ? database.cityName(city->get(CityDataRow::nameUsps)) : CityName();
}
std::string position(const CityName& name) { return name ? shown(name.key) : "null"; }

Answers pairs(const Database& database) {
  Answers rows;
  for (const Zip& zip : database.zips())
    for (const KeyRow& key : database.citiesOf(*zip)) {
      const std::uint32_t city = key.get(KeyRow::key);
      if (city != 0)
        rows.push_back(joined({shown(city), position(uspsName(database, city)),
                               shownText(digits(zip->get(ZipDataRow::zip)))}));
    }
  return rows;
}

Answers variations(const Database& database) {
  Answers rows;
  for (const VariationKind kind : {VariationKind::kPhonetic, VariationKind::kStandard})
    for (const Variation& one : database.variationNames(kind))
      for (const ServedStreet& street : database.streetsOf(one)) {
        const std::string row =
            joined({kind == VariationKind::kPhonetic ? "'phonetic'" : "'standard'", shown(one.key),
                    shownText(one.name), shown(street.street)});
        if (street.everywhere) rows.push_back(row + "|null");
        for (const KeyRow& scf : street.scfs)
          rows.push_back(row + "|" + shown(scf.get(KeyRow::key)));
      }
  return rows;
}

Answers partitions(const Database& database) {
  Answers rows;
  for (const Zip& zip : database.zips())
    for (const auto& [kind, name, rba] :
         {std::tuple{PartitionKind::kStreet, "'SFH'", zip->get(ZipDataRow::sfhRba)},
          {PartitionKind::kPoBox, "'POB'", zip->get(ZipDataRow::pobRba)},
          {PartitionKind::kRuralRoute, "'RR'", zip->get(ZipDataRow::rrRba)}}) {
      if (rba == 0) continue;
      const auto bytes = database.partitionBytes(zip, kind);
      std::string data = "null";
      if (bytes) {
        std::vector<unsigned char> read(*bytes);
        Error error;
        data = database.readPartition(zip, kind, read, error) ? shownBlob(chars(read)) : error.text;
      }
      rows.push_back(joined({shownText(digits(zip->get(ZipDataRow::zip))), name, shown(rba),
                             bytes ? shown(*bytes) : "null", data}));
    }
  return rows;
}

template <typename Record>
void addHeader(const Record& record, const char* file, Answers& rows) {
  forEachField<Record>([&](const auto& field) {
    std::string value;
    if constexpr (std::decay_t<decltype(field)>::isNumber)
      value = shown(record.get(field));
    else
      value = field.at == 0 || field.at == 9 ? shownText(chars(record.get(field)))
                                             : shownBlob(chars(record.get(field)));
    rows.push_back(joined({file, shown(field.at), shown(field.width), shownText(field.name), value,
                           shownText(field.meaning)}));
  });
}

}  // namespace

std::string digits(std::uint32_t zip) {
  char text[16];
  std::snprintf(text, sizeof text, "%05u", static_cast<unsigned>(zip));
  return text;
}

std::string zipRow(const Database& database, const Zip& zip) {
  using Z = ZipDataRow;
  const auto state = database.stateOf(zip);
  const CityName name = uspsName(database, zip->get(Z::cityKey));
  const auto bytes = [&](PartitionKind kind) {
    const auto known = database.partitionBytes(zip, kind);
    return known ? shown(*known) : std::string("null");
  };
  return joined(
      {shownText(digits(zip->get(Z::zip))), shown(zip.key), state ? shownText(*state) : "null",
       name ? shownText(nameOf(*name)) : "null", some(zip->get(Z::cityKey)), position(name),
       shown(zip->get(Z::cityKeysCount)), some(zip->get(Z::finMultiZipKey)),
       some(zip->get(Z::sfhRba)), bytes(PartitionKind::kStreet), some(zip->get(Z::pobRba)),
       bytes(PartitionKind::kPoBox), some(zip->get(Z::rrRba)), bytes(PartitionKind::kRuralRoute)});
}

std::string cityRow(const Database& database, const CityName& name) {
  using D = CityDataRow;
  const City city = database.cityOf(*name);
  const auto data = [&](auto field) { return city ? shown(city->get(field)) : "null"; };
  const auto key = [&](auto field) { return city ? some(city->get(field)) : "null"; };
  return joined({shown(name.key), shownText(stateOf(*name)), shownText(nameOf(*name)),
                 some(name->get(CityNameRow::cityKey)), shown(name->get(CityNameRow::value)),
                 key(D::nameUsps), key(D::nameStandard), data(D::zipCount),
                 data(D::finMultiZipFlag), key(D::finMultiZipKey), key(D::multiZipRbaKey)});
}

std::map<std::string, Answers> rowsOfReader(const Database& database) {
  std::map<std::string, Answers> tables;
  for (const Zip& zip : database.zips()) tables["zip"].push_back(zipRow(database, zip));
  for (const CityName& name : database.cityNames())
    tables["city"].push_back(cityRow(database, name));
  tables["city_zip"] = pairs(database);
  for (const CityPhonetic& one : database.phonetics())
    tables["city_phonetic"].push_back(
        joined({shown(one.key), shownText(chars(one->get(CityPhoneticRow::state))),
                shownText(keyOf(*one)), shown(countOf(*one))}));
  for (const NamedKey& one : database.streets())
    tables["street"].push_back(joined({shown(one.key), shownText(one.name)}));
  for (const NamedKey& one : database.firms())
    tables["firm"].push_back(joined({shown(one.key), shownText(one.name)}));
  tables["street_variation"] = variations(database);
  for (std::uint32_t i = 1; !database.county(i).empty(); ++i)
    tables["county"].push_back(joined({shown(i), shownBlob(chars(database.county(i)))}));
  for (std::uint32_t i = 1; !database.urbanization(i).empty(); ++i)
    tables["urbanization"].push_back(
        joined({shown(i), shownBlob(chars(database.urbanization(i)))}));
  tables["partition"] = partitions(database);
  addHeader(database.referenceRecord(), "'reference'", tables["header"]);
  if (database.rangeRecord() != nullptr)
    addHeader(*database.rangeRecord(), "'range'", tables["header"]);
  return tables;
}

}  // namespace statecut::test
