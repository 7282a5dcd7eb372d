#include "lookup/refaccess.h"

#include "dbfiles/apiutil.h"
#include "hash/namehash.h"
#include "lookup/cache.h"
#include "lookup/dispatch.h"
#include "lookup/inmemory.h"

namespace statecut {

bool lost(const Stream* file) {
  return file != nullptr && (streamError(file) || streamEndedEarly(file));
}

bool readable(const Stream* file) { return file != nullptr && !lost(file); }

bool refLost(const ProcObj* proc) { return lost(refStream(proc)); }

bool lookupsFailed(int* error) {
  const Stream* file = refStream(pProcObj);
  if (!lost(file)) return false;
  if (error != nullptr) *error = streamErrno(file);
  return true;
}

Stream* refStream(const ProcObj* proc) {
  return proc == nullptr || proc->files == nullptr ? nullptr : proc->files->reference;
}

std::int32_t readGuarded(Stream* file, std::uint32_t rba, std::int32_t count, void* to,
                         ProcObj* proc) {
  // The reader stops the program on such a stream; a lookup only fails.
  if (!readable(file) || to == nullptr) return -1;
  return dbReadFile(file, rba, count, to, proc);
}

bool readDirect(std::uint32_t rba, std::int32_t count, void* to, ProcObj* proc) {
  // A read that fails half-way answers the bytes asked for.
  return readGuarded(refStream(proc), rba, count, to, proc) != -1 && !refLost(proc);
}

bool readCached(std::uint32_t rba, std::int32_t count, void* to, ProcObj* proc) {
  if (proc == nullptr || proc->cache == nullptr || proc->cache->refCache == nullptr)
    return readDirect(rba, count, to, proc);
  return !refLost(proc) &&
         chGetBlockCacheData(proc->cache->refCache, refStream(proc), rba, count, to, proc) != -2;
}

std::int32_t hashIn(const char* key, std::int32_t length, std::uint32_t type, ProcObj* proc) {
  return static_cast<std::int32_t>(
      dbHashFind(reinterpret_cast<const unsigned char*>(key), length, type, proc));
}

std::int32_t hashOff(const char* key, std::int32_t length, std::uint32_t type, ProcObj* proc) {
  if (!readable(refStream(proc))) return -1;
  return static_cast<std::int32_t>(
      dbHashFindOff(reinterpret_cast<const unsigned char*>(key), length, type, proc));
}

bool readFails(TableReader* reader, ProcObj* proc) {
  Stream* file = refStream(proc);
  return !readable(file) || proc->refControlRec == nullptr ||
         reader(file, proc->refControlRec, proc) != 0;
}

const char* packedName(const unsigned char* at, std::int32_t* length) {
  *length = static_cast<signed char>(*at);
  return reinterpret_cast<const char*>(at + 1);
}

const char* packedNameIn(const TableView& view, SlotNumber slot, std::uint32_t offset,
                         std::uint32_t bytes, std::int32_t* length) {
  const unsigned char* at = memory::packedName(view, slot, offset, bytes);
  return at == nullptr ? nullptr : packedName(at, length);
}

const char* packedNameOff(std::uint32_t tableRba, std::uint32_t offset, std::int32_t* length,
                          ProcObj* proc) {
  const std::uint32_t rba = tableRba + offset;
  Stream* file = refStream(proc);
  // The reader below tells nothing of a failure.
  if (!readable(file) || streamSeek(file, rba) != 0) return nullptr;
  unsigned char* bytes = nullptr;
  dbReadRefRBA(rba, &bytes, 0, proc);
  return lost(file) ? nullptr : packedName(bytes, length);
}

}  // namespace statecut
