// Room on the disk that can't be had, or not be given back.

#include <sys/stat.h>

#include "base/stream.h"
#include "faults.h"

namespace statecut::test {
namespace {

constexpr std::uint64_t kRoom = 8 << 20;

class ReserveFaults : public testing::Test {
 protected:
  ~ReserveFaults() override { disarmFaults(); }
  // Writes a few bytes into room for many. The bytes that the file then takes on the disk.
  std::uint64_t write(const FaultPlan& plan) {
    armFaults(plan);
    Stream* const stream = streamOpen(path_.c_str(), "wb");
    streamReserve(stream, kRoom);
    EXPECT_EQ(streamWrite(stream, "bytes", 5), 5u);
    EXPECT_FALSE(streamError(stream));
    EXPECT_EQ(streamClose(stream), 0);
    disarmFaults();
    EXPECT_EQ(readTextFile(path_), "bytes");
    struct stat status {};
    EXPECT_EQ(::stat(path_.c_str(), &status), 0);
    return static_cast<std::uint64_t>(status.st_blocks) * 512;
  }

  TempDir folder_;
  std::string path_ = folder_.file("out");
};

TEST_F(ReserveFaults, RoomThatIsNotNeededGoesBackAtTheEnd) {
  EXPECT_LT(write({}), kRoom);
  EXPECT_EQ(callsOf(FaultKind::kReserve), 1u);
  EXPECT_EQ(callsOf(FaultKind::kTruncate), 1u);
}

TEST_F(ReserveFaults, RoomThatAFailedCallTookGoesBackAtOnce) {
  EXPECT_LT(write({FaultKind::kReserve, 1, FaultMode::kOnce, ENOSPC}), kRoom);
  EXPECT_EQ(faultsFired(), 1u);
  EXPECT_EQ(callsOf(FaultKind::kTruncate), 1u);
}

TEST_F(ReserveFaults, RoomThatCannotBeGivenBackIsNoFailure) {
  write({FaultKind::kTruncate, 1, FaultMode::kForGood, EIO});
  EXPECT_EQ(faultsFired(), 1u);
}

}  // namespace
}  // namespace statecut::test
