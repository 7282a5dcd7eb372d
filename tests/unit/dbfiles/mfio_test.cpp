// The sequential readers of 4088-byte blocks.
#include <string>
#include <vector>

#include "dbfiles/apiutil.h"
#include "support/logfixture.h"

namespace statecut {
namespace {

using test::Bytes;
using Lines = std::vector<std::string>;

class BlockFileTest : public test::LogFixture {
 protected:
  BlockFileTest() { previousRecordNumber = 0; }

  // Each byte tells its block, the bytes of a block behind the first two tell their offset.
  Stream* blocks(std::size_t count) {
    Bytes bytes(count * kBlockBytes);
    for (std::size_t i = 0; i < bytes.size(); ++i)
      bytes[i] = static_cast<unsigned char>(i / kBlockBytes * 50 + i % kBlockBytes % 50);
    return holding(bytes);
  }
  std::int32_t read(Stream* file, std::uint32_t rba) {
    return readMFIO(file, rba, 1, buffer_.data(), &proc_);
  }

  Bytes buffer_ = Bytes(kBlockBytes, 0xEE);
};

TEST_F(BlockFileTest, FirstBlockIsReadWholeWhateverTheLength) {
  Stream* const file = blocks(2);
  previousRecordNumber = 7;
  EXPECT_EQ(readMFIORngCntrl(file, 123456, 10, buffer_.data(), &proc_), 123456U);
  EXPECT_EQ(previousRecordNumber, 0U);
  EXPECT_EQ(buffer_[0], 0);
  EXPECT_EQ(buffer_[4087], 4087 % 50);
  EXPECT_EQ(records(), Lines());
}

TEST_F(BlockFileTest, OneBlockIsReadOnceForTwoRbas) {
  Stream* const file = blocks(3);
  readMFIORngCntrl(file, 0, 0, buffer_.data(), &proc_);
  EXPECT_EQ(read(file, 4088 + 10), 10);
  EXPECT_EQ(buffer_[0], 50);
  buffer_[0] = 1;
  EXPECT_EQ(read(file, 4088 + 4087), 4087);
  EXPECT_EQ(buffer_[0], 1);
  EXPECT_EQ(read(file, 2 * 4088), 0);
  EXPECT_EQ(buffer_[0], 100);
  EXPECT_EQ(proc_.statistics.seeks, 0);
}

TEST_F(BlockFileTest, BlockThreeRightAfterBlockOneSkipsOneByte) {
  Stream* const file = blocks(5);
  readMFIORngCntrl(file, 0, 0, buffer_.data(), &proc_);
  EXPECT_EQ(read(file, 4088), 0);
  EXPECT_EQ(read(file, 3 * 4088 + 5), 5);
  EXPECT_EQ(buffer_[0], 101);  // the second byte of block two
  EXPECT_EQ(previousRecordNumber, 3U);
  EXPECT_EQ(proc_.statistics.seeks, 1);
  EXPECT_EQ(records(), Lines());
}

TEST_F(BlockFileTest, BlockZeroIsTakenAsReadAtFirst) {
  Stream* const file = blocks(1);
  EXPECT_EQ(read(file, 17), 17);
  EXPECT_EQ(buffer_[0], 0xEE);
}

TEST_F(BlockFileTest, BlockBehindSkipsFarForwardAndIsShort) {
  Stream* const file = blocks(4);
  readMFIORngCntrl(file, 0, 0, buffer_.data(), &proc_);
  EXPECT_EQ(read(file, 4088), 0);
  EXPECT_EQ(read(file, 2 * 4088), 0);
  buffer_.assign(kBlockBytes, 0xEE);
  EXPECT_EQ(read(file, 4088 + 1), 1);
  EXPECT_EQ(buffer_, Bytes(kBlockBytes, 0xEE));
  EXPECT_EQ(previousRecordNumber, 1U);
  EXPECT_EQ(records(), Lines());
}

TEST_F(BlockFileTest, ShortReadAtTheEndIsSilentAndNotFailed) {
  Stream* const file = holding(Bytes(4088 + 100, 3));
  readMFIORngCntrl(file, 0, 0, buffer_.data(), &proc_);
  buffer_.assign(kBlockBytes, 0xEE);
  EXPECT_EQ(read(file, 4088), 0);
  EXPECT_EQ(buffer_[99], 3);
  EXPECT_EQ(buffer_[100], 0xEE);
  EXPECT_EQ(records(), Lines());
}

TEST_F(BlockFileTest, FailedSkipIsLoggedAndFails) {
  EXPECT_EQ(read(unseekable(), 4000000000U), -1);
  EXPECT_EQ(records(), Lines({"ERR;apiutil;20002;Seek Error - readMFIO;errno=-1:-294967296"}));
  EXPECT_EQ(previousRecordNumber, 0U);
  EXPECT_EQ(proc_.statistics.seeks, 0);
}

TEST_F(BlockFileTest, ReadErrorIsLoggedAndNotFailed) {
  const Lines expected = {
      "DBG;apiutil;20002;DB Read Error;Requested Bytes: 1, Actual bytes read: 0",
      "ERR;apiutil;20002;DB Read Error;errno=21:Is a directory",
      "DBG;apiutil;20002;DB Read Error;Requested Bytes: 1, Actual bytes read: 0"};
  EXPECT_EQ(readMFIORngCntrl(unreadable(), 5, 1, buffer_.data(), &proc_), 5U);
  EXPECT_EQ(records(), expected);
  EXPECT_EQ(read(unreadable(), 4088), 0);
  EXPECT_EQ(records(), expected);
}

TEST_F(BlockFileTest, RequestedBytesShowTheLengthWhateverItIs) {
  for (const std::int32_t length : {0, 4088, 2147483647, -7}) {
    const std::string shown =
        "DBG;apiutil;20002;DB Read Error;Requested Bytes: " + std::to_string(length) +
        ", Actual bytes read: 0";
    const Lines expected = {shown, "ERR;apiutil;20002;DB Read Error;errno=21:Is a directory",
                            shown};
    readMFIORngCntrl(unreadable(), 0, length, buffer_.data(), &proc_);
    EXPECT_EQ(records(), expected);
    EXPECT_EQ(readMFIO(unreadable(), 4088, length, buffer_.data(), &proc_), 0);
    EXPECT_EQ(records(), expected);
    previousRecordNumber = 0;
  }
}

TEST_F(BlockFileTest, NullStreamIsLoggedAndNotRead) {
  const std::string invalid = "ERR;apiutil;20002;Invalid DB Pointer;fp is NULL";
  previousRecordNumber = 3;
  EXPECT_EQ(readMFIORngCntrl(nullptr, 99, 0, buffer_.data(), &proc_), 99U);
  EXPECT_EQ(previousRecordNumber, 0U);
  EXPECT_EQ(read(nullptr, 12), 12);
  EXPECT_EQ(records(), Lines({invalid, invalid}));
  EXPECT_EQ(read(nullptr, 4088), -1);
  EXPECT_EQ(records(), Lines({invalid, "ERR;apiutil;20002;Seek Error - readMFIO;errno=-1:4088"}));
}

TEST_F(BlockFileTest, NullBufferIsAShortReadWithoutData) {
  Stream* const file = blocks(2);
  EXPECT_EQ(readMFIORngCntrl(file, 5, 4088, nullptr, &proc_), 5U);
  EXPECT_EQ(records(),
            Lines({"DBG;apiutil;20002;DB Read Error;Requested Bytes: 4088, Actual bytes read: 0"}));
}

TEST_F(BlockFileTest, NullContextFailsWithoutRecord) {
  Stream* const file = blocks(2);
  EXPECT_EQ(readMFIORngCntrl(file, 5, 0, buffer_.data(), nullptr), 5U);
  EXPECT_EQ(readMFIO(file, 4088, 0, buffer_.data(), nullptr), -1);
  EXPECT_EQ(records(), Lines());
}

}  // namespace
}  // namespace statecut
