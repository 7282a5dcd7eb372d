#pragma once
// Lookups of city names, city data and city phonetic keys.

#include <cstdint>

#include "tables/rows.h"

namespace statecut {

inline constexpr char kCitiesSource[] = "cities";  // source name in log records

// The multi-ZIP record named by the city data record; null for key 0 or above the count.
CityMultiZipRow* dbGetCityMultiZipRBADataIn(const CityDataRow* city);

}  // namespace statecut
