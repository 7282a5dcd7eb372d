#include <algorithm>
#include <cerrno>
#include <cstring>

#include "unit/log/logfixture.h"

namespace statecut::test {
namespace {

using RecordTest = LogTest;

TEST_F(RecordTest, RecordHasSevenFieldsInOrder) {
  openLog(3);
  EXPECT_EQ(write(kError, "rba=1024, Invalid argument"), 0);
  EXPECT_EQ(log(),
            "11/15/26 11:40.05;ERR;dbaccess:1326;4711;20002;DB Seek Error;"
            "rba=1024, Invalid argument\n");
}

TEST_F(RecordTest, CriticalIsSpelledWithoutItsLastI) {
  openLog(3);
  write(kCritical, "x");
  EXPECT_NE(log().find(";CRITCAL;"), std::string::npos);
}

TEST_F(RecordTest, EverySeverityHasItsName) {
  openLog(5);
  for (std::int32_t severity : {0, 3, 4, 5}) write(severity, "x");
  const std::string text = log();
  for (const char* name : {";;dbaccess", ";WARN;dbaccess", ";INFO;dbaccess", ";DBG;dbaccess"}) {
    EXPECT_NE(text.find(name), std::string::npos) << name;
  }
}

TEST_F(RecordTest, SeverityOutsideTheTableHasNoNameAndPassesEveryLevel) {
  openLog(1);
  EXPECT_EQ(write(6, "six"), 0);
  EXPECT_EQ(write(-1, "minus"), 0);
  EXPECT_EQ(log(),
            "11/15/26 11:40.05;;dbaccess:1326;4711;20002;DB Seek Error;six\n"
            "11/15/26 11:40.05;;dbaccess:1326;4711;20002;DB Seek Error;minus\n");
}

TEST_F(RecordTest, LevelThreeDropsInfoAndWritesWarningsAndSeverityZero) {
  openLog(3);
  EXPECT_EQ(write(kWarn, "kept"), 0);
  EXPECT_EQ(write(kInfo, "dropped"), 0);
  EXPECT_EQ(write(kDebug, "dropped"), 0);
  EXPECT_EQ(write(0, "zero"), 0);
  const std::string text = log();
  EXPECT_NE(text.find("kept"), std::string::npos);
  EXPECT_NE(text.find("zero"), std::string::npos);
  EXPECT_EQ(text.find("dropped"), std::string::npos);
}

TEST_F(RecordTest, EveryLevelWritesUpToItself) {
  for (std::int32_t level = 1; level <= 5; ++level) {
    proc_.files->log = streamOpen("level.txt", "wb");
    proc_.logLevel = level;
    for (std::int32_t severity = 1; severity <= 5; ++severity) write(severity, "x");
    utlLogMsgClose(&proc_.files->log);
    const std::string text = readFile("level.txt");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), level);
  }
}

TEST_F(RecordTest, LevelZeroWritesNothingNotEvenSeverityZero) {
  openLog(3);
  write(0, "shown");
  proc_.logLevel = 0;
  EXPECT_EQ(write(0, "hidden"), 0);
  EXPECT_EQ(write(kCritical, "hidden"), 0);
  EXPECT_NE(log().find("shown"), std::string::npos);
  EXPECT_EQ(log().find("hidden"), std::string::npos);
}

TEST_F(RecordTest, NumberWithoutTextIsNamedWithOneNewLine) {
  openLog(3);
  for (std::int32_t number : {41, 150, -1, 100, 18}) write(kWarn, "unused", number);
  const std::string head = "11/15/26 11:40.05;WARN;dbaccess:1326;4711;20002;DB Seek Error;";
  EXPECT_EQ(log(), head + "Msg Log Number < 41 > Has No Message Text\n" + head +
                       "Msg Log Number < 150 > Has No Message Text\n" + head +
                       "Msg Log Number < -1 > Has No Message Text\n" + head +
                       "Msg Log Number < 100 > Has No Message Text\n" + head +
                       "Msg Log Number < 18 > Has No Message Text\n");
}

TEST_F(RecordTest, NumberZeroIsTheEmptyText) {
  openLog(3);
  EXPECT_EQ(write(kWarn, "unused", 0), 0);
  EXPECT_EQ(log(), "11/15/26 11:40.05;WARN;dbaccess:1326;4711;20002;DB Seek Error;\n");
}

TEST_F(RecordTest, SizeMessagePadsTheTextToFortyAndTheNumberToTen) {
  openLog(4);
  utlWriteLogMsg(&proc_, "dbaccess", 284, kInfo, "Info Message", 0, kMsgSize, "City Data Table",
                 36000);
  EXPECT_NE(log().find(";dbaccess:0284;4711;0;Info Message;" + std::string(25, ' ') +
                       "City Data Table - required -      36000 bytes\n"),
            std::string::npos);
}

TEST_F(RecordTest, TextAndNumberMessageShowsUnsignedWordsSigned) {
  openLog(3);
  utlWriteLogMsg(&proc_, "cutstate", 1531, kWarn, "T", 0, kMsgTextNumber, "Zp SFH ", 4294967295U);
  EXPECT_NE(log().find(";T;Zp SFH -1\n"), std::string::npos);
}

TEST_F(RecordTest, SeparatorsAndNewLinesInsideATextAreNotEscaped) {
  openLog(3);
  write(kError, "Could not open ref/city db: a;b\nErrno = 2");
  EXPECT_NE(log().find(";Could not open ref/city db: a;b\nErrno = 2\n"), std::string::npos);
}

TEST_F(RecordTest, TextThatEndsInANewLineGetsNoSecondOne) {
  openLog(3);
  write(kError, "ends\n");
  EXPECT_TRUE(log().ends_with(";ends\n"));
}

TEST_F(RecordTest, PercentSignsInATextAreNoFormat) {
  openLog(3);
  write(kError, "100%s%n%d");
  utlWriteText("50%s%n\n", proc_.files->log, "1");
  EXPECT_TRUE(log().ends_with(";100%s%n%d\n50%s%n\n"));
}

TEST_F(RecordTest, NamesOfFullLengthAreNotCut) {
  openLog(3);
  const std::string a(1024, 'a');
  const std::string b(1024, 'b');
  utlWriteLogMsg(&proc_, "cutstate", 1877, kError, "T", 20003, kMsgTextText, a.c_str(), b.c_str());
  EXPECT_TRUE(log().ends_with(";T;" + a + b + "\n"));
}

TEST_F(RecordTest, RecordThatDoesNotFitIsCutAndKeepsItsNewLine) {
  openLog(3);
  write(kError, std::string(20000, 'x') + "\n");
  const std::string title(20000, 't');
  utlWriteLogMsg(&proc_, "dbaccess", 1, kError, title.c_str(), 0, kMsgText, "never seen");
  write(kWarn, "next");
  const std::string text = log();
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3);
  EXPECT_NE(text.find(std::string(4000, 'x')), std::string::npos);
  EXPECT_NE(text.find(std::string(8000, 't')), std::string::npos);
  EXPECT_TRUE(text.ends_with(";next\n"));
}

TEST_F(RecordTest, NullSourceAndTitleAreEmptyFields) {
  openLog(3);
  EXPECT_EQ(utlWriteLogMsg(&proc_, nullptr, 7, kWarn, nullptr, 0, kMsgText, "text"), 0);
  EXPECT_EQ(log(), "11/15/26 11:40.05;WARN;;4711;0;;text\n");
}

TEST_F(RecordTest, RecordsReachTheFileAtOnce) {
  openLog(3);
  write(kWarn, "flushed");
  EXPECT_NE(readFile("log.txt").find("flushed"), std::string::npos);
}

TEST_F(RecordTest, NullContextFailsWithoutARecord) {
  openLog(3);
  EXPECT_EQ(write(kError, "one"), 0);
  EXPECT_EQ(utlWriteLogMsg(nullptr, "dbaccess", 1, kError, "T", 0, kMsgText, "two"),
            kLogWriteFailed);
  EXPECT_EQ(log().find("two"), std::string::npos);
}

TEST_F(RecordTest, MissingLogIsReportedOnceARun) {
  const ChildResult child = inChild("", [this] {
    proc_.logLevel = 2;
    processId = kPid;
    errno = EACCES;
    std::string results = std::to_string(write(kError, "lost"));
    results.append(" ").append(std::to_string(write(kError, "lost again")));
    results.append(" ").append(std::to_string(write(kWarn, "filtered")));
    return results;
  });
  EXPECT_EQ(child.report, "-2003 -2003 0");
  EXPECT_EQ(child.err,
            "Could not write log message.\n"
            "11/15/26 11:40.05;ERR;dbaccess:1326;4711;20002;DB Seek Error;lost\n"
            "Errno = 13 : Permission denied\n");
  EXPECT_EQ(child.out, "");
}

TEST_F(RecordTest, FailedWriteIsReportedWithItsErrno) {
  writeFile("log.txt", "");
  const ChildResult child = inChild("", [this] {
    proc_.logLevel = 3;
    proc_.files->log = streamOpen("log.txt", "rb");
    return std::to_string(write(kError, "lost"));
  });
  EXPECT_EQ(child.report, "-2003");
  EXPECT_TRUE(child.err.starts_with("Could not write log message.\n"));
  EXPECT_TRUE(child.err.ends_with(";lost\nErrno = 9 : Bad file descriptor\n"));
}

TEST_F(RecordTest, FullDiskAtTheFlushIsAFailedWriteReportedOnceARun) {
  openLog(3);
  EXPECT_EQ(write(kError, "small"), 0);
  const ChildResult child = inChild("", [this] {
    proc_.files->log = streamOpen("/dev/full", "a+");
    std::string results = std::to_string(write(kError, "lost"));
    results.append(" ").append(std::to_string(write(kError, "lost again")));
    results.append(" ").append(std::to_string(write(kInfo, "filtered")));
    return results;
  });
  EXPECT_EQ(child.report, "-2003 -2003 0");
  EXPECT_EQ(child.err,
            "Could not write log message.\n"
            "11/15/26 11:40.05;ERR;dbaccess:1326;4711;20002;DB Seek Error;lost\n"
            "Errno = 28 : No space left on device\n");
}

TEST_F(RecordTest, TraceWritesOnlyWithTheDebugSwitch) {
  openLog(5);
  const std::string before = log();
  EXPECT_FALSE(traceOn(&proc_));
  traceEntering(&proc_, "zip", 12, "dbGetZipIndex");
  EXPECT_EQ(log(), before);
  options_.debugSwitch = 'D';
  EXPECT_TRUE(traceOn(&proc_));
  traceEntering(&proc_, "zip", 12, "dbGetZipIndex");
  traceLeaving(&proc_, "zip", 13, "dbGetZipIndex");
  EXPECT_EQ(log(), before +
                       "11/15/26 11:40.05;DBG;zip:0012;4711;20070;Debug;Entering dbGetZipIndex\n"
                       "11/15/26 11:40.05;DBG;zip:0013;4711;20070;Debug;Leaving dbGetZipIndex\n");
}

TEST_F(RecordTest, TraceNeedsAContextWithOptions) {
  options_.debugSwitch = 'D';
  EXPECT_TRUE(traceOn(&proc_));
  proc_.options = nullptr;
  EXPECT_FALSE(traceOn(&proc_));
  EXPECT_FALSE(traceOn(nullptr));
}

}  // namespace
}  // namespace statecut::test
