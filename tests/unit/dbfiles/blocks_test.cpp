// Block reads and writes by RBA, the openers of plain files and the error reporters.
#include <algorithm>
#include <string>
#include <vector>

#include "dbfiles/apiutil.h"
#include "dbfiles/dbaccess.h"
#include "support/logfixture.h"

namespace statecut {
namespace {

using test::Bytes;
using Lines = std::vector<std::string>;

class BlocksTest : public test::LogFixture {
 protected:
  static Bytes counting(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<unsigned char>(i % 251);
    return bytes;
  }
};

const Lines kFolderRead = {
    "DBG;SOURCE;20002;DB Read Error;Requested Bytes: 100, Actual bytes read: 0",
    "ERR;SOURCE;20002;DB Read Error;errno=21:Is a directory",
    "DBG;SOURCE;20002;DB Read Error;Requested Bytes: 100, Actual bytes read: 0"};

Lines from(Lines lines, const std::string& source) {
  for (std::string& line : lines) line.replace(line.find("SOURCE"), 6, source);
  return lines;
}

TEST_F(BlocksTest, ReadFileReadsTheBytesAtTheRba) {
  Stream* const file = holding(counting(5000));
  Bytes buffer(10);
  EXPECT_EQ(readFile(file, 4000, 10, buffer.data(), &proc_), 10);
  EXPECT_EQ(buffer[0], 4000 % 251);
  EXPECT_EQ(buffer[9], 4009 % 251);
  EXPECT_EQ(readFile(file, 0, 0, buffer.data(), &proc_), 0);
  EXPECT_EQ(proc_.statistics.reads, 2);
  EXPECT_EQ(records(), Lines());
}

TEST_F(BlocksTest, ShortReadReturnsRequestedCount) {
  Stream* const file = holding(counting(5000));
  for (const bool library : {false, true}) {
    Bytes buffer(4088, 0xEE);
    const std::int32_t got = library ? dbReadFile(file, 4900, 4088, buffer.data(), &proc_)
                                     : readFile(file, 4900, 4088, buffer.data(), &proc_);
    EXPECT_EQ(got, 4088);
    EXPECT_EQ(buffer[0], 4900 % 251);
    EXPECT_EQ(buffer[99], 4999 % 251);
    EXPECT_EQ(std::count(buffer.begin() + 100, buffer.end(), 0xEE), 3988);
  }
  EXPECT_EQ(records(), Lines());
}

TEST_F(BlocksTest, ReadBeyondTheEndReturnsRequestedCountAndReadsNothing) {
  Stream* const file = holding(counting(100));
  Bytes buffer(50, 0xEE);
  EXPECT_EQ(readFile(file, 4000000000U, 50, buffer.data(), &proc_), 50);
  EXPECT_EQ(dbReadFile(file, 4000000000U, 50, buffer.data(), &proc_), 50);
  EXPECT_EQ(buffer, Bytes(50, 0xEE));
  EXPECT_EQ(records(), Lines());
  // The end of the file seen before does not spoil the next read.
  EXPECT_EQ(readFile(file, 10, 1, buffer.data(), &proc_), 1);
  EXPECT_EQ(buffer[0], 10);
}

TEST_F(BlocksTest, FailedSeekIsLoggedByReadFileAlone) {
  unsigned char byte = 7;
  Stream* const pipe = unseekable();
  EXPECT_EQ(readFile(pipe, 1024, 1, &byte, &proc_), -1);
  EXPECT_EQ(records(), Lines({"ERR;dbaccess;20002;DB Seek Error;rba=1024, Illegal seek"}));
  EXPECT_EQ(dbReadFile(pipe, 1024, 1, &byte, &proc_), -1);
  EXPECT_EQ(records(), Lines());
  EXPECT_EQ(byte, 7);
}

TEST_F(BlocksTest, RbaAbove2147483647IsPrintedNegative) {
  unsigned char byte = 0;
  EXPECT_EQ(readFile(unseekable(), 0x80000001U, 1, &byte, &proc_), -1);
  EXPECT_EQ(records(), Lines({"ERR;dbaccess;20002;DB Seek Error;rba=-2147483647, Illegal seek"}));
}

TEST_F(BlocksTest, ReadErrorIsLoggedThreeTimesAndStillReturnsRequestedCount) {
  Bytes buffer(100);
  EXPECT_EQ(readFile(unreadable(), 0, 100, buffer.data(), &proc_), 100);
  EXPECT_EQ(records(), from(kFolderRead, "dbaccess"));
  EXPECT_EQ(dbReadFile(unreadable(), 0, 100, buffer.data(), &proc_), 100);
  EXPECT_EQ(records(), from(kFolderRead, "apiutil"));
}

TEST_F(BlocksTest, ReadErrorLeavesOneRecordAtTheDefaultLevel) {
  proc_.logLevel = 3;
  Bytes buffer(100);
  EXPECT_EQ(readFile(unreadable(), 0, 100, buffer.data(), &proc_), 100);
  EXPECT_EQ(records(), Lines({from(kFolderRead, "dbaccess")[1]}));
}

TEST_F(BlocksTest, ReadFileRefusesCountsAboveSigned32Bits) {
  Stream* const file = holding(counting(10));
  unsigned char byte = 0;
  EXPECT_EQ(readFile(file, 0, 1, &byte, &proc_), 1);
  EXPECT_EQ(readFile(file, 0, 0x80000000U, &byte, &proc_), -1);
  EXPECT_EQ(records(), Lines());
}

TEST_F(BlocksTest, ReadsCounterIsTouchedByReadFileAlone) {
  Stream* const file = holding(counting(10));
  unsigned char byte = 0;
  proc_.statistics.reads = 2147483647;
  EXPECT_EQ(readFile(file, 0, 1, &byte, &proc_), 1);
  EXPECT_EQ(proc_.statistics.reads, -2147483647 - 1);
  EXPECT_EQ(dbReadFile(file, 0, 1, &byte, &proc_), 1);
  EXPECT_EQ(proc_.statistics.reads, -2147483647 - 1);
  proc_.stats = nullptr;
  EXPECT_EQ(readFile(file, 0, 1, &byte, &proc_), 1);
}

TEST_F(BlocksTest, DbReadFileOfNothingDoesNotSeek) {
  unsigned char byte = 0;
  Stream* const pipe = unseekable();
  EXPECT_EQ(dbReadFile(pipe, 0, 1, &byte, &proc_), -1);
  EXPECT_EQ(dbReadFile(pipe, 0, 0, &byte, &proc_), 0);
}

TEST_F(BlocksTest, DbReadFileRefusesNegativeCounts) {
  Stream* const file = holding(counting(10));
  unsigned char byte = 9;
  EXPECT_EQ(dbReadFile(file, 0, -1, &byte, &proc_), -1);
  EXPECT_EQ(byte, 9);
  EXPECT_EQ(records(), Lines());
}

TEST_F(BlocksTest, NullContextFailsWithoutRecord) {
  Stream* const file = holding(counting(10));
  unsigned char byte = 9;
  EXPECT_EQ(readFile(file, 0, 1, &byte, nullptr), -1);
  EXPECT_EQ(dbReadFile(file, 0, 1, &byte, nullptr), -1);
  EXPECT_EQ(writeFile(opened(path("out"), "wb"), 1, &byte, nullptr), -1);
  EXPECT_EQ(openReadFile(nullptr, path("file").c_str()), nullptr);
  EXPECT_EQ(openOutFile(nullptr, path("new").c_str()), nullptr);
  EXPECT_EQ(openWriteFile(nullptr, path("new").c_str()), nullptr);
  memoryError("text", nullptr);
  readRefWarning("text", nullptr);
  EXPECT_EQ(records(), Lines());
}

using BlocksDeathTest = BlocksTest;

TEST_F(BlocksDeathTest, ReadersStopOnProgrammingErrors) {
  unsigned char byte = 0;
  Stream* const file = holding(counting(10));
  EXPECT_DEATH(readFile(nullptr, 0, 1, &byte, &proc_),
               "dbaccess:[0-9]+: readFile: Assertion `fp != \\(\\(void \\*\\)0\\)' failed");
  EXPECT_DEATH(readFile(file, 0, 1, nullptr, &proc_),
               "dbaccess:[0-9]+: readFile: Assertion `buffer != \\(\\(void \\*\\)0\\)' failed");
  EXPECT_DEATH(dbReadFile(nullptr, 0, 1, &byte, &proc_),
               "apiutil:[0-9]+: dbReadFile: Assertion `fp != \\(\\(void \\*\\)0\\)' failed");
  EXPECT_DEATH(dbReadFile(file, 0, 1, nullptr, &proc_),
               "apiutil:[0-9]+: dbReadFile: Assertion `buffer != \\(\\(void \\*\\)0\\)' failed");
  EXPECT_DEATH(dbReadFile(nullptr, 0, 0, &byte, &proc_), "Assertion `fp");
}

TEST_F(BlocksDeathTest, ReadersStopOnAStreamInError) {
  unsigned char byte = 0;
  Stream* const folder = unreadable();
  EXPECT_EQ(readFile(folder, 0, 1, &byte, &proc_), 1);
  ASSERT_TRUE(streamError(folder));
  EXPECT_DEATH(readFile(folder, 0, 1, &byte, &proc_),
               "dbaccess:[0-9]+: readFile: Assertion `ferror\\(fp\\) == 0' failed");
  EXPECT_DEATH(dbReadFile(folder, 0, 1, &byte, &proc_),
               "apiutil:[0-9]+: dbReadFile: Assertion `ferror\\(fp\\) == 0' failed");
}

TEST_F(BlocksTest, WriteFileAppends) {
  Stream* const out = opened(path("out"), "wb");
  EXPECT_EQ(writeFile(out, 3, "abc", &proc_), 3);
  EXPECT_EQ(writeFile(out, 0, "", &proc_), 0);
  EXPECT_EQ(writeFile(out, 2, "de", &proc_), 2);
  EXPECT_EQ(streamFlush(out), 0);
  EXPECT_EQ(contents("out"), Bytes({'a', 'b', 'c', 'd', 'e'}));
  EXPECT_EQ(records(), Lines());
}

TEST_F(BlocksTest, WriteFileRefusesNullStreamAndBuffer) {
  EXPECT_EQ(writeFile(nullptr, 3, "abc", &proc_), -1);
  EXPECT_EQ(writeFile(opened(path("out"), "wb"), 3, nullptr, &proc_), -1);
  EXPECT_EQ(records(), Lines());
}

TEST_F(BlocksTest, ShortWriteIsLoggedOnceAndLaterWritesFailSilently) {
  Stream* const full = opened("/dev/full", "wb");
  const Bytes bytes(1000000);
  std::int32_t written = writeFile(full, 1000000, bytes.data(), &proc_);
  EXPECT_GE(written, 0);
  EXPECT_LT(written, 1000000);
  EXPECT_EQ(records(),
            Lines({"ERR;dbaccess;20006;DB Write Error;Requested bytes: 1000000, Actual bytes "
                   "written: " +
                   std::to_string(written)}));
  EXPECT_EQ(writeFile(full, 1, bytes.data(), &proc_), -1);
  EXPECT_EQ(records(), Lines());
}

TEST_F(BlocksTest, OpenersReadAndTruncate) {
  write("old", {'o', 'l', 'd'});
  Stream* const in = openReadFile(&proc_, path("old").c_str());
  ASSERT_NE(in, nullptr);
  char text[3];
  EXPECT_EQ(streamRead(in, text, 3), 3U);
  EXPECT_EQ(streamClose(in), 0);
  for (auto* const open : {openOutFile, openWriteFile}) {
    write("old", {'o', 'l', 'd'});
    Stream* const out = open(&proc_, path("old").c_str());
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(streamWrite(out, "n", 1), 1U);
    EXPECT_EQ(streamClose(out), 0);
    EXPECT_EQ(contents("old"), Bytes({'n'}));
  }
  EXPECT_EQ(records(), Lines());
}

TEST_F(BlocksTest, FailedOpensAreLogged) {
  const std::string none = path("none/file");
  EXPECT_EQ(openWriteFile(&proc_, none.c_str()), nullptr);
  EXPECT_EQ(openReadFile(&proc_, none.c_str()), nullptr);
  EXPECT_EQ(openOutFile(&proc_, none.c_str()), nullptr);
  EXPECT_EQ(records(), Lines({"ERR;dbaccess;20003;Error;Could not open out file: " + none,
                              "ERR;apiutil;20003;Error;Failed to open (2) " + none,
                              "ERR;apiutil;20003;Error;Could not open out file: " + none}));
}

TEST_F(BlocksTest, NullPathIsAFailedOpen) {
  EXPECT_EQ(openWriteFile(&proc_, nullptr), nullptr);
  EXPECT_EQ(openReadFile(&proc_, nullptr), nullptr);
  EXPECT_EQ(records(), Lines({"ERR;dbaccess;20003;Error;Could not open out file: ",
                              "ERR;apiutil;20003;Error;Failed to open (22) "}));
}

TEST_F(BlocksTest, LibraryMessagesAreCutTo255CharactersAndTheProgramsAreNot) {
  const std::string none = path("none/") + std::string(600, 'x');
  EXPECT_EQ(openReadFile(&proc_, none.c_str()), nullptr);
  EXPECT_EQ(openWriteFile(&proc_, none.c_str()), nullptr);
  const Lines found = records();
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0], "ERR;apiutil;20003;Error;" + ("Failed to open (2) " + none).substr(0, 255));
  EXPECT_EQ(found[1], "ERR;dbaccess;20003;Error;Could not open out file: " + none);
}

TEST_F(BlocksTest, ReportersWriteOneRecordEach) {
  memoryError("A", &proc_);
  memoryWarning("B", &proc_);
  readRefError("C", &proc_);
  readRefWarning("D", &proc_);
  readRangeError("E", &proc_);
  EXPECT_EQ(records(),
            Lines({"ERR;apiutil;20001;Mem Alloc Err;Could not allocate memory for A.",
                   "WARN;apiutil;20001;Mem Alloc;Could not allocate memory for B.",
                   "ERR;apiutil;20045;RefDB Read Err;Could not read Reference db partition: C",
                   "WARN;apiutil;20045;RefDB Read;Could not read Reference db partition: D",
                   "ERR;apiutil;20044;RangeDB Read Err;Could not read Range db record: E"}));
}

}  // namespace
}  // namespace statecut
