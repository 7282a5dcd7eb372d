#pragma once
// Names packed as a signed length byte and the characters behind it: streets and firms.

#include <cstdint>

#include "lookup/cache.h"
#include "tables/refpointers.h"

namespace statecut {

// The name whose length byte is at `at`.
const char* packedName(const unsigned char* at, std::int32_t* length);

// A name of a loaded table of `bytes` bytes; null, *length untouched, at or behind its end.
const char* packedNameIn(SlotNumber slot, std::uint32_t offset, std::uint32_t bytes,
                         std::int32_t* length);

// A name on disk, of which the first 99 bytes are there until the next short read; null, *length
// untouched, when it cannot be read.
const char* packedNameOff(std::uint32_t tableRba, std::uint32_t offset, std::int32_t* length,
                          ProcObj* proc);

}  // namespace statecut
