#pragma once
// A database as relations: their names, columns and keys, the rows of each, and which rows are
// found without passing over all of them. What a SQL module and an export share.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "reader/error.h"

namespace statecut::relations {

class Source;

enum class Type : std::uint8_t { kInteger, kText, kBlob, kAny };

struct Column {
  const char* name;
  Type type;
  const char* meaning;
  bool nullable = false;
  const char* refersTo = nullptr;  // the relation whose column is meant, of `refersToColumn`
  const char* refersToColumn = nullptr;
};

// How a constraint on a column leads to rows.
enum class Match : std::uint8_t {
  kText,    // the column is this text
  kKey,     // the column is this number
  kZip,     // the ZIP code is this one
  kZips,    // the ZIP code lies in a range
  kPrefix,  // the text begins so
};

inline constexpr int kRowId = -1;

struct Term {
  int column = kRowId;
  Match match = Match::kKey;
};

// A way to rows by one or two columns. What it gives holds all rows that fit, and may hold more.
struct Path {
  const char* name;  // for people: "state=? AND name=?"
  std::array<Term, 2> terms{};
  std::uint8_t count = 1;
  bool unique = false;  // at most one row
  // Of how many rows one is given, on average over the values; 0: a row or two.
  double oneIn = 0;
};

// What the terms of a path are to match, in their order; kZips: from `low` to `high`, the others
// `text` or `low`. Texts are bytes of the file and stay as long as the cursor uses the path.
struct Wanted {
  std::string_view text;
  std::uint64_t low = 0;
  std::uint64_t high = 0;
};

struct Value {
  enum class Kind : std::uint8_t { kNull, kInteger, kZip, kText, kBlob, kRead, kFault };

  Kind kind = Kind::kNull;
  std::uint64_t number = 0;  // kInteger; kZip: a ZIP code, which is a text of five digits
  // kText: a character a byte. kBlob: as it stands. Both stay as long as the source. kRead: a blob
  // that stays until the cursor moves.
  std::string_view bytes;

  static Value null() { return {}; }
  static Value integer(std::uint64_t number) { return {Kind::kInteger, number, {}}; }
  static Value zip(std::uint64_t code) { return {Kind::kZip, code, {}}; }
  static Value text(std::string_view bytes) { return {Kind::kText, 0, bytes}; }
  static Value blob(std::string_view bytes) { return {Kind::kBlob, 0, bytes}; }
  static Value read(std::string_view bytes) { return {Kind::kRead, 0, bytes}; }
  static Value fault() { return {Kind::kFault, 0, {}}; }
  // A number whose 0 stands for none.
  static Value some(std::uint64_t number) { return number == 0 ? null() : integer(number); }
};

// Walks over rows of a relation. A row that the file does not hold right is a fault: of one of its
// values, or, where no row follows from it, of next(). fault() tells of the last one.
class Cursor {
 public:
  virtual ~Cursor() = default;
  // All rows.
  virtual void startAll() = 0;
  // Those that path `path` of the relation gives; `wanted` has a part for each of its terms.
  virtual void start(std::size_t path, std::span<const Wanted> wanted) = 0;
  // False at the end and at a fault.
  virtual bool next() = 0;
  [[nodiscard]] virtual std::int64_t id() const = 0;  // of the row, the same whatever led to it
  [[nodiscard]] virtual Value value(std::size_t column) = 0;
  [[nodiscard]] const Error* fault() const {
    return fault_.code == ErrorCode::kNone ? nullptr : &fault_;
  }

 protected:
  Error fault_;
};

// Columns that are a key or an index together.
using Columns = std::span<const int>;

struct Relation {
  const char* name;
  const char* meaning;
  std::span<const Column> columns;
  int idColumn;  // the column that is the id of the row, kRowId: none
  Columns primaryKey;
  std::span<const Columns> indexes;  // that a copy of the rows deserves
  std::span<const Path> paths;
  std::uint64_t (*rows)(const Source&);  // how many there are, or about
  std::unique_ptr<Cursor> (*open)(Source&);
  bool zipOrder = false;  // rows come by ascending ZIP code, the first column, unless by id
};

// In the order in which people read of them.
[[nodiscard]] std::span<const Relation* const> all();
[[nodiscard]] const Relation* find(std::string_view name);  // null: none of this name

// The five digits of a ZIP code.
[[nodiscard]] inline std::array<char, 5> digitsOf(std::uint64_t zip) {
  std::array<char, 5> digits{};
  for (std::size_t i = digits.size(); i-- > 0; zip /= 10)
    digits[i] = static_cast<char>('0' + zip % 10);
  return digits;
}

}  // namespace statecut::relations
