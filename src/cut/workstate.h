#pragma once
// What the steps of a cut share: the output streams, the running byte counts, the work tables and
// the source control record. One cut a process, one thread.

#include <cstdint>

#include "base/procobj.h"
#include "base/stream.h"
#include "dbfiles/controlrec.h"
#include "tables/rows.h"

namespace statecut {

inline constexpr std::uint32_t kZipCodes = 100000;
inline constexpr std::uint32_t kZipIndexBytes = 2 * kZipCodes;

// An entry of a ZIP code index: a ZIP key, 0 = no such ZIP code.
struct ZipIndexRow : Row<2> {
  static constexpr Num<0, 2> zipKey{"zipKey", "position in the ZIP data table"};
  static constexpr auto fields = std::tuple(zipKey);
};
STATECUT_ROW(ZipIndexRow, 2);

// The multi-ZIP partition of one key.
struct MultiZipKey {
  std::uint32_t oldRba;  // in the source range database
  std::int32_t bytes;    // 0 = not used by the cut
  std::uint32_t newRba;  // in the cut range database, 0 = not written
};

extern Stream* newRefDb;
extern Stream* newRangeDb;
extern std::uint32_t totalBytes;     // written to newRefDb: the RBA of the next table
extern std::uint32_t totalRngBytes;  // written to newRangeDb: the RBA of the next partition

// Work tables, null until made; owned here, released by closeDbs.
extern ZipIndexRow* scZipCodeIndex;         // kZipCodes entries
extern CityNameRow* scCityNames;            // record 0 blank
extern CityByStateRow* scCityNamesByState;  // no blank record
extern CityPhoneticRow* scCityPhonetics;    // record 0 blank
extern std::uint32_t* cityKeys;             // per city: its names in the cut, 0 = not in the cut
extern MultiZipKey* multiZipKeys;           // by multi-ZIP key
extern std::uint32_t* cityNameMap;          // source position to new position, 0 = dropped
extern std::uint32_t* cityPhNameMap;        // the same for the city phonetics

// The source's name counts, which bound the maps; the control record's own become the cut's.
extern std::uint32_t sourceCityNames;
extern std::uint32_t sourceCityPhonetics;

// The reference control record in memory, or null.
[[nodiscard]] inline RefControlRec* refControl() {
  return pProcObj == nullptr ? nullptr : pProcObj->refControlRec;
}

// A word of the reference control record, 0 without a record.
template <std::size_t At>
std::uint32_t refWord(Num<At, 4> field) {
  const RefControlRec* record = refControl();
  return record == nullptr ? 0 : record->get(field);
}

template <std::size_t At>
void setRefWord(Num<At, 4> field, std::uint32_t value) {
  if (RefControlRec* record = refControl(); record != nullptr) record->set(field, value);
}

}  // namespace statecut
