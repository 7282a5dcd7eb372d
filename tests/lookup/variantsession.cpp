#include "variantsession.h"

#include <algorithm>

#include "base/memory.h"
#include "base/stream.h"
#include "tables/dbapi.h"
#include "tables/refpointers.h"

namespace statecut::test {

namespace {

void emptySlots() {
  for (std::size_t slot = 0; slot < kSlotCount; ++slot) {
    const bool pointer = slot != kSlotHashMask && slot != kSlotMilitaryHeader &&
                         slot != kSlotMilitarySecond && slot != kSlotPobZoneCount;
    if (pointer) freeTable(refPointers[slot].table);
  }
  refPointers = {};
}

}  // namespace

Session::Session(const Variant& variant, const std::string& path, const Bytes& file)
    : variant_(variant) {
  proc_.files = &proc_.fileRecord;
  proc_.stats = &proc_.statistics;
  proc_.options = &options_;
  proc_.refControlRec = &record_;
  std::copy_n(file.begin(), RefControlRec::size, record_.bytes.begin());
  proc_.files->reference = streamOpen(path.c_str(), "rb");
  pProcObj = &proc_;
  if (variant.blockBytes != 0) {
    block_.refCache = chConstructCache(variant.blockBytes, variant.entries);
    proc_.cache = &block_;
  }
  switch (variant.mode) {
    case Mode::kMemory:
      load();
      installInLookups(&proc_);
      break;
    case Mode::kDisk:
      emptySlots();
      installOffLookups(&proc_);
      break;
    case Mode::kFirst:
      fresh();
      break;
  }
}

Session::~Session() {
  emptySlots();
  chFreeCache(&block_.refCache);
  streamClose(proc_.files->reference);
  pProcObj = nullptr;
}

void Session::reopen(const std::string& path) {
  streamClose(proc_.files->reference);
  proc_.files->reference = streamOpen(path.c_str(), "rb");
}

void Session::load() {
  emptySlots();
  for (TableReader* reader :
       {dbReadCityData, dbReadCityNames, dbReadCityPhonetics, dbReadZipData, dbReadMultiZipTable,
        dbReadStreetNames, dbReadStreetPhonetics, dbReadStreetStndrdzd, dbReadFirmNames,
        dbReadGenDelivery, dbReadHashedNames})
    reader(proc_.files->reference, &record_, &proc_);
}

void Session::fresh() {
  if (variant_.mode != Mode::kFirst) return;
  emptySlots();
  installInLookups(&proc_);
  installLookups(&proc_);
  streetPhnVariation = {};
  streetStdVariation = {};
  loadForFirst();
}

// The families without First variants are decided as those would: In when their reader succeeds.
void Session::loadForFirst() {
  const auto fails = [this](TableReader* reader) {
    return reader(proc_.files->reference, &record_, &proc_) != 0;
  };
  if (fails(dbReadZipData)) {
    dbGetZipIndex = dbGetZipIndexOff;
    dbGetZipData = dbGetZipDataOff;
    dbGetZipDataFromKey = dbGetZipDataFromKeyOff;
    dbGetCityKeysPtr = dbGetCityKeysPtrOff;
  }
  if (fails(dbReadMultiZipTable)) dbGetMultiZips = dbGetMultiZipsOff;
  if (fails(dbReadCityData)) {
    dbGetMultiZipFinRBA = dbGetMultiZipFinRBAOff;
    dbGetZipFinMltZpRBA = dbGetZipFinMltZpRBAOff;
    dbFindCityData = dbFindCityDataOff;
    dbFindTruncCityData = dbFindTruncCityDataOff;
    dbGetCityData = dbGetCityDataOff;
    dbGetCityZipKeyPtr = dbGetCityZipKeyPtrOff;
    dbGetCityFinKeyPtr = dbGetCityFinKeyPtrOff;
    dbGetCityMultiZipRBAData = dbGetCityMultiZipRBADataOff;
  }
  if (fails(dbReadGenDelivery)) dbGetGenrlDelvry = dbGetGenrlDelvryOff;
}

}  // namespace statecut::test
