#pragma once
// Where the partitions of a release lie, and how they differ from another's.

#include <array>
#include <cstdint>
#include <optional>
#include <unordered_map>

#include "diff/changes.h"
#include "diff/places.h"
#include "diff/release.h"

namespace statecut::diff {

struct Partition {
  std::uint32_t rba = 0;
  std::uint64_t bytes = 0;
};

// Nothing stands for no partition.
class Partitions {
 public:
  explicit Partitions(const Release& release);

  std::optional<Partition> ofZip(std::uint32_t zipKey, Kind kind) const;
  std::optional<Partition> ofCity(std::uint32_t cityKey, Kind kind) const;  // multi-ZIP
  // The multi-ZIP SFH partition of the finance area of a ZIP code or a city.
  std::optional<Partition> ofZipArea(std::uint32_t zipKey) const;
  std::optional<Partition> ofCityArea(std::uint32_t cityKey) const;

 private:
  struct Link {
    std::uint32_t key = 0;
    std::uint32_t rba = 0;
  };

  std::uint32_t zipRba(std::uint32_t zipKey, Kind kind) const;
  std::optional<Link> cityLink(std::uint32_t cityKey, Kind kind) const;
  std::optional<Link> areaLink(std::uint32_t index) const;
  std::optional<Link> cityAreaLink(std::uint32_t cityKey) const;
  std::optional<Partition> shared(const std::optional<Link>& link, Kind kind, bool area) const;
  void measureCut();

  const Release& release_;
  // Of a cut, which holds no sizes: how far it is from each RBA to the next one.
  std::unordered_map<std::uint32_t, std::uint64_t> cutBytes_;
  std::array<std::unordered_map<std::uint32_t, std::uint64_t>, 3> cutZipBytes_;  // by ZIP key
};

// Needs the range files. Compared are the partitions of ZIP codes and cities that are in both.
void comparePartitions(const Comparison& comparison, Changes& changes);

}  // namespace statecut::diff
