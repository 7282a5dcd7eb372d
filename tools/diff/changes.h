#pragma once
// What changed between two releases.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace statecut::diff {

// Texts that are added and dropped, sorted. They stand in the files of the releases. A city is a
// text of its state and name, "TXAUSTIN".
struct Names {
  std::vector<std::string_view> added;
  std::vector<std::string_view> dropped;
};

struct Zip {
  std::uint32_t zip = 0;
  std::string_view state;
  std::vector<std::string_view> cities;  // its own first
};

struct MovedZip {
  Zip before, after;
};

struct RenamedCity {
  std::string_view before, after;
};

// A name of a city beside the one that it is known by.
struct OtherName {
  std::string_view name;
  std::string_view city;  // empty: none

  bool operator==(const OtherName&) const = default;
  bool operator<(const OtherName& other) const {
    return std::tie(name, city) < std::tie(other.name, other.city);
  }
};

enum class Kind : std::uint8_t { Sfh, Pob, Rr };

enum class Change : std::uint8_t { Added, Dropped, Changed };

struct PartitionChange {
  Change change = Change::Changed;
  Kind kind = Kind::Sfh;
  bool shared = false;  // a multi-ZIP partition
  std::string_view state;
  std::vector<std::uint32_t> zips;       // whose partition it is
  std::vector<std::string_view> cities;  // the same, of a shared one
  std::uint64_t bytesBefore = 0;
  std::uint64_t bytesAfter = 0;
};

struct PartitionCounts {
  std::uint64_t added = 0, dropped = 0, changed = 0;
};

// A table whose bytes are others, RBAs apart; a control record has no count.
struct TableChange {
  std::string name;
  std::uint64_t countBefore = 0, countAfter = 0;
  std::uint64_t bytesBefore = 0, bytesAfter = 0;
};

struct Changes {
  std::vector<Zip> zipsAdded, zipsDropped;
  std::vector<MovedZip> zipsMoved;
  Names cities;
  std::vector<RenamedCity> citiesRenamed;
  std::vector<OtherName> otherNamesAdded, otherNamesDropped;
  Names streets, firms;
  Names streetStandards, streetPhonetics, cityPhonetics;
  bool statelessCompared = false;  // streets, their variations, firms and tables are
  bool partitionsCompared = false;
  std::vector<PartitionChange> partitions;
  std::vector<TableChange> tables;
  std::vector<std::string> notes;  // what could not be compared

  bool none() const;
  std::map<std::string_view, PartitionCounts> partitionsByState() const;
};

}  // namespace statecut::diff
