// zip, and which cities have which ZIP codes.

#include <algorithm>
#include <new>

#include "relations/names.h"
#include "relations/zipwalk.h"

namespace statecut::relations {

namespace {

using Z = ZipDataRow;

enum ZipColumn : std::uint8_t {
  kZipCode,
  kZipKey,
  kState,
  kCity,
  kCityKey,
  kNameUsps,
  kCityKeysCount,
  kFinMultiZipKey,
  kSfhRba,
  kSfhBytes,
  kPobRba,
  kPobBytes,
  kRrRba,
  kRrBytes
};
constexpr Column kZipColumns[] = {
    {"zip", Type::kText, "five-digit ZIP code"},
    {"zipKey", Type::kInteger, "position in the ZIP data table"},
    {"state", Type::kText, "state abbreviation; unknown in a cut", true},
    {"city", Type::kText, "name of its own city", true},
    {"cityKey", Type::kInteger, "city data key of its own city", true},
    {"nameUsps", Type::kInteger, "position of that city's name", true, "city", "position"},
    {"cityKeysCount", Type::kInteger, Z::cityKeysCount.meaning},
    {"finMultiZipKey", Type::kInteger, "key of its finance entry", true},
    {"sfhRba", Type::kInteger, "RBA of the SFH partition", true},
    {"sfhBytes", Type::kInteger, "bytes of the SFH partition; unknown in a cut", true},
    {"pobRba", Type::kInteger, "RBA of the POB partition", true},
    {"pobBytes", Type::kInteger, "bytes of the POB partition; unknown in a cut", true},
    {"rrRba", Type::kInteger, "RBA of the RR partition", true},
    {"rrBytes", Type::kInteger, "bytes of the RR partition; unknown in a cut", true},
};
constexpr int kZipPrimary[] = {kZipCode};
constexpr int kZipByKey[] = {kZipKey};
constexpr int kZipByState[] = {kState};
constexpr int kZipByCity[] = {kCityKey};
constexpr Columns kZipIndexes[] = {kZipByKey, kZipByState, kZipByCity};
constexpr Path kZipPaths[] = {
    {"zip=?", {{{kZipCode, Match::kZip}}}, 1, true},
    {"rowid=?", {{{kRowId, Match::kKey}}}, 1, true},
    {"zip range", {{{kZipCode, Match::kZips}}}, 1, false, 4},
};

Value sizeOf(const Database& database, const Zip& zip, PartitionKind kind) {
  const auto bytes = database.partitionBytes(zip, kind);
  return bytes ? Value::integer(*bytes) : Value::null();
}

class ZipRows : public Cursor {
 public:
  explicit ZipRows(Source& source) : source_(source), walk_(source.database()) {}

  void startAll() override { walk_.startAll(); }
  void start(std::size_t path, std::span<const Wanted> wanted) override {
    if (path == 1)
      walk_.startKey(wanted[0].low);
    else
      walk_.startZips(wanted[0].low, path == 0 ? wanted[0].low : wanted[0].high);
  }
  bool next() override { return walk_.next(); }
  [[nodiscard]] std::int64_t id() const override { return walk_.zip().key; }

  Value value(std::size_t column) override {
    const Zip& zip = walk_.zip();
    const Database& database = source_.database();
    switch (column) {
      case kZipCode:
        return Value::zip(zip->get(Z::zip));
      case kZipKey:
        return Value::integer(zip.key);
      case kState: {
        const auto state = database.stateOf(zip);
        return state ? Value::text(*state) : Value::null();
      }
      case kCity:
        return cityText(source_, "ZIP data", zip.row, zip->get(Z::cityKey), fault_);
      case kCityKey:
        return Value::some(zip->get(Z::cityKey));
      case kNameUsps:
        return cityPosition(source_, "ZIP data", zip.row, zip->get(Z::cityKey), fault_);
      case kCityKeysCount:
        return Value::integer(zip->get(Z::cityKeysCount));
      case kFinMultiZipKey:
        return Value::some(zip->get(Z::finMultiZipKey));
      case kSfhRba:
        return Value::some(zip->get(Z::sfhRba));
      case kSfhBytes:
        return sizeOf(database, zip, PartitionKind::kStreet);
      case kPobRba:
        return Value::some(zip->get(Z::pobRba));
      case kPobBytes:
        return sizeOf(database, zip, PartitionKind::kPoBox);
      case kRrRba:
        return Value::some(zip->get(Z::rrRba));
      case kRrBytes:
        return sizeOf(database, zip, PartitionKind::kRuralRoute);
      default:
        return Value::null();
    }
  }

 private:
  Source& source_;
  ZipWalk walk_;
};

enum CityZipColumn : std::uint8_t { kPairCity, kPairName, kPairZip };
constexpr Column kCityZipColumns[] = {
    {"cityKey", Type::kInteger, "city data key"},
    {"nameUsps", Type::kInteger, "position of the city's name", true, "city", "position"},
    {"zip", Type::kText, "five-digit ZIP code", false, "zip", "zip"},
};
constexpr int kCityZipPrimary[] = {kPairCity, kPairZip};
constexpr int kCityZipByZip[] = {kPairZip};
constexpr Columns kCityZipIndexes[] = {kCityZipByZip};
constexpr Path kCityZipPaths[] = {
    {"zip=?", {{{kPairZip, Match::kZip}}}},
    {"cityKey=?", {{{kPairCity, Match::kKey}}}},
    {"rowid=?", {{{kRowId, Match::kKey}}}, 1, true},
    {"zip range", {{{kPairZip, Match::kZips}}}, 1, false, 4},
};

// A list of cities has at most 255: its count is a byte.
constexpr std::uint64_t kMostCities = 256;

class CityZipRows : public Cursor {
 public:
  explicit CityZipRows(Source& source) : source_(source), walk_(source.database()) {}

  void startAll() override {
    begin();
    walk_.startAll();
  }

  void start(std::size_t path, std::span<const Wanted> wanted) override {
    begin();
    const Wanted& one = wanted[0];
    switch (path) {
      case 0:
        return walk_.startZips(one.low, one.low);
      case 1:
        onlyCity_ = one.low;
        zips_ = zipsOf(one.low);
        return walk_.startNone();
      case 2:
        onlyPlace_ = one.low % kMostCities;
        return walk_.startKey(one.low / kMostCities);
      default:
        return walk_.startZips(one.low, one.high);
    }
  }

  bool next() override {
    for (;;) {
      while (++place_ < cities_.size())
        if (isRow()) return true;
      if (!nextZip()) return false;
      cities_ = source_.database().citiesOf(*walk_.zip());
      place_ = SIZE_MAX;
      if (cities_.empty() && walk_.zip()->get(Z::cityKeysCount) > 0 && !onlyCity_)
        return emptyList();
    }
  }

  [[nodiscard]] std::int64_t id() const override {
    return static_cast<std::int64_t>(walk_.zip().key * kMostCities + place_);
  }

  Value value(std::size_t column) override {
    const std::uint32_t city = cityAt(place_);
    switch (column) {
      case kPairCity:
        return Value::integer(city);
      case kPairName:
        return cityPosition(source_, "ZIP data", walk_.zip().row, city, fault_);
      case kPairZip:
        return Value::zip(walk_.zip()->get(Z::zip));
      default:
        return Value::null();
    }
  }

 private:
  void begin() {
    onlyCity_.reset();
    onlyPlace_.reset();
    zips_ = {};
    cities_ = {};
    place_ = SIZE_MAX;
    fault_ = Error();
  }

  [[nodiscard]] std::span<const std::uint16_t> zipsOf(std::uint64_t cityKey) const {
    if (cityKey > 0xFFFF) return {};
    const auto zips = source_.database().zipsOfCity(static_cast<std::uint32_t>(cityKey));
    if (!zips) throw std::bad_alloc();
    return *zips;
  }

  [[nodiscard]] std::uint32_t cityAt(std::size_t place) const {
    return cities_[place].get(KeyRow::key);
  }

  // A list that leads out of its table is not a list; opening has seen that all others do not.
  bool emptyList() {
    fault_ = source_.damage("ZIP data", walk_.zip().row, "has cities but no list of them");
    return false;
  }

  bool nextZip() {
    if (!onlyCity_) return walk_.next();
    if (zips_.empty()) return false;
    walk_.startKey(zips_.front());
    zips_ = zips_.subspan(1);
    return walk_.next();
  }

  // A ZIP code that lists a city twice has it once; key 0 is no city.
  [[nodiscard]] bool isRow() const {
    const std::uint32_t city = cityAt(place_);
    if (city == 0 || (onlyCity_ && city != *onlyCity_) || (onlyPlace_ && place_ != *onlyPlace_))
      return false;
    for (std::size_t i = 0; i < place_; ++i)
      if (cityAt(i) == city) return false;
    return true;
  }

  Source& source_;
  ZipWalk walk_;
  std::optional<std::uint64_t> onlyCity_, onlyPlace_;
  std::span<const std::uint16_t> zips_;  // of the only city
  std::span<const KeyRow> cities_;
  std::size_t place_ = SIZE_MAX;
};

std::uint64_t countZips(const Source& source) {
  return source.database().referenceRecord().get(RefControlRec::zipDataCount);
}
std::uint64_t countPairs(const Source& source) {
  return countZips(source) +
         source.database().referenceRecord().get(RefControlRec::zipMultiCityListsCount);
}

}  // namespace

constinit const Relation kZip = {
    "zip",       "ZIP codes", kZipColumns, kZipKey,           kZipPrimary,
    kZipIndexes, kZipPaths,   countZips,   openRows<ZipRows>, true};
constinit const Relation kCityZip = {"city_zip",           "which cities have which ZIP codes",
                                     kCityZipColumns,      kRowId,
                                     kCityZipPrimary,      kCityZipIndexes,
                                     kCityZipPaths,        countPairs,
                                     openRows<CityZipRows>};

}  // namespace statecut::relations
