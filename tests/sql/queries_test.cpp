// Queries of all forms on the module's tables and on copies of them that are SQLite's own, which
// must answer alike; the plans that SQLite makes; what it refuses.

#include <algorithm>

#include "dbbuilder/profiles.h"
#include "relations/relation.h"
#include "sqlpair.h"
#include "support/counts.h"

namespace statecut::test {
namespace {

class SqlQueries : public testing::Test {
 protected:
  static builder::Model tiny() {
    builder::Model model = builder::makeModel(builder::tinyPlaces(), builder::tinyOptions());
    return model;
  }

  // Copies of the tables, native_zip and so on, with the same columns, and the same row ids.
  void copyAll() {
    for (const relations::Relation* relation : relations::all()) {
      std::string columns, names;
      for (const relations::Column& column : relation->columns) {
        const char* type = column.type == relations::Type::kInteger ? " INTEGER"
                           : column.type == relations::Type::kText  ? " TEXT"
                           : column.type == relations::Type::kBlob  ? " BLOB"
                                                                    : "";
        columns += (columns.empty() ? "" : ", ") + std::string(column.name) + type;
        names += std::string(", ") + column.name;
      }
      const std::string name = relation->name;
      EXPECT_EQ(sql_.ask("CREATE TABLE native_" + name + "(" + columns + ")"), Answers{});
      EXPECT_EQ(sql_.ask("INSERT INTO native_" + name + "(rowid" + names + ") SELECT rowid" +
                         names + " FROM temp." + name),
                Answers{});
    }
  }

  static std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
      text.replace(at, from.size(), to);
    return text;
  }

  // "@zip" stands for the table.
  void compare(const std::string& query) {
    Answers ours = sql_.ask(replaced(query, "@", "temp."));
    Answers wanted = sql_.ask(replaced(query, "@", "main.native_"));
    std::sort(ours.begin(), ours.end());
    std::sort(wanted.begin(), wanted.end());
    EXPECT_EQ(ours, wanted) << query;
    if (!ours.empty()) ++answered_;
  }

  std::string planOf(const std::string& query) {
    std::string text;
    for (const std::string& row : sql_.ask("EXPLAIN QUERY PLAN " + query)) text += row + "\n";
    return text;
  }

  SqlPair pair_{tiny(), false};
  Connection& sql_ = pair_.sql;
  std::size_t answered_ = 0;
};

TEST_F(SqlQueries, EachFormIsAnsweredByItsIndex) {
  const struct {
    const char* query;
    const char* index;
  } kForms[] = {
      {"SELECT * FROM zip WHERE zip = '75203'", "zip=?"},
      {"SELECT * FROM zip WHERE zip IN ('75203', '00501')", "zip=?"},
      {"SELECT * FROM zip WHERE zip > '75'", "zip range"},
      {"SELECT * FROM zip WHERE zip <= '75'", "zip range"},
      {"SELECT * FROM zip WHERE zip BETWEEN '75' AND '76'", "zip range"},
      {"SELECT * FROM zip WHERE rowid = 5", "rowid=?"},
      {"SELECT * FROM zip WHERE zipKey = 5", "rowid=?"},
      {"SELECT * FROM city WHERE state = 'TX' AND name = 'SPRING'", "state=? AND name=?"},
      {"SELECT * FROM city WHERE state = 'TX' AND name GLOB 'S*'", "state=? AND name GLOB ?"},
      {"SELECT * FROM city WHERE state = 'TX'", "state=?"},
      {"SELECT * FROM city WHERE cityKey = 5", "cityKey=?"},
      {"SELECT * FROM city WHERE rowid = 5", "rowid=?"},
      {"SELECT * FROM city WHERE position = 5", "rowid=?"},
      {"SELECT * FROM city_zip WHERE zip = '75203'", "zip=?"},
      {"SELECT * FROM city_zip WHERE zip > '75203'", "zip range"},
      {"SELECT * FROM city_zip WHERE cityKey = 5", "cityKey=?"},
      {"SELECT * FROM city_zip WHERE rowid = 5", "rowid=?"},
      {"SELECT * FROM city_phonetic WHERE state = 'TX' AND key = 'SPRNG'", "state=? AND key=?"},
      {"SELECT * FROM city_phonetic WHERE rowid = 5", "rowid=?"},
      {"SELECT * FROM street WHERE name = 'MAIN'", "name=?"},
      {"SELECT * FROM street WHERE streetKey = 5", "rowid=?"},
      {"SELECT * FROM firm WHERE name = 'MAIN'", "name=?"},
      {"SELECT * FROM firm WHERE firmKey = 5", "rowid=?"},
      {"SELECT * FROM street_variation WHERE kind = 'phonetic' AND name = 'MN'",
       "kind=? AND name=?"},
      {"SELECT * FROM street_variation WHERE name = 'MN'", "name=?"},
      {"SELECT * FROM street_variation WHERE rowid = 5", "rowid=?"},
      {"SELECT * FROM county WHERE position = 5", "rowid=?"},
      {"SELECT * FROM urbanization WHERE rowid = 5", "rowid=?"},
      {"SELECT * FROM partition WHERE zip = '75203' AND kind = 'SFH'", "zip=?"},
      {"SELECT * FROM partition WHERE zip < '2'", "zip range"},
      {"SELECT * FROM partition WHERE rowid = 5", "rowid=?"},
  };
  for (const auto& [query, index] : kForms) {
    const std::string plan = planOf(query);
    EXPECT_NE(plan.find(":" + std::string(index) + "'"), std::string::npos) << query << "\n"
                                                                            << plan;
  }
  // Without an index all rows are passed over, and SQLite says so.
  for (const char* query :
       {"SELECT * FROM zip WHERE state = 'TX'", "SELECT * FROM tables",
        "SELECT * FROM street WHERE name LIKE 'MAIN'", "SELECT * FROM city WHERE name = 'SPRING'"})
    EXPECT_NE(planOf(query).find("VIRTUAL TABLE INDEX 0:"), std::string::npos) << planOf(query);
}

// Under another collation other texts are equal, which the index of the file does not know.
TEST_F(SqlQueries, OnlyBinaryTextsAreLookedUp) {
  EXPECT_EQ(sql_.ask("SELECT count(*) FROM city WHERE state = 'tx' AND name = 'spring'"),
            Answers{"0"});
  EXPECT_EQ(sql_.ask("SELECT count(*) FROM city WHERE state = 'tx' COLLATE NOCASE AND "
                     "name = 'spring' COLLATE NOCASE"),
            Answers{"1"});
  EXPECT_NE(planOf("SELECT * FROM street WHERE name = 'main' COLLATE NOCASE").find("INDEX 0:"),
            std::string::npos);
}

TEST_F(SqlQueries, SortedRowsAreNotSortedAgain) {
  EXPECT_EQ(planOf("SELECT * FROM zip ORDER BY zip").find("TEMP B-TREE"), std::string::npos);
  EXPECT_NE(planOf("SELECT * FROM zip ORDER BY zip DESC").find("TEMP B-TREE"), std::string::npos);
  EXPECT_NE(planOf("SELECT * FROM zip ORDER BY state").find("TEMP B-TREE"), std::string::npos);
}

TEST_F(SqlQueries, ValuesOfAllTypesAreComparedAsByTablesOfSqlite) {
  copyAll();
  sql_.ask("CREATE TABLE other(i INTEGER, t TEXT, r REAL, n NUMERIC, b BLOB)");
  sql_.ask("INSERT INTO other SELECT zip, zip, zip, zip, zip FROM zip WHERE rowid % 7 = 1");
  sql_.ask(
      "INSERT INTO other VALUES (501, '501', 501.5, 'x', x'3035303031'), "
      "(NULL, NULL, NULL, '', NULL), ('abc', '', 5, '0abc', 5), (5, ' 5', -1, '12-34', '')");
  const char* const kValues[] = {"'501'",
                                 "'00501'",
                                 "501",
                                 "501.0",
                                 "501.5",
                                 "NULL",
                                 "x'3030353031'",
                                 "'75203'",
                                 "75203",
                                 "75203.0",
                                 "' 75203'",
                                 "'75203 '",
                                 "'+75203'",
                                 "75203.5",
                                 "x''",
                                 "''",
                                 "-1",
                                 "'abc'",
                                 "'0abc'",
                                 "100000",
                                 "9223372036854775807",
                                 "1e300",
                                 "-1e300",
                                 "'7'",
                                 "'75203a'",
                                 "'é'",
                                 "'€'",
                                 "0",
                                 "1",
                                 "5",
                                 "'5'",
                                 "5.0",
                                 "'5.0'",
                                 "5.5",
                                 "'SPRING'",
                                 "'TX'",
                                 "'phonetic'",
                                 "CAST('5' AS NUMERIC)",
                                 "9e15",
                                 "1e17",
                                 "'MAIN'",
                                 "'inf'",
                                 "'nan'"};
  const char* const kColumns[] = {"@zip z WHERE z.zip",
                                  "@zip z WHERE z.rowid",
                                  "@zip z WHERE z.zipKey",
                                  "@city z WHERE z.position",
                                  "@city z WHERE z.cityKey",
                                  "@city z WHERE z.state",
                                  "@city z WHERE z.state = 'TX' AND z.name",
                                  "@city_zip z WHERE z.zip",
                                  "@city_zip z WHERE z.cityKey",
                                  "@street z WHERE z.name",
                                  "@street z WHERE z.streetKey",
                                  "@street_variation z WHERE z.name",
                                  "@partition z WHERE z.zip",
                                  "@county z WHERE z.position",
                                  "@partition z WHERE z.rowid"};
  for (const char* const column : kColumns) {
    for (const char* const value : kValues) {
      for (const char* const op : {"=", "<", ">=", "IS", "<>"})
        compare("SELECT z.rowid FROM " + std::string(column) + " " + op + " " + value);
      compare("SELECT z.rowid FROM " + std::string(column) + " IN (" + value + ", '75203', 5)");
    }
    for (const char* const of : {"i", "t", "r", "n", "b"})
      for (const char* const op : {"=", "<", ">"}) {
        std::string joined(column);
        joined.replace(joined.find(" WHERE"), 6, ", other o WHERE");
        compare("SELECT count(*), o.rowid FROM " + joined + " " + op + " o." + of +
                " GROUP BY o.rowid");
      }
  }
  EXPECT_GT(answered_, 500U);
}

TEST_F(SqlQueries, PatternsAreMatchedAsByTablesOfSqlite) {
  copyAll();
  for (const char* const pattern :
       {"'S*'", "'SP*'", "'*'", "'*ING'", "'SPRING'", "'S[A-P]*'", "'S?RING*'", "''", "NULL", "5",
        "'é*'", "'Sé*'", "'€'", "x'532a'", "'s*'", "'S' || char(0)"})
    for (const char* const state : {"'TX'", "'OK'", "'tx'", "5", "NULL"})
      compare("SELECT * FROM @city WHERE state = " + std::string(state) + " AND name GLOB " +
              pattern);
  EXPECT_GT(answered_, 5U);
}

TEST_F(SqlQueries, JoinsAreThoseOfTablesOfSqlite) {
  copyAll();
  for (const char* const query :
       {"SELECT z.zip, c.name FROM @zip z JOIN @city c ON c.position = z.nameUsps",
        "SELECT z.zip, c.name FROM @zip z JOIN @city c ON c.state = z.state AND c.name = z.city",
        "SELECT z.zip, c.name FROM @zip z JOIN @city_zip p USING (zip) JOIN @city c USING "
        "(cityKey)",
        "SELECT c.name, count(*) FROM @city c LEFT JOIN @city_zip p ON p.cityKey = c.cityKey GROUP "
        "BY 1",
        "SELECT v.name, s.name FROM @street_variation v JOIN @street s USING (streetKey)",
        "SELECT z.state, sum(p.bytes) FROM @zip z JOIN @partition p USING (zip) GROUP BY 1",
        "SELECT * FROM @zip WHERE zip = '75203' OR zip = '73003' OR zipKey = 4",
        "SELECT max(zip), min(zip) FROM @zip"})
    compare(query);
  EXPECT_EQ(answered_, 8U);
}

// A schema that came with somebody's file must not read the files of this machine.
TEST_F(SqlQueries, ViewsAndTriggersMayNotUseTheTables) {
  EXPECT_EQ(sql_.ask("SELECT count(*) FROM main.sqlite_master"), Answers{"0"});
  EXPECT_EQ(sql_.ask("CREATE VIRTUAL TABLE main.z USING statecut(table=zip, ref='" +
                     pair_.reference + "')"),
            Answers{});
  sql_.ask("CREATE VIEW main.v AS SELECT * FROM z");
  sql_.ask("CREATE VIEW main.o AS SELECT statecut_open('" + pair_.reference + "')");
  EXPECT_EQ(sql_.ask("SELECT count(*) > 0 FROM z"), Answers{"1"});
  for (const char* view : {"v", "o"})
    EXPECT_NE(sql_.ask(std::string("SELECT * FROM ") + view).back().find("unsafe use of"),
              std::string::npos)
        << view;
}

TEST_F(SqlQueries, TablesMayBeOpenedAnewAndOthersAreLeftAlone) {
  EXPECT_EQ(sql_.openAll(pair_.reference, ""), "");
  EXPECT_EQ(sql_.ask("SELECT count(*) FROM partition WHERE data IS NOT NULL"), Answers{"0"});
  EXPECT_EQ(sql_.openAll(pair_.reference, pair_.range), "");
  EXPECT_NE(sql_.ask("SELECT count(*) FROM partition WHERE data IS NOT NULL"), Answers{"0"});
  sql_.ask("DROP TABLE temp.street");
  sql_.ask("CREATE TABLE temp.street(mine)");
  EXPECT_NE(sql_.openAll(pair_.reference, "").find("already exists"), std::string::npos);
  EXPECT_EQ(sql_.ask("SELECT mine FROM temp.street"), Answers{});
}

TEST_F(SqlQueries, WhatCannotBeOpenedIsToldWithItsPlace) {
  const auto make = [&](const std::string& arguments) {
    return sql_.ask("CREATE VIRTUAL TABLE temp.bad USING statecut(" + arguments + ")").back();
  };
  EXPECT_EQ(make("table=zip, ref='/nowhere/city.dir'"),
            "error 14: cannot open /nowhere/city.dir: No such file or directory");
  EXPECT_EQ(make("table=zip"), "error 1: statecut: ref= is missing");
  EXPECT_EQ(make("table=zips, ref='" + pair_.reference + "'"),
            "error 1: statecut: no such table: \"zips\"");
  EXPECT_EQ(make("tabel=zip"),
            "error 1: statecut: table=, ref= and rng= are the arguments, not "
            "tabel=zip");
  EXPECT_EQ(sql_.openAll("/nowhere/it''s", ""),
            "error 14: cannot open /nowhere/it''s: No such file or directory");
  TempDir folder;
  FileBytes bytes = readWholeFile(pair_.reference).value();
  bytes.resize(bytes.size() / 2);
  writeWholeFile(folder.file("short"), bytes);
  const std::string text = sql_.openAll(folder.file("short"), "");
  EXPECT_TRUE(text.starts_with("error 267: " + folder.file("short") + ": the table ")) << text;
  EXPECT_NE(text.find(" at "), std::string::npos) << text;
}

// The rest of the rows can be read.
TEST_F(SqlQueries, APartitionThatIsNotThereIsAnErrorOfItsRow) {
  constexpr char kLast[] = "(SELECT max(rba + bytes) FROM partition WHERE bytes > 0)";
  const Answers end = sql_.ask(std::string("SELECT ") + kLast);
  TempDir folder;
  FileBytes bytes = readWholeFile(pair_.range).value();
  bytes.resize(std::stoul(end.front()) - 1);
  writeWholeFile(folder.file("short"), bytes);
  ASSERT_EQ(sql_.openAll(pair_.reference, folder.file("short")), "");
  const Answers rows = sql_.ask(
      std::string("SELECT length(data) = bytes FROM partition WHERE rba + bytes < ") + kLast);
  EXPECT_GT(rows.size(), 10U);
  EXPECT_TRUE(std::all_of(rows.begin(), rows.end(), [](auto& row) { return row == "1"; }));
  const std::string all = sql_.ask("SELECT sum(length(data)) FROM partition").back();
  EXPECT_TRUE(all.starts_with("error 267: " + folder.file("short") + ": the partition at ")) << all;
  EXPECT_NE(all.find("of the ZIP code "), std::string::npos) << all;
}

}  // namespace
}  // namespace statecut::test
