// city and city_phonetic.

#include <algorithm>

#include "relations/names.h"
#include "relations/zipwalk.h"

namespace statecut::relations {

namespace {

using D = CityDataRow;

enum CityColumn : std::uint8_t {
  kPosition,
  kState,
  kName,
  kCityKey,
  kValue,
  kNameUsps,
  kNameStandard,
  kZipCount,
  kFinMultiZipFlag,
  kFinMultiZipKey,
  kMultiZipRbaKey
};
constexpr Column kCityColumns[] = {
    {"position", Type::kInteger, "position in the city names table"},
    {"state", Type::kText, CityNameRow::state.meaning},
    {"name", Type::kText, "city name"},
    {"cityKey", Type::kInteger, "city data key: a city may have several names", true},
    {"value", Type::kInteger, CityNameRow::value.meaning},
    {"nameUsps", Type::kInteger, "position of the city's USPS name", true, "city", "position"},
    {"nameStandard", Type::kInteger, "position of the city's other name", true, "city", "position"},
    {"zipCount", Type::kInteger, D::zipCount.meaning, true},
    {"finMultiZipFlag", Type::kInteger, D::finMultiZipFlag.meaning, true},
    {"finMultiZipKey", Type::kInteger, D::finMultiZipKey.meaning, true},
    {"multiZipRbaKey", Type::kInteger, D::multiZipRbaKey.meaning, true},
};
constexpr int kCityPrimary[] = {kPosition};
constexpr int kCityByName[] = {kState, kName};
constexpr int kCityByKey[] = {kCityKey};
constexpr Columns kCityIndexes[] = {kCityByName, kCityByKey};
enum CityPath : std::uint8_t { kByName, kById, kByCityKey, kByPrefix, kByState };
constexpr Path kCityPaths[] = {
    {"state=? AND name=?", {{{kState, Match::kText}, {kName, Match::kText}}}, 2, false},
    {"rowid=?", {{{kRowId, Match::kKey}}}, 1, true},
    {"cityKey=?", {{{kCityKey, Match::kKey}}}, 1, false},
    {"state=? AND name GLOB ?", {{{kState, Match::kText}, {kName, Match::kPrefix}}}, 2, false, 500},
    {"state=?", {{{kState, Match::kText}}}, 1, false, 50},
};

class CityRows : public Cursor {
 public:
  explicit CityRows(Source& source) : source_(source), database_(source.database()) {}

  void startAll() override {
    begin();
    next_ = 1;
    last_ = UINT32_MAX;
  }

  void start(std::size_t path, std::span<const Wanted> wanted) override {
    begin();
    if (path == kByName) return startName(wanted[0].text, wanted[1].text);
    if (path == kByCityKey) {
      if (wanted[0].low > 0xFFFF) return;
      keys_ = source_.namesOfCity(static_cast<std::uint32_t>(wanted[0].low));
      return;
    }
    if (path == kById) {
      if (wanted[0].low == 0 || wanted[0].low > UINT32_MAX) return;
      next_ = last_ = static_cast<std::uint32_t>(wanted[0].low);
      return;
    }
    startState(wanted[0].text, path == kByPrefix ? wanted[1].text : std::string_view());
  }

  bool next() override {
    if (!keys_.empty()) {
      name_ = database_.cityName(keys_.front());
      keys_ = keys_.subspan(1);
    } else {
      if (next_ == 0 || next_ > last_) return false;
      name_ = database_.cityName(next_++);
    }
    if (!name_ || !belongs(*name_)) return false;
    city_ = database_.cityOf(*name_);
    return true;
  }

  [[nodiscard]] std::int64_t id() const override { return name_.key; }

  Value value(std::size_t column) override {
    switch (column) {
      case kPosition:
        return Value::integer(name_.key);
      case kState:
        return Value::text(stateOf(*name_));
      case kName:
        return nameText();
      case kCityKey:
        return Value::some(name_->get(CityNameRow::cityKey));
      case kValue:
        return Value::integer(name_->get(CityNameRow::value));
      default:
        return dataOf(column);
    }
  }

 private:
  void begin() {
    fault_ = Error();
    keys_ = {};
    isPrefix_ = false;
    next_ = last_ = 0;
  }

  // The file's index leads to one name; its equals stand beside it.
  void startName(std::string_view state, std::string_view name) {
    source_.countNameLookup();
    const CityName found = database_.findCity(state, name);
    if (!found) return;
    const auto isSame = [&](std::uint32_t position) {
      const CityName other = database_.cityName(position);
      return other && stateOf(*other) == state && nameOf(*other) == name;
    };
    next_ = last_ = found.key;
    while (isSame(next_ - 1)) --next_;
    while (isSame(last_ + 1)) ++last_;
  }

  // From the first name of the state that is not before the prefix, as long as names have it. In a
  // table that is not in order all names are looked at.
  void startState(std::string_view state, std::string_view prefix) {
    next_ = 1;
    last_ = UINT32_MAX;
    if (!source_.citiesAreSorted()) return;
    isPrefix_ = true;
    state_ = state;
    prefix_ = prefix;
    std::uint32_t below = 0;
    std::uint32_t above = database_.referenceRecord().get(RefControlRec::cityNamesCount);
    while (above > below + 1) {
      const std::uint32_t middle = below + (above - below) / 2;
      const CityName name = database_.cityName(middle);
      const bool isBefore =
          name && std::pair(stateOf(*name), nameOf(*name)) < std::pair(state_, prefix_);
      (isBefore ? below : above) = middle;
    }
    next_ = above;
  }

  [[nodiscard]] bool belongs(const CityNameRow& name) const {
    return !isPrefix_ || (stateOf(name) == state_ && nameOf(name).starts_with(prefix_));
  }

  Value nameText() {
    if (name_->get(CityNameRow::nameLength) <= CityNameRow::name.width)
      return Value::text(nameOf(*name_));
    return fault("City names", name_.row, "has a name that is longer than its field");
  }

  Value fault(const char* table, const void* record, const char* what) {
    fault_ = source_.damage(table, record, what);
    return Value::fault();
  }

  Value position(std::uint32_t at) {
    if (at == 0) return Value::null();
    return database_.cityName(at)
               ? Value::integer(at)
               : fault("City data", city_.row, "leads to a name behind the city names");
  }

  Value dataOf(std::size_t column) {
    if (!city_)
      return name_->get(CityNameRow::cityKey) == 0
                 ? Value::null()
                 : fault("City names", name_.row, "has a city key that leads out of the city data");
    switch (column) {
      case kNameUsps:
        return position(city_->get(D::nameUsps));
      case kNameStandard:
        return position(city_->get(D::nameStandard));
      case kZipCount:
        return Value::integer(city_->get(D::zipCount));
      case kFinMultiZipFlag:
        return Value::integer(city_->get(D::finMultiZipFlag));
      case kFinMultiZipKey:
        return Value::some(city_->get(D::finMultiZipKey));
      case kMultiZipRbaKey:
        return Value::some(city_->get(D::multiZipRbaKey));
      default:
        return Value::null();
    }
  }

  Source& source_;
  const Database& database_;
  std::uint32_t next_ = 0, last_ = 0;    // positions
  std::span<const std::uint32_t> keys_;  // positions, of a city
  bool isPrefix_ = false;
  std::string_view state_, prefix_;
  CityName name_;
  City city_;
};

enum PhoneticColumn : std::uint8_t {
  kPhoneticPosition,
  kPhoneticState,
  kPhoneticKey,
  kPhoneticCount
};
constexpr Column kPhoneticColumns[] = {
    {"position", Type::kInteger, "position in the city phonetics table"},
    {"state", Type::kText, CityPhoneticRow::state.meaning},
    {"key", Type::kText, "phonetic key"},
    {"count", Type::kInteger, CityPhoneticRow::count.meaning},
};
constexpr int kPhoneticPrimary[] = {kPhoneticPosition};
constexpr int kPhoneticByKey[] = {kPhoneticState, kPhoneticKey};
constexpr Columns kPhoneticIndexes[] = {kPhoneticByKey};
constexpr Path kPhoneticPaths[] = {
    {"state=? AND key=?",
     {{{kPhoneticState, Match::kText}, {kPhoneticKey, Match::kText}}},
     2,
     false},
    {"rowid=?", {{{kRowId, Match::kKey}}}, 1, true},
};

class PhoneticRows : public Cursor {
 public:
  explicit PhoneticRows(Source& source) : source_(source), database_(source.database()) {}

  void startAll() override {
    next_ = 1;
    last_ = UINT32_MAX;
  }

  void start(std::size_t path, std::span<const Wanted> wanted) override {
    next_ = last_ = 0;
    if (path == 1) {
      if (wanted[0].low <= UINT32_MAX) next_ = last_ = static_cast<std::uint32_t>(wanted[0].low);
      return;
    }
    source_.countNameLookup();
    const CityPhonetic found = database_.findPhonetic(wanted[0].text, wanted[1].text);
    if (found) next_ = last_ = found.key;
  }

  bool next() override {
    if (next_ == 0 || next_ > last_) return false;
    row_ = database_.phonetic(next_++);
    return static_cast<bool>(row_);
  }

  [[nodiscard]] std::int64_t id() const override { return row_.key; }

  Value value(std::size_t column) override {
    switch (column) {
      case kPhoneticPosition:
        return Value::integer(row_.key);
      case kPhoneticState: {
        const auto state = row_->get(CityPhoneticRow::state);
        return Value::text({reinterpret_cast<const char*>(state.data()), state.size()});
      }
      case kPhoneticKey:
        if (row_->get(CityPhoneticRow::keyLength) <= CityPhoneticRow::key.width)
          return Value::text(keyOf(*row_));
        fault_ =
            source_.damage("City phonetics", row_.row, "has a key that is longer than its field");
        return Value::fault();
      case kPhoneticCount:
        return Value::integer(countOf(*row_));
      default:
        return Value::null();
    }
  }

 private:
  Source& source_;
  const Database& database_;
  std::uint32_t next_ = 0, last_ = 0;
  CityPhonetic row_;
};

std::uint64_t countCities(const Source& source) {
  return source.database().referenceRecord().get(RefControlRec::cityNamesCount);
}
std::uint64_t countPhonetics(const Source& source) {
  return source.database().referenceRecord().get(RefControlRec::cityPhoneticsCount);
}

}  // namespace

constinit const Relation kCity = {"city",
                                  "names of cities, with the data of the city",
                                  kCityColumns,
                                  kPosition,
                                  kCityPrimary,
                                  kCityIndexes,
                                  kCityPaths,
                                  countCities,
                                  openRows<CityRows>};
constinit const Relation kCityPhonetic = {
    "city_phonetic",       "phonetic keys of cities", kPhoneticColumns, kPhoneticPosition,
    kPhoneticPrimary,      kPhoneticIndexes,          kPhoneticPaths,   countPhonetics,
    openRows<PhoneticRows>};

}  // namespace statecut::relations
