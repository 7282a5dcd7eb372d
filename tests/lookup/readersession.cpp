#include "readersession.h"

#include <algorithm>

#include "csession.h"

namespace statecut::test {

namespace {

template <typename RowType>
std::string text(const RowType* row) {
  return row == nullptr ? kNull : record(row->bytes.data(), RowType::size);
}
template <typename RowType>
std::string text(const Found<RowType>& found) {
  return text(found.row);
}
template <typename RowType>
std::string text(std::span<const RowType> list) {
  if (list.data() == nullptr) return kNull;
  return record(list.data()->bytes.data(), list.size() * RowType::size);
}

std::string text(const NamedKey& named) { return named ? std::to_string(named.key) : "-1"; }

std::string text(const std::optional<std::string_view>& name) {
  if (!name) return kNull;
  const std::size_t shown = std::min<std::size_t>(name->size(), kNameShown);
  return "name" + record(reinterpret_cast<const unsigned char*>(name->data()), shown) +
         named("length", static_cast<std::int64_t>(name->size()));
}

// The middle one of three questions.
template <typename Item, typename Question, typename Ask>
Item asked(const Question& question, const Question& other, Ask ask) {
  const Question questions[] = {other, question, other};
  Item items[3];
  ask(std::span<const Question>(questions), std::span<Item>(items));
  return items[1];
}

}  // namespace

std::unique_ptr<ReaderFace> openFace(ReaderWay way, const Bytes& file) {
  if (way == ReaderWay::kC || way == ReaderWay::kCBatches)
    return std::make_unique<CSession>(file, way == ReaderWay::kCBatches);
  return std::make_unique<ReaderSession>(way, file);
}

std::string patternOf(const Call& call) {
  if (call.op != Op::kSequential || call.match == Match::kStarts) return call.name;
  return "*" + call.name + (call.match == Match::kContains ? "*" : "");
}

ReaderSession::ReaderSession(ReaderWay way, const Bytes& file) : way_(way) {
  OpenOptions options;
  options.indexNames = way == ReaderWay::kIndexed || way == ReaderWay::kIndexedBatches;
  database_ = v1::Database::open(std::span<const unsigned char>(file), options, error_);
}

CityName ReaderSession::findCity(std::string_view state, std::string_view name) const {
  if (!inBatches()) return database_->findCity(state, name);
  return asked<CityName>(CityQuery{state, name}, CityQuery{"TX", "AUSTIN"},
                         [&](auto from, auto to) { database_->findCities(from, to); });
}

std::string ReaderSession::zips(const Call& call) {
  const std::uint32_t a = call.unsignedA();
  const auto find = [&](std::uint32_t code) {
    if (!inBatches()) return database_->zip(code);
    return asked<Zip>(code, 75203U, [&](auto from, auto to) { database_->findZips(from, to); });
  };
  switch (call.op) {
    case Op::kZipIndex:
      return std::to_string(find(a).key);
    case Op::kZipData: {
      const Zip zip = find(a);
      return zip ? text(zip) + named("key", zip.key) : kNull;
    }
    case Op::kFinByIndex:
      return text(database_->finance(a));
    case Op::kMultiZips:
      return text(database_->multiZips(call.unsignedB(), std::min(a, kMultiZipsShown)));
    default:
      break;
  }
  const Zip zip = database_->zipOfKey(a);
  if (!zip || call.op == Op::kZipDataFromKey) return text(zip);
  if (call.op == Op::kFinOfZip) return text(database_->financeOf(*zip));
  return text(database_->citiesOf(*zip));
}

std::string ReaderSession::search(const Call& call) {
  std::string pattern = call.name;
  if (call.op == Op::kSequential) {
    if (call.match != Match::kStarts) pattern.insert(0, "*");
    if (call.match == Match::kContains) pattern += "*";
  }
  const std::int64_t start = call.op == Op::kNearest ? 0 : call.signedB();
  if (start < 0) return "-1";
  for (const CityName& city : database_->cities(call.state, pattern))
    if (city.key >= start) return std::to_string(city.key + 1);
  return "-1";
}

std::string ReaderSession::cities(const Call& call) {
  const std::int32_t length = call.nameLength();
  const auto count = static_cast<std::size_t>(std::max(0, length));
  const std::string_view name = std::string_view(call.name).substr(0, count);
  const auto number = [](const auto& found) {
    return found ? std::to_string(found.key) : std::string("-1");
  };
  switch (call.op) {
    case Op::kCityName:
    case Op::kCityNameCached:
      return text(database_->cityName(call.unsignedA()));
    case Op::kCityNameIndex:
      return length < 2 ? "-1" : number(findCity(name.substr(0, 2), name.substr(2)));
    case Op::kCityHash:
      return length < 0 ? "-1" : number(findCity(call.state, name));
    case Op::kFindCity:
      return length < 0 ? kNull : text(findCity(call.state, name));
    case Op::kTruncCity:
      return length < 0 ? kNull : text(database_->findTruncatedCity(call.state, name).city);
    case Op::kSequential:
    case Op::kNearest:
    case Op::kNext:
      return search(call);
    case Op::kPhoneticIndex:
      return length < 2 ? "-1" : number(database_->findPhonetic(name.substr(0, 2), name.substr(2)));
    case Op::kFindPhonetic: {
      if (length < 0) return kNull;
      const CityPhonetic found = database_->findPhonetic(call.state, name);
      if (!found) return kNull;
      return text(found) + named("count", countOf(*found)) + named("index", found.key);
    }
    default:
      return text(database_->phonetic(call.unsignedA()));
  }
}

std::string ReaderSession::cityData(const Call& call) {
  switch (call.op) {
    case Op::kCityDataByName:
    case Op::kCityDataByTrunc: {
      if (call.nameLength() < 0) return kNull;
      const auto name =
          std::string_view(call.name).substr(0, static_cast<std::size_t>(call.nameLength()));
      const CityName found = call.op == Op::kCityDataByName
                                 ? findCity(call.state, name)
                                 : database_->findTruncatedCity(call.state, name).city;
      return found ? text(database_->cityOf(*found)) + " name" + text(found) : kNull;
    }
    case Op::kCityZipKeys:
      return text(database_->cityZipEntries(call.unsignedB(),
                                            std::min(call.unsignedA(), kCityZipKeysShown)));
    case Op::kCityFinKeys:
      return text(database_->cityFinanceKeys(call.unsignedB(),
                                             std::min(call.unsignedA(), kCityFinKeysShown)));
    default:
      break;
  }
  const City city = database_->cityData(call.unsignedA());
  return !city || call.op == Op::kCityData ? text(city) : text(database_->multiZipOf(*city));
}

std::string ReaderSession::streets(const Call& call) {
  const std::int32_t length = call.nameLength();
  const auto name =
      std::string_view(call.name).substr(0, static_cast<std::size_t>(std::max(0, length)));
  const std::string_view other = "MAIN ST";
  switch (call.op) {
    case Op::kStreetKey:
      if (length < 0) return "-1";
      if (!inBatches()) return text(database_->findStreet(name));
      return text(asked<NamedKey>(name, other,
                                  [&](auto from, auto to) { database_->findStreets(from, to); }));
    case Op::kFirm:
      if (length < 0) return "-1";
      if (!inBatches()) return text(database_->findFirm(name));
      return text(asked<NamedKey>(name, other,
                                  [&](auto from, auto to) { database_->findFirms(from, to); }));
    case Op::kStreetName:
    case Op::kStreetNameCached:
      return text(database_->streetName(call.unsignedA()));
    case Op::kFirmName:
      return text(database_->firmName(call.unsignedA()));
    case Op::kVariation: {
      if (length < 0 || length > 28 || call.a < 0 || call.a > 1) return kNull;
      std::optional<std::uint16_t> scf;
      if (!call.scfs.empty()) scf = call.scfs[0];
      std::vector<std::uint32_t> keys;
      for (const std::uint32_t key :
           database_->variations(static_cast<VariationKind>(call.a), name, scf))
        keys.push_back(key);
      return "streets" + runs(keys.data(), static_cast<std::int32_t>(keys.size()));
    }
    default:
      return text(database_->generalDelivery(call.unsignedA()));
  }
}

std::string ReaderSession::answer(const Call& call) {
  if (call.op <= Op::kMultiZips) return zips(call);
  if (call.op >= Op::kCityDataByName && call.op <= Op::kCityMultiZip) return cityData(call);
  if (call.op >= Op::kStreetKey) return streets(call);
  return cities(call);
}

}  // namespace statecut::test
