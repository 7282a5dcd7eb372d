#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <string>

#include "base/stream.h"
#include "support/files.h"

namespace {

using namespace statecut;

class Append : public ::testing::Test {
 protected:
  Append() {
    for (int i = 0; i < 300'000; ++i) bytes_ += static_cast<char>(i * 7 + i / 256);
    std::ofstream(path("source"), std::ios::binary) << bytes_;
    from_ = streamOpen(path("source").c_str(), "rb");
    to_ = streamOpen(path("target").c_str(), "wb");
  }
  ~Append() override {
    streamClose(from_);
    streamClose(to_);
  }
  [[nodiscard]] std::string path(const char* name) const { return folder_.file(name); }
  std::string written() {
    EXPECT_EQ(streamFlush(to_), 0);
    return test::readTextFile(path("target"));
  }

  test::TempDir folder_;
  std::string bytes_;
  Stream* from_ = nullptr;
  Stream* to_ = nullptr;
};

TEST_F(Append, MovesBytesBehindWhatTheBufferHolds) {
  ASSERT_EQ(streamWrite(to_, "head", 4), 4u);
  ASSERT_EQ(streamAppend(to_, from_, 12'345, 100'000), 100'000u);
  ASSERT_EQ(streamWrite(to_, "tail", 4), 4u);
  EXPECT_EQ(written(), "head" + bytes_.substr(12'345, 100'000) + "tail");
}

TEST_F(Append, ReaderAndItsPositionStayAsTheyAre) {
  char two[2];
  ASSERT_EQ(streamRead(from_, two, 2), 2u);
  ASSERT_EQ(streamAppend(to_, from_, 50'000, 100'000), 100'000u);
  ASSERT_EQ(streamRead(from_, two, 2), 2u);
  EXPECT_EQ(std::string(two, 2), bytes_.substr(2, 2));
}

TEST_F(Append, RewindOverwritesWhatWasMoved) {
  ASSERT_EQ(streamAppend(to_, from_, 0, 100'000), 100'000u);
  ASSERT_EQ(streamSeek(to_, 0), 0);
  ASSERT_EQ(streamWrite(to_, "head", 4), 4u);
  EXPECT_EQ(written(), "head" + bytes_.substr(4, 99'996));
}

TEST_F(Append, FewBytesAreLeftToTheBuffer) { EXPECT_EQ(streamAppend(to_, from_, 0, 1000), 0u); }

TEST_F(Append, NothingMovesBehindTheEndOfTheSource) {
  EXPECT_EQ(streamAppend(to_, from_, 200'000, 200'000), 100'000u);
  EXPECT_EQ(streamAppend(to_, from_, 300'000, 100'000), 0u);
  EXPECT_EQ(streamAppend(to_, from_, UINT64_MAX - 5, 100'000), 0u);
  EXPECT_FALSE(streamError(to_) || streamError(from_) || streamEof(from_));
  EXPECT_EQ(written(), bytes_.substr(200'000));
}

TEST_F(Append, WindowsEndAtRoundPositionsOfTheTarget) {
  const std::string large = bytes_ + bytes_ + bytes_ + bytes_;
  std::ofstream(path("source"), std::ios::binary) << large;
  const std::size_t window = std::size_t{512} << 10;
  ASSERT_EQ(streamWrite(to_, "head", 4), 4u);
  ASSERT_EQ(streamAppend(to_, from_, 10, large.size() - 10), window - 4);
  ASSERT_EQ(streamAppend(to_, from_, window + 6, large.size() - window - 6), window);
  const std::size_t left = large.size() - 2 * window - 6;
  ASSERT_EQ(streamAppend(to_, from_, 2 * window + 6, left), left);
  EXPECT_EQ(written(), "head" + large.substr(10));
}

TEST_F(Append, PresentBytesMoveLikeAnyOthers) {
  const std::size_t moved = streamAppend(to_, from_, 0, 100'000, Pages::kPresent);
  EXPECT_EQ(written(), bytes_.substr(0, moved));  // none where the system can't tell
}

// The size is that of what was written, and the room behind it goes with the stream.
TEST_F(Append, ReservedRoomIsNotPartOfTheFile) {
  struct stat status {};
  streamReserve(to_, 10'000'000);
  ASSERT_EQ(streamWrite(to_, "head", 4), 4u);
  EXPECT_EQ(written(), "head");
  ASSERT_EQ(::stat(path("target").c_str(), &status), 0);
  EXPECT_EQ(status.st_size, 4);
  EXPECT_EQ(streamClose(to_), 0);
  to_ = nullptr;
  ASSERT_EQ(::stat(path("target").c_str(), &status), 0);
  EXPECT_EQ(status.st_size, 4);
  EXPECT_LT(status.st_blocks, 10'000'000 / 512);
}

TEST_F(Append, ReservingIsNoErrorWhereThereIsNothingToReserve) {
  Stream* const device = streamOpen("/dev/null", "wb");
  streamReserve(device, 10'000'000);
  streamReserve(from_, 10'000'000);
  EXPECT_FALSE(streamError(device) || streamError(from_));
  EXPECT_EQ(streamWrite(device, "head", 4), 4u);
  EXPECT_EQ(streamClose(device), 0);
}

TEST_F(Append, FailureIsLeftToTheWriteThatFollows) {
  Stream* const full = streamOpen("/dev/full", "wb");
  ASSERT_NE(full, nullptr);
  EXPECT_EQ(streamAppend(full, from_, 0, 100'000), 0u);
  EXPECT_FALSE(streamError(full));
  EXPECT_LT(streamWrite(full, bytes_.data(), 100'000), 100'000u);
  EXPECT_TRUE(streamError(full));
  streamClose(full);
}

TEST_F(Append, StreamForReadingTakesNothing) {
  EXPECT_EQ(streamAppend(from_, from_, 0, 100'000), 0u);
}

TEST_F(Append, SizeIsThatOfARegularFileAlone) {
  EXPECT_EQ(streamSize(from_), 300'000u);
  Stream* const device = streamOpen("/dev/null", "rb");
  EXPECT_EQ(streamSize(device), 0u);
  streamClose(device);
}

}  // namespace
