#pragma once
// The run-wide records that every layer shares: the processing object and the run's time stamp.

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
  Stream* reference;
  Stream* range;
  Stream* unused1[4];
  Stream* log;
  Stream* unused2[2];
  Stream* seedLog;
  std::int32_t logWriteFailureReported;
};

struct Statistics {
  std::int32_t reads;  // calls of readFile
  std::int32_t seeks;  // skips of readMFIO
};

// A record of a calling application into which the log copies the first error.
struct CallerErrorRecord {
  std::uint16_t messageNumber;
  std::uint32_t reasonCode;
  char severity[4];
  char text[128];
  char source[255];
  char spare;
};

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
  std::uint16_t firstErrorMessage;  // 0 = no severity 1 or 2 message yet
  std::uint32_t firstErrorReason;
  char firstErrorSeverity[4];
  char firstErrorText[128];
  char firstErrorSource[255];
  RefControlRec* refControlRec;  // null when not read
  RngControlRec* rngControlRec;  // null when not read
  FileRecord fileRecord;
  FileRecord* files;  // the embedded record; every user goes through this pointer
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
  CacheControlBlock* cache;  // null when no cache was built
  Statistics statistics;
  Statistics* stats;
  CallerErrorRecord* callerError;
  OptionsRecord* options;
  std::uint8_t seedLogSwitches[2];
  std::uint8_t padFlag;
  std::int32_t logLevel;  // 0 to 5; 0 = no logging
  char topOfForm[2];
};

extern ProcObj* pProcObj;  // null until the run driver or a library user sets it

// Set by the run driver at the start and at the end of a run.
extern std::time_t dateAndTime;

// What the cut stamps into its outputs: SOURCE_DATE_EPOCH when that variable holds decimal digits
// alone, else dateAndTime; the low 32 bits of either.
[[nodiscard]] std::uint32_t stateCutTimeStamp();

}  // namespace statecut
