// The readers and the dumps of the two control records.
#include <string>
#include <vector>

#include "base/memory.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/dbaccess.h"
#include "unit/dbfiles/dumpwords.h"
#include "unit/dbfiles/records.h"

namespace statecut {
namespace {

using namespace test;
using Lines = std::vector<std::string>;

enum Reader { kProgram, kLibrary };

const char* sourceOf(Reader reader) { return reader == kProgram ? "dbaccess" : "apiutil"; }

class ControlRecTest : public test::LogFixture {
 protected:
  const RefControlRec* readRef(Reader reader, Stream* file) {
    freeTable(proc_.refControlRec);
    proc_.refControlRec = nullptr;
    return reader == kProgram ? ReadRefControlRec(file, &proc_) : dbReadRefControlRec(file, &proc_);
  }
  const RngControlRec* readRng(Reader reader, Stream* file) {
    freeTable(proc_.rngControlRec);
    proc_.rngControlRec = reader == kProgram ? ReadRangeControlRec(file, &proc_)
                                             : dbReadRangeControlRec(file, &proc_);
    return proc_.rngControlRec;
  }
  // The records of reading a reference record, without the source and the size line.
  Lines emptyLines(Reader reader, const Bytes& record) {
    EXPECT_NE(readRef(reader, holding(record)), nullptr);
    const std::string source = std::string(";") + sourceOf(reader) + ";";
    Lines lines = records();
    EXPECT_FALSE(lines.empty());
    if (!lines.empty()) lines.erase(lines.begin());
    for (std::string& line : lines) {
      EXPECT_NE(line.find(source), std::string::npos) << line;
      line.replace(line.find(source), source.size(), ";");
    }
    return lines;
  }
  // The texts of a dump, each checked to be a debug record of it.
  Lines dumped(void (*dump)(ProcObj*)) {
    dump(&proc_);
    const std::string prefix = "DBG;apiutil;0;Debug Control Record;";
    Lines lines = records();
    for (std::string& line : lines) {
      EXPECT_EQ(line.substr(0, prefix.size()), prefix);
      line.erase(0, prefix.size());
    }
    return lines;
  }
  Lines dumpedRef(const Bytes& record) {
    EXPECT_NE(readRef(kProgram, holding(record)), nullptr);
    records();
    return dumped(dbDebugControlRecord);
  }
};

Lines emptyPartitions(const std::vector<int>& partitions) {
  Lines lines;
  for (const int partition : partitions)
    lines.push_back("INFO;0;Info Message;partition " + std::to_string(partition) + " is empty.");
  lines.push_back("DBG;0;Debug Message;There are " + std::to_string(partitions.size()) +
                  " empty partitions in the ");
  lines.push_back("DBG;0;Debug Message;reference database.");
  lines.push_back("DBG;0;Debug Message;See log file.");
  return lines;
}

TEST_F(ControlRecTest, FullRecordIsReadAndKept) {
  const Bytes bytes = refRecord();
  for (const Reader reader : {kProgram, kLibrary}) {
    const RefControlRec* const record = readRef(reader, holding(bytes));
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(Bytes(record->bytes.begin(), record->bytes.end()), bytes);
    EXPECT_EQ(proc_.refControlRec, record);
    EXPECT_EQ(records(), Lines({std::string("INFO;") + sourceOf(reader) + ";0;Info Message;" +
                                test::sizeLine("Reference Control Record", 844)}));
  }
}

TEST_F(ControlRecTest, RecordShorterThan844BytesFails) {
  Bytes bytes = refRecord();
  ASSERT_NE(readRef(kProgram, holding(bytes)), nullptr);
  ASSERT_NE(readRef(kLibrary, holding(bytes)), nullptr);
  records();
  bytes.pop_back();
  for (const Reader reader : {kProgram, kLibrary}) {
    EXPECT_EQ(readRef(reader, holding(bytes)), nullptr);
    EXPECT_EQ(records(), Lines({std::string("INFO;") + sourceOf(reader) + ";0;Info Message;" +
                                    test::sizeLine("Reference Control Record", 844),
                                "ERR;apiutil;20045;RefDB Read Err;Could not read Reference db "
                                "partition: control record"}));
    // The library's unread buffer stays in the context, the program's does not.
    EXPECT_EQ(proc_.refControlRec != nullptr, reader == kLibrary);
  }
}

TEST_F(ControlRecTest, UnseekableFileFails) {
  for (const Reader reader : {kProgram, kLibrary}) {
    EXPECT_EQ(readRef(reader, unseekable()), nullptr);
    EXPECT_EQ(records().back(),
              "ERR;apiutil;20045;RefDB Read Err;Could not read Reference db partition: control "
              "record");
    EXPECT_EQ(readRng(reader, unseekable()), nullptr);
    EXPECT_EQ(records().back(),
              "ERR;apiutil;20044;RangeDB Read Err;Could not read Range db record: Range Control "
              "Record");
  }
}

TEST_F(ControlRecTest, FolderFails) {
  for (const Reader reader : {kProgram, kLibrary}) {
    EXPECT_EQ(readRef(reader, unreadable()), nullptr);
    EXPECT_EQ(records().size(), 5U);  // size, read error in three records, report
    EXPECT_EQ(readRng(reader, unreadable()), nullptr);
    EXPECT_EQ(records().size(), 4U);
  }
}

TEST_F(ControlRecTest, NullContextFails) {
  Stream* const file = holding(refRecord());
  EXPECT_EQ(ReadRefControlRec(file, nullptr), nullptr);
  EXPECT_EQ(dbReadRefControlRec(file, nullptr), nullptr);
  EXPECT_EQ(ReadRangeControlRec(file, nullptr), nullptr);
  EXPECT_EQ(dbReadRangeControlRec(file, nullptr), nullptr);
  dbDebugControlRecord(nullptr);
  dbDebugRngControlRec(nullptr);
  EXPECT_EQ(records(), Lines());
}

TEST_F(ControlRecTest, ZeroPatternCountsAreOneEmptyPartition) {
  Bytes record = refRecord();
  for (const std::size_t at : {212U, 216U, 220U}) putWord(record, at, 0);
  for (const Reader reader : {kProgram, kLibrary})
    EXPECT_EQ(emptyLines(reader, record), emptyPartitions({1}));
}

TEST_F(ControlRecTest, EachTestedWordMakesItsPartitionEmpty) {
  const std::vector<std::pair<std::size_t, int>> words = {
      {212, 1}, {216, 1}, {220, 1}, {188, 2}, {180, 2}, {184, 2},  {132, 3},  {136, 4}, {192, 5},
      {196, 5}, {236, 6}, {200, 7}, {204, 8}, {208, 9}, {144, 10}, {176, 13}, {224, 14}};
  for (const auto& [at, partition] : words) {
    Bytes record = refRecord();
    putWord(record, at, 0);
    for (const Reader reader : {kProgram, kLibrary})
      EXPECT_EQ(emptyLines(reader, record), emptyPartitions({partition})) << at;
  }
}

TEST_F(ControlRecTest, TheTwoReadersTestDifferentWordsOfPartitions11And12) {
  Bytes ambiguous = refRecord();
  putWord(ambiguous, 156, 0);
  putWord(ambiguous, 168, 0);
  EXPECT_EQ(emptyLines(kProgram, ambiguous), emptyPartitions({11, 12}));
  EXPECT_EQ(emptyLines(kLibrary, ambiguous), Lines());
  Bytes names = refRecord();
  putWord(names, 152, 0);
  putWord(names, 164, 0);
  EXPECT_EQ(emptyLines(kProgram, names), Lines());
  EXPECT_EQ(emptyLines(kLibrary, names), emptyPartitions({11, 12}));
}

TEST_F(ControlRecTest, AllWordsZeroMakeFourteenEmptyPartitions) {
  EXPECT_EQ(emptyLines(kProgram, Bytes(844)),
            emptyPartitions({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}));
}

TEST_F(ControlRecTest, TraceSwitchBracketsTheLibraryReaderAndTheDumps) {
  options_.debugSwitch = 'D';
  ASSERT_NE(readRef(kLibrary, holding(refRecord())), nullptr);
  Lines lines = records();
  EXPECT_EQ(lines.front(), "DBG;apiutil;20070;Debug;Entering dbReadRefControlRec");
  EXPECT_EQ(lines.back(), "DBG;apiutil;20070;Debug;Leaving dbReadRefControlRec");
  EXPECT_EQ(readRef(kLibrary, unseekable()), nullptr);
  EXPECT_NE(records().back(), "DBG;apiutil;20070;Debug;Leaving dbReadRefControlRec");
  dbDebugControlRecord(&proc_);
  lines = records();
  EXPECT_EQ(lines.front(), "DBG;apiutil;20070;Debug;Entering dbDebugControlRecord");
  EXPECT_EQ(lines.back(), "DBG;apiutil;20070;Debug;Leaving dbDebugControlRecord");
  ASSERT_NE(readRng(kLibrary, holding(rngRecord())), nullptr);
  EXPECT_EQ(records(), Lines());
  dbDebugRngControlRec(&proc_);
  lines = records();
  EXPECT_EQ(lines.front(), "DBG;apiutil;20070;Debug;Entering dbDebugRngControlRec");
  EXPECT_EQ(lines.back(), "DBG;apiutil;20070;Debug;Leaving dbDebugRngControlRec");
}

TEST_F(ControlRecTest, RangeRecordIsReadWithoutARecord) {
  const Bytes bytes = rngRecord();
  for (const Reader reader : {kProgram, kLibrary}) {
    const RngControlRec* const record = readRng(reader, holding(bytes));
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(Bytes(record->bytes.begin(), record->bytes.end()), bytes);
    EXPECT_EQ(records(), Lines());
  }
}

TEST_F(ControlRecTest, RangeRecordShorterThan624BytesFails) {
  Bytes bytes = rngRecord();
  ASSERT_NE(readRng(kProgram, holding(bytes)), nullptr);
  ASSERT_NE(readRng(kLibrary, holding(bytes)), nullptr);
  bytes.pop_back();
  for (const Reader reader : {kProgram, kLibrary}) {
    EXPECT_EQ(readRng(reader, holding(bytes)), nullptr);
    EXPECT_EQ(records(), Lines({"ERR;apiutil;20044;RangeDB Read Err;Could not read Range db "
                                "record: Range Control Record"}));
  }
}

TEST_F(ControlRecTest, ReferenceDumpHas85Lines) {
  Lines expected = {"------- Reference database control record ------",
                    "Version and Release      : 10.00.0.O.F1",
                    "Copyright Date           : 03-15-2017",
                    "Build Time Stamp         : 03-15-2017 00:00:00",
                    "Character Type           : ASCII",
                    "Endian Type              : LITTLE ENDIAN",
                    "Data Base Type           : REFERENCE",
                    "State Cut Time Stamp     : not state cut"};
  expected.insert(expected.end(), test::kRefDumpWords.begin(), test::kRefDumpWords.end());
  ASSERT_EQ(expected.size(), 85U);
  EXPECT_EQ(dumpedRef(refRecord()), expected);
}

TEST_F(ControlRecTest, RangeDumpHas28Lines) {
  Lines expected = {"------- Range database control record ------",
                    "Version and Release      : 10.00.0.O.F1",
                    "Copyright Date           : 03-15-2017",
                    "Build Time Stamp         : 03-15-2017 00:00:00",
                    "Character Type           : ASCII",
                    "Endian Type              : LITTLE ENDIAN",
                    "Data Base Type           : RANGE STATE CUT",
                    "State Cut Time Stamp     : 03-16-2017 00:01:01"};
  expected.insert(expected.end(), test::kRngDumpWords.begin(), test::kRngDumpWords.end());
  ASSERT_EQ(expected.size(), 28U);
  ASSERT_NE(readRng(kProgram, holding(rngRecord(6, test::kCutStamp))), nullptr);
  EXPECT_EQ(dumped(dbDebugRngControlRec), expected);
}

TEST_F(ControlRecTest, DumpShowsTypeFlags) {
  const std::vector<std::pair<std::uint32_t, std::string>> types = {
      {1, "REFERENCE"},           {2, "RANGE"},           {3, "REFERENCE"},
      {5, "REFERENCE STATE CUT"}, {6, "RANGE STATE CUT"}, {7, "REFERENCE STATE CUT"}};
  for (const auto& [flags, type] : types) {
    const Lines lines = dumpedRef(refRecord(flags));
    ASSERT_EQ(lines.size(), 85U);
    EXPECT_EQ(lines[6], "Data Base Type           : " + type);
  }
}

TEST_F(ControlRecTest, TypeLineRepeatsTheEndianTextWithoutTypeFlags) {
  Bytes record = refRecord(0);
  EXPECT_EQ(dumpedRef(record)[6], "Data Base Type           : LITTLE ENDIAN");
  record[19] = 0;
  putWord(record, 24, 4);
  const Lines lines = dumpedRef(record);
  EXPECT_EQ(lines[5], "Endian Type              : BIG ENDIAN");
  EXPECT_EQ(lines[6], "Data Base Type           : BIG ENDIAN");
}

TEST_F(ControlRecTest, DumpShowsForeignCharactersAndBigNumbersNegative) {
  Bytes record = refRecord(1, 0xFFFFFFFFU);
  record[18] = 2;
  putWord(record, 132, 0xFFFFFFFFU);
  const Lines lines = dumpedRef(record);
  EXPECT_EQ(lines[4], "Character Type           : EBCDIC");
  EXPECT_EQ(lines[7], "State Cut Time Stamp     : 02-07-2106 06:28:15");
  EXPECT_EQ(lines[9], "City Names USPS and Standard   : -1");
}

TEST_F(ControlRecTest, DumpOfNoRecordIsSilent) {
  dbDebugControlRecord(&proc_);
  dbDebugRngControlRec(&proc_);
  EXPECT_EQ(records(), Lines());
}

}  // namespace
}  // namespace statecut
