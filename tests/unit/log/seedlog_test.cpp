#include "log/seedlog.h"

#include "unit/log/logfixture.h"

namespace statecut::test {
namespace {

class SeedLogTest : public LogTest {
 protected:
  SeedLogTest() { proc_.seedLogSwitches[0] = 1; }
  ~SeedLogTest() override {
    // Whatever a test left waiting is freed by a header without a stream.
    proc_.seedLogSwitches[0] = proc_.seedLogSwitches[1] = 0;
    utlLogSeedDetail(&proc_, "", "DH");
    utlLogSeedDetail(&proc_, "", "LH");
  }

  std::int32_t file(const std::string& record, const char* typeCode) {
    return utlLogSeedDetail(&proc_, record.c_str(), typeCode);
  }
};

// A full record: 184 characters of data and 16 that are never copied.
std::string record(char fill) { return std::string(184, fill) + std::string(16, '!'); }
std::string line(char fill) { return std::string(180, fill) + "\n"; }

TEST_F(SeedLogTest, HeaderIsWrittenFirstAndThenTheDetailsInArrivalOrder) {
  EXPECT_EQ(file(record('a'), "DD"), 0);
  EXPECT_EQ(file(record('b'), "DD"), 0);
  EXPECT_NE(DPVRecords, nullptr);
  EXPECT_FALSE(fileExists("seedlog.txt"));
  EXPECT_EQ(file("PREFIX-9-" + record('h'), "DH"), 0);
  EXPECT_EQ(readFile("seedlog.txt"), line('h') + line('a') + line('b'));
  EXPECT_EQ(DPVRecords, nullptr);
  EXPECT_EQ(proc_.files->seedLog, nullptr);
}

TEST_F(SeedLogTest, HeaderWithoutDetailsIsWrittenAlone) {
  EXPECT_EQ(file("PREFIX-9-" + record('h'), "DH"), 0);
  EXPECT_EQ(readFile("seedlog.txt"), line('h'));
}

TEST_F(SeedLogTest, LacsHeaderLosesSixteenCharactersAndWritesTheLacsListAlone) {
  file(record('d'), "DD");
  file(record('l'), "LD");
  EXPECT_EQ(file("0123456789ABCDEF" + record('h'), "LH"), 0);
  EXPECT_EQ(readFile("seedlog.txt"), line('h') + line('l'));
  EXPECT_EQ(LACSRecords, nullptr);
  EXPECT_NE(DPVRecords, nullptr);
}

TEST_F(SeedLogTest, AnyOtherCodeIsTheDpvHeader) {
  file(record('d'), "DD");
  file(record('l'), "LD");
  EXPECT_EQ(file("PREFIX-9-" + record('h'), "??"), 0);
  EXPECT_EQ(readFile("seedlog.txt"), line('h') + line('d'));
  EXPECT_NE(LACSRecords, nullptr);
}

TEST_F(SeedLogTest, BatchesAreAppended) {
  writeFile("seedlog.txt", "before\n");
  file("PREFIX-9-" + record('1'), "DH");
  file(record('a'), "DD");
  file("PREFIX-9-" + record('2'), "DH");
  EXPECT_EQ(readFile("seedlog.txt"), "before\n" + line('1') + line('2') + line('a'));
}

TEST_F(SeedLogTest, ShortDpvDetailIsFilledWithBlanksAndShortLacsDetailWithZeros) {
  file("short", "DD");
  file("short", "LD");
  file("PREFIX-9-" + record('h'), "DH");
  EXPECT_EQ(readFile("seedlog.txt"), line('h') + "short" + std::string(175, ' ') + "\n");
  file("0123456789ABCDEF" + record('h'), "LH");
  EXPECT_TRUE(readFile("seedlog.txt").ends_with("short" + std::string(175, '\0') + "\n"));
}

TEST_F(SeedLogTest, HeaderThatEndsInItsPrefixIsZeros) {
  file("short", "DH");
  EXPECT_EQ(readFile("seedlog.txt"), std::string(180, '\0') + "\n");
  file("short", "LH");
  EXPECT_EQ(readFile("seedlog.txt"), std::string(180, '\0') + "\n" + std::string(180, '\0') + "\n");
}

TEST_F(SeedLogTest, CopiesReach184CharactersThough180AreWritten) {
  file(record('a'), "DD");
  ASSERT_NE(DPVRecords, nullptr);
  EXPECT_EQ(std::string(DPVRecords->data, kSeedRecordSize),
            std::string(184, 'a') + std::string(16, ' '));
  file(record('b'), "LD");
  ASSERT_NE(LACSRecords, nullptr);
  EXPECT_EQ(std::string(LACSRecords->data, kSeedRecordSize),
            std::string(184, 'b') + std::string(16, '\0'));
}

TEST_F(SeedLogTest, NullRecordAndNullTypeFileNothing) {
  EXPECT_EQ(utlLogSeedDetail(&proc_, nullptr, "DD"), 0);
  EXPECT_EQ(utlLogSeedDetail(&proc_, record('a').c_str(), nullptr), 0);
  EXPECT_EQ(DPVRecords, nullptr);
  EXPECT_FALSE(fileExists("seedlog.txt"));
}

TEST_F(SeedLogTest, FailedOpenKeepsTheListForTheNextHeader) {
  file(record('a'), "DD");
  ASSERT_TRUE(std::filesystem::create_directory("seedlog.txt"));
  const ChildResult child =
      inChild("", [this] { return std::to_string(file("PREFIX-9-" + record('h'), "DH")); });
  EXPECT_EQ(child.report, "-2001");
  EXPECT_EQ(child.err, "Could not open Seed log file: seedlog.txt\nError = 21: Is a directory\n");
  EXPECT_EQ(file("PREFIX-9-" + record('h'), "DH"), kSeedLogOpenFailed);
  EXPECT_NE(DPVRecords, nullptr);
  std::filesystem::remove("seedlog.txt");
  EXPECT_EQ(file("PREFIX-9-" + record('h'), "DH"), 0);
  EXPECT_EQ(readFile("seedlog.txt"), line('h') + line('a'));
}

TEST_F(SeedLogTest, EitherSwitchOpensTheSeedLogAndNoneReportsSuccessWithoutAStream) {
  EXPECT_EQ(utlInitSeedLog(&proc_), kSeedLogReady);
  Stream* opened = proc_.files->seedLog;
  EXPECT_NE(opened, nullptr);
  EXPECT_EQ(utlInitSeedLog(&proc_), kSeedLogReady);
  EXPECT_EQ(proc_.files->seedLog, opened);
  EXPECT_EQ(utlSeedLogMsgClose(opened), 0);
  proc_.files->seedLog = nullptr;
  proc_.seedLogSwitches[0] = 0;
  EXPECT_EQ(utlInitSeedLog(&proc_), kSeedLogReady);
  EXPECT_EQ(proc_.files->seedLog, nullptr);
  proc_.seedLogSwitches[1] = 1;
  EXPECT_EQ(utlInitSeedLog(&proc_), kSeedLogReady);
  EXPECT_EQ(utlSeedLogMsgClose(proc_.files->seedLog), 0);
  proc_.files->seedLog = nullptr;
  EXPECT_EQ(utlSeedLogMsgClose(nullptr), 0);
}

TEST_F(SeedLogTest, SwitchesOffWriteNothingAndEmptyTheList) {
  proc_.seedLogSwitches[0] = 0;
  file(record('a'), "DD");
  EXPECT_NE(DPVRecords, nullptr);
  EXPECT_EQ(file("PREFIX-9-" + record('h'), "DH"), 0);
  EXPECT_EQ(DPVRecords, nullptr);
  EXPECT_FALSE(fileExists("seedlog.txt"));
}

TEST_F(SeedLogTest, NullContextFailsAHeaderAndKeepsTheList) {
  EXPECT_EQ(utlLogSeedDetail(nullptr, record('a').c_str(), "DD"), 0);
  EXPECT_EQ(utlLogSeedDetail(nullptr, record('h').c_str(), "DH"), kSeedLogOpenFailed);
  EXPECT_NE(DPVRecords, nullptr);
}

TEST_F(SeedLogTest, AppendingKeepsTheHeadAndTakesNoNull) {
  SeedRecord* head = addSeedRecord(nullptr, record('a').c_str());
  ASSERT_NE(head, nullptr);
  EXPECT_EQ(addSeedRecord(head, record('b').c_str()), head);
  EXPECT_EQ(addSeedRecord(head, nullptr), head);
  ASSERT_NE(head->next, nullptr);
  EXPECT_EQ(head->next->next, nullptr);
  logSeedRecords(&proc_, head, record('h').c_str());
}

}  // namespace
}  // namespace statecut::test
