#pragma once
// A name hash index over six small name tables, planted entry by entry.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/procobj.h"
#include "dbfiles/controlrec.h"
#include "tables/refpointers.h"

namespace statecut::test {

using Bytes = std::vector<unsigned char>;

// The hash by its definition, written apart from the product's.
std::uint32_t hashOf(std::string_view name, std::uint32_t type);

class IndexFixture : public ::testing::Test {
 protected:
  IndexFixture();
  ~IndexFixture() override;

  // Makes an index of `slots` slots (a power of two) and `overflow` overflow entries, all empty.
  void makeIndex(std::uint32_t slots, std::uint32_t overflow = 0);
  // The name becomes its slot's only one.
  void plant(std::string_view name, std::uint32_t type, std::uint32_t number);
  void setSlot(std::uint32_t slot, std::uint32_t count, std::uint32_t check, std::uint32_t number);
  void setOverflow(std::uint32_t entry, std::uint32_t check, std::uint32_t number);
  [[nodiscard]] std::uint32_t slotOf(std::string_view name, std::uint32_t type) const;
  [[nodiscard]] std::uint32_t checkOf(std::string_view name, std::uint32_t type) const;

  std::uint32_t find(std::string_view name, std::uint32_t type);
  std::int32_t zap(std::string_view name, std::uint32_t type, std::uint32_t number);

  void setTable(SlotNumber slot, const Bytes& bytes);
  unsigned char* slotBytes(std::uint32_t slot);

  ProcObj proc{};
  RefControlRec record{};
};

// Table contents.
Bytes packed(const std::vector<std::string>& names);    // length byte, name
Bytes variants(const std::vector<std::string>& names);  // 4 bytes, length byte, name
Bytes cityRecord(std::string_view state, std::string_view name);
Bytes phoneticRecord(std::string_view state, std::string_view key);
Bytes operator+(Bytes a, const Bytes& b);

}  // namespace statecut::test
