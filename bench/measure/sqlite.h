#pragma once
// SQLite, where every call must succeed: each of these throws when it fails.

#include <sqlite3.h>

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace statecut::bench {

inline void need(bool good, const char* what) {
  if (!good) throw std::runtime_error(std::string(what) + " failed");
}

inline void execute(sqlite3* db, const char* sql) {
  need(sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql);
}

// An insertion that is made again and again; add() takes the values in their order.
class Insertion {
 public:
  Insertion(sqlite3* db, const char* sql) {
    need(sqlite3_prepare_v2(db, sql, -1, &statement_, nullptr) == SQLITE_OK, sql);
  }
  ~Insertion() { sqlite3_finalize(statement_); }
  Insertion(const Insertion&) = delete;
  Insertion& operator=(const Insertion&) = delete;

  template <typename... Values>
  void add(const Values&... values) {
    int at = 0;
    (bind(++at, values), ...);
    need(sqlite3_step(statement_) == SQLITE_DONE, "an insertion");
    sqlite3_reset(statement_);
  }

 private:
  void bind(int at, std::uint32_t number) { sqlite3_bind_int64(statement_, at, number); }
  void bind(int at, std::string_view text) {
    sqlite3_bind_text(statement_, at, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  }
  void bind(int at, std::span<const unsigned char> bytes) {
    sqlite3_bind_blob(statement_, at, bytes.data(), static_cast<int>(bytes.size()), SQLITE_STATIC);
  }

  sqlite3_stmt* statement_ = nullptr;
};

}  // namespace statecut::bench
