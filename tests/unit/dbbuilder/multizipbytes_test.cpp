// The size tables of the multi-ZIP partitions, searched as the cut searches them.

#include "dbbuilder/multizipbytes.h"

#include <gtest/gtest.h>

#include <optional>

#include "base/le.h"
#include "dbbuilder/random.h"

namespace statecut::builder {
namespace {

// Half-open binary search over entries of `width` bytes that compares 16 bits of the key.
std::optional<std::int32_t> search(const MultiZipTable& table, std::size_t width,
                                   std::uint32_t key) {
  std::size_t low = 0, high = table.count;
  while (low < high) {
    const std::size_t at = (low + high) / 2;
    const Byte* entry = table.bytes.data() + at * width;
    const int order = static_cast<int>(key & 0xFFFF) - static_cast<int>(le::get<2>(entry));
    if (order == 0) return static_cast<std::int32_t>(le::get<4>(entry + width - 4));
    if (order < 0)
      high = at;
    else
      low = at + 1;
  }
  return std::nullopt;
}

std::vector<MultiZipSize> randomSizes(std::uint32_t count, std::uint64_t seed) {
  Random random(seed);
  std::vector<MultiZipSize> sizes;
  std::uint32_t key = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    key += random.between(1, 9);
    sizes.push_back({key, random.between(1, 100000)});
  }
  return sizes;
}

TEST(SfhMultiZipBytes, EveryKeyIsFoundInBothFormsWithItsSize) {
  for (std::uint32_t count = 1; count <= 200; ++count) {
    const auto sizes = randomSizes(count, count);
    const MultiZipTable table = sfhTable(sizes);
    ASSERT_EQ(table.bytes.size(), std::size_t{8} * table.count);
    for (const MultiZipSize& each : sizes) {
      EXPECT_EQ(search(table, 6, each.key), static_cast<std::int32_t>(each.bytes));
      EXPECT_EQ(search(table, 8, each.key), static_cast<std::int32_t>(each.bytes));
    }
  }
}

TEST(SfhMultiZipBytes, NoOtherKeyHasASizeInEitherForm) {
  for (std::uint32_t count : {1U, 2U, 3U, 10U, 47U, 500U}) {
    const auto sizes = randomSizes(count, 1000 + count);
    const MultiZipTable table = sfhTable(sizes);
    std::size_t next = 0;
    for (std::uint32_t key = 1; key <= 0xFFFF; ++key) {
      if (next < sizes.size() && sizes[next].key == key) {
        ++next;
        continue;
      }
      ASSERT_FALSE(search(table, 6, key)) << count << " keys, key " << key;
      ASSERT_FALSE(search(table, 8, key)) << count << " keys, key " << key;
    }
    EXPECT_EQ(search(table, 6, 0).value_or(0), 0);
    EXPECT_EQ(search(table, 8, 0).value_or(0), 0);
  }
}

TEST(SfhMultiZipBytes, ReadAsShortEntriesTheKeysAscend) {
  const MultiZipTable table = sfhTable(randomSizes(300, 7));
  for (std::size_t i = 1; i < table.count; ++i)
    ASSERT_LE(le::get<2>(table.bytes.data() + 6 * (i - 1)), le::get<2>(table.bytes.data() + 6 * i));
}

TEST(SfhMultiZipBytes, NoKeysMakeAnEmptyTable) {
  EXPECT_EQ(sfhTable({}).count, 0U);
  EXPECT_TRUE(sfhTable({}).bytes.empty());
}

TEST(ShortMultiZipBytes, EntriesOfSixBytesFillTheFirstThreeQuarters) {
  const MultiZipTable table = shortTable({{3, 0x01020304}, {0x1234, 5}});
  EXPECT_EQ(table.count, 2U);
  EXPECT_EQ(table.bytes, (Bytes{3, 0, 4, 3, 2, 1, 0x34, 0x12, 5, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(search(table, 6, 0x1234), 5);
  EXPECT_FALSE(search(table, 6, 4));
}

}  // namespace
}  // namespace statecut::builder
