#pragma once
// The multi-ZIP partitions that cities and finance areas of the cut share: found, copied once
// each, and the records that name them pointed at the copies.

#include <cstdint>

namespace statecut {

std::int32_t buildMltZpEntryPoints();  // 0 or the first non-zero status of the steps below

// Each 0, or -1 (logged).
std::int32_t createCityList();
std::int32_t buildSFHMultiZip();  // renumbers the name links first
std::int32_t buildPOBMultiZip();
std::int32_t buildRRMultiZip();
std::int32_t writeMultiZip();
std::int32_t updateSFHMultiZip();
std::int32_t updatePOBMultiZip();
std::int32_t updateRRMultiZip();

// The second half of renumbering the names, behind the hash index (refupdate.h): the name links of
// the city data records change here, to the names' new positions, or to 0 in a city without a name
// in the cut.
void renumberNameLinks();

}  // namespace statecut
