#pragma once
// What a database is about: ZIP codes with their state, city and county.

#include <cstdint>
#include <string>
#include <vector>

namespace statecut::builder {

struct Place {
  std::uint32_t zip = 0;  // 1 to 99999
  std::string state;      // two letters
  std::string city;       // at most 28 characters
  std::string county;     // may be empty; at most 27 are stored
  // As a CSV file has them, unchecked; the builder stores none. Empty: unknown.
  std::string latitude = {};
  std::string longitude = {};
};

// Reads a CSV file whose header begins with zip,state,city,county and goes on with
// latitude,longitude or with anything else; further columns are left alone. False with a message
// that names the file, and the line where there is one, when the file can't be read or a row is not
// in order: a bad ZIP code, state or city, a ZIP code seen before, too many rows for 16-bit keys,
// or no row at all.
bool readPlaces(const std::string& csvPath, std::vector<Place>& places, std::string& error);

// The places of the two profiles that need no CSV file.
std::vector<Place> tinyPlaces();
std::vector<Place> smallPlaces();

}  // namespace statecut::builder
