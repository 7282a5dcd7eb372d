#include "lookup/zip.h"

#include <algorithm>
#include <array>

#include "lookup/inmemory.h"
#include "lookup/refaccess.h"

namespace statecut {

namespace {

// A key or index is valid from 1 to the count, both included.
bool validKey(std::int32_t key, std::uint32_t count) {
  return key >= 1 && static_cast<std::uint32_t>(key) <= count;
}

const KeyRow* ownCityKey(const ZipDataRow* zip) {
  return reinterpret_cast<const KeyRow*>(zip->bytes.data() + ZipDataRow::cityKey.at);
}

std::uint32_t zipIndexRba(const RefControlRec& ref, std::int32_t zip) {
  return entryRba(ref.get(RefControlRec::zipIndexRba), static_cast<std::uint32_t>(zip),
                  KeyRow::size);
}

ZipDataRow* readZipData(const RefControlRec& ref, std::uint32_t key, ZipDataRow* record) {
  return readRowCached(ref.get(RefControlRec::zipDataRba), key, record) ? record : nullptr;
}

FinMultiZipRow* readFinMultiZip(std::int32_t index, FinMultiZipRow* entry) {
  const RefControlRec* ref = refRecord();
  if (ref == nullptr || !validKey(index, ref->get(RefControlRec::finMultiZipRbasCount)))
    return nullptr;
  const bool read = readRowCached(ref->get(RefControlRec::finMultiZipRbasRba),
                                  static_cast<std::uint32_t>(index), entry);
  return read ? entry : nullptr;
}

}  // namespace

std::int32_t dbGetZipIndexIn(std::int32_t zip) {
  const Trace trace(kZipSource);
  return trace.leave(memory::zipIndex(processTables(), zip));
}

std::int32_t dbGetZipIndexOff(std::int32_t zip) {
  const Trace trace(kZipSource);
  const RefControlRec* ref = refRecord();
  if (ref == nullptr || !memory::validZip(zip)) return -1;
  KeyRow entry{};
  if (!readDirect(zipIndexRba(*ref, zip), KeyRow::size, &entry)) return -1;
  return trace.leave(entry.get(KeyRow::key));
}

ZipDataRow* dbGetZipDataIn(std::int32_t zip, std::uint32_t* key) {
  const Trace trace(kZipSource);
  return trace.leave(memory::zipData(processTables(), zip, key));
}

ZipDataRow* dbGetZipDataOff(std::int32_t zip, std::uint32_t* key) {
  const Trace trace(kZipSource);
  static ZipDataRow record{};
  const RefControlRec* ref = refRecord();
  if (ref == nullptr || !memory::validZip(zip)) return nullptr;
  KeyRow entry{};
  if (!readCached(zipIndexRba(*ref, zip), KeyRow::size, &entry)) return nullptr;
  const std::uint32_t found = entry.get(KeyRow::key);
  *key = found;
  if (found == 0) return nullptr;
  return trace.leave(readZipData(*ref, found, &record));
}

ZipDataRow* dbGetZipDataFromKeyIn(std::int32_t key) {
  const Trace trace(kZipSource);
  return trace.leave(memory::zipDataFromKey(processTables(), key));
}

ZipDataRow* dbGetZipDataFromKeyOff(std::int32_t key) {
  const Trace trace(kZipSource);
  static ZipDataRow record{};
  const RefControlRec* ref = refRecord();
  if (ref == nullptr || !validKey(key, ref->get(RefControlRec::zipDataCount))) return nullptr;
  return trace.leave(readZipData(*ref, static_cast<std::uint32_t>(key), &record));
}

const KeyRow* dbGetCityKeysPtrIn(const ZipDataRow* zip) {
  const Trace trace(kZipSource);
  if (zip == nullptr) return nullptr;
  return trace.leave(memory::cityKeys(processTables(), *zip));
}

const KeyRow* dbGetCityKeysPtrOff(const ZipDataRow* zip) {
  const Trace trace(kZipSource);
  static std::array<KeyRow, 256> buff{};
  if (zip == nullptr || refLost(pProcObj)) return nullptr;
  const std::uint32_t count = zip->get(ZipDataRow::cityKeysCount);
  if (count == 1) return trace.leave(ownCityKey(zip));
  const RefControlRec* ref = refRecord();
  const std::uint32_t index = zip->get(ZipDataRow::cityKeysIndex);
  if (ref == nullptr || index == 0 || index > ref->get(RefControlRec::zipMultiCityListsCount))
    return nullptr;
  const std::uint32_t rba =
      entryRba(ref->get(RefControlRec::zipMultiCityListsRba), index, KeyRow::size);
  if (!readDirect(rba, static_cast<std::int32_t>(count * KeyRow::size), buff.data()))
    return nullptr;
  return trace.leave(buff.data());
}

FinMultiZipRow* dbGetMultiZipFinRBAIn(std::int32_t index) {
  const Trace trace(kZipSource);
  return trace.leave(memory::finMultiZip(processTables(), index));
}

FinMultiZipRow* dbGetMultiZipFinRBAOff(std::int32_t index) {
  const Trace trace(kZipSource);
  static FinMultiZipRow entry{};
  return trace.leave(readFinMultiZip(index, &entry));
}

FinMultiZipRow* dbGetZipFinMltZpRBAIn(const ZipDataRow* zip) {
  const Trace trace(kZipSource);
  if (zip == nullptr) return nullptr;
  return trace.leave(memory::finMultiZip(processTables(), zip->get(ZipDataRow::finMultiZipKey)));
}

FinMultiZipRow* dbGetZipFinMltZpRBAOff(const ZipDataRow* zip) {
  const Trace trace(kZipSource);
  static FinMultiZipRow entry{};
  if (zip == nullptr) return nullptr;
  return trace.leave(readFinMultiZip(zip->get(ZipDataRow::finMultiZipKey), &entry));
}

const KeyRow* dbGetMultiZipsIn(std::uint32_t, std::uint32_t start) {
  const Trace trace(kZipSource);
  return trace.leave(memory::multiZips(processTables(), start & 0xFFFF));
}

const KeyRow* dbGetMultiZipsOff(std::uint32_t count, std::uint32_t start) {
  const Trace trace(kZipSource);
  static std::array<KeyRow, kMultiZipsMax> zipListBuff{};
  static std::uint16_t lastKey = 0xFFFF;
  const RefControlRec* ref = refRecord();
  const auto index = static_cast<std::uint16_t>(start);
  if (ref == nullptr || index > ref->get(RefControlRec::multiZipListsCount) || refLost(pProcObj))
    return nullptr;
  // Keyed by the start alone: a larger count gets the list read before. Meant.
  if (index == lastKey) return trace.leave(zipListBuff.data());
  // The file offset steps by 4 an index, the address in memory by 2. Meant.
  const std::uint32_t rba = entryRba(ref->get(RefControlRec::multiZipListsRba), index,
                                     tableLine(TableId::kMultiZipLists).width);
  const std::size_t bytes = std::min(count, kMultiZipsMax) * KeyRow::size;
  auto list = zipListBuff;  // what a failed read leaves is no list for the calls to come
  if (!readCached(rba, static_cast<std::int32_t>(bytes), list.data())) return nullptr;
  zipListBuff = list;
  lastKey = index;
  return trace.leave(zipListBuff.data());
}

}  // namespace statecut
