#include "tables/tableload.h"

#include "base/memory.h"
#include "dbfiles/apiutil.h"
#include "log/utllgmsg.h"

namespace statecut {

namespace {

constexpr LogSource kDbapi{"dbapi", 1000};

std::uint32_t wordAt(const RefControlRec& record, std::size_t at) {
  return le::get<4>(record.bytes.data() + at);
}

std::int32_t allocationFailed(const TableInfo& table, ProcObj* proc) {
  const char* const name = table.allocName == nullptr ? table.logName : table.allocName;
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

std::int32_t readFailed(const TableInfo& table, ProcObj* proc) {
  const char* const name = table.readName == nullptr ? table.logName : table.readName;
  if (table.reports == Reports::kErrors) {
    readRefError(name, proc);
  } else {
    readRefWarning(name, proc);
  }
  return table.code;
}

std::int32_t loadTable(const TableInfo& table, Stream* file, const RefControlRec* record,
                       ProcObj* proc) {
  const RefControlRec* const sizes = table.size.fromContext ? proc->refControlRec : record;
  if (record == nullptr || sizes == nullptr) return readFailed(table, proc);

  const std::int64_t units =
      table.size.wordAt == TableSize::kNoWord ? 1 : std::int64_t{wordAt(*sizes, table.size.wordAt)};
  const std::int64_t bytes = units * std::int64_t{table.size.unit} + table.size.extra;
  const std::uint32_t rba = wordAt(*record, table.rbaAt);
  if (table.absentAtZero && rba == 0 && bytes != 0) {
    refPointers[table.slot].table = nullptr;
    return readFailed(table, proc);
  }
  // A negative size becomes a huge one, which is never allocated.
  void* const block = allocTable(static_cast<std::uint64_t>(bytes));
  refPointers[table.slot].table = static_cast<unsigned char*>(block);
  if (block == nullptr) return allocationFailed(table, proc);

  logTableSize(table.logName, static_cast<std::uint64_t>(bytes), proc);
  // A buffer that could not be read stays in its slot; that is meant.
  if (dbReadFile(file, rba, static_cast<std::int32_t>(bytes), block, proc) < 0 || streamError(file))
    return readFailed(table, proc);
  return 0;
}

}  // namespace

void logTableSize(const char* name, std::uint64_t bytes, ProcObj* proc) {
  utlWriteLogMsg(proc, kDbapi.name, kDbapi.line(__LINE__), kInfo, "Info Message", kReasonNone,
                 kMsgSize, name, static_cast<std::int32_t>(bytes));
}

std::int32_t loadTables(const char* reader, std::span<const TableInfo> tables, Stream* file,
                        const RefControlRec* controlRecord, ProcObj* proc) {
  if (proc == nullptr) return tables.front().code;
  traceEntering(proc, kDbapi, __LINE__, reader);
  for (const TableInfo& table : tables) {
    const std::int32_t code = loadTable(table, file, controlRecord, proc);
    if (code != 0) return code;
  }
  traceLeaving(proc, kDbapi, __LINE__, reader);
  return 0;
}

}  // namespace statecut
