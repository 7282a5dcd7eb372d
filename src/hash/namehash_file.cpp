// The search on disk: the slot, its overflow entries and the candidate names are read one by one.

#include <algorithm>
#include <array>
#include <cstring>

#include "base/stream.h"
#include "dbfiles/apiutil.h"
#include "hash/search.h"

namespace statecut {

namespace {

constexpr std::uint32_t kMostEntries = 255;
// Deliberate: 7 bytes for each entry are read, although an entry has 6.
constexpr std::uint32_t kReadPerEntry = 7;
constexpr std::size_t kLongestRead = 41;

template <typename RowType>
constexpr auto entrySize = static_cast<std::uint32_t>(RowType::size);

// False without a file, behind a read error, where the reader would stop the program, and when the
// file fails or turns out to have become shorter. A short read at its end leaves what `to` held.
bool readReference(ProcObj* proc, std::uint32_t rba, std::int32_t count, unsigned char* to) {
  Stream* file = proc->files == nullptr ? nullptr : proc->files->reference;
  if (file == nullptr || streamError(file)) return false;
  const bool read = dbReadFile(file, rba, count, to, proc) != -1;
  return read && !streamError(file) && !streamEndedEarly(file);
}

// A name that candidates on disk are compared with.
struct FileSearch {
  const unsigned char* name;
  std::int32_t length;
  std::uint32_t type;
  const RefControlRec& record;
  ProcObj* proc;
  std::array<unsigned char, kLongestRead> buffer{};  // what was read for the last candidate

  bool isNamed(std::uint32_t number) {
    if (type >= kNameLayouts.size()) return length == 0;
    const NameLayout& layout = kNameLayouts[type];
    if (!inTable(layout, number, record)) return false;
    const std::uint32_t table = le::get<4>(record.bytes.data() + layout.rbaAt);
    if (!readReference(proc, table + layout.unit * number + layout.readAt, layout.readBytes,
                       buffer.data()))
      return false;
    const unsigned char* lengthByte = buffer.data() + (layout.lengthAt - layout.readAt);
    const std::uint32_t nameAt = layout.nameAt - layout.readAt;
    const std::int32_t wanted = length - layout.added;
    // A name longer than the bytes read for it matches nothing.
    return wanted <= layout.mostByte && (*lengthByte & layout.lengthMask) == wanted &&
           length <= layout.readBytes - static_cast<std::int32_t>(nameAt) &&
           std::equal(name, name + length, buffer.data() + nameAt);
  }
};

}  // namespace

std::uint32_t dbHashFindOff(const unsigned char* name, std::int32_t length, std::uint32_t type,
                            ProcObj* proc) {
  const RefControlRec* record = proc == nullptr ? nullptr : proc->refControlRec;
  if (record == nullptr || length < 0 || (name == nullptr && length > 0)) return kNotFound;
  const std::uint32_t slotCount = record->get(RefControlRec::hashTableCount);
  keepMaskOf(slotCount);
  const Probe probe = probeOf(name, length, type, slotCount);
  if (probe.slot >= slotCount) return kNotFound;

  HashSlotRow slot{};
  if (!readReference(proc,
                     record->get(RefControlRec::hashTableRba) + entrySize<HashSlotRow> * probe.slot,
                     HashSlotRow::size, slot.bytes.data()))
    return kNotFound;
  FileSearch search{name, length, type, *record, proc};
  const std::uint32_t count = slot.get(HashSlotRow::count);
  const std::uint32_t number = slot.get(HashSlotRow::number);
  if (count == 0) return kNotFound;
  if (count == 1) {
    const bool found = slot.get(HashSlotRow::check) == probe.check && search.isNamed(number);
    return found ? number : kNotFound;
  }
  std::array<unsigned char, kMostEntries * kReadPerEntry> entries;
  std::memset(entries.data(), 0, count * kReadPerEntry);
  const std::uint32_t rba =
      record->get(RefControlRec::hashOverflowRba) + entrySize<HashOverflowRow> * number;
  if (!readReference(proc, rba, static_cast<std::int32_t>(count * kReadPerEntry), entries.data()))
    return kNotFound;
  for (std::uint32_t i = 0; i < count; ++i) {
    const unsigned char* entry = entries.data() + i * HashOverflowRow::size;
    if (le::get<2>(entry + HashOverflowRow::check.at) != probe.check) continue;
    const std::uint32_t found = le::get<4>(entry + HashOverflowRow::number.at);
    if (search.isNamed(found)) return found;
  }
  return kNotFound;
}

}  // namespace statecut
