#include "base/tablearena.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "base/memory.h"
#include "base/sanitizer.h"

namespace {

using namespace statecut;

unsigned char* table(std::uint64_t bytes) { return static_cast<unsigned char*>(allocTable(bytes)); }

bool isZero(const unsigned char* from, std::size_t bytes) {
  return std::all_of(from, from + bytes, [](unsigned char byte) { return byte == 0; });
}

// Small enough for ordinary pages, and too large for them.
class Arena : public testing::TestWithParam<std::size_t> {
 protected:
  TableArena arena_;
};

TEST_P(Arena, TablesAreZeroWithTheirSlackAndLieBesideEachOther) {
  const std::size_t bytes = GetParam();
  arena_.make(3 * bytes, 3);
  const TableArena::Use use(arena_);
  unsigned char* const tables[] = {table(bytes), table(bytes - 1), table(0), table(1)};
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t whole = (i < 2 ? bytes - i : i - 2) + kTableSlack;
    ASSERT_NE(tables[i], nullptr);
    EXPECT_TRUE(isZero(tables[i], whole)) << i;
    std::memset(tables[i], 0xFF, whole);
  }
  EXPECT_LT(tables[0] + bytes + kTableSlack, tables[1] + 1);
  EXPECT_LT(tables[1], tables[0] + 2 * bytes) << "not beside each other";
  for (unsigned char* each : tables) freeTable(each);
}

TEST_P(Arena, WhatDoesNotFitComesFromTheHeap) {
  const std::size_t bytes = GetParam();
  arena_.make(bytes, 1);
  const TableArena::Use use(arena_);
  unsigned char* const first = table(bytes);
  unsigned char* const second = table(bytes);
  ASSERT_TRUE(first != nullptr && second != nullptr);
  std::memset(second, 1, bytes + kTableSlack);
  EXPECT_TRUE(isZero(first, bytes + kTableSlack));
  freeTable(second);
  freeTable(first);
}

TEST_P(Arena, TablesOutliveItsUseAndGoWithTheBlock) {
  const std::size_t bytes = GetParam();
  unsigned char* held = nullptr;
  {
    arena_.make(bytes, 1);
    const TableArena::Use use(arena_);
    held = table(bytes);
  }
  unsigned char* const other = table(bytes);  // from the heap: no arena is in use
  std::memset(held, 7, bytes);
  EXPECT_EQ(held[bytes - 1], 7);
  freeTable(other);
  freeTable(held);
  arena_.make(bytes, 1);
  const TableArena::Use use(arena_);
  EXPECT_TRUE(isZero(table(bytes), bytes + kTableSlack)) << "bytes of the block before";
}

INSTANTIATE_TEST_SUITE_P(Sizes, Arena, testing::Values(1000, std::size_t{3} << 20));

TEST(Arenas, InnerUseEndsInTheOuterOne) {
  TableArena outer, inner;
  outer.make(std::size_t{1} << 16, 2);
  const TableArena::Use use(outer);
  const unsigned char* const first = table(8);
  {
    inner.make(1000, 1);
    const TableArena::Use innerUse(inner);
    freeTable(table(8));
  }
  const unsigned char* const second = table(8);
  EXPECT_LT(first, second);
  EXPECT_LT(second, first + (std::size_t{1} << 16));
}

// Without a sanitizer no byte is forbidden.
TEST(Arenas, SanitizerKnowsWhereATableEnds) {
  TableArena arena;
  arena.make(1000, 2);
  const TableArena::Use use(arena);
  unsigned char* const first = table(100);
  unsigned char* const second = table(100);
  EXPECT_FALSE(isForbidden(first + 100 + kTableSlack - 1));
  EXPECT_EQ(isForbidden(first + 100 + kTableSlack), kAddressSanitizer);
  EXPECT_EQ(isForbidden(second - 1), kAddressSanitizer);
  freeTable(first);
  EXPECT_EQ(isForbidden(first), kAddressSanitizer);
  EXPECT_FALSE(isForbidden(second));
}

}  // namespace
