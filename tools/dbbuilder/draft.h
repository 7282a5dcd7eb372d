#pragma once
// A model in the making: what the steps of makeModel share.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "dbbuilder/model.h"
#include "dbbuilder/places.h"
#include "dbbuilder/profiles.h"
#include "dbbuilder/random.h"

namespace statecut::builder {

struct DraftCity {
  std::string state;
  std::string name;
  std::vector<std::uint16_t> zips;  // keys of the ZIP codes that it serves, ascending
};

struct Draft {
  const ProfileOptions& options;
  std::vector<Place> places;                            // by ZIP key; 0 is a dummy
  std::vector<DraftCity> cities;                        // by city key; 0 is a dummy
  std::vector<std::vector<std::uint16_t>> citiesOfZip;  // by ZIP key; the first is its own city
  std::map<std::vector<std::uint16_t>, std::uint16_t> lists;  // multi-ZIP lists: key by ZIP keys
  Model model;

  // Each step draws from its own numbers, so that a change to one leaves the others alone.
  [[nodiscard]] Random random(std::uint64_t step) const {
    return Random(mix64(options.seed * 2 + 1) + step);
  }
};

// The three digits before the last two.
inline std::uint16_t zipPrefix(std::uint32_t zip) { return static_cast<std::uint16_t>(zip / 100); }

// In this order. Cities, then the records that point at them.
void addCities(Draft& draft);      // cities, citiesOfZip
void addCityTables(Draft& draft);  // names, phonetics, city data, ZIP and finance lists
void addZipTables(Draft& draft);   // ZIP records and bytes, city keys, counties, unique ZIPs, SCFs
void addFinanceAreas(Draft& draft);  // finance records and the keys of cities and ZIPs
void addMultiZips(Draft& draft);     // multi-ZIP lists and records
void addNames(Draft& draft);         // streets, variations, firms
void addSmallTables(Draft& draft);   // patterns, urbanizations, general delivery, military, zones
void addRange(Draft& draft);         // partitions and both control records

}  // namespace statecut::builder
