#pragma once
// A connection to SQLite with the module of this build, and the answers of statements as texts.

#include <sqlite3.h>

#include <string>
#include <vector>

namespace statecut::test {

using Answers = std::vector<std::string>;  // a text a row

class Connection {
 public:
  Connection();
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // The rows: values between bars, texts in quotes, blobs as x'0f', null. The last row is "error N:
  // TEXT" when the statement fails.
  Answers ask(const std::string& sql);
  // Prepared, with values for its parameters, and kept for the next time.
  Answers ask(const std::string& sql, const std::vector<std::string>& texts);
  // Makes all tables; "" when it worked.
  std::string openAll(const std::string& reference, const std::string& range);
  [[nodiscard]] sqlite3* get() const { return db_; }

 private:
  static Answers step(sqlite3* db, sqlite3_stmt* statement);

  sqlite3* db_ = nullptr;
  std::vector<std::pair<std::string, sqlite3_stmt*>> kept_;
};

// Values as ask() shows them.
std::string shown(std::uint64_t number);
std::string shownText(std::string_view bytes);  // of the file: a character a byte
std::string shownBlob(std::string_view bytes);

}  // namespace statecut::test
