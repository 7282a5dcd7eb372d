#pragma once
// The short forms: one lookup with an answer for people. Each prints to `out`; false: not found.
// The sets of the form must be in memory. Texts are tried as given, then in capitals.

#include <cstdint>
#include <ostream>
#include <string>

#include "lookup/session.h"

namespace statecut::query {

inline constexpr std::uint32_t kZipFormSets = kZipSet | kCitySet | kCityNameSet | kZipBytesSet;
inline constexpr std::uint32_t kCityFormSets = kZipSet | kCitySet | kCityNameSet | kHashSet;
inline constexpr std::uint32_t kStreetFormSets =
    kStreetNameSet | kStreetPhoneticSet | kStreetStandardSet | kHashSet;
inline constexpr std::uint32_t kFirmFormSets = kFirmSet | kHashSet;

// A ZIP code with its cities, its partitions and their sizes, which a cut does not know.
bool showZip(Session& session, std::int32_t zip, std::ostream& out);
// A city with its ZIP codes, or the cities that a pattern with a star fits.
bool showCity(Session& session, const std::string& state, const std::string& name,
              std::ostream& out);
// A street by its name, and the streets that a variation stands for.
bool showStreet(Session& session, const std::string& name, std::ostream& out);
bool showFirm(Session& session, const std::string& name, std::ostream& out);

}  // namespace statecut::query
