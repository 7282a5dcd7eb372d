#pragma once
// Inside of the table readers: what a reader says and answers about a table, and one routine that
// loads it.

#include <cstdint>
#include <span>

#include "base/procobj.h"
#include "base/stream.h"
#include "dbfiles/controlrec.h"
#include "tables/dbapi.h"
#include "tables/directory.h"

namespace statecut {

// Which pair of routines reports a failure.
enum class Reports : std::uint8_t { kErrors, kWarnings };

struct TableLoad {
  TableId table;
  const char* logName;
  std::int32_t code;  // the reader's result when this table fails
  Reports reports = Reports::kErrors;
  const char* errorName = nullptr;   // in the reports; null: logName
  const char* allocName = nullptr;   // in the report of a failed allocation; null: errorName
  SlotNumber freedWithIt = kNoSlot;  // released and zeroed when the allocation fails
  bool lengthOfContext = false;      // its length is that of the context's own record
  bool absentAtZero = false;         // bytes at RBA 0 are no table: a cut does not carry it
};

// Loads the tables in order, up to the first failure, traced under the reader's name. 0 or the
// code of the table that failed (logged), be it that its read left the stream in error.
std::int32_t loadTables(const char* reader, std::span<const TableLoad> tables, Stream* file,
                        const RefControlRec* controlRecord, ProcObj* proc);

void logTableSize(const char* name, std::uint64_t bytes, ProcObj* proc);

}  // namespace statecut
