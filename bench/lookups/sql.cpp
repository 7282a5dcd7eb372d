// Questions in SQL through mod_statecut against SQLite's own tables with the same rows, in the same
// connection.

#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <random>

#include "lookups/contest.h"
#include "lookups/measurements.h"
#include "measure/sqlite.h"

namespace statecut::bench {

namespace {

struct Question {
  std::string first, second;
};

// A statement that is asked again and again; the answer is a number.
class Asked {
 public:
  Asked(sqlite3* db, const std::string& sql) {
    need(sqlite3_prepare_v2(db, sql.c_str(), -1, &statement_, nullptr) == SQLITE_OK, sql.c_str());
    parameters_ = sqlite3_bind_parameter_count(statement_);
  }
  ~Asked() { sqlite3_finalize(statement_); }
  Asked(const Asked&) = delete;
  Asked& operator=(const Asked&) = delete;

  std::uint32_t operator()(const Question& question) const {
    if (parameters_ > 0) bind(1, question.first);
    if (parameters_ > 1) bind(2, question.second);
    std::uint32_t sum = 0;
    while (sqlite3_step(statement_) == SQLITE_ROW)
      sum += static_cast<std::uint32_t>(sqlite3_column_int64(statement_, 0));
    need(sqlite3_reset(statement_) == SQLITE_OK, "a question in SQL");
    return sum;
  }

 private:
  void bind(int at, const std::string& text) const {
    sqlite3_bind_text(statement_, at, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  }

  sqlite3_stmt* statement_ = nullptr;
  int parameters_ = 0;
};

struct Tables {
  explicit Tables(const std::filesystem::path& data) {
    need(sqlite3_open(":memory:", &db) == SQLITE_OK, "sqlite3_open");
    sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 1, nullptr);
    need(sqlite3_load_extension(db, STATECUT_SQLITE_MODULE, nullptr, nullptr) == SQLITE_OK,
         "loading mod_statecut");
    execute(db, ("SELECT statecut_open('" + (data / "city.dir").string() + "', '" +
                 (data / "zip4us.dir").string() + "')")
                    .c_str());
    execute(db,
            "CREATE TABLE native_zip(zip TEXT PRIMARY KEY NOT NULL, zipKey INTEGER, state TEXT,"
            " city TEXT, cityKey INTEGER, nameUsps INTEGER, cityKeysCount INTEGER,"
            " finMultiZipKey INTEGER, sfhRba INTEGER, sfhBytes INTEGER, pobRba INTEGER,"
            " pobBytes INTEGER, rrRba INTEGER, rrBytes INTEGER);"
            "CREATE TABLE native_city(position INTEGER PRIMARY KEY, state TEXT, name TEXT,"
            " cityKey INTEGER, value INTEGER, nameUsps INTEGER, nameStandard INTEGER,"
            " zipCount INTEGER, finMultiZipFlag INTEGER, finMultiZipKey INTEGER,"
            " multiZipRbaKey INTEGER);"
            "CREATE TABLE native_street(streetKey INTEGER PRIMARY KEY, name TEXT);"
            "CREATE TABLE native_firm(firmKey INTEGER PRIMARY KEY, name TEXT);"
            "INSERT INTO native_zip SELECT * FROM zip; INSERT INTO native_city SELECT * FROM city;"
            "INSERT INTO native_street SELECT * FROM street;"
            "INSERT INTO native_firm SELECT * FROM firm;"
            "CREATE INDEX by_city ON native_city(state, name);"
            "CREATE INDEX by_street ON native_street(name);"
            "CREATE INDEX by_firm ON native_firm(name); ANALYZE");
  }
  ~Tables() { sqlite3_close(db); }
  Tables(const Tables&) = delete;
  Tables& operator=(const Tables&) = delete;

  [[nodiscard]] std::vector<Question> questions(const std::string& sql) const {
    std::vector<Question> all;
    sqlite3_stmt* statement = nullptr;
    need(sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK, sql.c_str());
    const auto text = [&](int at) -> std::string {
      const auto* held = reinterpret_cast<const char*>(sqlite3_column_text(statement, at));
      return held == nullptr ? "" : held;
    };
    while (sqlite3_step(statement) == SQLITE_ROW) all.push_back({text(0), text(1)});
    sqlite3_finalize(statement);
    std::shuffle(all.begin(), all.end(), std::mt19937(1));
    return all;
  }

  sqlite3* db = nullptr;
};

struct Contest {
  const char* row;
  const char* name;
  const char* questions;  // "": one without parameters
  const char* sql;        // @ stands in front of the names of tables
};

constexpr Contest kContests[] = {
    {"sql-points", "ZIP", "SELECT zip FROM zip", "SELECT sfhRba FROM @zip WHERE zip = ?"},
    {"sql-points", "city", "SELECT state, name FROM city",
     "SELECT position FROM @city WHERE state = ? AND name = ?"},
    {"sql-points", "street", "SELECT name FROM street",
     "SELECT streetKey FROM @street WHERE name = ?"},
    {"sql-points", "firm", "SELECT name FROM firm", "SELECT firmKey FROM @firm WHERE name = ?"},
    {"sql-scan", "sum of a column", "", "SELECT sum(sfhBytes) FROM @zip"},
    {"sql-scan", "groups by state", "",
     "SELECT count(*) + sum(sfhBytes) + max(cityKey) FROM @zip GROUP BY state"},
    {"sql-join", "by position", "",
     "SELECT sum(length(c.name)) FROM @zip z JOIN @city c ON c.position = z.nameUsps"},
    {"sql-join", "by state and name", "",
     "SELECT sum(c.zipCount) FROM @zip z JOIN @city c ON c.state = z.state AND c.name = z.city"},
};

std::string withPrefix(std::string sql, const std::string& prefix) {
  for (std::size_t at = 0; (at = sql.find('@', at)) != std::string::npos;)
    sql.replace(at, 1, prefix);
  return sql;
}

}  // namespace

void measureSql(LookupSetup& setup) {
  const bool isWanted =
      setup.wants("sql-points") || setup.wants("sql-scan") || setup.wants("sql-join");
  if (!isWanted) return;
  const Tables tables(setup.data);
  for (const Contest& one : kContests) {
    if (!setup.wants(one.row)) continue;
    const Asked ours(tables.db, withPrefix(one.sql, "temp."));
    const Asked peer(tables.db, withPrefix(one.sql, "main.native_"));
    const std::vector<Question> questions =
        one.questions[0] == '\0' ? std::vector<Question>(1) : tables.questions(one.questions);
    const std::string group = "SQL " + std::string(one.row) + " " + one.name;
    const auto askOurs = [&ours](const Question& question) { return ours(question); };
    const auto askPeer = [&peer](const Question& question) { return peer(question); };
    compareAnswers(group, questions, askOurs, askPeer);
    addLookups(group + "/statecut", questions, askOurs);
    addLookups(group + "/sqlite", questions, askPeer);
    Figure figure = figureOf(runGroup(group, setup.rounds), group, "statecut", "sqlite");
    figure.name = one.name;
    setup.rows[one.row].figures.push_back(figure);
    benchmark::ClearRegisteredBenchmarks();
  }
}

}  // namespace statecut::bench
