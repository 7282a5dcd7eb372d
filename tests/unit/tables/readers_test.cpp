// Every table of every reader that follows the common pattern: what is loaded, logged and returned.
#include <algorithm>
#include <string>
#include <vector>

#include "unit/tables/tablefixture.h"

namespace statecut {
namespace {

using test::Bytes;
using test::Lines;

struct Table {
  TableReader* reader;
  const char* readerName;
  std::size_t slot;
  const char* name;
  std::size_t rbaAt;
  std::size_t countAt;  // 0: none
  std::uint32_t unit;
  std::int32_t code;
  bool warns;
  const char* allocName;
  const char* readName;
  bool fromContext;
};

#define READER(name) name, #name
#define SAME(name) name, name

// In the order in which the readers load them; literals, independent of the loader's own table.
const std::vector<Table> kTables = {
    {READER(dbReadPatternTables), 0, "SFH Pattern Table", 120, 212, 18, -1, false,
     SAME("SFH Pattern Table"), false},
    {READER(dbReadPatternTables), 1, "POB Pattern Table", 124, 216, 18, -1, false,
     SAME("POB Pattern Table"), false},
    {READER(dbReadPatternTables), 2, "RR Pattern Table", 128, 220, 18, -1, false,
     SAME("RR Pattern Table"), false},
    {READER(dbReadCityData), 3, "City Data Table", 32, 188, 36, -2, false, SAME("City Data"),
     false},
    {READER(dbReadCityData), 4, "City Multi Zip Table", 36, 180, 6, -2, false,
     SAME("City Multiple Zips"), false},
    {READER(dbReadCityData), 5, "City Multiple Finance Areas", 40, 184, 2, -2, false,
     SAME("City Multiple Finance Areas"), false},
    {READER(dbReadCityData), 6, "City Multiple Zip RBAs", 260, 256, 28, -2, false,
     SAME("City Multiple Zip RBAs"), false},
    {READER(dbReadCityData), 13, "Zip Finance Multi Zip Data", 264, 268, 8, -5, false,
     SAME("Zip Finance Multi Zip Data"), false},
    {READER(dbReadCityNames), 7, "City Names Table", 44, 132, 34, -3, true, SAME("City Names"),
     false},
    {READER(dbReadCityPhonetics), 9, "City Name Phonetics", 52, 136, 26, -4, true,
     SAME("City Name Phonetics"), false},
    {READER(dbReadZipData), 10, "Zip Code Data", 56, 192, 52, -5, false, SAME("Zip Code Data"),
     false},
    {READER(dbReadZipData), 12, "Zip Multi City Data", 60, 196, 4, -5, false,
     SAME("Zip Multi City Data"), false},
    {READER(dbReadZipData), 11, "Zip Code Index", 64, 0, 200000, -5, false, SAME("Zip Code Index"),
     false},
    {READER(dbReadUniqueZips), 14, "Unique Zips", 232, 236, 12, -6, false, SAME("Unique ZIPs"),
     false},
    {READER(dbReadCountyData), 15, "County Data", 68, 200, 32, -7, false, SAME("County Data"),
     false},
    {READER(dbReadURBNames), 16, "URB names", 72, 204, 32, -8, false, SAME("URB names"), false},
    {READER(dbReadURBNames), 17, "Urb MultiZips", 276, 272, 2, -5, false, SAME("Urb MultiZips"),
     false},
    {READER(dbReadURBMultiZip), 17, "Urb MultiZips", 276, 272, 2, -5, false, SAME("Urb MultiZips"),
     false},
    {READER(dbReadURBVariations), 18, "URB Variations", 76, 208, 32, -9, false,
     SAME("URB Variations"), false},
    {READER(dbReadStreetNames), 19, "Street Names", 80, 144, 1, -10, true, SAME("Street Names"),
     true},
    {READER(dbReadStreetPhonetics), 21, "Ambiguous Data for Street Phonetics", 88, 156, 1, -11,
     true, SAME("Ambiguous Data for Street Phonetics"), false},
    {READER(dbReadStreetPhonetics), 22, "Phonetic Street Names", 92, 152, 1, -11, true,
     SAME("Phonetic Street Names"), true},
    {READER(dbReadStreetStndrdzd), 24, "Ambiguous Data for Standardized Streets", 100, 168, 1, -12,
     false, SAME("Ambiguous Data for Standrdzed Streets"), false},
    {READER(dbReadStreetStndrdzd), 25, "Standard Street Names", 104, 164, 1, -12, false,
     "Standrdzed Street Names", "Standardzed Street Names", true},
    {READER(dbReadFirmNames), 27, "Firm Names", 112, 176, 1, -13, true, SAME("Firm Names"), true},
    {READER(dbReadGenDelivery), 29, "General Delivery", 228, 224, 4, -14, false, "partition 14",
     "General Delivery", false},
    {READER(dbReadSCFTable), 30, "SCF Table", 244, 240, 4, -15, false, SAME("SCF Table"), false},
    {READER(dbReadMultiZipTable), 31, "Multi Zip Table", 248, 252, 4, -16, false,
     SAME("Multi Zip Table"), false},
    {READER(dbReadBytesTables), 33, "Zip Bytes Table", 280, 192, 12, -17, false,
     SAME("Zip Bytes Table"), false},
    {READER(dbReadBytesTables), 34, "Multi-Zip SFH Bytes Table", 284, 296, 8, -17, false,
     SAME("Multi-Zip SFH Bytes Table"), false},
    {READER(dbReadBytesTables), 35, "Multi-Zip POB Bytes Table", 288, 300, 8, -17, false,
     SAME("Multi-Zip POB Bytes Table"), false},
    {READER(dbReadBytesTables), 36, "Multi-Zip RR Bytes Table", 292, 304, 8, -17, false,
     SAME("Multi-Zip RR Bytes Table"), false},
    {READER(dbReadHashedNames), 37, "Hash Table", 308, 312, 7, -18, true, SAME("Hash Table"),
     false},
    {READER(dbReadHashedNames), 38, "Hash Overflow", 316, 320, 6, -18, true, SAME("Hash Overflow"),
     false}};

constexpr std::uint32_t kCount = 3;
class ReaderTest : public test::TableFixture, public ::testing::WithParamInterface<std::size_t> {
 protected:
  // Every table stands somewhere: at RBA 0 some are none.
  ReaderTest() {
    for (const Table& table : kTables) word(table.rbaAt, 1);
  }

  const Table& table_ = kTables[GetParam()];
  RefControlRec own_{};  // the context's, where it is another one

  // The tables of this test's reader, and those that it loads before the tested one.
  std::vector<Table> readersTables() const {
    std::vector<Table> found;
    for (const Table& table : kTables)
      if (table.reader == table_.reader) found.push_back(table);
    return found;
  }
  std::vector<Table> earlier() const {
    std::vector<Table> found = readersTables();
    found.erase(std::find_if(found.begin(), found.end(),
                             [this](const Table& table) { return table.slot == table_.slot; }),
                found.end());
    return found;
  }
  static std::uint32_t sizeOf(const Table& table, std::uint32_t count) {
    return table.unit * (table.countAt == 0 ? 1 : count);
  }
};

TEST_P(ReaderTest, LoadsEveryTableFromItsRbaIntoItsSlot) {
  Bytes file(1000, 0xEE);
  Lines expected;
  for (const Table& table : readersTables()) {
    word(table.rbaAt, static_cast<std::uint32_t>(file.size()));
    if (table.countAt != 0) word(table.countAt, kCount);
    const std::uint32_t size = sizeOf(table, kCount);
    file.insert(file.end(), size, static_cast<unsigned char>(table.slot + 1));
    expected.push_back(info(table.name, static_cast<std::int32_t>(size)));
  }
  file.insert(file.end(), 1000, 0xEE);
  EXPECT_EQ(table_.reader(holding(file), &record_, &proc_), 0);
  EXPECT_EQ(records(), expected);
  for (const Table& table : readersTables()) {
    const std::uint32_t size = sizeOf(table, kCount);
    Bytes wanted(size, static_cast<unsigned char>(table.slot + 1));
    wanted.resize(size + kTableSlack);
    EXPECT_EQ(held(table.slot, size + kTableSlack), wanted) << table.name;
  }
}

TEST_P(ReaderTest, FailedAllocationEndsTheReader) {
  if (table_.countAt == 0) return;  // its size is fixed and always fits
  word(table_.countAt, test::kTooMany);
  refPointers[table_.slot].table = static_cast<unsigned char*>(allocTable(1));
  unsigned char* const old = refPointers[table_.slot].table;
  EXPECT_EQ(table_.reader(holding(Bytes(10)), &record_, &proc_), table_.code);
  freeTable(old);  // overwritten, not released
  EXPECT_EQ(refPointers[table_.slot].table, nullptr);
  Lines expected;
  for (const Table& table : earlier())
    expected.push_back(info(table.name, static_cast<std::int32_t>(sizeOf(table, 0))));
  expected.push_back(table_.warns ? allocWarning(table_.allocName) : allocError(table_.allocName));
  EXPECT_EQ(records(), expected);
}

TEST_P(ReaderTest, FailedReadEndsTheReaderAndKeepsTheBuffer) {
  if (table_.countAt != 0) word(table_.countAt, kCount);
  // Tables of size 0 are read before it without a seek.
  EXPECT_EQ(table_.reader(unseekable(), &record_, &proc_), table_.code);
  EXPECT_NE(refPointers[table_.slot].table, nullptr);
  Lines expected;
  for (const Table& table : earlier()) {
    EXPECT_NE(refPointers[table.slot].table, nullptr) << table.name;
    expected.push_back(info(table.name, 0));
  }
  expected.push_back(info(table_.name, static_cast<std::int32_t>(sizeOf(table_, kCount))));
  expected.push_back(table_.warns ? readWarning(table_.readName) : readError(table_.readName));
  EXPECT_EQ(records(), expected);
}

// The read answers the count that was asked for; only the stream tells that it failed.
TEST_P(ReaderTest, ReadThatLeavesTheStreamInErrorIsThisTablesFailure) {
  if (table_.countAt != 0) word(table_.countAt, kCount);
  EXPECT_EQ(table_.reader(holding(Bytes(10)), &record_, &proc_), 0);
  emptySlots();
  records();
  Stream* const file = unreadable();
  EXPECT_EQ(table_.reader(file, &record_, &proc_), table_.code);
  EXPECT_TRUE(streamError(file));
  EXPECT_NE(refPointers[table_.slot].table, nullptr);
  const std::uint32_t size = sizeOf(table_, kCount);
  const std::string requested =
      "DBG;apiutil;20002;DB Read Error;Requested Bytes: " + std::to_string(size) +
      ", Actual bytes read: 0";
  Lines expected;
  for (const Table& table : earlier()) expected.push_back(info(table.name, 0));
  expected.insert(expected.end(),
                  {info(table_.name, static_cast<std::int32_t>(size)), requested,
                   "ERR;apiutil;20002;DB Read Error;errno=21:Is a directory", requested,
                   table_.warns ? readWarning(table_.readName) : readError(table_.readName)});
  EXPECT_EQ(records(), expected);
}

TEST_P(ReaderTest, TraceSwitchBracketsTheReader) {
  Stream* const file = holding(Bytes(10));
  EXPECT_EQ(table_.reader(file, &record_, &proc_), 0);
  for (const std::string& line : records()) EXPECT_EQ(line.substr(0, 5), "INFO;");
  emptySlots();
  options_.debugSwitch = 'D';
  EXPECT_EQ(table_.reader(file, &record_, &proc_), 0);
  Lines lines = records();
  EXPECT_EQ(lines.front(), trace(std::string("Entering ") + table_.readerName));
  EXPECT_EQ(lines.back(), trace(std::string("Leaving ") + table_.readerName));
  emptySlots();
  if (table_.countAt != 0) word(table_.countAt, kCount);
  EXPECT_EQ(table_.reader(unseekable(), &record_, &proc_), table_.code);
  EXPECT_EQ(records().front(), trace(std::string("Entering ") + table_.readerName));
}

TEST_P(ReaderTest, TableBehindTheEndOfTheFileIsZero) {
  for (const Table& table : readersTables()) {
    word(table.rbaAt, 5000000);
    if (table.countAt != 0) word(table.countAt, kCount);
  }
  EXPECT_EQ(table_.reader(holding(Bytes(10, 0xEE)), &record_, &proc_), 0);
  const std::uint32_t size = sizeOf(table_, kCount);
  EXPECT_EQ(held(table_.slot, size), Bytes(size));
}

TEST_P(ReaderTest, NullContextFails) {
  Stream* const file = holding(Bytes(10));
  const std::int32_t code = table_.reader(file, &record_, nullptr);
  EXPECT_EQ(code, readersTables().front().code);
  EXPECT_EQ(refPointers[table_.slot].table, nullptr);
  EXPECT_EQ(records(), Lines());
}

TEST_P(ReaderTest, NullControlRecordIsAFailedRead) {
  const Table first = readersTables().front();
  EXPECT_EQ(table_.reader(holding(Bytes(10)), nullptr, &proc_), first.code);
  EXPECT_EQ(refPointers[first.slot].table, nullptr);
  EXPECT_EQ(records(),
            Lines({first.warns ? readWarning(first.readName) : readError(first.readName)}));
}

TEST_P(ReaderTest, ByteLengthsOfTheContextAreThoseOfItsOwnRecord) {
  if (table_.countAt == 0) return;
  proc_.refControlRec = &own_;
  word(table_.countAt, 2);
  le::put<4>(own_.bytes.data() + table_.countAt, 5);
  EXPECT_EQ(table_.reader(holding(Bytes(10)), &record_, &proc_), 0);
  const std::uint32_t size = sizeOf(table_, table_.fromContext ? 5 : 2);
  const Lines found = records();
  EXPECT_EQ(
      std::count(found.begin(), found.end(), info(table_.name, static_cast<std::int32_t>(size))),
      1);
  proc_.refControlRec = nullptr;
  emptySlots();
  const std::int32_t code = table_.reader(holding(Bytes(10)), &record_, &proc_);
  if (table_.fromContext) {
    EXPECT_EQ(code, table_.code);
    EXPECT_EQ(refPointers[table_.slot].table, nullptr);
    EXPECT_EQ(records().back(),
              table_.warns ? readWarning(table_.readName) : readError(table_.readName));
  }
}

std::string nameOf(const ::testing::TestParamInfo<std::size_t>& info) {
  const Table& table = kTables[info.param];
  return std::string(table.readerName) + "Slot" + std::to_string(table.slot);
}

INSTANTIATE_TEST_SUITE_P(Tables, ReaderTest, ::testing::Range<std::size_t>(0, kTables.size()),
                         nameOf);

}  // namespace
}  // namespace statecut
