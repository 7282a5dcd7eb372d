#pragma once
// The run-wide records that every floor shares: the processing object and the run's time stamp.
// "Run driver" below stands for whoever starts a run: run/rundriver.h, lookup/session.h, or an
// application of the library's.

#include <cstddef>
#include <cstdint>
#include <ctime>

namespace statecut {

struct Stream;             // base/stream.h
struct RefControlRec;      // dbfiles/controlrec.h
struct RngControlRec;      // dbfiles/controlrec.h
struct CacheControlBlock;  // lookup/cache.h
struct CityNameRow;        // tables/rows.h
struct CityPhoneticRow;    // tables/rows.h
struct ProcObj;

// The run's open files; null when closed.
struct FileRecord {
  Stream* reference;  // set by openRefDb or the caller of dbOpenRefDB, read by whoever loads tables
  Stream* range;      // the same of openRangeDb and dbOpenRangeDB; read by the cut's copiers
  Stream* unused1[4];
  Stream* log;  // set by utlInitLog, nulled by utlLogMsgClose
  Stream* unused2[2];
  Stream* seedLog;                       // set by utlInitSeedLog, closed behind each batch
  std::int32_t logWriteFailureReported;  // of the log alone: a lost record is told once a run
};

// Counted in the file layer and by the cut where it saves reads; nothing of the core reads them.
struct Statistics {
  std::int32_t reads;  // calls of readFile, and those that moving bytes at once saves
  std::int32_t seeks;  // skips of readMFIO
};

// A record of a calling application into which the log copies the first error; read by the
// application alone.
struct CallerErrorRecord {
  std::uint16_t messageNumber;
  std::uint32_t reasonCode;
  char severity[4];
  char text[128];
  char source[255];
  char spare;
};

// Filled by the run driver, read by the lookups, the releases and the trace.
struct OptionsRecord {
  char unnamed[4];            // "OFF" for the whole run
  char streetNamesMemory[4];  // "OFF": street names are not held in memory
  char firmMemory[4];         // "OFF": firm names are not held in memory
  char debugSwitch;           // 'D': library functions log Entering and Leaving
};

// The kinds of lookups that ProcObj points to; what they take and return stands in lookup/.
using FindKey = std::int32_t(const char* key, std::int32_t length, ProcObj* proc);
using GetName = const char*(std::uint32_t offset, std::int32_t* length, ProcObj* proc);
using FindCityIndex = std::int32_t(const char* state, const char* name, std::int32_t length);
using GetCityName = CityNameRow*(std::int32_t key);
using GetCityPhonetic = CityPhoneticRow*(std::int32_t index);
using NameMatcher = std::int32_t (*)(const char* name, const char* text);
using SeqSearchCity = std::int32_t(const char* state, const char* text, NameMatcher matcher,
                                   std::int32_t start);
using FindStreetVarIdx = std::int32_t(std::uint32_t type, const char* key, std::int32_t length,
                                      ProcObj* proc);
using FindStreetVar = const std::uint32_t*(const char* key, std::int32_t length,
                                           const std::uint16_t* scfKeys, std::int32_t scfCount,
                                           std::int32_t kind, std::int8_t* flag,
                                           std::int32_t* count);

// One instance a run, zero-filled before use, reached through pProcObj.
struct ProcObj {
  // The first error: kept by the log, for whoever asks after a failed call.
  std::uint16_t firstErrorMessage;  // 0 = no severity 1 or 2 message yet
  std::uint32_t firstErrorReason;
  char firstErrorSeverity[4];
  char firstErrorText[128];
  char firstErrorSource[255];
  // Owned; null when not read. Filled by the readers of dbfiles/, read by all above; the cut makes
  // them those of its outputs.
  RefControlRec* refControlRec;
  RngControlRec* rngControlRec;
  FileRecord fileRecord;
  FileRecord* files;  // set by the run driver, to fileRecord; all users go through it
  // The lookups that are called through members; null until lookup/dispatch.h sets them.
  FindKey* pfnFindFirm;
  FindKey* pfnFindStreetKey;
  FindStreetVar* pfnFindStreetVar;
  GetName* pfnGetStreetNameUSPS;
  GetName* pfnGetStreetNameUSPSwc;
  FindCityIndex* pfnFindCityIndex;
  FindCityIndex* pfnFindTruncCityIndex;
  GetCityName* pfnGetCityUSPS;
  GetCityName* pfnGetCityUSPSwc;
  SeqSearchCity* pfnSeqSearchCity;
  GetCityPhonetic* pfnGetCityPh;
  GetName* pfnGetFirmName;
  FindKey* pfnFindCityNameIdx;
  FindKey* pfnFindCityPhIdx;
  FindStreetVarIdx* pfnFindStreetVarIdx;
  CacheControlBlock* cache;  // set by lookup/cache.h, read by the lookups; null: no cache was built
  Statistics statistics;
  Statistics* stats;               // set by the run driver, to statistics; null: nothing is counted
  CallerErrorRecord* callerError;  // set by the application; null: it wants none
  OptionsRecord* options;          // set by the run driver; null: every option is off
  std::uint8_t seedLogSwitches[2];  // set by the application; the seed log opens for either
  std::uint8_t padFlag;             // set by the application: callerError is padded with blanks
  std::int32_t logLevel;            // set by utlInitLog, read by the log; 0 to 5; 0 = no logging
  char topOfForm[2];                // set by the log; nothing of the core reads it
};

extern ProcObj* pProcObj;  // null until the run driver sets it

// Set by the run driver at the start and at the end of a run, read by stateCutTimeStamp.
extern std::time_t dateAndTime;

// What the cut stamps into its outputs: SOURCE_DATE_EPOCH when that variable holds decimal digits
// alone, else dateAndTime; the low 32 bits of either.
[[nodiscard]] std::uint32_t stateCutTimeStamp();

// Adds to a counter, modulo 2^32; nothing without statistics.
inline void tally(const ProcObj* proc, std::int32_t Statistics::*counter, std::uint32_t by = 1) {
  if (proc->stats == nullptr) return;
  std::int32_t& value = proc->stats->*counter;
  value = static_cast<std::int32_t>(static_cast<std::uint32_t>(value) + by);
}

// A text member or argument that may be null.
[[nodiscard]] inline const char* orEmpty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace statecut
