// The second half of the cut reference file and the lines of the release.

#include <algorithm>

#include "base/le.h"
#include "support/secondcut_state.h"

namespace statecut::secondcut {

// The RBA is set even when there is no table to write.
void Cut::writeTable(const std::string& name, const Table& table, std::size_t rbaField) {
  writeBytes(
      name,
      Bytes(table.bytes.begin(), table.bytes.begin() + static_cast<std::ptrdiff_t>(table.size)),
      rbaField);
}

void Cut::writeBytes(const std::string& name, const Bytes& bytes, std::size_t rbaField) {
  setWord(rbaField, totalBytes);
  out.ref.append(name, bytes.data(), bytes.size());
  totalBytes += static_cast<std::uint32_t>(bytes.size());
}

void Cut::writeReference() {
  setWord(24, word(24) | 4);
  setWord(28, in.stamp);
  writeTable("city data", cityData, 32);
  writeTable("city multi-ZIP records", cityMultiZip, 260);
  writeTable("finance multi-ZIP records", finance, 264);
  writeBytes("city names", newNames, 44);
  // As many records as names were kept, whatever number was found by state.
  Bytes byState;
  for (const Bytes& record : newByState)
    byState.insert(byState.end(), record.begin(), record.end());
  byState.resize(newNames.size() - 34);
  writeBytes("city names by state", byState, 48);
  writeBytes("city phonetics", newPhonetics, 52);
  writeTable("ZIP records", zips, 56);
  Bytes index(200000);
  for (std::size_t zip = 0; zip < zipIndex.size(); ++zip)
    le::put<2>(&index[2 * zip], zipIndex[zip]);
  writeBytes("ZIP index", index, 64);
  for (const unsigned field : {240U, 244U, 280U, 284U, 288U, 292U, 296U, 300U, 304U})
    setWord(field, 0);
  writeTable("hash slots", hashSlots, 308);
  writeTable("hash overflow", hashOverflow, 316);
  if (word(324) != 0) {
    Bytes table = militaryHeader;
    table.insert(table.end(), military.begin(), military.end());
    writeBytes("military aliases", table, 324);
  }
  if (word(328) != 0) {
    Bytes table = zoneHeader;
    table.insert(table.end(), zones.begin(), zones.end());
    writeBytes("PO Box zones", table, 328);
  }
  // The final record is two bytes shorter than the placeholder.
  std::copy(refRecord.begin(), refRecord.begin() + 842, out.ref.bytes.begin());
}

// Tables that are missing at the release, in the order in which they are released.
void Cut::reportNeverLoaded() {
  const auto missing = [this](const std::string& name) {
    log.record(kDebug, "tolvfree", kAnyLine, 20999, "Debug Message",
               "Could not free memory for " + name + ".");
  };
  if (!cityData.loaded) missing("City Data");
  missing("City Multi Zip");
  missing("City Multi Finance");
  if (!cityMultiZip.loaded) missing("City Multi Zip RBAs");
  if (!zips.loaded) missing("Zip Code Data");
  missing("Zip Multi City Data");
  if (!finance.loaded) missing("Zip Finance Multi Zip Data");
}

}  // namespace statecut::secondcut
