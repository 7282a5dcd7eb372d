#pragma once
// What a report shows of a database, a cut of it and an older release, as numbers.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diff/changes.h"
#include "draw/kinds.h"
#include "draw/sources.h"

namespace statecut::draw {

// What a piece of a file is about; pieces of one family have one colour.
enum class Family : std::uint8_t {
  Streets,
  Firms,
  Cities,
  Zips,
  Names,  // the index of all names
  Sizes,  // of partitions
  Rest,   // patterns, counties, urbanizations and what else is small
  Sfh,
  SfhShared,
  Pob,
  PobShared,
  Rr,
  RrShared,
  Other  // control records, and bytes that nothing leads to
};

struct Piece {
  std::string name;
  Family family = Family::Other;
  std::uint64_t bytes = 0;
  std::uint64_t kept = 0;  // of them in the cut
};

// A file piece by piece, in its order; a cut's beside it.
struct File {
  std::string name;  // without its folder
  std::uint64_t bytes = 0;
  std::string cutName;  // empty: no cut
  std::uint64_t cutBytes = 0;
  std::vector<Piece> pieces;
};

struct CityName {
  std::string_view state, name;
  std::uint32_t known = 0;  // where the name stands that its city is known by
};

struct Zip {
  std::uint32_t zip = 0;
  std::uint32_t state = 0;           // in Figures::states
  std::vector<std::uint32_t> names;  // of its cities in Figures::names, its own first
  std::array<std::uint64_t, kKindCount> bytes = {};
  bool kept = false;     // in the cut
  bool added = false;    // since the older release, as are the next three
  bool dropped = false;  // and so not in the database
  bool moved = false;
  bool changed = false;  // another partition

  std::uint64_t allBytes() const { return bytes[0] + bytes[1] + bytes[2]; }
};

struct State {
  std::string abbreviation;
  std::string name;
  std::uint64_t zips = 0;
  std::uint64_t cityNames = 0;
  std::array<std::uint64_t, kKindCount> bytes = {};  // of single ZIP codes
  std::uint64_t shared = 0;                          // of multi-ZIP partitions
  std::uint64_t kept = 0;                            // ZIP codes, as are the next four
  std::uint64_t added = 0, dropped = 0, moved = 0, changed = 0;

  std::uint64_t allBytes() const { return bytes[0] + bytes[1] + bytes[2] + shared; }
};

// Names are texts of the files, which must stay open.
struct Figures {
  std::uint32_t buildStamp = 0;
  std::string version;
  bool isCut = false;
  bool bytesKnown = true;  // false: of a cut without its range file
  bool hasCut = false;
  bool hasChanges = false;
  std::string oldName;
  std::uint32_t oldBuildStamp = 0;
  std::uint64_t cityNames = 0;  // of the database
  std::uint64_t keptZips = 0, keptCityNames = 0;
  std::vector<File> files;
  std::vector<CityName> names;  // of the database, then those of dropped ZIP codes
  std::vector<State> states;    // by abbreviation
  std::vector<Zip> zips;        // ascending
  diff::Changes changes;

  std::uint64_t zipCount() const;  // without the dropped ones
};

Figures collect(const Sources& sources, const Options& options);

}  // namespace statecut::draw
