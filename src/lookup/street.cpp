// Street names by exact name and by offset. None of the street lookups writes trace lines.

#include "lookup/street.h"

#include <cstring>

#include "hash/namehash.h"
#include "lookup/cache.h"
#include "lookup/dispatch.h"
#include "lookup/inmemory.h"
#include "lookup/refaccess.h"

namespace statecut {

namespace {

constexpr std::int32_t kMaxKey = memory::kLongestStreet;

bool streetNamesFail(ProcObj* proc) { return loadFails(kSlotStreetNames, dbReadStreetNames, proc); }

void streetNamesOff(ProcObj& proc) {
  proc.pfnFindStreetKey = dbFindStreetKeyOff;
  proc.pfnGetStreetNameUSPS = dbGetStreetNameUSPSCacheOff;
  proc.pfnGetStreetNameUSPSwc = dbGetStreetNameUSPSCacheOffwc;
}

}  // namespace

std::int32_t dbFindStreetKey(const char* key, std::int32_t length, ProcObj* proc) {
  return length > kMaxKey ? -1 : hashIn(key, length, kStreetNames, proc);
}

std::int32_t dbFindStreetKeyOff(const char* key, std::int32_t length, ProcObj* proc) {
  return length > kMaxKey ? -1 : hashOff(key, length, kStreetNames, proc);
}

std::int32_t dbFindStreetFirst(const char* key, std::int32_t length, ProcObj* proc) {
  if (proc == nullptr) return -1;
  proc->pfnFindStreetKey = dbFindStreetKey;
  if (streetNamesFail(proc)) streetNamesOff(*proc);
  if (loaded(kSlotStreetNames) && loadFails(kSlotHashTable, dbReadHashedNames, proc))
    proc->pfnFindStreetKey = dbFindStreetKeyOff;
  return proc->pfnFindStreetKey(key, length, proc);
}

const char* dbGetStreetNameUSPS(std::uint32_t offset, std::int32_t* length, ProcObj* proc) {
  const RefControlRec* ref = proc == nullptr ? nullptr : proc->refControlRec;
  if (ref == nullptr) return nullptr;
  return packedNameIn(processTables(ref), kSlotStreetNames, offset,
                      ref->get(RefControlRec::streetNamesBytes), length);
}

const char* dbGetStreetNameUSPSCacheOff(std::uint32_t offset, std::int32_t* length, ProcObj* proc) {
  const RefControlRec* ref = proc == nullptr ? nullptr : proc->refControlRec;
  if (ref == nullptr) return nullptr;
  return packedNameOff(ref->get(RefControlRec::streetNamesRba), offset, length, proc);
}

const char* dbGetStreetNameUSPSCacheOffwc(std::uint32_t offset, std::int32_t* length,
                                          ProcObj* proc) {
  constexpr std::int32_t kReadBytes = 100;
  static unsigned char cRefBuffer[128];
  if (proc == nullptr || proc->cache == nullptr || proc->cache->refCache == nullptr)
    return dbGetStreetNameUSPSCacheOff(offset, length, proc);
  const RefControlRec* ref = proc->refControlRec;
  if (ref == nullptr) return nullptr;
  const std::uint32_t rba = ref->get(RefControlRec::streetNamesRba) + offset;
  if (!readCached(rba, kReadBytes, cRefBuffer, proc)) return nullptr;
  return packedName(cRefBuffer, length);
}

const char* dbGetStreetNameUSPSFirst(std::uint32_t offset, std::int32_t* length, ProcObj* proc) {
  if (proc == nullptr) return nullptr;
  proc->pfnGetStreetNameUSPS = dbGetStreetNameUSPS;
  proc->pfnGetStreetNameUSPSwc = dbGetStreetNameUSPS;
  if (streetNamesFail(proc)) streetNamesOff(*proc);
  return proc->pfnGetStreetNameUSPS(offset, length, proc);
}

void removeSpace(char* text) {
  const std::size_t length = std::strlen(text);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < length; ++i)
    if (text[i] != ' ') text[kept++] = text[i];
  // The blanks end up behind the new terminator, the last one where the old terminator was.
  std::memset(text + kept + 1, ' ', length - kept);
  text[kept] = '\0';
}

}  // namespace statecut
