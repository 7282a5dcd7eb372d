// The block cache with its file reads counted: before each read every byte of the file is set to a
// new number, so each byte that is handed out tells when its block was read.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "dbbuilder/random.h"
#include "lookup/cache.h"
#include "oracle.h"
#include "support/logfixture.h"

namespace statecut::test {
namespace {

class CacheReads : public LogFixture {
 protected:
  void build(std::uint32_t blockBytes, std::int32_t entries) {
    blockBytes_ = blockBytes;
    chFreeCache(&block_.refCache);
    block_.refCache = chConstructCache(blockBytes, entries);
    ASSERT_NE(block_.refCache, nullptr);
    proc_.cache = &block_;
  }
  ~CacheReads() override { chFreeCache(&block_.refCache); }

  Bytes get(std::uint32_t rba, std::uint32_t length) {
    ++generation_;
    std::fill(file_.begin(), file_.end(), static_cast<unsigned char>(generation_));
    Stream* source = holding(file_, "generation");
    Bytes to(length);
    EXPECT_EQ(chGetBlockCacheData(block_.refCache, source, rba, static_cast<std::int32_t>(length),
                                  to.data(), &proc_),
              static_cast<std::int32_t>(length));
    forget(source);
    streamClose(source);
    return to;
  }
  // The file reads that the bytes of a read took.
  std::size_t reads(std::uint32_t rba, std::uint32_t length) {
    const Bytes bytes = get(rba, length);
    std::set<std::uint32_t> blocks;
    for (std::uint32_t i = 0; i < length; ++i)
      if (bytes[i] == static_cast<unsigned char>(generation_))
        blocks.insert((rba + i) / blockBytes_);
    return blocks.size();
  }
  std::size_t readBlock(std::uint32_t number) { return reads(number * blockBytes_, 1); }

  Bytes file_ = Bytes(4096);
  CacheControlBlock block_{};
  std::uint32_t blockBytes_ = 0;
  std::uint32_t generation_ = 0;
};

TEST_F(CacheReads, HitReadsNothingAndPartialHitReadsTheRest) {
  build(64, 4);
  EXPECT_EQ(reads(0, 64), 1U);
  EXPECT_EQ(reads(0, 64), 0U) << "a record up to the block's end";
  EXPECT_EQ(reads(60, 5), 1U) << "one byte more";
  EXPECT_EQ(reads(60, 5), 0U);
  EXPECT_EQ(block_.partialHits, 2U);
}

TEST_F(CacheReads, PieceAcrossThreeBlocksReadsThoseThatAreMissing) {
  build(64, 8);
  EXPECT_EQ(reads(60, 100), 3U);
  EXPECT_EQ(reads(60, 100), 0U);
  EXPECT_EQ(readBlock(11), 1U);
  EXPECT_EQ(reads(10 * 64 + 60, 100), 2U) << "the middle one is held";
  build(64, 1);
  EXPECT_EQ(reads(60, 100), 3U);
  EXPECT_EQ(reads(60, 100), 3U) << "one entry holds the last block alone";
  EXPECT_EQ(reads(130, 8), 0U);
}

TEST_F(CacheReads, OneBlockMoreThanEntriesEvictsTheFirst) {
  for (const std::uint32_t entries : {1U, 3U, 8U}) {
    build(64, static_cast<std::int32_t>(entries));
    for (std::uint32_t i = 0; i <= entries; ++i) EXPECT_EQ(readBlock(i), 1U);
    EXPECT_EQ(readBlock(entries), 0U);
    EXPECT_EQ(readBlock(0), 1U) << "evicted";
  }
}

TEST_F(CacheReads, HitAtPositionFourDoesNotSaveABlockFromEviction) {
  build(64, 5);
  for (std::uint32_t i = 0; i < 5; ++i) ASSERT_EQ(readBlock(i), 1U);
  EXPECT_EQ(readBlock(0), 0U) << "position 4, stays there";
  EXPECT_EQ(readBlock(5), 1U);
  EXPECT_EQ(readBlock(0), 1U) << "was the last all the same";
}

TEST_F(CacheReads, HitAtPositionFiveSavesABlockFromEviction) {
  build(64, 6);
  for (std::uint32_t i = 0; i < 6; ++i) ASSERT_EQ(readBlock(i), 1U);
  EXPECT_EQ(readBlock(0), 0U) << "position 5, moves to the front";
  EXPECT_EQ(readBlock(6), 1U);
  EXPECT_EQ(readBlock(0), 0U) << "still held";
  EXPECT_EQ(readBlock(1), 1U) << "was the last in its place";
}

// Any run of reads: which bytes are fresh and which are held, and the counters.
TEST_F(CacheReads, AnyRunOfReadsReadsTheBlocksThatTheModelReads) {
  for (const std::int32_t entries : {1, 2, 6, 8}) {
    build(64, entries);
    BlockModel model(file_, 64, static_cast<std::size_t>(entries));
    block_.found = block_.wholeHits = block_.partialHits = 0;
    builder::Random random(static_cast<std::uint64_t>(entries));
    for (int i = 0; i < 300; ++i) {
      const std::uint32_t rba = random.below(1000);
      const std::uint32_t length = random.below(random.percent(80) ? 60 : 300);
      const Bytes got = get(rba, length);
      Bytes expected(length);
      ASSERT_TRUE(model.read(rba, length, expected.data()));
      ASSERT_EQ(got, expected) << entries << " entries, read " << i;
    }
    EXPECT_EQ(block_.found, model.found);
    EXPECT_EQ(block_.wholeHits, model.whole);
    EXPECT_EQ(block_.partialHits, model.partial);
  }
}

}  // namespace
}  // namespace statecut::test
