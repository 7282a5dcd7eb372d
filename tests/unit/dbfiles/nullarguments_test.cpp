// Arguments that are not there: the utilities leave alone what is.

#include <gtest/gtest.h>

#include <cerrno>

#include "base/stream.h"
#include "dbfiles/apiutil.h"

namespace statecut {
namespace {

TEST(NullArguments, TextsMatchNothing) {
  for (auto* match : {&containsString, &startsWith, &endsWith}) {
    EXPECT_EQ(match("text", ""), 0);
    EXPECT_EQ(match("text", nullptr), 1);
    EXPECT_EQ(match(nullptr, "text"), 1);
  }
}

TEST(NullArguments, NumbersAreNotRead) {
  const unsigned char bytes[] = {7, 0, 0, 0};
  std::uint32_t number = 4;
  ReadNumber(nullptr, 0, &number);
  EXPECT_EQ(number, 4u);
  ReadNumber(bytes, 0, nullptr);
  ReadNumber(bytes, 0, &number);
  EXPECT_EQ(number, 7u);

  std::int32_t position = 0;
  ReadFromBuffer(nullptr, 4, &position, &number);
  ReadFromBuffer(bytes, 4, nullptr, &number);
  ReadFromBuffer(bytes, 4, &position, nullptr);
  EXPECT_EQ(position, 0);
  WriteNumber(nullptr, 4, 9);
  EXPECT_EQ(number, 7u);
}

TEST(NullArguments, NoStreamIsOpened) {
  errno = 0;
  EXPECT_EQ(streamOpen(nullptr, "rb"), nullptr);
  EXPECT_EQ(errno, EINVAL);
  errno = 0;
  EXPECT_EQ(streamOpen("/dev/null", nullptr), nullptr);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(streamFlush(nullptr), 0);
  EXPECT_EQ(streamClose(nullptr), 0);
}

}  // namespace
}  // namespace statecut
