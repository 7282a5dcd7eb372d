#include "hash/namehash.h"

#include <algorithm>
#include <array>

#include "hash/entries.h"
#include "hash/findname.h"
#include "hash/heldindex.h"

namespace statecut {

namespace {

TableView hashedTables() {
  const TableView view = processTables();
  if (view.record != nullptr) keepMaskOf(view.word(RefControlRec::hashTableCount));
  return view;
}

}  // namespace

std::uint32_t dbHashFind(const unsigned char* name, std::int32_t length, std::uint32_t type,
                         ProcObj* /*context*/) {
  const TableView view = hashedTables();
  const NameIndex* const index = heldIndex(view, type);
  if (index != nullptr && length <= NameIndex::longest(type)) return index->find(name, length);
  return findHashedName(view, name, length, type);
}

bool dbHashIndexNames(std::uint32_t type, ProcObj* /*context*/) {
  return madeIndex(hashedTables(), type) != nullptr;
}

std::int32_t zapHashedName(const unsigned char* name, std::int32_t length, std::uint32_t type,
                           std::uint32_t newNumber) {
  dbHashDropIndexes();
  unsigned char* number = findHashedEntry(hashedTables(), name, length, type);
  if (number == nullptr) return -1;
  const std::uint32_t old = le::get<4>(number);
  le::put<4>(number, newNumber);
  return static_cast<std::int32_t>(old);
}

void zapHashedNames(std::span<const HashedName> names, std::uint32_t type) {
  const TableView view = hashedTables();
  if (view.record == nullptr) return;
  dbHashDropIndexes();
  const std::uint32_t slotCount = view.word(RefControlRec::hashTableCount);
  struct Search {
    unsigned char* slot;
    std::uint32_t check;
  };
  std::array<Search, kZapBatch> searches{};
  for (std::size_t from = 0; from < names.size(); from += kZapBatch) {
    const auto batch = names.subspan(from, std::min(kZapBatch, names.size() - from));
    for (std::size_t i = 0; i < batch.size(); ++i) {
      const Probe probe = probeOf(batch[i].name, batch[i].length, type, slotCount);
      searches[i] = {slotOf(probe, view), probe.check};
      if (searches[i].slot != nullptr) __builtin_prefetch(searches[i].slot, 1);
    }
    for (std::size_t i = 0; i < batch.size(); ++i) {
      if (searches[i].slot != nullptr)
        __builtin_prefetch(entriesOf(searches[i].slot, view).first, 1);
    }
    for (std::size_t i = 0; i < batch.size(); ++i) {
      if (searches[i].slot == nullptr) continue;
      unsigned char* number = findFrom(searches[i].slot, searches[i].check, batch[i].name,
                                       batch[i].length, type, view, batch[i].own);
      if (number != nullptr) le::put<4>(number, batch[i].newNumber);
    }
  }
}

std::uint32_t fnv_32_buf(const unsigned char* buffer, std::int32_t length, std::uint32_t seed) {
  std::uint32_t hash = seed;
  // Deliberate, as every stored index is made so: adds the byte less 192 where FNV-1 has an
  // exclusive-or.
  for (std::int32_t i = 0; i < length; ++i) hash = hash * kFnvPrime + buffer[i] - 192u;
  return hash;
}

}  // namespace statecut
