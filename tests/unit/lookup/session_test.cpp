// Opening and closing a database for lookups.

#include <statecut/session.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "dbfiles/apiutil.h"
#include "lookupfixture.h"

namespace statecut::test {
namespace {

constexpr std::array kModes = {LookupMode::kIn, LookupMode::kOff, LookupMode::kFirst};

class SessionTest : public SmallDatabase {
 protected:
  SessionTest() {
    word(RefControlRec::typeFlags.at, kTypeReference);
    LookupFixture::open();
    pProcObj = nullptr;  // as in a program that has only the session
    settings_.ref = path("city.dir");
  }

  bool opens() { return session_.open(settings_, error_); }

  SessionSettings settings_;
  std::string error_;
  Session session_;
};

TEST_F(SessionTest, AnswersAreTheSameInEveryMode) {
  for (const LookupMode mode : kModes) {
    SCOPED_TRACE(static_cast<int>(mode));
    settings_.mode = mode;
    ASSERT_TRUE(opens()) << error_;
    std::uint32_t key = 0;
    const ZipDataRow* found = dbGetZipData(73301, &key);
    ASSERT_NE(found, nullptr);
    const ZipDataRow zip = *found;
    EXPECT_EQ(key, 2u);
    EXPECT_EQ(keysOf(dbGetCityKeysPtr(&zip), 3), (std::vector<std::uint32_t>{12, 13, 14}));
    EXPECT_EQ(nameOf(dbFindCity("TX", "AUSTIN", 6)), "AUSTIN");
    EXPECT_EQ(dbFindCity("TX", "AUST", 4), nullptr);
    EXPECT_EQ(dbGetCityData(2)->get(CityDataRow::nameUsps), 2u);
    EXPECT_EQ(session_.proc()->pfnFindFirm("ACME", 4, session_.proc()), 0);
    EXPECT_NE(dbGetGenrlDelvry(1), nullptr);
    std::int8_t flag = 0;
    std::int32_t count = 0;
    const std::uint32_t* streets =
        session_.proc()->pfnFindStreetVar("MAIN", 4, nullptr, 0, kStandardVariation, &flag, &count);
    ASSERT_NE(streets, nullptr);
    EXPECT_EQ(streets[0], 42u);
  }
}

TEST_F(SessionTest, CloseLeavesNoTableAndNoAnswer) {
  ASSERT_TRUE(opens()) << error_;
  ASSERT_NE(dbGetZipIndex(73301), -1);
  ASSERT_NE(streetStdVariation.index, nullptr);
  session_.close();
  EXPECT_EQ(pProcObj, nullptr);
  EXPECT_EQ(dbGetZipIndex(73301), -1);
  EXPECT_EQ(dbFindCity("TX", "AUSTIN", 6), nullptr);
  EXPECT_EQ(streetStdVariation.index, nullptr);
  for (const RefSlot& slot : refPointers) EXPECT_EQ(slot.table, nullptr);
  session_.close();
}

TEST_F(SessionTest, OnlyOneIsOpenAtATime) {
  Session other;
  ASSERT_TRUE(opens()) << error_;
  EXPECT_FALSE(other.open(settings_, error_));
  EXPECT_EQ(error_, "another session is open");
  EXPECT_NE(dbGetZipIndex(73301), -1) << "the first one goes on";
  session_.close();
  EXPECT_TRUE(other.open(settings_, error_)) << error_;
}

TEST_F(SessionTest, OpeningAgainClosesFirst) {
  ASSERT_TRUE(opens()) << error_;
  settings_.ref = path("missing.dir");
  EXPECT_FALSE(opens());
  EXPECT_EQ(error_, "cannot open " + settings_.ref + ": No such file or directory");
  EXPECT_EQ(pProcObj, nullptr);
}

TEST_F(SessionTest, AFileThatIsNoReferenceDatabaseIsRefused) {
  ASSERT_TRUE(opens()) << error_;
  word(RefControlRec::typeFlags.at, kTypeReference | kTypeRange);
  settings_.ref = write("both.dir", file_);
  EXPECT_FALSE(opens());
  EXPECT_EQ(error_, settings_.ref + " is not a reference database");
}

// The ZIP data are said to be larger than any table may be.
class SessionOfUnloadable : public SessionTest {
 protected:
  SessionOfUnloadable() {
    word(RefControlRec::zipDataCount.at, 0xFFFFFFFF);
    settings_.ref = write("large.dir", file_);
  }
};

TEST_F(SessionOfUnloadable, InMemoryRefusesATableThatCannotBeLoaded) {
  EXPECT_FALSE(opens());
  EXPECT_EQ(error_, "cannot load the tables of " + settings_.ref);
  settings_.sets = kCityNameSet | kHashSet;
  EXPECT_TRUE(opens()) << "not asked for: " << error_;
  EXPECT_EQ(nameOf(dbFindCity("TX", "AUSTIN", 6)), "AUSTIN");
  EXPECT_FALSE(session_.prepare(kZipSet));
  EXPECT_FALSE(session_.prepare(kZipSet)) << "tried once, and still not there";
  EXPECT_FALSE(session_.prepare(kZipSet | kCityNameSet));
  EXPECT_EQ(dbGetZipIndex(73301), -1);
  EXPECT_TRUE(session_.prepare(kCitySet));
}

TEST_F(SessionOfUnloadable, NothingOfASetThatFailedIsKept) {
  word(RefControlRec::zipDataCount.at, 5);
  word(RefControlRec::cityMultiZipRbasCount.at, 0xFFFFFFFF);  // the fourth table of its set
  settings_.ref = write("fourth.dir", file_);
  settings_.sets = kCityNameSet;
  for (const LookupMode mode : {LookupMode::kIn, LookupMode::kFirst}) {
    settings_.mode = mode;
    ASSERT_TRUE(opens()) << error_;
    EXPECT_EQ(session_.prepare(kCitySet), mode == LookupMode::kFirst);
    for (const SlotNumber slot : {kSlotCityData, kSlotCityMultiZip, kSlotCityMultiFinance,
                                  kSlotCityMultiZipRbas, kSlotFinMultiZip})
      EXPECT_EQ(refPointers[slot].table, nullptr) << slot;
    EXPECT_EQ(dbGetCityData(1) == nullptr, mode == LookupMode::kIn);
  }
}

TEST_F(SessionTest, ASetThatCouldNotBeReadLeavesNoVariation) {
  settings_.sets = kHashSet | kStreetStandardSet;
  ASSERT_TRUE(opens()) << error_;
  ASSERT_NE(streetStdVariation.index, nullptr);
  Stream* sound = session_.proc()->files->reference;
  session_.proc()->files->reference = unreadable();
  EXPECT_FALSE(session_.prepare(kStreetPhoneticSet));
  session_.proc()->files->reference = sound;
  EXPECT_EQ(refPointers[kSlotStreetPhonetics].table, nullptr);
  EXPECT_EQ(refPointers[kSlotStreetPhoneticAmb].table, nullptr);
  EXPECT_EQ(streetPhnVariation.index, nullptr);
  EXPECT_EQ(streetPhnVariation.list, nullptr);
  EXPECT_NE(streetStdVariation.index, nullptr) << "loaded before";
  std::int8_t flag = 0;
  std::int32_t count = 0;
  EXPECT_EQ(
      session_.proc()->pfnFindStreetVar("MN", 2, nullptr, 0, kPhoneticVariation, &flag, &count),
      nullptr);
}

// Every order of the two close functions of the library and the session's, each called twice.
TEST_F(SessionTest, FilesAreClosedOnceInEveryOrder) {
  Bytes range(RngControlRec::size);
  putWord(range, RngControlRec::typeFlags.at, kTypeRange);
  settings_.rng = write("zip4us.dir", range);
  settings_.mode = LookupMode::kOff;
  std::array order = {0, 0, 1, 1, 2, 2};
  do {
    ASSERT_TRUE(opens()) << error_;
    ASSERT_EQ(dbGetZipIndex(73301), 2);
    for (const int step : order) {
      if (step == 0) dbCloseRefDB();
      if (step == 1) {
        EXPECT_EQ(dbCloseRangeDB(), 0);
      }
      if (step == 2) session_.close();
      if (pProcObj != nullptr && step == 0) {
        EXPECT_EQ(dbGetZipIndex(73301), -1) << "closed";
        int error = 0;
        EXPECT_TRUE(lookupsFailed(&error));
        EXPECT_EQ(error, EBADF);
      }
    }
    EXPECT_EQ(pProcObj, nullptr);
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(SessionOfUnloadable, FirstTakesTheOffVariantOfATableThatCannotBeLoaded) {
  settings_.mode = LookupMode::kFirst;
  ASSERT_TRUE(opens()) << error_;
  EXPECT_EQ(dbGetZipIndex, dbGetZipIndexOff);
  EXPECT_EQ(dbGetCityData, dbGetCityDataIn);
  EXPECT_EQ(dbGetZipIndex(73301), 2);
}

TEST_F(SessionTest, OnDiskReadsThroughTheCache) {
  settings_.mode = LookupMode::kOff;
  settings_.cached = true;
  settings_.cacheBlock = 64;
  EXPECT_FALSE(opens()) << "no entries";
  EXPECT_EQ(error_, "cannot build a cache of 0 blocks of 64 bytes");
  settings_.cacheEntries = 8;
  ASSERT_TRUE(opens()) << error_;
  ASSERT_NE(dbGetZipDataFromKey(1), nullptr);
  const std::uint32_t before = session_.proc()->cache->found;
  ASSERT_NE(dbGetZipDataFromKey(1), nullptr);
  EXPECT_GT(session_.proc()->cache->found, before);
}

TEST_F(SessionTest, TraceGoesToTheLog) {
  settings_.log = path("trace.log");
  settings_.trace = true;
  ASSERT_TRUE(opens()) << error_;
  EXPECT_NE(dbGetZipIndex(73301), -1);
  session_.close();
  const Bytes log = contents("trace.log");
  const std::string text(log.begin(), log.end());
  EXPECT_NE(text.find("Entering dbGetZipIndexIn"), std::string::npos);
  EXPECT_NE(text.find("Leaving dbGetZipIndexIn"), std::string::npos);
}

TEST_F(SessionTest, ALogOverADatabaseIsRefused) {
  ASSERT_TRUE(opens()) << error_;
  settings_.log = settings_.ref;
  const Bytes before = contents("city.dir");
  EXPECT_FALSE(opens());
  EXPECT_EQ(error_, "the log would be written into a database: " + settings_.log);
  EXPECT_EQ(contents("city.dir"), before);
}

TEST_F(SessionTest, ARangeFileOfAnotherPairIsNoticed) {
  Bytes range(RngControlRec::size);
  putWord(range, RngControlRec::typeFlags.at, kTypeRange);
  settings_.rng = write("zip4us.dir", range);
  ASSERT_TRUE(opens()) << error_;
  EXPECT_TRUE(session_.pairMatches());
  putWord(range, RngControlRec::buildTimeStamp.at, 1);
  settings_.rng = write("other.dir", range);
  ASSERT_TRUE(opens()) << error_;
  EXPECT_FALSE(session_.pairMatches());
  settings_.rng = write("short.dir", Bytes(10));
  EXPECT_FALSE(opens());
  EXPECT_EQ(error_, settings_.rng + " is not a range database");
  settings_.rng = path("missing.dir");
  EXPECT_FALSE(opens());
}

}  // namespace
}  // namespace statecut::test
