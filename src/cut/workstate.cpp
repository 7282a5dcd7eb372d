#include "cut/workstate.h"

#include "base/memory.h"
#include "cut/multizipkeys.h"
#include "cut/openfiles.h"
#include "tables/refpointers.h"
#include "tables/tolvfree.h"

namespace statecut {

Stream* newRefDb = nullptr;
Stream* newRangeDb = nullptr;
TableArena loadedTables;
std::uint32_t totalBytes = 0;
std::uint32_t totalRngBytes = 0;

ZipIndexRow* scZipCodeIndex = nullptr;
CityNameRow* scCityNames = nullptr;
CityByStateRow* scCityNamesByState = nullptr;
CityPhoneticRow* scCityPhonetics = nullptr;
std::uint32_t* cityKeys = nullptr;
MultiZipKey* multiZipKeys = nullptr;
std::uint32_t* cityNameMap = nullptr;
std::uint32_t* cityPhNameMap = nullptr;

std::uint32_t sourceCityNames = 0;
std::uint32_t sourceCityPhonetics = 0;

namespace {

template <typename T>
void release(T*& block) {
  freeTable(block);
  block = nullptr;
}

}  // namespace

std::int32_t closeDbs() {
  free2(pProcObj);
  free3(pProcObj);
  free4(pProcObj);
  // The tables that no release function covers.
  for (const SlotNumber slot :
       {kSlotCityNamesByState, kSlotScfs, kSlotZipBytes, kSlotSfhMultiZipBytes,
        kSlotPobMultiZipBytes, kSlotRrMultiZipBytes}) {
    release(refPointers[slot].table);
  }
  free5(pProcObj);
  release(pProcObj->refControlRec);
  release(pProcObj->rngControlRec);
  release(scZipCodeIndex);
  release(scCityNames);
  release(scCityNamesByState);
  release(scCityPhonetics);
  release(cityKeys);
  touchedMultiZipKeys = {};
  release(multiZipKeys);
  closeOutputs();
  streamClose(pProcObj->files->range);
  pProcObj->files->range = nullptr;
  release(cityNameMap);
  release(cityPhNameMap);
  return 0;
}

}  // namespace statecut
