#include "lookup/session.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/memory.h"
#include "base/samefile.h"
#include "base/tablearena.h"
#include "dbfiles/apiutil.h"
#include "hash/namehash.h"
#include "lookup/refaccess.h"
#include "tables/directory.h"

namespace statecut {

namespace {

constexpr std::int32_t kPlainLogLevel = 3;

// dbTerminate keeps freed pointers and skips tables; a session leaves every slot empty.
void freeTables() {
  for (std::size_t slot = 0; slot < kSlotCount; ++slot) {
    const bool inPlace =
        slot == kSlotHashMask || slot == kSlotMilitaryHeader || slot == kSlotPobZoneCount;
    if (!inPlace && slot != kSlotMilitarySecond) freeTable(refPointers[slot].table);
    refPointers[slot] = {};
  }
  streetPhnVariation = {};
  streetStdVariation = {};
}

// Loads a set. False when that failed, and then nothing of it stays: a table that came in part is
// none.
bool loadSet(const SetReader& set, ProcObj* proc) {
  if (!readFails(set.reader, proc) && readable(refStream(proc))) return true;
  for (const SlotNumber slot : set.slots) {
    freeTable(refPointers[slot].table);
    refPointers[slot] = {};
  }
  if (set.set == kHashSet) dropHashMask();
  return false;
}

// A block for the tables of the sets, as far as the file can fill them.
void makeArena(std::uint32_t sets, const RefControlRec& record, std::uint64_t most,
               TableArena& arena) {
  std::uint64_t bytes = 0;
  std::size_t tables = 0;
  for (const SetReader& set : setReaders()) {
    if ((sets & set.set) == 0) continue;
    for (const TableLine& table : kDirectory) {
      const std::int64_t size = tableBytes(record, table.id);
      if (size <= 0 || static_cast<std::uint64_t>(size) > most) continue;
      if (std::find(set.slots.begin(), set.slots.end(), table.slot) == set.slots.end()) continue;
      bytes += static_cast<std::uint64_t>(size);
      ++tables;
    }
  }
  arena.make(std::min(bytes, most), tables);
}

std::string cannotOpen(const std::string& path) {
  return "cannot open " + path + ": " + std::strerror(errno);
}

}  // namespace

bool Session::openLog(const SessionSettings& settings, std::string& error) {
  if (settings.log.empty()) return true;
  if (sameFile(settings.log.c_str(), settings.ref.c_str()) ||
      (!settings.rng.empty() && sameFile(settings.log.c_str(), settings.rng.c_str()))) {
    error = "the log would be written into a database: " + settings.log;
    return false;
  }
  // A log that cannot be opened is reported there.
  if (utlInitLog(settings.trace ? kDebug : kPlainLogLevel, settings.log.c_str(), &proc_) == 0)
    return true;
  error = "cannot write the log " + settings.log;
  return false;
}

bool Session::openReference(const SessionSettings& settings, std::string& error) {
  if (mode_ == LookupMode::kFirst) dbInitLookups();
  proc_.files->reference = dbOpenRefDB(&proc_, settings.ref.c_str());
  if (proc_.files->reference == nullptr) {
    error = cannotOpen(settings.ref);
    return false;
  }
  const RefControlRec* record = dbReadRefControlRec(proc_.files->reference, &proc_);
  constexpr std::uint32_t kTypes = kTypeReference | kTypeRange;
  if (record != nullptr && (record->get(RefControlRec::typeFlags) & kTypes) == kTypeReference)
    return true;
  error = settings.ref + " is not a reference database";
  return false;
}

bool Session::openRange(const SessionSettings& settings, std::string& error) {
  if (settings.rng.empty()) return true;
  proc_.files->range = dbOpenRangeDB(&proc_, settings.rng.c_str());
  if (proc_.files->range == nullptr) {
    error = cannotOpen(settings.rng);
    return false;
  }
  proc_.rngControlRec = dbReadRangeControlRec(proc_.files->range, &proc_);
  if (proc_.rngControlRec == nullptr) {
    error = settings.rng + " is not a range database";
    return false;
  }
  pairMatches_ = evalTimeStamps(proc_.refControlRec, proc_.rngControlRec, &proc_) == 0;
  return true;
}

bool Session::buildCache(const SessionSettings& settings, std::string& error) {
  if (!settings.cached) return true;
  constexpr std::uint32_t kMost = 0x7FFFFFFF;
  if (settings.cacheEntries <= kMost)
    cache_.refCache =
        chConstructCache(settings.cacheBlock, static_cast<std::int32_t>(settings.cacheEntries));
  if (cache_.refCache != nullptr) return true;
  error = "cannot build a cache of " + std::to_string(settings.cacheEntries) + " blocks of " +
          std::to_string(settings.cacheBlock) + " bytes";
  return false;
}

bool Session::openAll(const SessionSettings& settings, std::string& error) {
  if (!openLog(settings, error) || !openReference(settings, error) || !openRange(settings, error) ||
      !buildCache(settings, error))
    return false;
  if (mode_ == LookupMode::kIn) installInLookups(&proc_);
  if (mode_ == LookupMode::kOff) installOffLookups(&proc_);
  if (prepare(settings.sets)) return true;
  error = "cannot load the tables of " + settings.ref;
  return false;
}

bool Session::open(const SessionSettings& settings, std::string& error) {
  close();
  if (pProcObj != nullptr) {
    error = "another session is open";
    return false;
  }
  mode_ = settings.mode;
  proc_.files = &proc_.fileRecord;
  proc_.stats = &proc_.statistics;
  proc_.options = &options_;
  proc_.cache = &cache_;
  options_.debugSwitch = settings.trace ? 'D' : ' ';
  pProcObj = &proc_;
  if (openAll(settings, error)) return true;
  close();
  return false;
}

void Session::close() {
  if (pProcObj != &proc_) return;
  chFreeStageBuffer();
  dbHashDropIndexes();
  freeTables();
  arenas_.clear();
  streamClose(proc_.fileRecord.reference);
  streamClose(proc_.fileRecord.range);
  utlLogMsgClose(&proc_.fileRecord.log);
  freeTable(proc_.refControlRec);
  freeTable(proc_.rngControlRec);
  if (cache_.refCache != nullptr) chFreeCache(&cache_.refCache);
  pProcObj = nullptr;
  proc_ = {};
  cache_ = {};
  prepared_ = 0;
  failed_ = 0;
  pairMatches_ = true;
}

// In memory: the tables of the sets lie in one block.
bool Session::loadSets(std::uint32_t sets) {
  TableArena& arena = *arenas_.emplace_back(std::make_shared<TableArena>());
  makeArena(sets, ref(), streamSize(proc_.fileRecord.reference), arena);
  const TableArena::Use use(arena);
  for (const SetReader& set : setReaders())
    if ((sets & set.set) != 0 && !loadSet(set, &proc_)) failed_ |= set.set;
  if ((sets & (kStreetPhoneticSet | kStreetStandardSet)) != 0) fillStreetVariations(&proc_, false);
  return (sets & failed_) == 0;
}

bool Session::prepareNew(std::uint32_t sets) {
  prepared_ |= sets;
  if (mode_ == LookupMode::kOff) return true;
  if (mode_ == LookupMode::kIn) return loadSets(sets);
  for (const SetReader& set : setReaders())
    if ((sets & set.set) != 0 && decidesVariants(set.set))
      chooseVariants(set.set, loadSet(set, &proc_));
  return (sets & failed_) == 0;
}

}  // namespace statecut
