#include "relations/source.h"

#include <algorithm>
#include <utility>

namespace statecut::relations {

namespace {

constexpr std::uint32_t kManyLookups = 1000;

template <typename Walk>
std::unique_ptr<Starts> startsOf(std::size_t bytes, const Walk& walk) {
  auto starts = std::make_unique<Starts>(bytes);
  for (const auto& item : walk) starts->add(item.key);
  return starts;
}

}  // namespace

std::shared_ptr<Source> Source::open(const std::string& reference, const std::string& range,
                                     Error& error) {
  OpenOptions options;
  options.range = range;
  auto database = Database::open(reference, options, error);
  return database == nullptr ? nullptr : std::make_shared<Source>(std::move(database));
}

void Source::countNameLookup() {
  if (++nameLookups_ == kManyLookups) database_->indexNames();
}

const Starts& Source::streetStarts() {
  if (streets_ == nullptr)
    streets_ = startsOf(database_->referenceRecord().get(RefControlRec::streetNamesBytes),
                        database_->streets());
  return *streets_;
}

const Starts& Source::firmStarts() {
  if (firms_ == nullptr)
    firms_ =
        startsOf(database_->referenceRecord().get(RefControlRec::firmsBytes), database_->firms());
  return *firms_;
}

const Starts& Source::variationStarts(VariationKind kind) {
  const RefControlRec& record = database_->referenceRecord();
  const bool phonetic = kind == VariationKind::kPhonetic;
  std::unique_ptr<Starts>& starts = phonetic ? phonetics_ : standards_;
  if (starts == nullptr)
    starts = startsOf(phonetic ? record.get(RefControlRec::streetPhoneticsBytes)
                               : record.get(RefControlRec::streetStandardsBytes),
                      database_->variationNames(kind));
  return *starts;
}

bool Source::citiesAreSorted() {
  if (sorted_) return *sorted_;
  sorted_ = true;
  std::pair<std::string_view, std::string_view> last;
  for (const CityName& city : database_->cityNames()) {
    const std::pair now(stateOf(*city), nameOf(*city));
    if (now < last) sorted_ = false;
    last = now;
  }
  return *sorted_;
}

std::span<const std::uint32_t> Source::namesOfCity(std::uint32_t cityKey) {
  constexpr std::uint32_t kKeys = 1U << 16;
  if (cityStarts_.empty()) {
    cityStarts_.resize(kKeys + 1);
    std::vector<std::uint32_t>& starts = cityStarts_;
    const auto keyOf = [](const CityName& city) { return city->get(CityNameRow::cityKey); };
    for (const CityName& city : database_->cityNames()) ++starts[keyOf(city) + std::size_t{1}];
    for (std::size_t key = 1; key <= kKeys; ++key) starts[key] += starts[key - 1];
    byCity_.resize(starts[kKeys]);
    std::vector<std::uint32_t> next(starts);
    for (const CityName& city : database_->cityNames()) byCity_[next[keyOf(city)]++] = city.key;
  }
  if (cityKey >= kKeys) return {};
  return {byCity_.data() + cityStarts_[cityKey], cityStarts_[cityKey + 1] - cityStarts_[cityKey]};
}

Error Source::damage(const char* table, const void* record, const std::string& what) const {
  Error error;
  error.code = ErrorCode::kDamaged;
  error.table = table;
  error.offset = database_->offsetOf(record);
  error.text = database_->referenceFile() + ": the table " + table + " at " +
               std::to_string(error.offset) + " " + what;
  return error;
}

}  // namespace statecut::relations
