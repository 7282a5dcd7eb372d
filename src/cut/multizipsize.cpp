#include "cut/multizipsize.h"

#include "cut/logsites.h"
#include "cut/rangecopy.h"
#include "cut/workstate.h"
#include "tables/refpointers.h"

namespace statecut {

namespace {

struct BytesTable {
  const unsigned char* entries;
  std::uint32_t count;  // of 8-byte entries
};

BytesTable tableOf(std::int32_t kind) {
  if (kind == kSfh) {
    return {refPointers[kSlotSfhMultiZipBytes].table,
            refWord(RefControlRec::sfhMultiZipBytesCount)};
  }
  if (kind == kPob) {
    return {refPointers[kSlotPobMultiZipBytes].table,
            refWord(RefControlRec::pobMultiZipBytesCount)};
  }
  return {refPointers[kSlotRrMultiZipBytes].table, refWord(RefControlRec::rrMultiZipBytesCount)};
}

// A fixed sequence of probes: on a table read at the wrong width the entries are in no order, and
// the result depends on which of them are looked at.
template <typename Entry>
const Entry* find(const BytesTable& table, const Entry& key) {
  std::uint64_t low = 0;
  std::uint64_t high = table.count;
  while (low < high) {
    const std::uint64_t middle = (low + high) / 2;
    const unsigned char* entry = table.entries + middle * Entry::size;
    const std::int32_t order = compareMltZpBytes(key.bytes.data(), entry);
    if (order == 0) return reinterpret_cast<const Entry*>(entry);
    if (order < 0) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return nullptr;
}

// Deliberate: the label is the SFH one for every kind; it is part of the log's format.
std::int32_t unknownSize(LogSite site, std::uint32_t key) {
  logNumber(site, "Get Bytes", "SFH ", key);
  return 0;
}

template <typename Entry>
std::int32_t sizeOf(std::uint32_t key, std::int32_t kind, LogSite badKind, LogSite notFound) {
  if (kind != kSfh && kind != kPob && kind != kRr) return unknownSize(badKind, key);
  const BytesTable table = tableOf(kind);
  if (table.entries == nullptr) return 0;
  static Entry searchKey{};
  searchKey.set(Entry::key, key);
  const Entry* entry = find(table, searchKey);
  if (entry == nullptr) return unknownSize(notFound, key);
  return static_cast<std::int32_t>(entry->get(Entry::bytes_));
}

}  // namespace

std::int32_t compareMltZpBytes(const unsigned char* a, const unsigned char* b) {
  return std::int32_t{le::get<2>(a)} - std::int32_t{le::get<2>(b)};
}

// Deliberate: both widths are used on one and the same SFH table; programs in the field read cuts
// that were made so.
std::int32_t getMltZpEntryPntSize(std::uint16_t key, std::int32_t kind) {
  return sizeOf<MultiZipBytesShort>(key, kind, logsite::kShortSizeBadKind,
                                    logsite::kShortSizeNotFound);
}

std::int32_t getMltZpEntryPntSize4(std::uint32_t key, std::int32_t kind) {
  return sizeOf<MultiZipBytesLong>(key, kind, logsite::kLongSizeBadKind,
                                   logsite::kLongSizeNotFound);
}

}  // namespace statecut
