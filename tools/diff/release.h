#pragma once
// One release to compare: a reference file, and its range file when there is one, where they lie.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dbfiles/controlrec.h"
#include "format/directory.h"
#include "format/mapped.h"
#include "verify/pair.h"

namespace statecut::diff {

using format::TableId;
using format::TablePlace;
using verify::Records;

class Release {
 public:
  // `rngPath` may be empty. `error` says why the release can't be compared: a file that can't be
  // read, is no database, has a table outside it, or is not of the same pair.
  static Release open(const std::string& refPath, const std::string& rngPath, std::string& error);

  const std::string& path() const { return path_; }
  const RefControlRec& ref() const;
  const RngControlRec& rng() const;  // of a release with a range file
  bool isCut() const { return (ref().get(RefControlRec::typeFlags) & kTypeStateCut) != 0; }
  const TablePlace& place(TableId id) const { return places_[static_cast<std::size_t>(id)]; }
  std::span<const unsigned char> table(TableId id) const;
  template <typename RowType>
  Records<RowType> records(TableId id) const {
    return {table(id), place(id).rba};
  }
  std::span<const unsigned char> referenceBytes() const { return ref_.bytes(); }
  std::span<const unsigned char> rangeBytes() const { return rng_.bytes(); }
  void forgetRangePages() const { rng_.forgetPages(); }

  // The key of a ZIP code, 0 = not in the index, or not in the table that it leads into.
  std::uint32_t zipKey(std::uint32_t zip) const;
  // State and name in one text ("TXAUSTIN"), as a city is known by; empty: the city has no name.
  std::string_view cityName(std::uint32_t cityKey) const;
  // The names of the cities of a ZIP code, its own first.
  std::vector<std::string_view> citiesOf(std::uint32_t zipKey) const;
  // The state of a ZIP code, by the ZIP bytes table; that of its own city with `byCity`, since a
  // cut does not carry that table.
  std::string_view stateOf(std::uint32_t zipKey, bool byCity) const;

 private:
  std::string path_;
  format::MappedFile ref_;
  format::MappedFile rng_;
  std::array<TablePlace, format::kTables> places_ = {};
};

}  // namespace statecut::diff
