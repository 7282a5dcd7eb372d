#include "unit/hash/indexfixture.h"

#include <algorithm>

#include "base/le.h"
#include "base/memory.h"
#include "hash/namehash.h"

namespace statecut::test {

std::uint32_t hashOf(std::string_view name, std::uint32_t type) {
  std::uint32_t hash = 0x811C9DC5u + type;
  for (auto byte = name.rbegin(); byte != name.rend(); ++byte) {
    hash += (hash << 1) + (hash << 4) + (hash << 7) + (hash << 8) + (hash << 24);
    hash ^= static_cast<std::uint32_t>(static_cast<unsigned char>(*byte)) - 32;
  }
  return hash;
}

IndexFixture::IndexFixture() {
  proc.files = &proc.fileRecord;
  proc.stats = &proc.statistics;
  proc.refControlRec = &record;
  pProcObj = &proc;
}

IndexFixture::~IndexFixture() {
  for (const SlotNumber slot :
       {kSlotFirms, kSlotStreetNames, kSlotCityNames, kSlotStreetStandards, kSlotStreetPhonetics,
        kSlotCityPhonetics, kSlotHashTable, kSlotHashOverflow}) {
    freeTable(refPointers[slot].table);
  }
  refPointers.fill(RefSlot{});
  pProcObj = nullptr;
}

void IndexFixture::setTable(SlotNumber slot, const Bytes& bytes) {
  freeTable(refPointers[slot].table);
  refPointers[slot].table = static_cast<unsigned char*>(allocTable(bytes.size()));
  std::copy(bytes.begin(), bytes.end(), refPointers[slot].table);
}

void IndexFixture::makeIndex(std::uint32_t slots, std::uint32_t overflow) {
  setTable(kSlotHashTable, Bytes(slots * 7));
  setTable(kSlotHashOverflow, Bytes(overflow * 6));
  record.set(RefControlRec::hashTableCount, slots);
  record.set(RefControlRec::hashOverflowCount, overflow);
  refPointers[kSlotHashMask] = RefSlot{};
}

unsigned char* IndexFixture::slotBytes(std::uint32_t slot) {
  return refPointers[kSlotHashTable].table + slot * 7;
}

void IndexFixture::setSlot(std::uint32_t slot, std::uint32_t count, std::uint32_t check,
                           std::uint32_t number) {
  unsigned char* at = slotBytes(slot);
  le::put<1>(at, count);
  le::put<2>(at + 1, check);
  le::put<4>(at + 3, number);
}

void IndexFixture::setOverflow(std::uint32_t entry, std::uint32_t check, std::uint32_t number) {
  unsigned char* at = refPointers[kSlotHashOverflow].table + entry * 6;
  le::put<2>(at, check);
  le::put<4>(at + 2, number);
}

std::uint32_t IndexFixture::slotOf(std::string_view name, std::uint32_t type) const {
  return hashOf(name, type) & (record.get(RefControlRec::hashTableCount) - 1);
}

std::uint32_t IndexFixture::checkOf(std::string_view name, std::uint32_t type) const {
  const std::uint32_t mask = record.get(RefControlRec::hashTableCount) - 1;
  return type | ((hashOf(name, type) & ~mask) >> 16);
}

void IndexFixture::plant(std::string_view name, std::uint32_t type, std::uint32_t number) {
  setSlot(slotOf(name, type), 1, checkOf(name, type), number);
}

std::uint32_t IndexFixture::find(std::string_view name, std::uint32_t type) {
  return dbHashFind(reinterpret_cast<const unsigned char*>(name.data()),
                    static_cast<std::int32_t>(name.size()), type, nullptr);
}

std::int32_t IndexFixture::zap(std::string_view name, std::uint32_t type, std::uint32_t number) {
  return zapHashedName(reinterpret_cast<const unsigned char*>(name.data()),
                       static_cast<std::int32_t>(name.size()), type, number);
}

Bytes packed(const std::vector<std::string>& names) {
  Bytes table;
  for (const std::string& name : names) {
    table.push_back(static_cast<unsigned char>(name.size()));
    table.insert(table.end(), name.begin(), name.end());
  }
  return table;
}

Bytes variants(const std::vector<std::string>& names) {
  Bytes table;
  for (const std::string& name : names) {
    table.insert(table.end(), 4, 0xEE);
    table.push_back(static_cast<unsigned char>(0x80 | name.size()));
    table.insert(table.end(), name.begin(), name.end());
  }
  return table;
}

Bytes cityRecord(std::string_view state, std::string_view name) {
  Bytes row(34);
  row[3] = static_cast<unsigned char>(name.size());
  std::copy(state.begin(), state.end(), row.begin() + 4);
  std::copy(name.begin(), name.end(), row.begin() + 6);
  return row;
}

Bytes phoneticRecord(std::string_view state, std::string_view key) {
  Bytes row(26);
  std::copy(state.begin(), state.end(), row.begin() + 2);
  std::copy(key.begin(), key.end(), row.begin() + 4);
  row[25] = static_cast<unsigned char>(key.size());
  return row;
}

Bytes operator+(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

}  // namespace statecut::test
