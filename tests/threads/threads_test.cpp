// Many threads on one Database, and releases that are swapped while others look up. The quick tier
// runs this under ThreadSanitizer, too (preset tsan), which shows races.

#include <atomic>
#include <thread>
#include <vector>

#include "tables/rows.h"
#include "unit/reader/readerpair.h"

namespace statecut::test {
namespace {

// What a thread found; the same for every thread that asks the same database.
struct Answers {
  std::uint64_t sum = 0;
  void add(std::uint64_t value) { sum = sum * 31 + value; }
};

void askZips(const Database& database, Answers& answers) {
  std::vector<std::uint32_t> codes;
  for (const Zip& zip : database.zips()) {
    codes.push_back(zip->get(ZipDataRow::zip));
    answers.add(zip.key);
    answers.add(database.zip(codes.back()).key);
    answers.add(database.zipOfKey(zip.key).key);
    answers.add(database.finance(zip.key) != nullptr);
    answers.add(database.multiZips(zip.key, 2).size());
    for (const KeyRow& city : database.citiesOf(*zip)) answers.add(city.get(KeyRow::key));
    answers.add(database.financeOf(*zip) != nullptr);
    answers.add(database.stateOf(zip).has_value());
    answers.add(database.partitionBytes(zip, PartitionKind::kStreet).value_or(1));
  }
  std::vector<Zip> zips(codes.size());
  database.findZips(codes, zips);
  for (const Zip& zip : zips) answers.add(zip.key);
}

void askCities(const Database& database, Answers& answers) {
  std::vector<CityQuery> queries;
  for (const CityName& city : database.cityNames()) {
    const std::string_view state = stateOf(*city);
    const std::string_view name = nameOf(*city);
    queries.push_back({state, name});
    answers.add(database.findCity(state, name).key);
    answers.add(database.findTruncatedCity(state, name.substr(0, 3)).ambiguous);
    answers.add(database.findPhonetic(state, name.substr(0, 2)).key);
    answers.add(database.phonetic(city.key).key);
    answers.add(database.cityName(city.key).key);
    answers.add(database.cityData(city.key).key);
    answers.add(database.cityZipEntries(city.key, 1).size());
    answers.add(database.cityFinanceKeys(city.key, 1).size());
    for (const CityName& fits : database.cities(state, name)) answers.add(fits.key);
    const City data = database.cityOf(*city);
    if (!data) continue;
    answers.add(database.multiZipOf(*data) != nullptr);
    answers.add(database.financeOf(*data) != nullptr);
    const auto zips = database.zipsOfCity(data.key).value();
    for (const std::uint16_t zip : zips) answers.add(zip);
  }
  std::vector<CityName> cities(queries.size());
  database.findCities(queries, cities);
  for (const CityName& city : cities) answers.add(city.key);
}

void askNames(const Database& database, Answers& answers) {
  std::vector<std::string_view> names;
  for (const NamedKey& street : database.streets()) {
    names.push_back(street.name);
    answers.add(database.findStreet(street.name).key);
    answers.add(database.streetName(street.key).has_value());
  }
  for (const VariationKind kind : {VariationKind::kPhonetic, VariationKind::kStandard})
    for (const Variation& variation : database.variationNames(kind)) {
      for (const std::uint32_t key : database.variations(kind, variation.name)) answers.add(key);
      for (const std::uint32_t key : database.variations(kind, variation.name, 752))
        answers.add(key);
      for (const ServedStreet& street : database.streetsOf(variation)) answers.add(street.street);
    }
  std::vector<NamedKey> found(names.size());
  database.findStreets(names, found);
  for (const NamedKey& street : found) answers.add(street.key);
  names.clear();
  for (const NamedKey& firm : database.firms()) {
    names.push_back(firm.name);
    answers.add(database.findFirm(firm.name).key);
    answers.add(database.firmName(firm.key).has_value());
  }
  database.findFirms(names, found);
  answers.add(database.generalDelivery(1) != nullptr);
  answers.add(database.county(1).size() + database.urbanization(1).size());
  answers.add(database.states().size() + database.buildTime() + database.version().size());
  answers.add(database.copyright().size() + database.cutTime().value_or(0));
}

std::uint64_t askAll(const Database& database) {
  Answers answers;
  askZips(database, answers);
  askCities(database, answers);
  askNames(database, answers);
  Error error;
  std::vector<unsigned char> buffer(1 << 16);
  for (const Zip& zip : database.zips())
    answers.add(database.readPartition(zip, PartitionKind::kStreet, buffer, error).value_or(7));
  return answers.sum;
}

constexpr int kThreads = 64;

class ManyThreads : public ReaderPair {};

TEST_F(ManyThreads, AllAnswerAlikeAndTheFirstMakesTheIndexes) {
  const auto alone = openPair();
  ASSERT_NE(alone, nullptr) << error_.text;
  const std::uint64_t wanted = askAll(*alone);
  const auto database = openPair();
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back([&, i] {
      if (i % 8 == 3) database->indexNames();
      if (i % 8 == 5) database->indexCityZips();
      if (askAll(*database) != wanted) ++wrong;
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

// A service loads the next release and lets go of the one before, while its threads answer.
TEST_F(ManyThreads, ReleasesAreSwappedWhileTheyAnswer) {
  const auto first = openPair();
  ASSERT_NE(first, nullptr) << error_.text;
  const std::uint64_t ofWhole = askAll(*first);
  const std::string whole = ref_;
  const std::string wholeRange = rng_;
  cut();
  const auto second = openPair();
  ASSERT_NE(second, nullptr) << error_.text;
  const std::uint64_t ofCut = askAll(*second);
  ASSERT_NE(ofWhole, ofCut);

  std::shared_ptr<const Database> current = first;
  std::atomic<bool> stop{false};
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back([&] {
      do {
        const auto database = std::atomic_load(&current);
        const std::uint64_t got = askAll(*database);
        if (got != (database->isCut() ? ofCut : ofWhole)) ++wrong;
      } while (!stop);
    });
  constexpr int kSwaps = 20;
  for (int i = 0; i < kSwaps; ++i) {
    OpenOptions options;
    options.range = i % 2 == 0 ? rng_ : wholeRange;
    options.indexNames = i % 3 == 0;
    Error error;
    auto next = Database::open(i % 2 == 0 ? ref_ : whole, options, error);
    if (next == nullptr) ++wrong;
    if (next != nullptr) std::atomic_store(&current, std::move(next));
  }
  stop = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace statecut::test
