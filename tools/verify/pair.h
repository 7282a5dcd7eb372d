#pragma once
// A database pair as mapped bytes with views of its tables. A table that does not fit the file is
// seen as empty, and the rules that need it are skipped.

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "dbfiles/controlrec.h"
#include "format/directory.h"
#include "format/mapped.h"
#include "format/names.h"

namespace statecut::verify {

using namespace format;  // the rules speak of tables and names all over
using format::TableId;   // not the core's, where a source includes both

// The records of a table; `rba` is where they begin in the file.
template <typename RowType>
class Records {
 public:
  Records() = default;
  Records(std::span<const unsigned char> bytes, std::uint64_t rba)
      : bytes_(bytes.first(bytes.size() / RowType::size * RowType::size)), rba_(rba) {}

  std::size_t size() const { return bytes_.size() / RowType::size; }
  const RowType& operator[](std::size_t i) const {
    return *reinterpret_cast<const RowType*>(bytes_.data() + i * RowType::size);
  }
  std::uint64_t offset(std::size_t i) const { return rba_ + i * RowType::size; }

 private:
  std::span<const unsigned char> bytes_;
  std::uint64_t rba_ = 0;
};

class Pair {
 public:
  // Maps both files; `error` says why it could not be done.
  static Pair open(const std::string& refPath, const std::string& rngPath, std::string& error);

  std::span<const unsigned char> refBytes() const { return ref_.bytes(); }
  std::span<const unsigned char> rngBytes() const { return rng_.bytes(); }
  bool holdsControlRecords() const;

  // What follows needs the control records.
  const RefControlRec& ref() const;
  const RngControlRec& rng() const;
  bool isCut() const { return (ref().get(RefControlRec::typeFlags) & kTypeStateCut) != 0; }
  const TablePlace& place(TableId id) const { return places_[static_cast<std::size_t>(id)]; }
  bool usable(TableId id) const { return place(id).carried && place(id).fits; }
  // The bytes of a usable table, else none.
  std::span<const unsigned char> table(TableId id) const;
  template <typename RowType>
  Records<RowType> records(TableId id) const {
    return {table(id), place(id).rba};
  }

 private:
  MappedFile ref_;
  MappedFile rng_;
  std::array<TablePlace, kTables> places_ = {};
};

// Entry `i` of a table of 16-bit numbers, 0 past its end.
inline std::uint32_t number16(std::span<const unsigned char> table, std::uint64_t i) {
  return i < table.size() / 2 ? le::get<2>(table.data() + i * 2) : 0;
}

// The tables that the numbers of the pair's hash refer to.
NameTables nameTables(const Pair& pair);

}  // namespace statecut::verify
