// Versions and copyright dates as texts.
#include <gtest/gtest.h>

#include "dbfiles/apiutil.h"

namespace statecut {
namespace {

const unsigned char* bytesOf(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

TEST(FormatTest, VersionGetsItsPoints) {
  EXPECT_STREQ(formatVersion(bytesOf("10000OF1")), "10.00.0.O.F1");
  EXPECT_STREQ(formatVersion(bytesOf("12345678")), "12.34.5.6.78");
  EXPECT_STREQ(formatVersion(nullptr), "");
}

TEST(FormatTest, EngineVersionTakesItsLastCharactersFromTheEnd) {
  EXPECT_STREQ(formatEngineVersion(bytesOf("123456...........XY")), "1.23.45.6.XY");
  EXPECT_STREQ(formatEngineVersion(nullptr), "");
}

TEST(FormatTest, CopyrightDateIsThe15thOr99WithAnUnknownMonth) {
  EXPECT_STREQ(formatCopyRight(bytesOf("0317")), "03-15-2017");
  EXPECT_STREQ(formatCopyRight(bytesOf("9915")), "99-99-2015");
  EXPECT_STREQ(formatCopyRight(bytesOf("9815")), "98-15-2015");
  EXPECT_STREQ(formatCopyRight(nullptr), "");
}

TEST(FormatTest, ResultsAreStaticBuffersThatTheNextCallOverwrites) {
  const char* const first = formatVersion(bytesOf("10000OF1"));
  EXPECT_EQ(formatVersion(bytesOf("20000OF1")), first);
  EXPECT_STREQ(first, "20.00.0.O.F1");
}

}  // namespace
}  // namespace statecut
