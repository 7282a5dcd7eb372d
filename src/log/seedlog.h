#pragma once
// The seed log: fixed-width detail records of two kinds of postal processing, held in memory until
// the header of their batch comes, then appended behind it to "seedlog.txt".

#include <cstddef>
#include <cstdint>

#include "../base/procobj.h"

namespace statecut {

inline constexpr std::size_t kSeedRecordSize = 200;
inline constexpr std::int32_t kSeedLogReady = 1;
inline constexpr std::int32_t kSeedLogOpenFailed = -2001;

struct SeedRecord {
  char data[kSeedRecordSize];
  SeedRecord* next;
};

// The waiting records in arrival order; each is owned by its list until it is written.
extern SeedRecord* DPVRecords;
extern SeedRecord* LACSRecords;

// Files one record: "DD" and "LD" details wait, "LH" and every other code (the DPV header) write
// their batch. A NUL ends the record's text. 0, or kSeedLogOpenFailed (the list then waits on).
std::int32_t utlLogSeedDetail(ProcObj* proc, const char* record, const char* typeCode);

// Opens the seed log when a switch asks for it. kSeedLogReady (also with both switches off and no
// stream) or kSeedLogOpenFailed.
[[nodiscard]] std::int32_t utlInitSeedLog(ProcObj* proc);

std::int32_t utlSeedLogMsgClose(Stream* stream);  // null is allowed; always 0

// Appends a copy of kSeedRecordSize characters; the head, changed when the list was empty.
[[nodiscard]] SeedRecord* addSeedRecord(SeedRecord* head, const char* data);

// Writes the header (kSeedRecordSize characters) and the list, a line of 181 characters each, and
// frees the list. Without a seed stream it only frees.
void logSeedRecords(ProcObj* proc, SeedRecord* list, const char* header);

}  // namespace statecut
