// The message numbers and texts are an interface: this table may grow, never change.

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "log/utllgmsg.h"

namespace statecut::test {
namespace {

const std::map<std::int32_t, std::string> kFrozen = {
    {0, ""},
    {1, "Date: %s"},
    {2, "Log file = <%s>"},
    {3, "Could not allocate memory for %s."},
    {4, "Could not free memory for %s."},
    {5, "%s: %#X : %d"},
    {6, "%s%d"},
    {7, "%s%s"},
    {8, "%s%X"},
    {9, "%40s - required - %10d bytes"},
    {10, "%s"},
    {11, "Error Message File Name %s Error %d"},
    {12, "Engine Error %s: Memory Allocation Failed %s Error %d"},
    {13, "Test Log Message"},
    {14, "File Open Failed Function Name %s filename %s"},
    {15, "External API failed %s Line %d Error %d"},
    {16, "External API received a NULL %s structure"},
    {17, "Engine Error %s: Number of tokens found %d"},
    {20, "ELOT file name not specified in TOLV.CFG file."},
    {21, "Detail report file name is null."},
    {23, "Initialization failed."},
    {24, "File Open Failed Function Name %s File Name %s Return Code %d Reason Code %d"},
    {25, "Could not read Reference db partition: %s"},
    {26, "Could not read Range db record: %s"},
    {27, "Invalid Input during Parser / Isolator initialization."},
    {28, "City and ZIP4 db not of same month or same version."},
    {29, "DPV path name not specified in TOLV.CFG file."},
    {30, "Unable to allocate %d bytes for %s"},
    {31, "DPV File Open Failed: Function Name %s File %s"},
    {32, "%s DPV Processing Error %s"},
    {34, "RDI Option is ON in the Configuration File"},
    {35, "Error Finding the RDI DLL"},
    {36, "Error Finding the RdiSubmit Function on the RDI DLL"},
    {37, "RDI File Open Failed: Function Name %s File %s"},
    {39, "LACS Error: Function Name: %s Msg: %s"},
    {40, "DB version (%s) != Engine version (%s)"},
};

TEST(MessageTableTest, EveryNumberHasItsFrozenText) {
  for (const auto& [number, text] : kFrozen) {
    ASSERT_NE(logMsgText(number), nullptr) << number;
    EXPECT_EQ(logMsgText(number), text) << number;
  }
}

TEST(MessageTableTest, EveryOtherNumberHasNone) {
  for (std::int32_t number = -3; number < 120; ++number) {
    EXPECT_EQ(logMsgText(number) != nullptr, kFrozen.count(number) == 1) << number;
  }
  EXPECT_EQ(logMsgText(INT32_MIN), nullptr);
  EXPECT_EQ(logMsgText(INT32_MAX), nullptr);
}

TEST(MessageTableTest, NamedNumbersMeetTheirTexts) {
  EXPECT_STREQ(logMsgText(kMsgDate), "Date: %s");
  EXPECT_STREQ(logMsgText(kMsgLogFile), "Log file = <%s>");
  EXPECT_STREQ(logMsgText(kMsgNoMemory), "Could not allocate memory for %s.");
  EXPECT_STREQ(logMsgText(kMsgNotFreed), "Could not free memory for %s.");
  EXPECT_STREQ(logMsgText(kMsgTextNumber), "%s%d");
  EXPECT_STREQ(logMsgText(kMsgTextText), "%s%s");
  EXPECT_STREQ(logMsgText(kMsgSize), "%40s - required - %10d bytes");
  EXPECT_STREQ(logMsgText(kMsgText), "%s");
  EXPECT_STREQ(logMsgText(kMsgRefRead), "Could not read Reference db partition: %s");
  EXPECT_STREQ(logMsgText(kMsgRangeRead), "Could not read Range db record: %s");
}

}  // namespace
}  // namespace statecut::test
