#pragma once
// Table readers: each loads whole tables of an open reference file into their refPointers slots
// and returns 0 or its own negative code (logged). Slots of earlier tables stay filled. A read that
// leaves the stream in error has failed. The stream must not be in error before.

#include <cstdint>

#include "../base/procobj.h"
#include "../base/stream.h"
#include "../dbfiles/controlrec.h"

namespace statecut {

using TableReader = std::int32_t(Stream* file, const RefControlRec* controlRecord, ProcObj* proc);

TableReader dbReadPatternTables;    // -1
TableReader dbReadCityData;         // -2. Deliberate: -5 for its last table
TableReader dbReadCityNames;        // -3
TableReader dbReadCityByState;      // -3. Deliberate: as the city names
TableReader dbReadCityPhonetics;    // -4
TableReader dbReadZipData;          // -5
TableReader dbReadUniqueZips;       // -6
TableReader dbReadCountyData;       // -7
TableReader dbReadURBNames;         // -8, or -5 for its second table
TableReader dbReadURBMultiZip;      // -5
TableReader dbReadURBVariations;    // -9
TableReader dbReadStreetNames;      // -10
TableReader dbReadStreetPhonetics;  // -11
TableReader dbReadStreetStndrdzd;   // -12
TableReader dbReadFirmNames;        // -13
TableReader dbReadGenDelivery;      // -14
TableReader dbReadSCFTable;         // -15
TableReader dbReadMultiZipTable;    // -16
TableReader dbReadBytesTables;      // -17; also when one is not in the file: an RBA of 0, bytes
TableReader dbReadHashedNames;      // -18
TableReader dbReadMilitaryTable;    // -19; does not test its RBA for 0
TableReader dbReadPOBZone;          // -20; does not test its RBA for 0

// The tables that a cut always needs, in memory. 0 or -1.
TableReader dbReadStateCutRefDb;

// Reads `length` bytes (100 when 0 or above 100) at `rba` of the context's reference file into a
// static 100-byte buffer and sets *out to it. The buffer is overwritten by the next call.
void dbReadRefRBA(std::uint32_t rba, unsigned char** out, std::int32_t length, ProcObj* proc);

}  // namespace statecut
