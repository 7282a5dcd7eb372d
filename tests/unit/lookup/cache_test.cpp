#include <cstring>

#include "base/memory.h"
#include "lookupfixture.h"

namespace statecut::test {

namespace {

using Starts = std::vector<std::uint32_t>;
using Lines = std::vector<std::string>;

constexpr std::uint32_t kEmpty = 0xFFFFFFFF;

// A file whose byte at n is n modulo 251. A null file stands for "must not be read".
class BlockCache : public LookupFixture {
 protected:
  void build(std::uint32_t blockSize, std::int32_t entries, std::int32_t stage = 200) {
    Bytes bytes(4096);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i % 251);
    source_ = holding(bytes, "blocks");
    buildCache(blockSize, entries);
    if (stage > 0) {
      ASSERT_NE(chCreateStageBuffer(&proc_, stage), nullptr);
    }
    records();
  }
  Cache* cache() { return block_.refCache; }
  std::int32_t get(std::uint32_t rba, std::int32_t length, Stream* file) {
    to_.assign(600, 0);
    return chGetBlockCacheData(cache(), file, rba, length, to_.data(), &proc_);
  }
  bool holds(const unsigned char* bytes, std::uint32_t rba, std::int32_t length) {
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(length); ++i)
      if (bytes[i] != (rba + i) % 251) return false;
    return true;
  }
  Starts starts() {
    Starts all;
    for (std::int32_t i = 0; i < cache()->count; ++i) all.push_back(cache()->entries[i].start);
    return all;
  }
  Starts counters() { return {block_.found, block_.partialHits, block_.wholeHits}; }

  Stream* source_ = nullptr;
  Bytes to_;
  unsigned char* out_ = nullptr;
  std::int32_t remaining_ = 0;
  std::int32_t copied_ = 0;
  std::uint32_t next_ = 0;
};

TEST_F(BlockCache, ConstructionRefusesUnusableSizes) {
  EXPECT_EQ(chConstructCache(0, 4), nullptr);
  EXPECT_EQ(chConstructCache(64, 0), nullptr);
  EXPECT_EQ(chConstructCache(64, -1), nullptr);
  EXPECT_EQ(chConstructCache(0x80000000, 1), nullptr);
  Cache* cache = chConstructCache(64, 2);
  ASSERT_NE(cache, nullptr);
  EXPECT_EQ(cache->count, 2);
  EXPECT_EQ(cache->entries[1].start, kEmpty);
  EXPECT_EQ(cache->entries[1].end, 0u);
  EXPECT_EQ(cache->entries[1].size, 64);
  chFreeCache(&cache);
  EXPECT_EQ(cache, nullptr);
  chFreeCache(&cache);
}

TEST_F(BlockCache, RecordEndingAtTheBlockEndIsAWholeHit) {
  build(64, 4);
  EXPECT_EQ(get(60, 4, nullptr), -2) << "not held yet";
  EXPECT_EQ(get(60, 4, source_), 4);
  EXPECT_TRUE(holds(to_.data(), 60, 4));
  EXPECT_EQ(counters(), (Starts{1, 0, 1}));
  EXPECT_EQ(get(0, 64, nullptr), 64) << "held: the file is not read";
  EXPECT_EQ(counters(), (Starts{2, 0, 2}));
}

TEST_F(BlockCache, OneByteMoreReadsTheNextBlock) {
  build(64, 4);
  ASSERT_EQ(get(0, 4, source_), 4);
  EXPECT_EQ(get(60, 5, nullptr), -2);
  EXPECT_EQ(starts()[0], 0u);
  EXPECT_EQ(get(60, 5, source_), 5);
  EXPECT_TRUE(holds(to_.data(), 60, 5));
  EXPECT_EQ(starts(), (Starts{64, 0, kEmpty, kEmpty}));
  EXPECT_EQ(counters(), (Starts{4, 2, 2}));
}

TEST_F(BlockCache, PieceAcrossThreeBlocksIsPutTogether) {
  for (const std::int32_t entries : {1, 8}) {
    build(64, entries);
    block_.found = 0;
    EXPECT_EQ(get(100, 150, source_), 150);
    EXPECT_TRUE(holds(to_.data(), 100, 150));
    EXPECT_EQ(block_.found, 3u);
    EXPECT_EQ(get(200, 8, nullptr), 8) << "the last block is held";
  }
}

TEST_F(BlockCache, FillEvictsTheLastEntry) {
  build(64, 3);
  for (std::uint32_t i = 0; i < 4; ++i) ASSERT_EQ(get(64 * i, 1, source_), 1);
  EXPECT_EQ(starts(), (Starts{192, 128, 64}));
  EXPECT_EQ(get(0, 1, nullptr), -2) << "evicted";
  ASSERT_EQ(get(0, 1, source_), 1);
  EXPECT_EQ(get(64, 1, nullptr), -2) << "evicted in its turn";
}

TEST_F(BlockCache, HitsArePromotedFromPositionFiveOnly) {
  build(64, 7);
  for (std::uint32_t i = 0; i < 7; ++i) ASSERT_EQ(get(64 * i, 1, source_), 1);
  const Starts order = {384, 320, 256, 192, 128, 64, 0};
  ASSERT_EQ(starts(), order);
  EXPECT_EQ(chSearchCacheForRBA(cache(), 130), 4);
  EXPECT_EQ(chSearchCacheForSpecificRBA(cache(), 128), 4);
  EXPECT_EQ(chSearchCacheForSpecificRBA(cache(), 130), -1);
  EXPECT_EQ(starts(), order);
  EXPECT_EQ(chSearchCacheForRBA(cache(), 65), 0);
  EXPECT_EQ(starts(), (Starts{64, 384, 320, 256, 192, 128, 0}));
  EXPECT_EQ(chSearchCacheForSpecificRBA(cache(), 128), 0);
  EXPECT_EQ(starts(), (Starts{128, 64, 384, 320, 256, 192, 0}));
  chBumpCache(cache(), 0);
  chBumpCache(cache(), -1);
  chBumpCache(cache(), 7);
  EXPECT_EQ(starts(), (Starts{128, 64, 384, 320, 256, 192, 0}));
}

TEST_F(BlockCache, EmptyEntryIsNeverHit) {
  build(64, 2);
  EXPECT_EQ(chSearchCacheForSpecificRBA(cache(), kEmpty), -1);
  EXPECT_EQ(chSearchLargeCacheForRBA(cache(), 1, kEmpty), -1);
}

TEST_F(BlockCache, FailedFillStillMarksItsBlock) {
  build(64, 2);
  EXPECT_EQ(chFillCacheFromFile(cache(), unseekable(), 70, &proc_), -1);
  EXPECT_EQ(starts(), (Starts{64, kEmpty}));
  EXPECT_EQ(get(70, 1, nullptr), 1);
}

TEST_F(BlockCache, BlockAtTheEndOfTheRbaSpaceEndsTheRead) {
  build(64, 2);
  EXPECT_EQ(get(0xFFFFFFF0, 4, source_), -2);
  EXPECT_EQ(chGetBlockCacheDataPtr(cache(), source_, 0xFFFFFFF0, 4, &out_, &proc_), -2);
  EXPECT_EQ(out_, nullptr);
}

TEST_F(BlockCache, WholeHitLeavesNothingToRead) {
  build(64, 2);
  ASSERT_EQ(get(0, 1, source_), 1);
  remaining_ = 9;
  next_ = 9;
  EXPECT_EQ(chFillDataFromCache(cache(), 3, 4, to_.data(), &remaining_, &next_, &copied_, &proc_),
            0);
  EXPECT_EQ(copied_, 4);
  EXPECT_EQ(remaining_, 0);
  EXPECT_EQ(next_, 0U);
}

TEST_F(BlockCache, LengthsOfZeroAndBelow) {
  build(64, 2);
  EXPECT_EQ(get(0, -1, source_), -2);
  EXPECT_EQ(get(0, 0, source_), 0);
  EXPECT_EQ(chFillDataFromCache(cache(), 0, -1, to_.data(), &remaining_, &next_, &copied_, &proc_),
            -1);
  copied_ = 9;
  EXPECT_EQ(chFillDataFromCache(cache(), 0, 0, to_.data(), &remaining_, &next_, &copied_, &proc_),
            0);
  EXPECT_EQ(copied_, 0);
  EXPECT_EQ(chGetBlockCacheDataPtr(cache(), source_, 0, -1, &out_, &proc_), -1);
}

TEST_F(BlockCache, NullCacheFindsNothing) {
  unsigned char data[64] = {};
  EXPECT_EQ(chSearchCacheForRBA(nullptr, 0), -1);
  EXPECT_EQ(chGetCacheData(nullptr, 0, data), -1);
  EXPECT_EQ(chGetBlockCacheData(nullptr, nullptr, 0, 1, data, &proc_), -2);
  EXPECT_EQ(chGetBlockCacheDataPtr(nullptr, nullptr, 0, 1, &out_, &proc_), -2);
  out_ = data;
  EXPECT_EQ(chGetBlkCacheDataPtr(nullptr, 0, 1, &out_, &remaining_, &next_, &copied_), -2);
  EXPECT_EQ(out_, nullptr);
  EXPECT_EQ(chGetBlkLargeCacheDataPtr(nullptr, 0, 1, &out_, &remaining_, &next_, &copied_), -2);
  EXPECT_EQ(chFillCacheFromFile(nullptr, nullptr, 0, &proc_), -1);
  EXPECT_EQ(chFillLargeCacheFromFile(nullptr, nullptr, 0, 1, &proc_), -1);
  records();
  EXPECT_EQ(chFillCacheFromData(&proc_, nullptr, 0, data), -1);
  EXPECT_EQ(records(), (Lines{"ERR;cache;0;Error;Cache not initialized."}));
}

TEST_F(BlockCache, PointerReadPointsIntoTheBlock) {
  build(64, 2);
  EXPECT_EQ(chGetBlockCacheDataPtr(cache(), source_, 70, 10, &out_, &proc_), 0);
  EXPECT_EQ(out_, cache()->entries[0].data + 6);
  EXPECT_EQ(counters(), (Starts{1, 0, 1}));
}

TEST_F(BlockCache, PointerReadStagesPiecesOfSeveralBlocks) {
  for (const std::int32_t entries : {1, 8}) {
    build(64, entries);
    EXPECT_EQ(chGetBlockCacheDataPtr(cache(), source_, 60, 140, &out_, &proc_), 0);
    EXPECT_EQ(out_, block_.stage);
    EXPECT_TRUE(holds(out_, 60, 140));
    EXPECT_EQ(block_.stageFill, 140);
  }
}

TEST_F(BlockCache, PointerReadTakesItsLengthFromTheRecord) {
  build(64, 4);
  // The byte at 62 is 62: two blocks; the byte at 5 is 5: one.
  EXPECT_EQ(chGetBlockCacheDataPtr(cache(), source_, 62, 0, &out_, &proc_), 0);
  EXPECT_EQ(block_.stageFill, 62);
  EXPECT_TRUE(holds(out_, 62, 62));
  EXPECT_EQ(chGetBlkCacheDataPtr(cache(), 5, 0, &out_, &remaining_, &next_, &copied_), 1);
  EXPECT_EQ(out_, cache()->entries[1].data + 5);
  EXPECT_EQ(remaining_, 0);
  EXPECT_EQ(copied_, 5);
  EXPECT_EQ(chGetBlkCacheDataPtr(cache(), 1000, 0, &out_, &remaining_, &next_, &copied_), -1);
  EXPECT_EQ(remaining_, -1);
}

TEST_F(BlockCache, PointerPieceStagesWhatItsBlockHolds) {
  build(64, 4);
  ASSERT_EQ(get(0, 1, source_), 1);
  EXPECT_EQ(chGetBlkCacheDataPtr(cache(), 60, 10, &out_, &remaining_, &next_, &copied_), -2);
  EXPECT_EQ(out_, block_.stage);
  EXPECT_TRUE(holds(out_, 60, 4));
  EXPECT_EQ(copied_, 4);
  EXPECT_EQ(remaining_, 6);
  EXPECT_EQ(next_, 64u);
}

TEST_F(BlockCache, PointerReadThatDoesNotFitTheStageIsRefused) {
  build(64, 4, 0);
  EXPECT_EQ(chGetBlockCacheDataPtr(cache(), source_, 60, 10, &out_, &proc_), -2) << "no stage";
  EXPECT_EQ(out_, nullptr);
  ASSERT_NE(chCreateStageBuffer(&proc_, 100), nullptr);
  block_.stageSize = 9;
  EXPECT_EQ(chGetBlockCacheDataPtr(cache(), source_, 60, 10, &out_, &proc_), -2);
  EXPECT_EQ(block_.stageFill, 0);
  block_.stageSize = 10;
  EXPECT_EQ(chGetBlockCacheDataPtr(cache(), source_, 60, 10, &out_, &proc_), 0);
}

TEST_F(BlockCache, PointerReadFailsWithMinusOneBeforeItStages) {
  build(64, 4);
  EXPECT_EQ(chGetBlockCacheDataPtr(cache(), nullptr, 0, 4, &out_, &proc_), -1);
  chFreeCache(&block_.refCache);
  build(64, 4);
  ASSERT_EQ(get(0, 1, source_), 1);
  EXPECT_EQ(chGetBlockCacheDataPtr(cache(), nullptr, 60, 10, &out_, &proc_), -2);
  EXPECT_EQ(out_, nullptr);
}

TEST_F(BlockCache, LargeCacheHoldsRecordsByTheirStart) {
  build(64, 3);
  for (std::uint32_t i = 0; i < 3; ++i)
    ASSERT_EQ(chFillLargeCacheFromFile(cache(), source_, 100 * i, 20, &proc_), 0);
  EXPECT_EQ(starts(), (Starts{200, 100, 0}));
  EXPECT_EQ(chSearchLargeCacheForRBA(cache(), 20, 100), 0);
  EXPECT_EQ(starts(), (Starts{100, 200, 0})) << "promoted from position 1";
  EXPECT_EQ(chSearchLargeCacheForRBA(cache(), 21, 100), -1);
  EXPECT_EQ(chSearchLargeCacheForRBA(cache(), 1, 101), -1);
  to_.assign(64, 0);
  EXPECT_EQ(chFillDataFromLargeCache(cache(), 200, 20, to_.data()), 0);
  EXPECT_TRUE(holds(to_.data(), 200, 20));
  EXPECT_EQ(chGetCacheData(cache(), 200, to_.data()), 0);
}

TEST_F(BlockCache, RecordAboveTheCapacityIsRefusedAndShortOnesLeaveIt) {
  build(64, 2);
  ASSERT_EQ(chFillLargeCacheFromFile(cache(), source_, 0, 10, &proc_), 0);
  ASSERT_EQ(chFillLargeCacheFromFile(cache(), source_, 50, 10, &proc_), 0);
  EXPECT_EQ(chFillLargeCacheFromFile(cache(), source_, 100, 65, &proc_), -1);
  EXPECT_EQ(chFillLargeCacheFromFile(cache(), source_, 100, -1, &proc_), -1);
  EXPECT_EQ(starts(), (Starts{50, 0}));
  EXPECT_EQ(chFillLargeCacheFromFile(cache(), source_, 100, 64, &proc_), 0);
  EXPECT_EQ(chFillLargeCacheFromFile(cache(), unseekable(), 7, 64, &proc_), -1);
  EXPECT_EQ(starts(), (Starts{50, 100})) << "bumped, but as it was";
}

TEST_F(BlockCache, ARecordThatEndsBehindTheFileLeavesTheBytesOfTheOneInItsPlace) {
  build(64, 2);
  ASSERT_EQ(chFillLargeCacheFromFile(cache(), source_, 0, 20, &proc_), 0);
  ASSERT_EQ(chFillLargeCacheFromFile(cache(), source_, 50, 20, &proc_), 0);
  EXPECT_EQ(chFillLargeCacheFromFile(cache(), source_, 4090, 20, &proc_), -1);
  to_.assign(64, 0);
  EXPECT_EQ(chFillDataFromLargeCache(cache(), 0, 20, to_.data()), 0);
  EXPECT_TRUE(holds(to_.data(), 0, 20));
}

TEST_F(BlockCache, LargePointerReads) {
  build(64, 3);
  EXPECT_EQ(chGetBlockLargeCacheDataPtr(cache(), source_, 40, 30, &out_, &proc_), 0);
  EXPECT_EQ(out_, cache()->entries[0].data);
  EXPECT_EQ(chGetBlockLargeCacheDataPtr(cache(), nullptr, 40, 30, &out_, &proc_), 0);
  EXPECT_EQ(chGetBlockLargeCacheDataPtr(cache(), source_, 41, 0, &out_, &proc_), -1);
  // The held 30 bytes begin with a length of 40: the rest is read behind them.
  EXPECT_EQ(chGetBlockLargeCacheDataPtr(cache(), source_, 40, 0, &out_, &proc_), 0);
  EXPECT_EQ(out_, block_.stage);
  EXPECT_TRUE(holds(out_, 40, 40));
}

TEST_F(BlockCache, CallersDataIsHeldLikeAFill) {
  build(64, 2);
  Bytes block(64, 7);
  EXPECT_EQ(chFillCacheFromData(&proc_, cache(), 5, block.data()), 0);
  EXPECT_EQ(starts()[0], 5u) << "not aligned";
  EXPECT_EQ(cache()->entries[0].end, 69u);
  EXPECT_EQ(chFillCacheFromData(&proc_, cache(), 5, nullptr), -1);
  EXPECT_EQ(chFillRS02CacheFromData(cache(), 300, 10, block.data(), &out_), 0);
  EXPECT_EQ(out_, cache()->entries[0].data);
  EXPECT_EQ(cache()->entries[0].size, 10);
  EXPECT_EQ(chFillRS02CacheFromData(cache(), 300, 65, block.data(), &out_), -1);
  EXPECT_EQ(out_, nullptr);
}

TEST_F(BlockCache, StageBuffersAreThirteenOverheadsOrTheMinimumAndAMargin) {
  proc_.cache = &block_;
  proc_.rngControlRec = static_cast<RngControlRec*>(allocTable(RngControlRec::size));
  proc_.rngControlRec->set(RngControlRec::maxRangeOverheads, 100);
  const auto lines = [](std::int32_t size) {
    return Lines{"INFO;cache;0;Info Message;" + sizeLine("Stage Buffer", size),
                 "INFO;cache;0;Info Message;" + sizeLine("Range Overhead Buff", size),
                 "INFO;cache;0;Info Message;" + sizeLine("Alternate Buff", 4096)};
  };
  EXPECT_NE(chCreateStageBuffer(&proc_, 1000), nullptr);
  EXPECT_EQ(records(), lines(1300));
  EXPECT_NE(chCreateStageBuffer(&proc_, 2000), nullptr);
  EXPECT_EQ(records(), lines(4048));
  EXPECT_EQ(block_.stageSize, 4048);
  EXPECT_EQ(chCreateStageBuffer(&proc_, 2147483647), nullptr);
  chFreeStageBuffer();
  EXPECT_EQ(block_.stage, nullptr);
  EXPECT_EQ(block_.alternate, nullptr);
  EXPECT_EQ(block_.rangeOverhead, nullptr);
  proc_.cache = nullptr;
  EXPECT_EQ(chCreateStageBuffer(&proc_, 10), nullptr);
}

}  // namespace

}  // namespace statecut::test
