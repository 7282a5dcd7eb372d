#include <cstring>

#include "unit/log/logfixture.h"

namespace statecut::test {
namespace {

using FirstErrorTest = LogTest;

TEST_F(FirstErrorTest, FirstErrorIsRememberedAndLaterOnesAreNot) {
  openLog(3);
  EXPECT_EQ(proc_.firstErrorMessage, 0);
  write(kError, "first");
  utlWriteLogMsg(&proc_, "cutstate", 1, kCritical, "T", 20003, kMsgTextText, "sec", "ond");
  EXPECT_EQ(proc_.firstErrorMessage, 10);
  EXPECT_EQ(proc_.firstErrorReason, 20002U);
  EXPECT_STREQ(proc_.firstErrorSeverity, "2");
  EXPECT_STREQ(proc_.firstErrorText, "first");
  EXPECT_STREQ(proc_.firstErrorSource, "dbaccess");
}

TEST_F(FirstErrorTest, WarningsAreNotErrors) {
  openLog(3);
  write(kWarn, "warning");
  EXPECT_EQ(proc_.firstErrorMessage, 0);
  EXPECT_STREQ(proc_.firstErrorText, "");
  write(kError, "error");
  EXPECT_STREQ(proc_.firstErrorText, "error");
}

TEST_F(FirstErrorTest, FirstErrorIsRememberedWhenTheLevelDropsItsRecord) {
  openLog(1);
  EXPECT_EQ(write(kError, "hidden"), 0);
  EXPECT_EQ(log(), "");
  EXPECT_STREQ(proc_.firstErrorText, "hidden");
  EXPECT_EQ(proc_.firstErrorMessage, 10);
}

TEST_F(FirstErrorTest, FirstErrorIsRememberedAtLevelZero) {
  proc_.logLevel = 0;
  EXPECT_EQ(write(kCritical, "off"), 0);
  EXPECT_STREQ(proc_.firstErrorText, "off");
  EXPECT_STREQ(proc_.firstErrorSeverity, "1");
}

TEST_F(FirstErrorTest, SeverityZeroAndBelowAreRemembered) {
  openLog(3);
  write(0, "zero");
  EXPECT_STREQ(proc_.firstErrorText, "zero");
  EXPECT_STREQ(proc_.firstErrorSeverity, "0");
}

TEST_F(FirstErrorTest, ErrorWithNumberZeroIsReplacedButItsSeverityStays) {
  openLog(3);
  write(kError, "unused", 0);
  EXPECT_EQ(proc_.firstErrorMessage, 0);
  EXPECT_STREQ(proc_.firstErrorSeverity, "2");
  write(kCritical, "next");
  EXPECT_EQ(proc_.firstErrorMessage, 10);
  EXPECT_STREQ(proc_.firstErrorText, "next");
  EXPECT_STREQ(proc_.firstErrorSeverity, "2");
}

TEST_F(FirstErrorTest, TextOf127CharactersIsKeptWhole) {
  openLog(3);
  const std::string text(127, 'x');
  write(kError, text);
  EXPECT_EQ(proc_.firstErrorText, text);
}

TEST_F(FirstErrorTest, LongTextKeepsItsEndsAndTheRecordCarriesItWhole) {
  openLog(3);
  const std::string text = std::string(100, 'a') + std::string(100, 'z');
  write(kError, text);
  const std::string kept = proc_.firstErrorText;
  EXPECT_EQ(kept.size(), 127U);
  EXPECT_EQ(kept, std::string(61, 'a') + "..." + std::string(63, 'z'));
  EXPECT_TRUE(log().ends_with(";" + text + "\n"));
}

TEST_F(FirstErrorTest, TextOf128CharactersIsShortened) {
  openLog(3);
  write(kError, std::string(64, 'a') + std::string(64, 'z'));
  EXPECT_EQ(proc_.firstErrorText, std::string(61, 'a') + "..." + std::string(63, 'z'));
}

TEST_F(FirstErrorTest, SourceIsKeptAsGivenAndCutToItsMember) {
  openLog(3);
  const std::string source = "/some/where/" + std::string(300, 's') + ".c";
  utlWriteLogMsg(&proc_, source.c_str(), 1, kError, "T", 1, kMsgText, "x");
  EXPECT_EQ(proc_.firstErrorSource, source.substr(0, 254));
}

TEST_F(FirstErrorTest, CallerRecordGetsATerminatedCopy) {
  openLog(3);
  CallerErrorRecord caller;
  std::memset(&caller, '#', sizeof caller);
  proc_.callerError = &caller;
  write(kError, "for the caller");
  EXPECT_EQ(caller.messageNumber, 10);
  EXPECT_EQ(caller.reasonCode, 20002U);
  EXPECT_STREQ(caller.severity, "2");
  EXPECT_STREQ(caller.text, "for the caller");
  EXPECT_STREQ(caller.source, "dbaccess");
  EXPECT_EQ(caller.spare, '#');
}

TEST_F(FirstErrorTest, CallerRecordIsBlankPaddedWithThePadFlag) {
  openLog(3);
  CallerErrorRecord caller;
  std::memset(&caller, '#', sizeof caller);
  proc_.callerError = &caller;
  proc_.padFlag = 1;
  write(kError, "pad");
  EXPECT_EQ(std::string(caller.text, sizeof caller.text), "pad" + std::string(125, ' '));
  EXPECT_EQ(std::string(caller.severity, sizeof caller.severity), "2   ");
  EXPECT_EQ(std::string(caller.source, sizeof caller.source), "dbaccess" + std::string(247, ' '));
  EXPECT_EQ(caller.spare, ' ');
}

TEST_F(FirstErrorTest, CallerRecordIsNotTouchedByTheSecondError) {
  openLog(3);
  CallerErrorRecord caller{};
  proc_.callerError = &caller;
  write(kError, "first");
  EXPECT_STREQ(caller.text, "first");
  write(kError, "second");
  EXPECT_STREQ(caller.text, "first");
}

TEST(CopyPadTest, CopyIsTerminatedAtItsLength) {
  char to[8] = "#######";
  UtlLogCopyPad(to, "ab", 5, 0, ' ');
  EXPECT_EQ(std::string(to, 8), std::string("ab\0####\0", 8));
}

TEST(CopyPadTest, CopyThatFillsTheWidthLosesItsLastCharacterToTheTerminator) {
  char to[8] = "#######";
  UtlLogCopyPad(to, "abcdefgh", 5, 0, ' ');
  EXPECT_EQ(std::string(to, 8), std::string("abcd\0##\0", 8));
}

TEST(CopyPadTest, PaddingFillsTheWidthWithoutATerminator) {
  char to[8] = "#######";
  UtlLogCopyPad(to, "ab", 5, 1, '.');
  EXPECT_EQ(std::string(to, 8), std::string("ab...##\0", 8));
  UtlLogCopyPad(to, "abcdefgh", 5, 1, '.');
  EXPECT_EQ(std::string(to, 8), std::string("abcde##\0", 8));
}

TEST(CopyPadTest, WidthsOutside1To255AndNullsDoNothing) {
  char to[300] = "before";
  for (std::int32_t width : {0, -1, 256, 1000}) UtlLogCopyPad(to, "after", width, 0, ' ');
  UtlLogCopyPad(to, nullptr, 5, 0, ' ');
  UtlLogCopyPad(nullptr, "after", 5, 0, ' ');
  EXPECT_STREQ(to, "before");
  UtlLogCopyPad(to, "after", 255, 0, ' ');
  EXPECT_STREQ(to, "after");
  UtlLogCopyPad(to, "x", 1, 0, ' ');
  EXPECT_STREQ(to, "");
}

}  // namespace
}  // namespace statecut::test
