// The tables that a cut always needs, and short reads at an RBA.
#include <string>
#include <vector>

#include "unit/tables/tablefixture.h"

namespace statecut {
namespace {

using test::Bytes;
using test::Lines;

class WholeLoadTest : public test::TableFixture {
 protected:
  WholeLoadTest() { word(132, 1); }
};

TEST_F(WholeLoadTest, LoadsTheTablesOfACutInOrder) {
  EXPECT_EQ(dbReadStateCutRefDb(holding(Bytes(10)), &record_, &proc_), 0);
  EXPECT_EQ(records(),
            Lines({info("City Data Table", 0), info("City Multi Zip Table", 0),
                   info("City Multiple Finance Areas", 0), info("City Multiple Zip RBAs", 0),
                   info("Zip Finance Multi Zip Data", 0), info("City Names Table", 34),
                   info("City Name Phonetics", 0), info("Zip Code Data", 0),
                   info("Zip Multi City Data", 0), info("Zip Code Index", 200000),
                   info("City State Names Table", 0), info("Zip Bytes Table", 0),
                   info("Multi-Zip SFH Bytes Table", 0), info("Multi-Zip POB Bytes Table", 0),
                   info("Multi-Zip RR Bytes Table", 0)}));
}

TEST_F(WholeLoadTest, EachFailureIsMinusOneAndKeepsWhatIsLoaded) {
  for (const std::size_t at : {188U, 132U, 136U, 192U, 296U}) {
    const std::uint32_t before = le::get<4>(record_.bytes.data() + at);
    word(at, test::kTooMany);
    EXPECT_EQ(dbReadStateCutRefDb(holding(Bytes(10)), &record_, &proc_), -1) << at;
    EXPECT_EQ(refPointers[3].table != nullptr, at != 188);
    EXPECT_EQ(refPointers[36].table, nullptr);
    emptySlots();
    word(at, before);
  }
  EXPECT_EQ(dbReadStateCutRefDb(holding(Bytes(10)), &record_, &proc_), 0);
  EXPECT_EQ(dbReadStateCutRefDb(holding(Bytes(10)), &record_, nullptr), -1);
}

TEST_F(WholeLoadTest, AReadErrorEndsItBeforeTheNextReader) {
  EXPECT_EQ(dbReadStateCutRefDb(holding(Bytes(10)), &record_, &proc_), 0);
  emptySlots();
  Stream* const folder = streamOpen(".", "rb");
  EXPECT_EQ(dbReadStateCutRefDb(folder, &record_, &proc_), -1);
  EXPECT_TRUE(streamError(folder));
  EXPECT_NE(refPointers[kSlotCityNames].table, nullptr);
  EXPECT_EQ(refPointers[kSlotCityPhonetics].table, nullptr);
  streamClose(folder);
}

TEST_F(WholeLoadTest, IsTracedAroundItsReaders) {
  options_.debugSwitch = 'D';
  EXPECT_EQ(dbReadStateCutRefDb(holding(Bytes(10)), &record_, &proc_), 0);
  const Lines found = records();
  EXPECT_EQ(found[0], trace("Entering dbReadStateCutRefDb"));
  EXPECT_EQ(found[1], trace("Entering dbReadCityData"));
  EXPECT_EQ(found.back(), trace("Leaving dbReadStateCutRefDb"));
}

class RefRbaTest : public test::TableFixture {
 protected:
  // The bytes of the static buffer that a read of `length` at offset 0 changed.
  std::size_t changed(std::int32_t length) {
    unsigned char* out = nullptr;
    proc_.files->reference = holding(Bytes(300, 0x11), "ones");
    dbReadRefRBA(0, &out, 100, &proc_);
    proc_.files->reference = holding(Bytes(300, 0x22), "twos");
    dbReadRefRBA(0, &out, length, &proc_);
    std::size_t count = 0;
    while (count < 100 && out[count] == 0x22) ++count;
    for (std::size_t i = count; i < 100; ++i) EXPECT_EQ(out[i], 0x11);
    return count;
  }
};

TEST_F(RefRbaTest, LengthsOf0AndAbove100Read100Bytes) {
  EXPECT_EQ(changed(0), 100U);
  EXPECT_EQ(changed(250), 100U);
  EXPECT_EQ(changed(100), 100U);
  EXPECT_EQ(changed(40), 40U);
}

TEST_F(RefRbaTest, NegativeLengthReadsNothing) { EXPECT_EQ(changed(-1), 0U); }

TEST_F(RefRbaTest, BufferIsSharedAndKeptOnAFailedRead) {
  unsigned char* first = nullptr;
  unsigned char* second = nullptr;
  proc_.files->reference = holding(Bytes({1, 2, 3, 4}));
  dbReadRefRBA(1, &first, 2, &proc_);
  EXPECT_EQ(first[0], 2);
  EXPECT_EQ(first[1], 3);
  proc_.files->reference = unseekable();
  dbReadRefRBA(0, &second, 2, &proc_);
  EXPECT_EQ(second, first);
  EXPECT_EQ(first[0], 2);
  dbReadRefRBA(0, nullptr, 2, &proc_);
  second = nullptr;
  dbReadRefRBA(0, &second, 2, nullptr);
  EXPECT_EQ(second, first);
  EXPECT_EQ(records(), Lines());
}

TEST_F(RefRbaTest, IsTraced) {
  options_.debugSwitch = 'D';
  unsigned char* out = nullptr;
  proc_.files->reference = holding(Bytes(1));
  dbReadRefRBA(0, &out, 1, &proc_);
  EXPECT_EQ(records(), Lines({trace("Entering dbReadRefRBA"), trace("Leaving dbReadRefRBA")}));
}

}  // namespace
}  // namespace statecut
