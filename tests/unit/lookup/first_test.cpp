#include "base/memory.h"
#include "dbfiles/apiutil.h"
#include "lookupfixture.h"

namespace statecut::test {

namespace {

constexpr std::uint32_t kTooMany = 0x10000000;  // records of 26 bytes or more: not allocated

class FirstCall : public SmallDatabase {
 protected:
  void start() {
    open();
    installLookups(&proc_);
  }
  bool namesOff() const {
    return proc_.pfnFindCityIndex == dbFindCityHashOff &&
           proc_.pfnFindTruncCityIndex == dbFindTruncCityIdxOff &&
           proc_.pfnGetCityUSPS == dbGetCityUSPSOff &&
           proc_.pfnGetCityUSPSwc == dbGetCityUSPSOffwc &&
           proc_.pfnSeqSearchCity == seqSearchCityOff && dbFindCity == dbFindCityOff &&
           dbFindTruncCity == dbFindTruncCityOff;
  }
  const std::uint32_t* variation(const char* name) {
    count_ = 0;
    return proc_.pfnFindStreetVar(name, 2, nullptr, 0, 0, &flag_, &count_);
  }
  std::int8_t flag_ = 0;
  std::int32_t count_ = 0;
  std::int32_t length_ = 0;
  std::int32_t index_ = 0;
};

TEST_F(FirstCall, OpeningInstallsTheFirstVariants) {
  open();
  const std::string file = path("city.dir");
  dbInitLookups();
  ASSERT_EQ(dbOpenRefDB(&proc_, path("missing").c_str()), nullptr);
  EXPECT_EQ(proc_.pfnGetCityUSPS, nullptr);
  Stream* stream = dbOpenRefDB(&proc_, file.c_str());
  ASSERT_NE(stream, nullptr);
  streamClose(stream);
  EXPECT_EQ(proc_.pfnGetCityUSPS, dbGetCityUSPSFirst);
  EXPECT_EQ(proc_.pfnFindStreetVar, dbFindStreetVarFirst);
  EXPECT_EQ(dbFindCity, dbFindCityFirst);
  EXPECT_EQ(dbFindTruncCity, dbFindTruncCityFirst);
  EXPECT_EQ(dbFindCityPh, dbFindCityPhFirst);
  EXPECT_EQ(findStreetVartn, findStreetVartnIn);
  EXPECT_EQ(dbGetZipIndex, nullptr) << "the ZIP family is set by nobody";
}

TEST_F(FirstCall, NullPointersCountAsFirst) {
  open();
  EXPECT_EQ(nameOf(dbFindCityIn("TX", "AUSTIN", 6)), "AUSTIN");
  EXPECT_EQ(proc_.pfnFindCityIndex, dbFindCityHashIn);
  const std::uint32_t key = 2;
  EXPECT_EQ(nameOf(dbGetCityName(&key)), "AUSTIN");
  EXPECT_EQ(proc_.pfnGetCityUSPS, dbGetCityUSPS);
}

TEST_F(FirstCall, NameByKeyLoadsAndSwitchesItsPair) {
  start();
  EXPECT_EQ(nameOf(proc_.pfnGetCityUSPSwc(2)), "AUSTIN");
  EXPECT_EQ(proc_.pfnGetCityUSPS, dbGetCityUSPS);
  EXPECT_EQ(proc_.pfnGetCityUSPSwc, dbGetCityUSPS);
  EXPECT_EQ(proc_.pfnSeqSearchCity, seqSearchCityFirst);
  EXPECT_NE(refPointers[kSlotCityNames].table, nullptr);
}

TEST_F(FirstCall, NamesThatCannotBeAllocatedSwitchTheFamilyToDisk) {
  word(RefControlRec::cityNamesCount.at, kTooMany);
  start();
  EXPECT_EQ(nameOf(proc_.pfnGetCityUSPS(2)), "AUSTIN");
  EXPECT_TRUE(namesOff());
  EXPECT_EQ(proc_.pfnFindCityNameIdx, dbFindCityNameIdxFirst);
}

TEST_F(FirstCall, EveryMemberOfTheNamesFamilySwitchesItToDisk) {
  word(RefControlRec::cityNamesCount.at, kTooMany);
  start();
  EXPECT_EQ(proc_.pfnFindCityIndex("TX", "AUSTIN", 6), 2);
  EXPECT_TRUE(namesOff());
  installLookups(&proc_);
  proc_.pfnFindTruncCityIndex("TX", "AUSTIN", 6);
  EXPECT_TRUE(namesOff());
  installLookups(&proc_);
  EXPECT_EQ(proc_.pfnSeqSearchCity("TX", "AUSTIN", startsWith, 0), 3);
  EXPECT_TRUE(namesOff());
  installLookups(&proc_);
  dbFindTruncCity("TX", "AUSTIN", 6);
  EXPECT_TRUE(namesOff());
  installLookups(&proc_);
  EXPECT_EQ(proc_.pfnFindCityNameIdx("TXAUSTIN", 8, &proc_), 2);
  EXPECT_TRUE(namesOff());
  EXPECT_EQ(proc_.pfnFindCityNameIdx, dbFindCityNameIdxOff);
}

TEST_F(FirstCall, FailedReadSwitchesToDiskButALaterFirstCallTakesTheUnreadTable) {
  start();
  proc_.files->reference = unseekable();
  proc_.pfnGetCityUSPS(2);
  EXPECT_TRUE(namesOff());
  EXPECT_NE(refPointers[kSlotCityNames].table, nullptr);
  dbGetCityUSPSFirst(2);
  EXPECT_EQ(proc_.pfnGetCityUSPS, dbGetCityUSPS);
}

TEST_F(FirstCall, NamesWithoutAnIndexAreSearchedOnDisk) {
  start();
  const std::uint32_t slots = record().get(RefControlRec::hashOverflowCount);
  record().set(RefControlRec::hashOverflowCount, 0x40000000);  // not allocated
  EXPECT_EQ(proc_.pfnFindCityIndex("TX", "AUSTIN", 6), 2);
  EXPECT_EQ(proc_.pfnFindCityIndex, dbFindCityHashOff);
  EXPECT_EQ(proc_.pfnFindCityNameIdx, dbFindCityNameIdxOff);
  EXPECT_EQ(proc_.pfnGetCityUSPS, dbGetCityUSPSFirst);
  EXPECT_EQ(refPointers[kSlotHashTable].table, nullptr);
  record().set(RefControlRec::hashOverflowCount, slots);
}

TEST_F(FirstCall, FindCityDoesNotLoadItsTable) {
  start();
  proc_.pfnFindCityIndex = dbFindCityHashOff;
  EXPECT_EQ(nameOf(dbFindCity("TX", "AUSTIN", 6)), "AUSTIN");
  EXPECT_EQ(dbFindCity, dbFindCityOff);
  EXPECT_EQ(refPointers[kSlotCityNames].table, nullptr);
  dbFindCity = dbFindCityFirst;
  EXPECT_EQ(dbFindCity("TX", "NOWHERE", 7), nullptr);
  EXPECT_EQ(dbFindCity, dbFindCityIn) << "a miss leaves the In variant";
}

TEST_F(FirstCall, FindCityUsesATableThatIsLoaded) {
  start();
  const CityNameRow* record = dbFindCity("TX", "AUSTIN", 6);
  EXPECT_EQ(dbFindCity, dbFindCityIn);
  EXPECT_EQ(reinterpret_cast<const unsigned char*>(record),
            refPointers[kSlotCityNames].table + 2 * 34);
}

TEST_F(FirstCall, PhoneticsLoadOrGoToDisk) {
  start();
  ASSERT_NE(dbFindCityPh("TX", "WK", 2, &count_, &index_), nullptr);
  EXPECT_EQ(dbFindCityPh, dbFindCityPhIn);
  EXPECT_EQ(proc_.pfnFindCityPhIdx, findCityPhIdx);
  EXPECT_EQ(proc_.pfnGetCityPh, dbGetCityPhFirst);
  ASSERT_NE(proc_.pfnGetCityPh(1), nullptr);
  EXPECT_EQ(proc_.pfnGetCityPh, dbGetCityPh);

  emptySlots();
  installLookups(&proc_);
  record().set(RefControlRec::cityPhoneticsCount, kTooMany);
  ASSERT_NE(dbFindCityPh("TX", "WK", 2, &count_, &index_), nullptr);
  EXPECT_EQ(dbFindCityPh, dbFindCityPhOff);
  EXPECT_EQ(proc_.pfnFindCityPhIdx, findCityPhIdxOff);
  EXPECT_EQ(proc_.pfnGetCityPh, dbGetCityPhOff);
  installLookups(&proc_);
  EXPECT_EQ(proc_.pfnFindCityPhIdx("TXWK", 4, &proc_), 2);
  EXPECT_EQ(dbFindCityPh, dbFindCityPhOff);
  installLookups(&proc_);
  ASSERT_NE(proc_.pfnGetCityPh(1), nullptr);
  EXPECT_EQ(proc_.pfnFindCityPhIdx, findCityPhIdxOff);
}

TEST_F(FirstCall, PhoneticsWithoutAnIndexSwitchTheIndexAlone) {
  start();
  record().set(RefControlRec::hashTableCount, 0x80000000);
  dbFindCityPh("TX", "WK", 2, &count_, &index_);
  EXPECT_EQ(proc_.pfnFindCityPhIdx, findCityPhIdxOff);
  EXPECT_EQ(dbFindCityPh, dbFindCityPhIn);
}

TEST_F(FirstCall, StreetNamesLoadOrGoToDisk) {
  start();
  EXPECT_EQ(proc_.pfnFindStreetKey("BETA", 4, &proc_), 6);
  EXPECT_EQ(proc_.pfnFindStreetKey, dbFindStreetKey);
  ASSERT_NE(proc_.pfnGetStreetNameUSPSwc(0, &length_, &proc_), nullptr);
  EXPECT_EQ(proc_.pfnGetStreetNameUSPS, dbGetStreetNameUSPS);
  EXPECT_EQ(proc_.pfnGetStreetNameUSPSwc, dbGetStreetNameUSPS);

  const auto off = [&] {
    return proc_.pfnFindStreetKey == dbFindStreetKeyOff &&
           proc_.pfnGetStreetNameUSPS == dbGetStreetNameUSPSCacheOff &&
           proc_.pfnGetStreetNameUSPSwc == dbGetStreetNameUSPSCacheOffwc;
  };
  emptySlots();
  record().set(RefControlRec::streetNamesBytes, 0x80000000);
  installLookups(&proc_);
  EXPECT_EQ(proc_.pfnFindStreetKey("BETA", 4, &proc_), 6);
  EXPECT_TRUE(off());
  installLookups(&proc_);
  ASSERT_NE(proc_.pfnGetStreetNameUSPS(6, &length_, &proc_), nullptr);
  EXPECT_EQ(length_, 4);
  EXPECT_TRUE(off());
}

TEST_F(FirstCall, FirmsLoadOrGoToDisk) {
  start();
  EXPECT_EQ(proc_.pfnFindFirm("ACME", 4, &proc_), 0);
  EXPECT_EQ(proc_.pfnFindFirm, dbFindFirm);
  EXPECT_EQ(proc_.pfnGetFirmName, dbGetFirmNameFirst);
  ASSERT_NE(proc_.pfnGetFirmName(0, &length_, &proc_), nullptr);
  EXPECT_EQ(proc_.pfnGetFirmName, dbGetFirmName);

  emptySlots();
  record().set(RefControlRec::firmsBytes, 0x80000000);
  installLookups(&proc_);
  EXPECT_EQ(proc_.pfnFindFirm("ACME", 4, &proc_), 0);
  EXPECT_EQ(proc_.pfnFindFirm, dbFindFirmOff);
  EXPECT_EQ(proc_.pfnGetFirmName, dbGetFirmNameCacheOff);
  installLookups(&proc_);
  ASSERT_NE(proc_.pfnGetFirmName(0, &length_, &proc_), nullptr);
  EXPECT_EQ(proc_.pfnFindFirm, dbFindFirmOff);
}

TEST_F(FirstCall, VariationsLoadBothSets) {
  start();
  ASSERT_NE(variation("BT"), nullptr);
  EXPECT_EQ(count_, 3);
  EXPECT_EQ(proc_.pfnFindStreetVar, dbFindStreetVar);
  EXPECT_EQ(proc_.pfnFindStreetVarIdx, dbFindStreetVarIdx);
  EXPECT_EQ(findStreetVartn, findStreetVartnIn);
  EXPECT_EQ(streetPhnVariation.index, refPointers[kSlotStreetPhonetics].table);
  EXPECT_EQ(streetStdVariation.list, refPointers[kSlotStreetStandardAmb].table);
  EXPECT_EQ(streetPhnVariation.count, 2u);
}

TEST_F(FirstCall, FailedPhoneticSetSendsVariationsToDisk) {
  start();
  record().set(RefControlRec::streetPhoneticsBytes, 0x80000000);
  ASSERT_NE(variation("BT"), nullptr);
  EXPECT_EQ(count_, 3);
  EXPECT_EQ(findStreetVartn, findStreetVartnOff);
  EXPECT_EQ(proc_.pfnFindStreetVarIdx, dbFindStreetVarIdxOff);
  EXPECT_EQ(streetPhnVariation.index, record().bytes.data() + 92);
  EXPECT_EQ(streetPhnVariation.list, record().bytes.data() + 88);
  EXPECT_EQ(streetStdVariation.index, record().bytes.data() + 104);
  EXPECT_EQ(streetStdVariation.list, record().bytes.data() + 100);
  EXPECT_EQ(refPointers[kSlotStreetStandards].table, nullptr) << "the second stage is not reached";
}

TEST_F(FirstCall, FailedStandardSetReleasesThePhoneticSet) {
  start();
  record().set(RefControlRec::streetStandardsBytes, 0x80000000);
  EXPECT_EQ(proc_.pfnFindStreetVarIdx(4, "BT", 2, &proc_), 7);
  EXPECT_EQ(proc_.pfnFindStreetVarIdx, dbFindStreetVarIdxOff);
  EXPECT_EQ(refPointers[kSlotStreetPhonetics].table, nullptr);
  EXPECT_EQ(refPointers[kSlotStreetPhoneticAmb].table, nullptr);
  EXPECT_EQ(refPointers[kSlotHashTable].table, nullptr) << "the third stage is not reached";
  EXPECT_EQ(findStreetVartn, findStreetVartnIn) << "switched by the other first call alone";
}

TEST_F(FirstCall, VariationsWithoutAnIndexSwitchTheIndexAlone) {
  start();
  record().set(RefControlRec::hashTableCount, 0x80000000);
  variation("BT");
  EXPECT_EQ(proc_.pfnFindStreetVarIdx, dbFindStreetVarIdxOff);
  EXPECT_EQ(findStreetVartn, findStreetVartnIn);
}

TEST_F(FirstCall, NullProcessingObjectDecidesNothing) {
  start();
  EXPECT_EQ(dbFindStreetFirst("BETA", 4, nullptr), -1);
  EXPECT_EQ(dbGetFirmNameFirst(0, &length_, nullptr), nullptr);
  pProcObj = nullptr;
  EXPECT_EQ(dbGetCityUSPSFirst(1), nullptr);
  EXPECT_EQ(dbFindCityFirst("TX", "AUSTIN", 6), nullptr);
  pProcObj = &proc_;
  EXPECT_EQ(proc_.pfnGetCityUSPS, dbGetCityUSPSFirst);
}

}  // namespace

}  // namespace statecut::test
