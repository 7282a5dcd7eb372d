#pragma once
// What the steps of a cut share. One cut a process, one thread. Each member says who fills it and
// who reads it; all are set by the cut, none by the lookups.

#include <cstdint>

#include "base/procobj.h"
#include "base/stream.h"
#include "base/tablearena.h"
#include "dbfiles/controlrec.h"
#include "tables/directory.h"
#include "tables/rows.h"

namespace statecut {

// The multi-ZIP partition of one key.
struct MultiZipKey {
  std::uint32_t oldRba;  // in the source range database
  std::int32_t bytes;    // 0 = not used by the cut
  std::uint32_t newRba;  // in the cut range database, 0 = not written
};

// The outputs: opened by cutstate, written by blockcopy and refwrite (the range file by rangeplan,
// too), watched and closed by openfiles.
extern Stream* newRefDb;
extern Stream* newRangeDb;

// The block of the tables that a cut loads: made by refcopy, and by the next cut anew, as some of
// them stay to the end of the process.
extern TableArena loadedTables;

// Bytes written to each output, the RBA of what comes next. totalBytes: set to 0 by refcopy, raised
// by refwrite and blockcopy, read by both where a table's RBA is stored. totalRngBytes: set by
// refwrite to the control record's bytes, raised by rangecopy, read by it and multizip.
extern std::uint32_t totalBytes;
extern std::uint32_t totalRngBytes;

// Releases what a finished cut holds: the loaded tables, both control records, the work tables, the
// output streams and the range input (the reference input is closed by then). Always 0.
std::int32_t closeDbs();

// The work tables, null until made; owned here, released by closeDbs.
// Made and filled by zipselect, read by it for every walk over the ZIP codes, written by refwrite.
extern ZipIndexRow* scZipCodeIndex;  // kZipCodes entries
// Made and filled by refupdate, written by refwrite; scCityNames also read by multizip. In each but
// the one by state record 0 is blank.
extern CityNameRow* scCityNames;
extern CityByStateRow* scCityNamesByState;
extern CityPhoneticRow* scCityPhonetics;
// Made, filled and read by multizip: per city its names in the cut, 0 = not in the cut; per
// multi-ZIP key its partition, for one kind of partition at a time.
extern std::uint32_t* cityKeys;
extern MultiZipKey* multiZipKeys;
// Source position to new position, 0 = dropped. Made, filled and read by refupdate; that of the
// names also read by multizip.
extern std::uint32_t* cityNameMap;
extern std::uint32_t* cityPhNameMap;

// The source's name counts, which bound the maps: taken by refupdate before the control record's
// own become the cut's, read by it and, those of the names, by multizip.
extern std::uint32_t sourceCityNames;
extern std::uint32_t sourceCityPhonetics;

// A word of the reference control record, 0 without a record.
template <std::size_t At>
std::uint32_t refWord(Num<At, 4> field) {
  const RefControlRec* record = refRecord();
  return record == nullptr ? 0 : record->get(field);
}

template <std::size_t At>
void setRefWord(Num<At, 4> field, std::uint32_t value) {
  if (RefControlRec* record = refRecord(); record != nullptr) record->set(field, value);
}

}  // namespace statecut
