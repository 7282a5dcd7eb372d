#include "unit/log/logfixture.h"

namespace statecut::test {
namespace {

using InitLogTest = LogTest;

// The log's own records with "line" for the number of their line.
std::string withoutLines(std::string text) {
  for (std::size_t at = 0; (at = text.find("utllgmsg:", at)) != std::string::npos; at += 9) {
    text.replace(at + 9, text.find(';', at) - at - 9, "line");
  }
  return text;
}

TEST_F(InitLogTest, LevelZeroOpensNoFileAndTakesNoProcessId) {
  processId = 0;
  proc_.files->logWriteFailureReported = 1;
  EXPECT_EQ(utlInitLog(0, "log.txt", &proc_), 0);
  EXPECT_FALSE(fileExists("log.txt"));
  EXPECT_EQ(processId, 0);
  EXPECT_EQ(proc_.logLevel, 0);
  EXPECT_EQ(proc_.files->logWriteFailureReported, 0);
  EXPECT_EQ(proc_.files->log, nullptr);
}

TEST_F(InitLogTest, EmptyAndNullNamesLowerTheLevelToTwoWithoutAFile) {
  EXPECT_EQ(utlInitLog(5, "", &proc_), 0);
  EXPECT_EQ(proc_.logLevel, 2);
  EXPECT_EQ(processId, kPid);
  EXPECT_EQ(proc_.files->log, nullptr);
  EXPECT_EQ(utlInitLog(1, nullptr, &proc_), 0);
  EXPECT_EQ(proc_.logLevel, 2);
}

TEST_F(InitLogTest, LevelZeroWinsOverAnEmptyName) {
  EXPECT_EQ(utlInitLog(0, "", &proc_), 0);
  EXPECT_EQ(proc_.logLevel, 0);
}

TEST_F(InitLogTest, DefaultLevelCreatesAnEmptyFile) {
  EXPECT_EQ(utlInitLog(3, "log.txt", &proc_), 0);
  EXPECT_TRUE(fileExists("log.txt"));
  EXPECT_EQ(log(), "");
  EXPECT_STREQ(proc_.topOfForm, "1");
  EXPECT_EQ(processId, kPid);
}

TEST_F(InitLogTest, LevelFourShowsTheThreeFirstRecords) {
  EXPECT_EQ(utlInitLog(4, "log.txt", &proc_), 0);
  EXPECT_EQ(withoutLines(log()),
            "11/15/26 11:40.05;INFO;utllgmsg:line;4711;0;Log;Date: 2026-11-15\n"
            "11/15/26 11:40.05;INFO;utllgmsg:line;4711;0;Log;Log file = <log.txt>\n"
            "11/15/26 11:40.05;INFO;utllgmsg:line;4711;0;Velandor Engine;10.00.0.O.F1\n");
}

TEST_F(InitLogTest, LogGrowsOverRuns) {
  writeFile("log.txt", "earlier\n");
  openLog(3);
  write(kError, "now");
  EXPECT_TRUE(log().starts_with("earlier\n11/15/26"));
}

TEST_F(InitLogTest, FailedOpenIsReportedWithItsErrno) {
  const ChildResult child = inChild("", [this] {
    std::string results = std::to_string(utlInitLog(3, "log.txt", &proc_));
    utlLogMsgClose(&proc_.files->log);
    results.append(" ").append(std::to_string(utlInitLog(3, "no/such/log.txt", &proc_)));
    return results.append(proc_.files->log == nullptr ? " null" : " set");
  });
  EXPECT_EQ(child.report, "0 -2001 null");
  EXPECT_EQ(child.err,
            "Could not open log file <no/such/log.txt>\nErrno = 2 : No such file or directory\n");
}

TEST_F(InitLogTest, NullContextFails) {
  EXPECT_EQ(utlInitLog(3, "log.txt", &proc_), 0);
  EXPECT_EQ(utlInitLog(3, "other.txt", nullptr), kLogOpenFailed);
  EXPECT_FALSE(fileExists("other.txt"));
}

TEST_F(InitLogTest, CloseNullsTheStreamAndTakesNull) {
  openLog(3);
  ASSERT_NE(proc_.files->log, nullptr);
  EXPECT_EQ(utlLogMsgClose(&proc_.files->log), 0);
  EXPECT_EQ(proc_.files->log, nullptr);
  EXPECT_EQ(utlLogMsgClose(&proc_.files->log), 0);
  EXPECT_EQ(utlLogMsgClose(nullptr), 0);
}

TEST_F(InitLogTest, FullDeviceFailsTheFirstRecordFromLevelFourOn) {
  const ChildResult child = inChild("", [this] {
    std::string results;
    for (const std::int32_t level : {0, 1, 3, 4, 5}) {
      results += std::to_string(utlInitLog(level, "/dev/full", &proc_)) + " ";
      streamClose(proc_.files->log);
      proc_.files->log = nullptr;
    }
    return results;
  });
  EXPECT_EQ(child.report, "0 0 0 -2003 -2003 ");
  const std::string reported =
      "Could not write log message.\n"
      "11/15/26 11:40.05;INFO;utllgmsg:line;4711;0;Log;Date: 2026-11-15\n"
      "Errno = 28 : No space left on device\n";
  EXPECT_EQ(withoutLines(child.err), reported + reported);
}

TEST_F(InitLogTest, CloseReportsBytesThatCannotBeWrittenUnlessAFailureWasReported) {
  const std::string reported =
      "Could not write log message.\nErrno = 28 : No space left on device\n";
  const auto closing = [this](const char* name, bool record) {
    return inChild("", [this, name, record] {
      EXPECT_EQ(utlInitLog(3, name, &proc_), 0);
      utlWriteText("text\n", proc_.files->log, "1");
      if (record) write(kError, "lost");
      const std::int32_t result = utlLogMsgClose(&proc_.files->log);
      return std::to_string(result) + (proc_.files->log == nullptr ? " null" : " set");
    });
  };
  const ChildResult sound = closing("log.txt", true);
  EXPECT_EQ(sound.report, "0 null");
  EXPECT_EQ(sound.err, "");
  const ChildResult text = closing("/dev/full", false);
  EXPECT_EQ(text.report, "0 null");
  EXPECT_EQ(text.err, reported);
  const ChildResult record = closing("/dev/full", true);
  EXPECT_EQ(record.report, "0 null");
  EXPECT_EQ(record.err,
            "Could not write log message.\n"
            "11/15/26 11:40.05;ERR;dbaccess:1326;4711;20002;DB Seek Error;lost\n"
            "Errno = 28 : No space left on device\n");
}

TEST_F(InitLogTest, TextGoesToTheStreamOrToStandardOutput) {
  openLog(1);
  EXPECT_EQ(utlWriteText("line\n", proc_.files->log, "1"), 5);
  EXPECT_EQ(utlWriteText(nullptr, proc_.files->log, "1"), 0);
  EXPECT_EQ(log(), "line\n");
  const ChildResult child = inChild("", [] {
    utlWTO("error\n");
    utlWTO(nullptr);
    return std::to_string(utlWriteText("100%d\n", nullptr, "1"));
  });
  EXPECT_EQ(child.report, "6");
  EXPECT_EQ(child.out, "100%d\n");
  EXPECT_EQ(child.err, "error\n");
}

TEST_F(InitLogTest, FailedTextWriteIsNegative) {
  writeFile("log.txt", "");
  proc_.files->log = streamOpen("log.txt", "rb");
  EXPECT_LT(utlWriteText("line\n", proc_.files->log, "1"), 0);
}

TEST_F(InitLogTest, TopOfFormFlagBecomesOne) {
  char flag[2] = {'x', 'y'};
  EXPECT_EQ(utlTOF(flag), flag);
  EXPECT_STREQ(flag, "1");
}

TEST(LogIdTest, DirectoryAndExtensionAreDropped) {
  EXPECT_STREQ(buildLogID("dbaccess.c", 7), "dbaccess:0007");
  EXPECT_STREQ(buildLogID("/a.b/c/dbaccess.c", 7), "dbaccess:0007");
  EXPECT_STREQ(buildLogID("dbaccess", 7), "dbaccess:0007");
  EXPECT_STREQ(buildLogID("/a.b/dbaccess", 7), "dbaccess:0007");
  EXPECT_STREQ(buildLogID("two.points.c", 12345), "two.points:12345");
}

TEST(LogIdTest, NullNameIsEmpty) {
  EXPECT_STREQ(buildLogID("x", 1), "x:0001");
  EXPECT_STREQ(buildLogID(nullptr, 7), "");
}

TEST(LogIdTest, LongNameIsCutToLeaveRoomForAnyLine) {
  const std::string name(100, 'n');
  EXPECT_EQ(buildLogID(name.c_str(), 7), std::string(42, 'n') + ":0007");
  EXPECT_EQ(buildLogID(name.c_str(), INT32_MIN), std::string(42, 'n') + ":-2147483648");
}

TEST(StampTest, ClockIsTheStampWithoutTheVariable) {
  ::unsetenv("SOURCE_DATE_EPOCH");
  dateAndTime = static_cast<std::time_t>(0x100000005);
  EXPECT_EQ(stateCutTimeStamp(), 5U);
}

TEST(StampTest, DecimalDigitsReplaceTheClock) {
  dateAndTime = 7;
  ::setenv("SOURCE_DATE_EPOCH", "1700000000", 1);
  EXPECT_EQ(stateCutTimeStamp(), 1700000000U);
  ::setenv("SOURCE_DATE_EPOCH", "0", 1);
  EXPECT_EQ(stateCutTimeStamp(), 0U);
  EXPECT_EQ(dateAndTime, 7);
}

TEST(StampTest, OnlyTheLow32BitsOfTheVariableCount) {
  ::setenv("SOURCE_DATE_EPOCH", "4294967297", 1);
  EXPECT_EQ(stateCutTimeStamp(), 1U);
}

TEST(StampTest, AnythingButDigitsLeavesTheClock) {
  dateAndTime = 7;
  ::setenv("SOURCE_DATE_EPOCH", "12", 1);
  EXPECT_EQ(stateCutTimeStamp(), 12U);
  for (const char* value : {"", " 12", "-12", "+12", "12x", "0x12", "1.5"}) {
    ::setenv("SOURCE_DATE_EPOCH", value, 1);
    EXPECT_EQ(stateCutTimeStamp(), 7U) << value;
  }
}

TEST(ClockTest, SystemClockAndProcessIdAreTheDefault) {
  EXPECT_EQ(currentProcessId(), ::getpid());
  const std::time_t before = std::time(nullptr);
  EXPECT_GE(currentTime(), before);
}

TEST(ClockTest, TimeThatDoesNotFitIsEmpty) {
  char text[5] = "####";
  EXPECT_STREQ(formatLocalTime(text, sizeof text, "%Y", 86400), "1970");
  EXPECT_STREQ(formatLocalTime(text, sizeof text, "%Y-%m", 86400), "");
}

}  // namespace
}  // namespace statecut::test
