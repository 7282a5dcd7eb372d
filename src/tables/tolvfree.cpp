#include "tables/tolvfree.h"

#include <cstring>
#include <span>

#include "base/memory.h"
#include "dbfiles/controlrec.h"
#include "log/utllgmsg.h"
#include "tables/directory.h"

namespace statecut {

std::uint32_t referenceCount = 0;

namespace {

constexpr std::uint32_t kReasonNotFreed = 20999;

struct Held {
  TableId table;
  const char* name;  // logged when the slot is empty
};

enum class After : std::uint8_t { kKeepPointers, kZeroSlots };

std::int32_t release(ProcObj* proc, std::span<const Held> tables, After after) {
  for (const Held& held : tables) {
    unsigned char*& table = refPointers[tableLine(held.table).slot].table;
    if (table == nullptr) {
      memoryWarn(held.name, proc);
      continue;
    }
    freeTable(table);
    if (after == After::kZeroSlots) table = nullptr;
  }
  return 0;
}

// Deliberate, for the count of users lets no second release reach them: most release functions
// leave the freed pointers in place.
template <std::size_t N>
std::int32_t releaseKeeping(ProcObj* proc, const Held (&tables)[N]) {
  return release(proc, tables, After::kKeepPointers);
}

template <std::size_t N>
std::int32_t releaseZeroing(ProcObj* proc, const Held (&tables)[N]) {
  return release(proc, tables, After::kZeroSlots);
}

bool isOff(const ProcObj* proc, const char (OptionsRecord::*setting)[4]) {
  return proc != nullptr && proc->options != nullptr &&
         std::strncmp(proc->options->*setting, "OFF", 3) == 0;
}

}  // namespace

void memoryWarn(const char* name, ProcObj* proc) {
  if (proc == nullptr) return;
  utlWriteLogMsg(proc, kTolvfree, __LINE__, kDebug, "Debug Message", kReasonNotFreed, kMsgNotFreed,
                 name == nullptr ? "" : name);
}

std::int32_t free1(ProcObj* proc) {
  return releaseKeeping(proc, {{TableId::kStreetPatterns, "Street Pattern"},
                               {TableId::kPobPatterns, "Street POB"},
                               {TableId::kRrPatterns, "Street Rural Route"}});
}

std::int32_t free2(ProcObj* proc) {
  return releaseKeeping(proc, {{TableId::kCityData, "City Data"},
                               {TableId::kCityMultiZipLists, "City Multi Zip"},
                               {TableId::kCityMultiFinanceLists, "City Multi Finance"},
                               {TableId::kCityMultiZipRbas, "City Multi Zip RBAs"}});
}

std::int32_t free3(ProcObj* proc) {
  return releaseKeeping(proc, {{TableId::kCityNames, "City Name Index"}});
}

std::int32_t free4(ProcObj* proc) {
  return releaseKeeping(proc, {{TableId::kCityPhonetics, "City Name Index Phonetic"}});
}

std::int32_t free5(ProcObj* proc) {
  return releaseKeeping(proc, {{TableId::kZipData, "Zip Code Data"},
                               {TableId::kZipIndex, "Zip Code Index"},
                               {TableId::kZipMultiCityLists, "Zip Multi City Data"},
                               {TableId::kFinMultiZipRbas, "Zip Finance Multi Zip Data"}});
}

std::int32_t free6(ProcObj* proc) {
  return releaseKeeping(proc, {{TableId::kUniqueZips, "Unique Zip Index"}});
}

std::int32_t free7(ProcObj* proc) {
  return releaseKeeping(proc, {{TableId::kCounties, "County Data"}});
}

std::int32_t free8(ProcObj* proc) {
  return releaseKeeping(proc, {{TableId::kUrbs, "URB Data USPS"},
                               {TableId::kUrbMultiZipLists, "URB MultiZip Data USPS"}});
}

std::int32_t free9(ProcObj* proc) {
  return releaseKeeping(proc, {{TableId::kUrbVariations, "URB Data Variations"}});
}

std::int32_t free10(ProcObj* proc) {
  if (isOff(proc, &OptionsRecord::streetNamesMemory)) return 0;
  return releaseKeeping(proc, {{TableId::kStreetNames, "Street Name Index USPS"}});
}

std::int32_t free11(ProcObj* proc) {
  return releaseZeroing(proc, {{TableId::kStreetPhoneticAmb, "Street Name Data Phonetic"},
                               {TableId::kStreetPhonetics, "Street Name Index Phonetic"}});
}

std::int32_t free12(ProcObj* proc) {
  return releaseZeroing(proc, {{TableId::kStreetStandardAmb, "Street Name Data Standard"},
                               {TableId::kStreetStandards, "Street Name Index Standard"}});
}

std::int32_t free13(ProcObj* proc) {
  if (isOff(proc, &OptionsRecord::firmMemory)) return 0;
  return releaseKeeping(proc, {{TableId::kFirms, "Firm Data"}});
}

std::int32_t free14(ProcObj* proc) {
  return releaseKeeping(proc, {{TableId::kGeneralDelivery, "General Delivery"}});
}

std::int32_t free16(ProcObj* proc) {
  return releaseKeeping(proc, {{TableId::kMultiZipLists, "Multi Zip Table"}});
}

std::int32_t free18(ProcObj* proc) {
  dropHashMask();
  return releaseZeroing(
      proc, {{TableId::kHashTable, "Hash Names"}, {TableId::kHashOverflow, "Hash Overflow"}});
}

std::int32_t freeMilitary(ProcObj* proc) {
  // Deliberate: only the count of the first part is tested; it owns the block of both.
  if (le::get<2>(refPointers[kSlotMilitaryHeader].bytes) == 0) return 0;
  refPointers[kSlotMilitarySecond].table = nullptr;  // points into the block of the first part
  return releaseZeroing(proc, {{TableId::kMilitary, "Military Alias"}});
}

std::int32_t freePBZones(ProcObj* proc) {
  if (le::get<2>(refPointers[kSlotPobZoneCount].bytes) == 0) return 0;
  return releaseKeeping(proc, {{TableId::kPobZones, "PO BOX Zones"}});
}

std::int32_t dbTerminate(ProcObj* proc) {
  if (proc == nullptr) return -1;
  freeTable(proc->rngControlRec);
  proc->rngControlRec = nullptr;

  // Deliberate: a count of 0 wraps, and a call too many releases nothing more.
  const std::uint32_t before = referenceCount--;
  if (static_cast<std::int32_t>(before) >= 2 || static_cast<std::int32_t>(referenceCount) < 0)
    return 0;

  // Deliberate: the tables by state, the SCF and the bytes tables are left to closeDbs.
  constexpr TableRelease* kReleases[] = {free1,  free10, free13, free2,  free3,        free4,
                                         free5,  free6,  free7,  free8,  free9,        free11,
                                         free12, free14, free16, free18, freeMilitary, freePBZones};
  for (TableRelease* const releaseTables : kReleases)
    if (releaseTables(proc) != 0) return -1;

  if (proc->refControlRec == nullptr) {
    memoryWarn("Control Record", proc);
  } else {
    freeTable(proc->refControlRec);  // Deliberate: the pointer stays, as those of the tables do
  }
  return 0;
}

}  // namespace statecut
