#include "tables/tableload.h"

#include "base/memory.h"
#include "dbfiles/apiutil.h"
#include "log/utllgmsg.h"

namespace statecut {

namespace {

constexpr LogSource kDbapi{"dbapi", 1000};

const char* errorNameOf(const TableLoad& table) {
  return table.errorName == nullptr ? table.logName : table.errorName;
}

std::int32_t allocationFailed(const TableLoad& table, ProcObj* proc) {
  const char* const name = table.allocName == nullptr ? errorNameOf(table) : table.allocName;
  if (table.reports == Reports::kErrors) {
    memoryError(name, proc);
  } else {
    memoryWarning(name, proc);
  }
  if (table.freedWithIt != kNoSlot) {
    freeTable(refPointers[table.freedWithIt].table);
    refPointers[table.freedWithIt].table = nullptr;
  }
  return table.code;
}

std::int32_t readFailed(const TableLoad& table, ProcObj* proc) {
  if (table.reports == Reports::kErrors) {
    readRefError(errorNameOf(table), proc);
  } else {
    readRefWarning(errorNameOf(table), proc);
  }
  return table.code;
}

std::int32_t loadTable(const TableLoad& table, Stream* file, const RefControlRec* record,
                       ProcObj* proc) {
  const RefControlRec* const sizes = table.lengthOfContext ? proc->refControlRec : record;
  if (record == nullptr || sizes == nullptr) return readFailed(table, proc);

  const TableLine& line = tableLine(table.table);
  const std::int64_t bytes = tableBytes(*sizes, table.table);
  const std::uint32_t rba = wordAt(*record, line.rbaAt);
  if (table.absentAtZero && rba == 0 && bytes != 0) {
    refPointers[line.slot].table = nullptr;
    return readFailed(table, proc);
  }
  // A negative size becomes a huge one, which is never allocated.
  void* const block = allocTable(static_cast<std::uint64_t>(bytes));
  refPointers[line.slot].table = static_cast<unsigned char*>(block);
  if (block == nullptr) return allocationFailed(table, proc);

  logTableSize(table.logName, static_cast<std::uint64_t>(bytes), proc);
  // Deliberate: a buffer that could not be read stays in its slot.
  if (dbReadFile(file, rba, static_cast<std::int32_t>(bytes), block, proc) < 0 || streamError(file))
    return readFailed(table, proc);
  return 0;
}

}  // namespace

void logTableSize(const char* name, std::uint64_t bytes, ProcObj* proc) {
  utlWriteLogMsg(proc, kDbapi.name, kDbapi.line(__LINE__), kInfo, "Info Message", kReasonNone,
                 kMsgSize, name, static_cast<std::int32_t>(bytes));
}

std::int32_t loadTables(const char* reader, std::span<const TableLoad> tables, Stream* file,
                        const RefControlRec* controlRecord, ProcObj* proc) {
  if (proc == nullptr) return tables.front().code;
  traceEntering(proc, kDbapi, __LINE__, reader);
  for (const TableLoad& table : tables) {
    const std::int32_t code = loadTable(table, file, controlRecord, proc);
    if (code != 0) return code;
  }
  traceLeaving(proc, kDbapi, __LINE__, reader);
  return 0;
}

}  // namespace statecut
