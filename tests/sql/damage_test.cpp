// Damaged pairs through the module: rows or an error that names the place, never a crash.
// STATECUT_DAMAGE_SEED chooses other samples.

#include <gtest/gtest.h>

#include "connection.h"
#include "damage/sample.h"
#include "relations/relation.h"
#include "support/files.h"

namespace statecut::test {
namespace {

// Cannot be opened, cannot be read, is damaged.
bool isErrorOfAFile(const std::string& answer) {
  return answer.starts_with("error 14: ") || answer.starts_with("error 10: ") ||
         answer.starts_with("error 267: ");
}

class SqlDamage : public testing::Test {
 protected:
  void ask(Connection& sql, const std::string& query) {
    const Answers answers = sql.ask(query);
    if (answers.empty() || !answers.back().starts_with("error ")) return;
    ++errors_;
    EXPECT_TRUE(isErrorOfAFile(answers.back())) << query << "\n" << answers.back();
    EXPECT_NE(answers.back().find(folder_.path()), std::string::npos) << answers.back();
  }

  void run(const PairImage& pair) {
    writeWholeFile(folder_.file("city.dir"), pair.ref);
    writeWholeFile(folder_.file("zip4us.dir"), pair.rng);
    Connection sql;
    const std::string refused = sql.openAll(folder_.file("city.dir"), folder_.file("zip4us.dir"));
    if (!refused.empty()) {
      ++refused_;
      EXPECT_TRUE(isErrorOfAFile(refused)) << refused;
      return;
    }
    for (const relations::Relation* relation : relations::all()) {
      const std::string name = relation->name;
      ask(sql, "SELECT * FROM " + name);
      for (const char* id : {"-1", "0", "1", "2", "257", "65536", "9223372036854775807"})
        ask(sql, "SELECT * FROM " + name + " WHERE rowid = " + id);
    }
    for (const char* query :
         {"SELECT * FROM zip WHERE zip IN ('75203', '05001')", "SELECT * FROM zip WHERE zip < '5'",
          "SELECT * FROM city_zip WHERE cityKey IN (0, 1, 2, 3, 65535)",
          "SELECT * FROM city WHERE cityKey IN (0, 1, 2, 65535)",
          "SELECT c.* FROM city c JOIN city d ON c.state = d.state AND c.name = d.name",
          "SELECT * FROM city WHERE state = 'TX' AND name GLOB 'S*'",
          "SELECT s.* FROM street s JOIN street t ON s.name = t.name",
          "SELECT s.* FROM firm s JOIN firm t ON s.name = t.name",
          "SELECT v.* FROM street_variation v JOIN street_variation w ON v.name = w.name"})
      ask(sql, query);
  }

  TempDir folder_;
  std::size_t refused_ = 0, errors_ = 0;
};

TEST_F(SqlDamage, GivesRowsOrAnErrorThatNamesThePlace) {
  run(microPair());
  EXPECT_EQ(refused_ + errors_, 0U);
  std::size_t tried = 0;
  for (const Damages& damages :
       {everyLength(microPair()), fieldValues(microPair()), everyBit(microPair())})
    for (const std::size_t i :
         choose(damages, 0, 1, {40, 70}, [](const Damage&) { return true; })) {
      SCOPED_TRACE(nameOf(damages, damages.list[i]) + " (seed " + std::to_string(seed()) + ")");
      run(damaged(microPair(), damages.list[i]));
      if (HasFailure()) return;
      ++tried;
    }
  EXPECT_GT(refused_, 0U);
  EXPECT_GT(errors_, 0U);
  addCount("damaged files read in SQL", tried);
}

}  // namespace
}  // namespace statecut::test
