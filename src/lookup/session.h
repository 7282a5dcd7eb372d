#pragma once
// An open reference database and the variant through which its lookups are answered. The lookups
// have one state a process, so one session can be open at a time.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "../base/procobj.h"
#include "../dbfiles/controlrec.h"
#include "../lookup/cache.h"
#include "../lookup/dispatch.h"
#include "../lookup/tablesets.h"

namespace statecut {

class TableArena;

// Where the lookup pointers lead: to loaded tables, to the file, or as each first call decides.
enum class LookupMode : std::uint8_t { kIn, kOff, kFirst };

struct SessionSettings {
  std::string ref;
  std::string rng;  // empty: none
  std::string log;  // empty: none
  LookupMode mode = LookupMode::kIn;
  bool trace = false;  // log Entering and Leaving
  bool cached = false;
  std::uint32_t cacheBlock = 0;  // bytes
  std::uint32_t cacheEntries = 0;
  std::uint32_t sets = kLookupSets;  // prepared by open; 0: the caller prepares
};

class Session {
 public:
  Session() = default;
  ~Session() { close(); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // False with a reason when a file is missing or is no database, the log or the cache cannot be
  // made, a table of `sets` cannot be loaded in memory, or something else holds pProcObj.
  [[nodiscard]] bool open(const SessionSettings& settings, std::string& error);
  // Releases the tables, files and caches. Every result of a lookup ends with it.
  void close();

  // Before a lookup that uses these sets. In memory: loads what was not tried before; false when
  // a set cannot be loaded, of which then no table is there. First: decides the lookups without a
  // First variant, In when the set loads, else Off.
  [[nodiscard]] bool prepare(std::uint32_t sets) {
    return ((sets & ~prepared_) == 0 || prepareNew(sets & ~prepared_)) && (sets & failed_) == 0;
  }

  // What the lookups take; refControlRec is there while the session is open.
  [[nodiscard]] ProcObj* proc() { return &proc_; }
  [[nodiscard]] const RefControlRec& ref() const { return *proc_.refControlRec; }
  // A pair whose files do not belong together is used all the same.
  [[nodiscard]] bool pairMatches() const { return pairMatches_; }

 private:
  [[nodiscard]] bool openLog(const SessionSettings& settings, std::string& error);
  [[nodiscard]] bool openReference(const SessionSettings& settings, std::string& error);
  [[nodiscard]] bool openRange(const SessionSettings& settings, std::string& error);
  [[nodiscard]] bool buildCache(const SessionSettings& settings, std::string& error);
  [[nodiscard]] bool openAll(const SessionSettings& settings, std::string& error);
  bool prepareNew(std::uint32_t sets);
  bool loadSets(std::uint32_t sets);

  ProcObj proc_{};
  OptionsRecord options_{};
  CacheControlBlock cache_{};
  LookupMode mode_ = LookupMode::kIn;
  std::uint32_t prepared_ = 0;
  std::uint32_t failed_ = 0;  // in memory: not loaded
  bool pairMatches_ = true;
  std::vector<std::shared_ptr<TableArena>> arenas_;  // in memory: of the tables
};

}  // namespace statecut
