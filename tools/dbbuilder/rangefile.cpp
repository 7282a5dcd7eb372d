#include "dbbuilder/rangefile.h"

#include <algorithm>
#include <tuple>

#include "dbbuilder/bytes.h"
#include "dbbuilder/header.h"
#include "dbbuilder/random.h"

namespace statecut::builder {

RangeLayout::RangeLayout(const RangeModel& range) : range_(range) {
  std::uint64_t next = std::max<std::uint64_t>(range.firstRba, rangeControlSize);
  begin_ = next;
  for (std::size_t i = 0; i < range.partitions.size(); ++i) {
    const Partition& partition = range.partitions[i];
    rbas_.push_back(next);
    entries_.push_back({partition.section, partition.key, i});
    next += partition.bytes;
  }
  end_ = next;
  std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
    return std::tie(a.section, a.key, a.position) < std::tie(b.section, b.key, b.position);
  });
}

const RangeLayout::Entry* RangeLayout::find(Section section, std::uint32_t key) const {
  const auto at =
      std::lower_bound(entries_.begin(), entries_.end(), std::pair(section, key),
                       [](const Entry& entry, const std::pair<Section, std::uint32_t>& wanted) {
                         return std::pair(entry.section, entry.key) < wanted;
                       });
  if (at == entries_.end() || at->section != section || at->key != key) return nullptr;
  return &*at;
}

Auto32 RangeLayout::rba(Section section, std::uint32_t key) const {
  const Entry* entry = find(section, key);
  if (entry == nullptr) return std::nullopt;
  return static_cast<std::uint32_t>(rbas_[entry->position]);
}

Auto32 RangeLayout::bytes(Section section, std::uint32_t key) const {
  const Entry* entry = find(section, key);
  if (entry == nullptr) return std::nullopt;
  return range_.partitions[entry->position].bytes;
}

std::uint32_t RangeLayout::sectionStart(Section section) const {
  for (std::size_t i = 0; i < rbas_.size(); ++i)
    if (range_.partitions[i].section == section) return static_cast<std::uint32_t>(rbas_[i]);
  return static_cast<std::uint32_t>(end_);
}

std::uint32_t RangeLayout::sectionBytes(Section section) const {
  std::uint32_t sum = 0;
  for (const Partition& partition : range_.partitions)
    if (partition.section == section) sum += partition.bytes;
  return sum;
}

Bytes rangeControlRecord(const RangeModel& range, const RangeLayout& layout) {
  ByteWriter out;
  out.raw(headerBytes(range.header));
  out.u32(layout.sectionStart(Section::SfhZip));
  out.u32(layout.sectionStart(Section::SfhMulti));
  out.u32(range.word40);
  out.u32(layout.sectionStart(Section::PobZip));
  out.u32(layout.sectionStart(Section::PobMulti));
  out.u32(layout.sectionStart(Section::RrZip));
  out.u32(layout.sectionStart(Section::RrMulti));
  out.u32(layout.sectionBytes(Section::PobZip));
  out.u32(layout.sectionBytes(Section::PobMulti));
  out.u32(layout.sectionBytes(Section::RrZip));
  out.u32(layout.sectionBytes(Section::RrMulti));
  out.u32(layout.sectionBytes(Section::SfhZip));
  out.u32(layout.sectionBytes(Section::SfhMulti));
  out.u32(range.word84);
  out.u32(range.maxOverhead);
  for (const std::uint32_t count : range.maxStreets) out.u32(count);
  out.raw(range.trailing);
  Bytes record = out.take();
  record.resize(rangeControlSize);
  patchWords(record, range.words);
  return record;
}

void fillContent(std::uint64_t seed, std::uint64_t offset, std::span<Byte> out) {
  std::uint64_t counter = seed + offset / 8 * mixStep;
  std::size_t at = 0;
  for (; at + 8 <= out.size(); at += 8) {
    const std::uint64_t word = mix64(counter += mixStep);
    le::put<4>(out.data() + at, static_cast<std::uint32_t>(word));
    le::put<4>(out.data() + at + 4, static_cast<std::uint32_t>(word >> 32));
  }
  const std::uint64_t word = mix64(counter + mixStep);
  for (std::size_t i = 0; at < out.size(); ++at, ++i) out[at] = static_cast<Byte>(word >> (8 * i));
}

Bytes partitionContent(const Partition& partition) {
  Bytes content(partition.bytes);
  fillContent(partition.seed, 0, content);
  return content;
}

Bytes rangeFile(const RangeModel& range) {
  const RangeLayout layout(range);
  Bytes file(static_cast<std::size_t>(layout.end()));
  for (std::size_t i = 0; i < range.partitions.size(); ++i) {
    const Partition& partition = range.partitions[i];
    fillContent(partition.seed, 0, std::span(file).subspan(layout.rbaAt(i), partition.bytes));
  }
  const Bytes record = rangeControlRecord(range, layout);
  std::copy(record.begin(), record.end(), file.begin());
  if (range.fileBytes) file.resize(*range.fileBytes);
  return file;
}

}  // namespace statecut::builder
