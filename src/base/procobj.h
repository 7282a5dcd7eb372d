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
struct LookupPointers;     // lookup/dispatch.h
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
  FileRecord* files;         // the embedded record; every user goes through this pointer
  LookupPointers* lookups;   // function-pointer members of the lookup interface
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
