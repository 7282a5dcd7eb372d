// The answers in SQL against those of a Database, on random pairs and on their cuts.
//
// STATECUT_SQL_SEED chooses other pairs.

#include <algorithm>

#include "damage/sample.h"
#include "readerrows.h"
#include "sqlpair.h"
#include "support/counts.h"

namespace statecut::test {
namespace {

std::uint64_t firstSeed() { return envNumber("STATECUT_SQL_SEED", 170'000); }
std::uint64_t pairs() { return longRun() ? 200 : 6; }

// A fifth of the pairs are cuts.
bool isCut(std::uint64_t seed) { return seed % 5 == 3; }

template <typename Check>
void forEachPair(Check check) {
  for (std::uint64_t seed = firstSeed(); seed < firstSeed() + pairs(); ++seed) {
    SqlPair pair(seed, isCut(seed));
    if (pair.database == nullptr) return;
    SCOPED_TRACE("STATECUT_SQL_SEED=" + std::to_string(seed));
    check(pair, seed);
    if (testing::Test::HasFailure()) return;
  }
}

TEST(SqlAnswers, AllRowsOfAllTablesAreTheReaders) {
  std::uint64_t rows = 0;
  forEachPair([&](SqlPair& pair, std::uint64_t) {
    for (auto& [table, wanted] : rowsOfReader(*pair.database)) {
      Answers told = pair.sql.ask("SELECT * FROM " + table);
      rows += told.size();
      EXPECT_EQ(told, wanted) << table;
      EXPECT_EQ(pair.sql.ask("SELECT count(*) FROM " + table), Answers{shown(wanted.size())});
    }
  });
  EXPECT_GT(rows, 0U);
  addCount("rows of SQL tables compared", rows);
}

TEST(SqlAnswers, TheZipCodesOfACityAreTheReaders) {
  forEachPair([](SqlPair& pair, std::uint64_t) {
    const std::uint32_t cities = pair.database->referenceRecord().get(RefControlRec::cityDataCount);
    for (std::uint32_t city = 1; city <= cities; ++city) {
      Answers wanted;
      const auto zips = pair.database->zipsOfCity(city).value();
      for (const std::uint16_t key : zips)
        wanted.push_back(shownText(digits(pair.database->zipOfKey(key)->get(ZipDataRow::zip))));
      std::sort(wanted.begin(), wanted.end());
      EXPECT_EQ(
          pair.sql.ask("SELECT zip FROM city_zip WHERE cityKey = " + shown(city) + " ORDER BY zip"),
          wanted);
    }
  });
}

// Point queries: what the database has, and what it hardly has.
class Questions {
 public:
  Questions(SqlPair& pair, std::uint64_t seed) : pair_(pair), random_(seed) {
    for (const CityName& name : pair.database->cityNames()) cities_.push_back(name);
    for (const NamedKey& street : pair.database->streets()) streets_.push_back(street);
    for (const NamedKey& firm : pair.database->firms()) firms_.push_back(firm);
    for (const CityPhonetic& one : pair.database->phonetics()) phonetics_.push_back(one);
    for (const Zip& zip : pair.database->zips()) zips_.push_back(zip->get(ZipDataRow::zip));
  }

  void byKey() {
    const std::uint32_t code =
        random_.percent(70) && !zips_.empty() ? pick(zips_, random_) : random_.below(100'000);
    const Database& database = *pair_.database;
    const Zip zip = database.zip(code);
    Answers wanted;
    if (zip) wanted.push_back(zipRow(database, zip));
    EXPECT_EQ(pair_.sql.ask("SELECT * FROM zip WHERE zip = ?", {digits(code)}), wanted);
    const std::uint32_t key = random_.below(static_cast<std::uint32_t>(cities_.size()) + 3);
    const CityName name = database.cityName(key);
    wanted.clear();
    if (name) wanted.push_back(cityRow(database, name));
    EXPECT_EQ(pair_.sql.ask("SELECT * FROM city WHERE rowid = ?", {shown(key)}), wanted);
  }

  void byName() {
    const Database& database = *pair_.database;
    if (!cities_.empty()) {
      const CityName& one = pick(cities_, random_);
      const std::string state(stateOf(random_.percent(80) ? *one : *pick(cities_, random_)));
      const std::string name = changed(nameOf(*one));
      const CityName found = database.findCity(state, name);
      Answers wanted;
      if (found) wanted.push_back(cityRow(database, found));
      EXPECT_EQ(pair_.sql.ask("SELECT * FROM city WHERE state = ? AND name = ?", {state, name}),
                wanted);
    }
    name("street", "streetKey", streets_, [&](auto& text) { return database.findStreet(text); });
    name("firm", "firmKey", firms_, [&](auto& text) { return database.findFirm(text); });
    if (phonetics_.empty()) return;
    const CityPhonetic& one = pick(phonetics_, random_);
    const auto held = one->get(CityPhoneticRow::state);
    const std::string state(held.begin(), held.end());
    const std::string code = changed(keyOf(*one));
    const CityPhonetic found = database.findPhonetic(state, code);
    Answers wanted;
    if (found) wanted.push_back(shown(found.key));
    EXPECT_EQ(pair_.sql.ask("SELECT position FROM city_phonetic WHERE state = ? AND key = ?",
                            {state, code}),
              wanted);
  }

  void byPattern() {
    if (cities_.empty()) return;
    const CityName& one = pick(cities_, random_);
    const std::string state(stateOf(random_.percent(90) ? *one : *pick(cities_, random_)));
    const std::string_view name = nameOf(*one);
    if (name.empty()) return;  // a Database has no pattern for all names
    const std::string prefix(name.substr(0, random_.between(1, 3)));
    Answers wanted;
    for (const CityName& city : pair_.database->cities(state, prefix + "*"))
      wanted.push_back(cityRow(*pair_.database, city));
    EXPECT_EQ(
        pair_.sql.ask("SELECT * FROM city WHERE state = ? AND name GLOB ?", {state, prefix + "*"}),
        wanted);
  }

 private:
  std::string changed(std::string_view name) {
    std::string text(name);
    if (!text.empty() && random_.percent(30))
      text[random_.below(static_cast<std::uint32_t>(text.size()))] = 'Z';
    return text;
  }

  template <typename Find>
  void name(const std::string& table, const std::string& key, const std::vector<NamedKey>& all,
            Find find) {
    if (all.empty()) return;
    const std::string text = changed(pick(all, random_).name);
    const NamedKey found = find(text);
    Answers wanted;
    if (found) wanted.push_back(shown(found.key));
    EXPECT_EQ(pair_.sql.ask("SELECT " + key + " FROM " + table + " WHERE name = ?", {text}), wanted)
        << text;
  }

  SqlPair& pair_;
  builder::Random random_;
  std::vector<CityName> cities_;
  std::vector<NamedKey> streets_, firms_;
  std::vector<CityPhonetic> phonetics_;
  std::vector<std::uint32_t> zips_;
};

TEST(SqlAnswers, PointQueriesByKeyNameAndPatternAreTheReaders) {
  const std::uint64_t queries = !longRun() ? 200 : kSanitized ? 1'000 : 10'000;
  forEachPair([&](SqlPair& pair, std::uint64_t seed) {
    Questions questions(pair, seed);
    for (std::uint64_t i = 0; i < queries && !testing::Test::HasFailure(); ++i) {
      questions.byKey();
      questions.byName();
      questions.byPattern();
    }
    addCount("point queries in SQL compared", 3 * queries);
  });
}

}  // namespace
}  // namespace statecut::test
