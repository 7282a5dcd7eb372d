#include "diff/release.h"

#include <algorithm>

#include "format/names.h"
#include "tables/rows.h"

namespace statecut::diff {

namespace {

bool hasType(std::span<const unsigned char> file, std::size_t recordBytes, std::uint32_t type) {
  return file.size() >= recordBytes && (le::get<4>(file.data() + RngControlRec::typeFlags.at) &
                                        (kTypeReference | kTypeRange)) == type;
}

}  // namespace

Release Release::open(const std::string& refPath, const std::string& rngPath, std::string& error) {
  Release release;
  release.path_ = refPath;
  release.ref_ = format::MappedFile::open(refPath, error);
  if (!error.empty()) return release;
  if (!hasType(release.ref_.bytes(), RefControlRec::size, kTypeReference)) {
    error = refPath + ": not a reference database";
    return release;
  }
  for (std::size_t i = 0; i < format::kTables; ++i) {
    const auto id = static_cast<TableId>(i);
    release.places_[i] = format::placeTable(id, release.ref_.bytes());
    if (!release.places_[i].carried || release.places_[i].fits) continue;
    error = refPath + ": " + format::tableDef(id).name + " lies outside the file";
    return release;
  }
  if (rngPath.empty()) return release;
  release.rng_ = format::MappedFile::open(rngPath, error);
  if (!error.empty()) return release;
  if (!hasType(release.rng_.bytes(), RngControlRec::size, kTypeRange))
    error = rngPath + ": not a range database";
  else if (release.rng().get(RngControlRec::buildTimeStamp) !=
           release.ref().get(RefControlRec::buildTimeStamp))
    error = rngPath + ": not of the same pair as " + refPath;
  return release;
}

const RefControlRec& Release::ref() const {
  return *reinterpret_cast<const RefControlRec*>(ref_.bytes().data());
}

const RngControlRec& Release::rng() const {
  return *reinterpret_cast<const RngControlRec*>(rng_.bytes().data());
}

std::span<const unsigned char> Release::table(TableId id) const {
  const TablePlace& at = place(id);
  if (!at.carried || at.bytes == 0) return {};
  return ref_.bytes().subspan(at.rba, at.bytes);
}

std::uint32_t Release::zipKey(std::uint32_t zip) const {
  const std::uint32_t key = verify::number16(table(TableId::ZipIndex), zip);
  return key < records<ZipDataRow>(TableId::ZipData).size() ? key : 0;
}

std::string_view Release::cityName(std::uint32_t cityKey) const {
  const auto cities = records<CityDataRow>(TableId::CityData);
  if (cityKey == 0 || cityKey >= cities.size()) return {};
  const std::uint32_t position = cities[cityKey].get(CityDataRow::nameUsps);
  if (position == 0) return {};
  return format::nameAt(format::kCityNameType, position, table(TableId::CityNames)).value_or("");
}

std::vector<std::string_view> Release::citiesOf(std::uint32_t zipKey) const {
  const ZipDataRow& zip = records<ZipDataRow>(TableId::ZipData)[zipKey];
  const std::uint32_t count = zip.get(ZipDataRow::cityKeysCount);
  if (count == 1) return {cityName(zip.get(ZipDataRow::cityKey))};
  std::vector<std::string_view> names;
  const std::uint64_t first = zip.get(ZipDataRow::cityKeysIndex);
  for (std::uint64_t i = first; first != 0 && i < first + count; ++i)
    names.push_back(cityName(verify::number16(table(TableId::ZipMultiCityLists), i)));
  return names;
}

std::string_view Release::stateOf(std::uint32_t zipKey, bool byCity) const {
  if (byCity) {
    const auto cities = citiesOf(zipKey);
    return cities.empty() ? std::string_view() : cities.front().substr(0, 2);
  }
  const auto sizes = records<ZipBytesRow>(TableId::ZipBytes);
  if (zipKey >= sizes.size()) return {};
  return {reinterpret_cast<const char*>(sizes[zipKey].get(ZipBytesRow::state).data()), 2};
}

}  // namespace statecut::diff
