#pragma once
// Inside of the table readers: one description per table, one routine that loads it.

#include <cstdint>
#include <span>

#include "base/procobj.h"
#include "base/stream.h"
#include "dbfiles/controlrec.h"
#include "tables/dbapi.h"
#include "tables/refpointers.h"

namespace statecut {

// Which pair of routines reports a failure.
enum class Reports : std::uint8_t { kErrors, kWarnings };

// The bytes of a table: unit x the word at byte offset wordAt + extra.
struct TableSize {
  static constexpr std::uint16_t kNoWord = 0;
  std::uint16_t wordAt;  // kNoWord: the word is 1
  bool fromContext;      // the word is taken from the context's own record
  std::uint32_t unit;
  std::int32_t extra;
};

template <std::size_t At>
constexpr TableSize counted(Num<At, 4>, std::uint32_t recordSize, std::int32_t extra = 0) {
  return {At, false, recordSize, extra};
}
template <std::size_t At>
constexpr TableSize byteLength(Num<At, 4>) {
  return {At, false, 1, 0};
}
template <std::size_t At>
constexpr TableSize contextByteLength(Num<At, 4>) {
  return {At, true, 1, 0};
}
constexpr TableSize fixedSize(std::uint32_t bytes) { return {TableSize::kNoWord, false, bytes, 0}; }

inline constexpr SlotNumber kNoSlot = kSlotCount;

struct TableInfo {
  SlotNumber slot;
  const char* logName;
  std::uint16_t rbaAt;
  TableSize size;
  std::int32_t code;  // the reader's result when this table fails
  Reports reports = Reports::kErrors;
  const char* allocName = nullptr;   // in the report of a failed allocation; null: logName
  const char* readName = nullptr;    // in the report of a failed read; null: logName
  SlotNumber freedWithIt = kNoSlot;  // released and zeroed when the allocation fails
  bool absentAtZero = false;         // bytes at RBA 0 are no table: a cut does not carry it
};

// Loads the tables in order, up to the first failure, traced under the reader's name. 0 or the
// code of the table that failed (logged), be it that its read left the stream in error.
std::int32_t loadTables(const char* reader, std::span<const TableInfo> tables, Stream* file,
                        const RefControlRec* controlRecord, ProcObj* proc);

void logTableSize(const char* name, std::uint64_t bytes, ProcObj* proc);

}  // namespace statecut
