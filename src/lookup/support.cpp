#include "lookup/support.h"

#include "dbfiles/apiutil.h"
#include "hash/namehash.h"
#include "lookup/cache.h"

namespace statecut {

bool readable(const Stream* file) { return file != nullptr && !streamError(file); }

Stream* refStream(const ProcObj* proc) {
  return proc == nullptr || proc->files == nullptr ? nullptr : proc->files->reference;
}

std::int32_t readGuarded(Stream* file, std::uint32_t rba, std::int32_t count, void* to,
                         ProcObj* proc) {
  // The reader stops the program on such a stream; a lookup only fails.
  if (!readable(file) || to == nullptr) return -1;
  return dbReadFile(file, rba, count, to, proc);
}

std::int32_t readDirect(std::uint32_t rba, std::int32_t count, void* to) {
  return readGuarded(refStream(pProcObj), rba, count, to, pProcObj);
}

bool readCached(std::uint32_t rba, std::int32_t count, void* to) {
  if (pProcObj != nullptr && pProcObj->cache != nullptr && pProcObj->cache->refCache != nullptr)
    return chGetBlockCacheData(pProcObj->cache->refCache, refStream(pProcObj), rba, count, to,
                               pProcObj) != -2;
  readDirect(rba, count, to);
  return true;
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

}  // namespace statecut
