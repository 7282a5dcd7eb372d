#pragma once
// Complete, valid models that are a function of their arguments alone.

#include <cstdint>
#include <vector>

#include "dbbuilder/model.h"
#include "dbbuilder/places.h"

namespace statecut::builder {

struct ProfileOptions {
  std::uint64_t seed = 1;
  std::uint64_t rangeBytes = 0;          // of all partitions, about
  std::uint32_t streets = 0;             // minStreets to maxStreets (words.h)
  std::uint32_t firms = 0;               // 1 to maxFirms
  std::uint32_t severalCitiesEvery = 0;  // one ZIP code in so many has several cities
  bool military = true;
  bool poBoxZones = true;
};

ProfileOptions tinyOptions();      // for tinyPlaces()
ProfileOptions smallOptions();     // for smallPlaces()
ProfileOptions nationalOptions();  // for the places of a CSV file

// A database of these places (at least one, at most 65534, distinct ZIP codes, in any order). The
// record of every feature is there whatever the places: each directory word but those of the two
// optional tables is other than 0.
Model makeModel(std::vector<Place> places, const ProfileOptions& options);

}  // namespace statecut::builder
