#include "cut/closedbs.h"

#include "base/memory.h"
#include "base/procobj.h"
#include "cut/guards.h"
#include "cut/workstate.h"
#include "tables/refpointers.h"
#include "tables/tolvfree.h"

namespace statecut {

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
  release(multiZipKeys);
  closeOutputs();
  streamClose(pProcObj->files->range);
  pProcObj->files->range = nullptr;
  release(cityNameMap);
  release(cityPhNameMap);
  return 0;
}

}  // namespace statecut
