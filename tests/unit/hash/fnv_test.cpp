#include <gtest/gtest.h>

#include <string_view>

#include "hash/namehash.h"

namespace {

using namespace statecut;

std::uint32_t forward(std::string_view text, std::uint32_t seed = kFnvOffsetBasis) {
  return fnv_32_buf(reinterpret_cast<const unsigned char*>(text.data()),
                    static_cast<std::int32_t>(text.size()), seed);
}

std::uint32_t backward(std::string_view text, std::uint32_t seed = kFnvOffsetBasis) {
  return fnv_32_buf_backward(reinterpret_cast<const unsigned char*>(text.data()),
                             static_cast<std::int32_t>(text.size()), seed);
}

TEST(Fnv, SeedIsTheResultForNoBytes) {
  EXPECT_EQ(forward(""), 0x811C9DC5u);
  EXPECT_EQ(backward("", 7), 7u);
}

TEST(Fnv, ForwardAddsTheByteLess192) {
  EXPECT_EQ(forward("A"), 0x050C5CA0u);  // 0x050C5D1F + 0x41 - 0xC0
  EXPECT_EQ(forward("AB"), 0x9275CF62u);
  EXPECT_EQ(forward("TXDALLAS"), 0xCD4DF08Cu);
}

TEST(Fnv, BackwardXorsTheByteLess32FromTheLastByte) {
  EXPECT_EQ(backward("A"), 0x050C5D3Eu);  // 0x050C5D1F ^ 0x21
  EXPECT_EQ(backward("AB"), 0x2F76C726u);
  EXPECT_EQ(backward("AB"), backward("A", backward("B")));
  EXPECT_EQ(backward("TXDALLAS", kFnvOffsetBasis + kCityNames), 0x495D6740u);
}

TEST(Fnv, BackwardWrapsForBytesBelow32) {
  EXPECT_EQ(backward("\x1F"), 0xFAF3A2E0u);
  EXPECT_EQ(backward(std::string_view("\0", 1)), 0xFAF3A2FFu);
}

TEST(Fnv, NegativeLengthHashesNothing) {
  const unsigned char byte = 'A';
  EXPECT_EQ(fnv_32_buf(&byte, -1, 5), 5u);
  EXPECT_EQ(fnv_32_buf_backward(&byte, -1, 5), 5u);
}

}  // namespace
