#pragma once
// A database that relations are read from, and the small indexes that their paths need. Each is
// made when it is first asked for. For one thread at a time.

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "reader/database.h"

namespace statecut::relations {

// The offsets at which entries of a packed table begin.
class Starts {
 public:
  explicit Starts(std::size_t bytes) : bits_(bytes / 64 + 1) {}
  void add(std::uint64_t offset) { bits_[offset / 64] |= std::uint64_t{1} << (offset % 64); }
  [[nodiscard]] bool has(std::uint64_t offset) const {
    return offset / 64 < bits_.size() && (bits_[offset / 64] >> (offset % 64) & 1) != 0;
  }

 private:
  std::vector<std::uint64_t> bits_;
};

class Source {
 public:
  // Null, with the reason in `error`. Without a range file (empty) its contents are unknown.
  static std::shared_ptr<Source> open(const std::string& reference, const std::string& range,
                                      Error& error);
  explicit Source(std::shared_ptr<const Database> database) : database_(std::move(database)) {}

  [[nodiscard]] const Database& database() const { return *database_; }

  // Tells the source of a lookup by name: from many on an index of the names pays.
  void countNameLookup();

  // Where names begin. Streets and firms are counted alike.
  [[nodiscard]] const Starts& streetStarts();
  [[nodiscard]] const Starts& firmStarts();
  [[nodiscard]] const Starts& variationStarts(VariationKind kind);

  // Whether the city names are in the order of their states and names, as a sound file has them.
  [[nodiscard]] bool citiesAreSorted();
  // The positions of the names that have a city key, ascending.
  [[nodiscard]] std::span<const std::uint32_t> namesOfCity(std::uint32_t cityKey);

  // A fault of a record of the reference file: names the file, the table and the offset.
  [[nodiscard]] Error damage(const char* table, const void* record, const std::string& what) const;

 private:
  std::shared_ptr<const Database> database_;
  std::uint32_t nameLookups_ = 0;
  std::unique_ptr<Starts> streets_, firms_, phonetics_, standards_;
  std::optional<bool> sorted_;
  std::vector<std::uint32_t> byCity_;      // positions, by city key
  std::vector<std::uint32_t> cityStarts_;  // in byCity_, by city key; one more at the end
};

}  // namespace statecut::relations
