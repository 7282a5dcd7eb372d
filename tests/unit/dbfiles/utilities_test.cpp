// Text tests, numbers in buffers, the binary dump and carrier routes.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "dbfiles/apiutil.h"

namespace statecut {
namespace {

TEST(TextTest, ContainsString) {
  EXPECT_EQ(containsString("SAINT PAUL", "PAUL"), 0);
  EXPECT_EQ(containsString("SAINT PAUL", "PAULA"), 1);
  EXPECT_EQ(containsString("SAINT PAUL", ""), 0);
  EXPECT_EQ(containsString(nullptr, "A"), 1);
  EXPECT_EQ(containsString("A", nullptr), 1);
}

TEST(TextTest, StartsWith) {
  EXPECT_EQ(startsWith("SAINT PAUL", "SAINT"), 0);
  EXPECT_NE(startsWith("SAINT PAUL", "PAUL"), 0);
  EXPECT_LT(startsWith("AB", "AC"), 0);
  EXPECT_GT(startsWith("AC", "AB"), 0);
  EXPECT_NE(startsWith("SA", "SAINT"), 0);
  EXPECT_EQ(startsWith("SA", ""), 0);
  EXPECT_EQ(startsWith(nullptr, "A"), 1);
  EXPECT_EQ(startsWith("A", nullptr), 1);
}

TEST(TextTest, EndsWith) {
  EXPECT_EQ(endsWith("SAINT PAUL", "PAUL"), 0);
  EXPECT_NE(endsWith("SAINT PAUL", "PAUK"), 0);
  EXPECT_EQ(endsWith("ab", "ab"), 0);
  EXPECT_EQ(endsWith("ab", ""), 0);
  EXPECT_EQ(endsWith(nullptr, "A"), 1);
}

TEST(TextTest, SuffixLongerThanTheTextCountsAsAMatch) {
  EXPECT_EQ(endsWith("ab", "xab"), 0);
  EXPECT_EQ(endsWith("ab", "xyz"), 0);
}

TEST(TextTest, MatchAllMatchesAll) {
  EXPECT_EQ(matchAll("A", "B"), 0);
  EXPECT_EQ(matchAll(nullptr, nullptr), 0);
}

TEST(TextTest, InArraySetsItsFlag) {
  const std::int32_t values[] = {4, -5, 6};
  std::int32_t flag = 9;
  InArray(values, 3, -5, &flag);
  EXPECT_EQ(flag, 1);
  InArray(values, 2, 6, &flag);
  EXPECT_EQ(flag, 0);
  flag = 9;
  InArray(nullptr, 3, 4, &flag);
  EXPECT_EQ(flag, 0);
  flag = 9;
  InArray(values, -1, 4, &flag);
  EXPECT_EQ(flag, 0);
  InArray(values, 3, 4, nullptr);
}

TEST(NumberTest, ReadNumberReplacesItsWidth) {
  const unsigned char bytes[] = {0x34, 0x12, 0x56, 0x78, 0x9A};
  const std::uint32_t expected[] = {0, 0x34, 0x1234, 0x561234, 0x78561234, 0x78561234};
  for (std::uint32_t width = 0; width < 6; ++width) {
    std::uint32_t number = width;
    ReadNumber(bytes, 99, &number);
    EXPECT_EQ(number, expected[width]) << width;
  }
}

TEST(NumberTest, WriteNumberWritesTheLowBytes) {
  for (std::int32_t width = -1; width < 6; ++width) {
    unsigned char bytes[8];
    std::memset(bytes, 0xEE, sizeof bytes);
    WriteNumber(bytes, width, 0x78561234);
    const unsigned char low[] = {0x34, 0x12, 0x56, 0x78};
    for (std::int32_t i = 0; i < 8; ++i)
      EXPECT_EQ(bytes[i], i < width && i < 4 ? low[i] : 0xEE) << width << " " << i;
  }
}

TEST(NumberTest, ReadFromBufferAdvances) {
  const unsigned char bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
  std::int32_t position = 1;
  std::uint32_t number = 99;
  ReadFromBuffer(bytes, 2, &position, &number);
  EXPECT_EQ(number, 0x0302U);
  EXPECT_EQ(position, 3);
  ReadFromBuffer(bytes, 0, &position, &number);
  EXPECT_EQ(number, 0U);
  EXPECT_EQ(position, 3);
  ReadFromBuffer(bytes, 5, &position, &number);
  EXPECT_EQ(number, 0x07060504U);
  EXPECT_EQ(position, 8);
}

std::string inBase(std::int32_t value, std::int32_t base, std::int32_t minimum) {
  char text[257];
  std::memset(text, 'x', sizeof text);
  baseDisp(value, text, base, minimum);
  EXPECT_NE(std::memchr(text, 0, sizeof text), nullptr);
  return text;
}

TEST(DisplayTest, BaseDispPadsWithZeros) {
  EXPECT_EQ(inBase(5, 2, 8), "00000101");
  EXPECT_EQ(inBase(255, 16, 1), "ff");
  EXPECT_EQ(inBase(1000, 10, 2), "1000");
  EXPECT_EQ(inBase(0, 10, 0), "0");
  EXPECT_EQ(inBase(7, 10, -3), "7");
  EXPECT_EQ(inBase(2147483647, 2, 0), std::string(31, '1'));
}

TEST(DisplayTest, BaseDispShowsNegativeValuesWithoutTheSign) {
  EXPECT_EQ(inBase(-5, 2, 8), "00000101");
  EXPECT_EQ(inBase(-2147483647 - 1, 2, 0), "1" + std::string(31, '0'));
  EXPECT_EQ(inBase(-2147483647 - 1, 16, 0), "80000000");
}

TEST(DisplayTest, BaseDispTakesAtMost255Digits) {
  EXPECT_EQ(inBase(1, 10, 255), std::string(254, '0') + "1");
  EXPECT_EQ(inBase(1, 10, 1000000), std::string(254, '0') + "1");
}

TEST(DisplayTest, BaseDispRefusesOtherBases) {
  for (const std::int32_t base : {-2, 0, 1, 17}) {
    EXPECT_EQ(inBase(5, base, 8), "Number base range error.");
  }
}

class Printed {
 public:
  Printed() : file_(open_memstream(&text_, &size_)) {}
  Printed(const Printed&) = delete;
  Printed& operator=(const Printed&) = delete;
  ~Printed() {
    std::fclose(file_);
    std::free(text_);
  }
  [[nodiscard]] std::FILE* file() const { return file_; }
  [[nodiscard]] std::string text() const {
    std::fflush(file_);
    return {text_, size_};
  }

 private:
  char* text_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* file_;
};

TEST(DisplayTest, DisplayBufferShowsEachByteInBinary) {
  const Printed out;
  const unsigned char bytes[] = {0, 5, 255};
  displayBuffer(out.file(), bytes, 3);
  EXPECT_EQ(out.text(),
            "-------- display buffer of size 3-------\n"
            "   [ 0]    00000000\n"
            "   [ 1]    00000101\n"
            "   [ 2]    11111111\n");
}

TEST(DisplayTest, DisplayBufferOfNoBytesShowsItsHeader) {
  const unsigned char byte = 1;
  const Printed out;
  displayBuffer(out.file(), &byte, -1);
  EXPECT_EQ(out.text(), "-------- display buffer of size -1-------\n");
  displayBuffer(out.file(), nullptr, 1);
  displayBuffer(nullptr, &byte, 1);
  displayBitInd(nullptr, 1);
  EXPECT_EQ(out.text(), "-------- display buffer of size -1-------\n");
}

TEST(DisplayTest, DisplayBitIndShowsAtLeastEightDigits) {
  const Printed out;
  displayBitInd(out.file(), 6);
  displayBitInd(out.file(), 256);
  EXPECT_EQ(out.text(), "   00000110\n   100000000\n");
}

TEST(CarrierRouteTest, LetterAndThreeDigits) {
  EXPECT_STREQ(uncompressCRT(4097), "C001");
  EXPECT_STREQ(uncompressCRT(0), "A000");
  EXPECT_STREQ(uncompressCRT(25 * 2048 + 999), "Z999");
}

TEST(CarrierRouteTest, Bit10IsNotUsed) { EXPECT_STREQ(uncompressCRT(4097 + 1024), "C001"); }

TEST(CarrierRouteTest, CodesOutsideTheTablesGiveNothing) {
  EXPECT_STREQ(uncompressCRT(1000), "");
  EXPECT_STREQ(uncompressCRT(1023), "");
  EXPECT_STREQ(uncompressCRT(26 * 2048), "");
  EXPECT_STREQ(uncompressCRT(0xFFFF), "");
  EXPECT_STREQ(uncompressCRT(4097), "C001");
}

TEST(CarrierRouteTest, DigitTablesHoldTheirNumbers) {
  EXPECT_STREQ(OneDigitNumbers[0].data(), "0");
  EXPECT_STREQ(OneDigitNumbers[9].data(), "9");
  EXPECT_STREQ(TwoDigitNumbers[7].data(), "07");
  EXPECT_STREQ(TwoDigitNumbers[99].data(), "99");
  char text[8];
  for (unsigned number = 0; number < 1000; ++number) {
    std::snprintf(text, sizeof text, "%03u", number);
    EXPECT_STREQ(ThreeDigitNumbers[number].data(), text);
  }
}

}  // namespace
}  // namespace statecut
