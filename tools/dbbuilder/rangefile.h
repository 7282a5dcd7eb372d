#pragma once
// The range file of a model: control record, then the partitions back to back.

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "dbbuilder/model.h"

namespace statecut::builder {

inline constexpr std::size_t rangeControlSize = 624;

// Where each partition of the model stands, and who finds it by (section, key).
class RangeLayout {
 public:
  explicit RangeLayout(const RangeModel& range);

  // RBA of the first partition of that section and key; empty when there is none.
  [[nodiscard]] Auto32 rba(Section section, std::uint32_t key) const;
  // Its size in bytes; empty when there is none.
  [[nodiscard]] Auto32 bytes(Section section, std::uint32_t key) const;
  // RBA by position in RangeModel::partitions, 64 bits wide.
  [[nodiscard]] std::uint64_t rbaAt(std::size_t position) const { return rbas_[position]; }
  // Where the first partition begins and the last one ends.
  [[nodiscard]] std::uint64_t begin() const { return begin_; }
  [[nodiscard]] std::uint64_t end() const { return end_; }
  [[nodiscard]] std::uint32_t sectionStart(Section section) const;
  [[nodiscard]] std::uint32_t sectionBytes(Section section) const;

 private:
  struct Entry {
    Section section;
    std::uint32_t key;
    std::size_t position;
  };
  [[nodiscard]] const Entry* find(Section section, std::uint32_t key) const;

  const RangeModel& range_;
  std::vector<std::uint64_t> rbas_;
  std::vector<Entry> entries_;  // sorted by section, key
  std::uint64_t begin_ = 0;
  std::uint64_t end_ = 0;
};

// The 624 bytes of the range control record.
Bytes rangeControlRecord(const RangeModel& range, const RangeLayout& layout);

// Fills `out` with the content of a partition from byte `offset` on; `offset` is a multiple of 8.
void fillContent(std::uint64_t seed, std::uint64_t offset, std::span<Byte> out);

// The content of one partition, and the whole file, in memory (for small models).
Bytes partitionContent(const Partition& partition);
Bytes rangeFile(const RangeModel& range);

}  // namespace statecut::builder
