#pragma once
// Lookups of firm names and general delivery entries.

#include <cstdint>

#include "../base/procobj.h"
#include "../tables/rows.h"

namespace statecut {

// The offset of an exact firm name, or -1 (41 bytes or more: -1).
FindKey dbFindFirm, dbFindFirmOff, dbFindFirmFirst;

// The name at an offset, as the street names.
GetName dbGetFirmName, dbGetFirmNameCacheOff, dbGetFirmNameFirst;

// An entry by the low 16 bits of its key; null for 0 or above the count.
GeneralDeliveryRow* dbGetGenrlDelvryIn(std::uint32_t key);
GeneralDeliveryRow* dbGetGenrlDelvryOff(std::uint32_t key);

}  // namespace statecut
