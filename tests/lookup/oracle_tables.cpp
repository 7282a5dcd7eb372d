// The oracle's tables: what a load makes of the file, single reads, and the blocks of a cache.

#include <algorithm>

#include "base/le.h"
#include "oracle.h"

namespace statecut::test {

namespace {

constexpr std::uint64_t kLargestTable = 2147483647;

// RBA word, count word (0: none), bytes for one of the count.
struct TableWords {
  std::size_t rba;
  std::size_t count;
  std::uint64_t width;
};
constexpr TableWords kWords[] = {{56, 192, 52}, {64, 0, 200000}, {60, 196, 4},   {32, 188, 36},
                                 {36, 180, 6},  {40, 184, 2},    {260, 256, 28}, {264, 268, 8},
                                 {44, 132, 34}, {52, 136, 26},   {248, 252, 4},  {80, 144, 1},
                                 {88, 156, 1},  {92, 152, 1},    {100, 168, 1},  {104, 164, 1},
                                 {112, 176, 1}, {228, 224, 4},   {308, 312, 7},  {316, 320, 6}};

// The bytes of the file from `from`, as many as `count`; what the file lacks stays as it is in
// `to`.
void copyBytes(const Bytes& file, std::uint64_t from, std::uint64_t count, unsigned char* to) {
  if (from >= file.size()) return;
  const std::uint64_t there = std::min<std::uint64_t>(count, file.size() - from);
  std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(from), there, to);
}

}  // namespace

BlockModel::BlockModel(const Bytes& file, std::uint32_t blockBytes, std::size_t entries)
    : file_(file), blockBytes_(blockBytes), blocks_(entries) {
  for (Block& block : blocks_) block.data.resize(blockBytes);
}

BlockModel::Block* BlockModel::holding(std::uint32_t rba) {
  for (std::size_t i = 0; i < blocks_.size(); ++i) {
    if (!blocks_[i].filled || rba < blocks_[i].start || rba >= blocks_[i].end) continue;
    if (i < 5) return &blocks_[i];  // the first five places are never reordered
    const auto at = blocks_.begin() + static_cast<std::ptrdiff_t>(i);
    std::rotate(blocks_.begin(), at, at + 1);
    return &blocks_[0];
  }
  return nullptr;
}

void BlockModel::fill(std::uint32_t rba) {
  std::rotate(blocks_.begin(), blocks_.end() - 1, blocks_.end());
  Block& block = blocks_[0];
  block.filled = true;
  block.start = rba / blockBytes_ * blockBytes_;
  block.end = block.start + blockBytes_;
  copyBytes(file_, block.start, blockBytes_, block.data.data());
  fills.push_back(block.start);
}

bool BlockModel::read(std::uint32_t rba, std::uint32_t count, unsigned char* to) {
  if (count == 0) {  // a hit of no bytes counts; a miss reads the block all the same
    if (holding(rba) == nullptr) {
      fill(rba);
    } else {
      ++found;
      ++whole;
    }
  }
  while (count > 0) {
    Block* block = holding(rba);
    if (block == nullptr) {
      fill(rba);
      block = holding(rba);
      if (block == nullptr) return false;  // the last block of all ends at 0
    }
    ++found;
    const std::uint32_t offset = rba - block->start;
    const std::uint32_t piece = std::min(count, blockBytes_ - offset);
    ++(piece == count ? whole : partial);
    std::copy_n(block->data.begin() + offset, piece, to);
    to += piece;
    rba += piece;
    count -= piece;
  }
  return true;
}

Oracle::Oracle(const Bytes& file, Kind kind, BlockModel* cache)
    : file_(file), kind_(kind), cache_(cache) {
  loadTables();
}

std::uint32_t Oracle::word(std::size_t at) const { return le::get<4>(file_.data() + at); }

// Tables that one reader loads: the first that is too large ends it.
void Oracle::group(std::initializer_list<Slot> slots) {
  for (const Slot slot : slots) {
    const TableWords& words = kWords[slot];
    View& table = views_[slot];
    table.rba = word(words.rba);
    table.bytes = words.width * (words.count == 0 ? 1 : word(words.count));
    if (table.bytes > kLargestTable) {
      // The pairs of street tables stand or fall with their second one.
      if (slot == kPhoneticStreets) views_[kPhoneticLists].loaded = false;
      if (slot == kStandardStreets) views_[kStandardLists].loaded = false;
      return;
    }
    table.loaded = true;
  }
}

void Oracle::loadTables() {
  group({kZips, kKeysOfZips, kZipIndexes});
  group({kCities, kZipLists, kFinanceLists, kMultiZipRbas, kFinances});
  group({kNames});
  group({kPhonetics});
  group({kLists});
  group({kStreets});
  group({kPhoneticLists, kPhoneticStreets});
  group({kStandardLists, kStandardStreets});
  group({kFirms});
  group({kDeliveries});
  group({kSlots, kOverflow});
}

Oracle::Optional Oracle::view(Slot slot, std::uint64_t at, std::uint64_t count) {
  const View& table = views_[slot];
  if (!table.loaded) {
    note(Difference::kTableTooLarge);
    return std::nullopt;
  }
  Bytes bytes(count);
  if (at >= table.bytes) return bytes;
  count = std::min(count, table.bytes - at);
  if (table.rba + at + count > file_.size()) note(Difference::kBehindTheFile);
  copyBytes(file_, table.rba + at, count, bytes.data());
  return bytes;
}

void Oracle::readDirect(std::uint32_t rba, std::uint64_t count, Bytes& to) {
  if (rba + count > file_.size()) note(Difference::kBehindTheFile);
  copyBytes(file_, rba, count, to.data());
}

bool Oracle::readCached(std::uint32_t rba, std::uint64_t count, Bytes& to) {
  if (cache_ == nullptr) {
    readDirect(rba, count, to);
    return true;
  }
  if (rba + count > file_.size()) note(Difference::kBehindTheFile);
  return cache_->read(rba, static_cast<std::uint32_t>(count), to.data());
}

Oracle::Optional Oracle::row(Slot slot, std::uint64_t index, std::uint32_t width, Bytes& buffer,
                             bool cached) {
  if (kind_ == kMemory) return view(slot, index * width, width);
  if (!views_[slot].loaded) note(Difference::kTableTooLarge);
  if (index * width + width > views_[slot].bytes) note(Difference::kRecordAtTheCount);
  const std::uint32_t rba =
      word(kWords[slot].rba) + static_cast<std::uint32_t>(index) * width;  // modulo 2^32
  if (!cached) {
    readDirect(rba, width, buffer);
  } else if (!readCached(rba, width, buffer)) {
    return std::nullopt;
  }
  return Bytes(buffer.begin(), buffer.begin() + width);
}

}  // namespace statecut::test
