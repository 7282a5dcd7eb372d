#include "connection.h"

#include <algorithm>

#include "format/latin1.h"
#include "support/paths.h"

namespace statecut::test {

Connection::Connection() {
  sqlite3_open(":memory:", &db_);
  sqlite3_db_config(db_, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 1, nullptr);
  char* error = nullptr;
  if (sqlite3_load_extension(db_, kSqliteModule, nullptr, &error) != SQLITE_OK)
    throw std::runtime_error(error == nullptr ? "no module" : error);
}

Connection::~Connection() {
  for (const auto& [sql, statement] : kept_) sqlite3_finalize(statement);
  sqlite3_close(db_);
}

std::string shown(std::uint64_t number) { return std::to_string(number); }

std::string shownText(std::string_view bytes) { return "'" + format::utf8Of(bytes) + "'"; }

std::string shownBlob(std::string_view bytes) {
  static const char kDigits[] = "0123456789abcdef";
  std::string text = "x'";
  for (const char c : bytes) {
    text += kDigits[static_cast<unsigned char>(c) >> 4];
    text += kDigits[static_cast<unsigned char>(c) & 15];
  }
  return text + "'";
}

Answers Connection::step(sqlite3* db, sqlite3_stmt* statement) {
  Answers answers;
  int status = 0;
  while ((status = sqlite3_step(statement)) == SQLITE_ROW) {
    std::string row;
    for (int i = 0; i < sqlite3_column_count(statement); ++i) {
      if (i > 0) row += '|';
      const int type = sqlite3_column_type(statement, i);
      const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, i));
      const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, i));
      if (type == SQLITE_NULL)
        row += "null";
      else if (type == SQLITE_TEXT)
        row += "'" + std::string(bytes, size) + "'";
      else if (type == SQLITE_BLOB)
        row += shownBlob({bytes, size});
      else
        row += reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
    }
    answers.push_back(std::move(row));
  }
  if (status != SQLITE_DONE)
    answers.push_back("error " + std::to_string(sqlite3_extended_errcode(db)) + ": " +
                      sqlite3_errmsg(db));
  return answers;
}

Answers Connection::ask(const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
    return {"error " + std::to_string(sqlite3_extended_errcode(db_)) + ": " + sqlite3_errmsg(db_)};
  Answers answers = step(db_, statement);
  sqlite3_finalize(statement);
  return answers;
}

Answers Connection::ask(const std::string& sql, const std::vector<std::string>& texts) {
  const auto held =
      std::find_if(kept_.begin(), kept_.end(), [&](const auto& one) { return one.first == sql; });
  sqlite3_stmt* statement = held == kept_.end() ? nullptr : held->second;
  if (statement == nullptr) {
    sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr);
    if (statement == nullptr) return {std::string("error: ") + sqlite3_errmsg(db_)};
    kept_.emplace_back(sql, statement);
  }
  for (std::size_t i = 0; i < texts.size(); ++i)
    sqlite3_bind_text(statement, static_cast<int>(i) + 1, texts[i].data(),
                      static_cast<int>(texts[i].size()), SQLITE_STATIC);
  Answers answers = step(db_, statement);
  sqlite3_reset(statement);
  return answers;
}

std::string Connection::openAll(const std::string& reference, const std::string& range) {
  const Answers made = ask("SELECT statecut_open(?1, ?2)", {reference, range});
  for (const auto& [sql, statement] : kept_) sqlite3_finalize(statement);
  kept_.clear();
  return made == Answers{"12"} ? "" : made.back();
}

}  // namespace statecut::test
