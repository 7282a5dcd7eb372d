#pragma once
// How the lookups reach the reference database: its control record, reads of its file, first loads
// of its tables, packed names, and the trace lines around them.

#include <cstdint>

#include "base/procobj.h"
#include "dbfiles/controlrec.h"
#include "log/utllgmsg.h"
#include "tables/dbapi.h"
#include "tables/directory.h"
#include "tables/refpointers.h"
#include "tables/tableview.h"

namespace statecut {

// Writes "Entering <function>" when made and, through leave, "Leaving <function>" before a
// successful return. Names and lines are those of the function that makes the object.
class Trace {
 public:
  explicit Trace(LogSource source, int line = __builtin_LINE(),
                 const char* name = __builtin_FUNCTION())
      : source_(source), name_(name) {
    again(line);
  }
  void again(int line = __builtin_LINE()) const {
    if (isOn()) [[unlikely]]
      traceEntering(pProcObj, source_, line, name_);
  }

  template <typename Pointer>
  Pointer* leave(Pointer* result, int line = __builtin_LINE()) const {
    if (isOn() && result != nullptr) [[unlikely]]
      traceLeaving(pProcObj, source_, line, name_);
    return result;
  }
  std::int32_t leave(std::int32_t index, int line = __builtin_LINE()) const {
    if (isOn() && index != -1) [[unlikely]]
      traceLeaving(pProcObj, source_, line, name_);
    return index;
  }

 private:
  // traceOn, without the call.
  static bool isOn() {
    return pProcObj != nullptr && pProcObj->options != nullptr &&
           pProcObj->options->debugSwitch == 'D';
  }

  LogSource source_;
  const char* name_;
};

// The open reference file of `proc`, or null.
[[nodiscard]] Stream* refStream(const ProcObj* proc);

// True for a stream in error, or whose file ended before the size that it had when it was opened.
[[nodiscard]] bool lost(const Stream* file);
// False for a null stream and for a lost one.
[[nodiscard]] bool readable(const Stream* file);
// True when the reference file of `proc` is lost: no Off variant answers any more.
[[nodiscard]] bool refLost(const ProcObj* proc);

// dbReadFile that also gives -1, without reading, for a stream that is not readable.
std::int32_t readGuarded(Stream* file, std::uint32_t rba, std::int32_t count, void* to,
                         ProcObj* proc);

// Read the reference file of `proc` at `rba`, readCached through its block cache when one is built.
// False when the file cannot be read, or could not be read before: `to` is no answer then. What
// lies behind the end of the file is no failure and leaves the bytes of `to` as they were.
[[nodiscard]] bool readDirect(std::uint32_t rba, std::int32_t count, void* to,
                              ProcObj* proc = pProcObj);
[[nodiscard]] bool readCached(std::uint32_t rba, std::int32_t count, void* to,
                              ProcObj* proc = pProcObj);

// The byte offset of an entry as file positions count: modulo 2^32.
constexpr std::uint32_t entryRba(std::uint32_t tableRba, std::uint32_t index, std::uint32_t width) {
  return tableRba + index * width;
}

// Read entry `index` of a table of rows.
template <typename RowType>
[[nodiscard]] bool readRow(std::uint32_t tableRba, std::uint32_t index, RowType* to) {
  return readDirect(entryRba(tableRba, index, RowType::size), RowType::size, to);
}
template <typename RowType>
[[nodiscard]] bool readRowCached(std::uint32_t tableRba, std::uint32_t index, RowType* to) {
  return readCached(entryRba(tableRba, index, RowType::size), RowType::size, to);
}

// The name hash on the loaded tables and on disk: the number, or -1.
std::int32_t hashIn(const char* key, std::int32_t length, std::uint32_t type, ProcObj* proc);
std::int32_t hashOff(const char* key, std::int32_t length, std::uint32_t type, ProcObj* proc);

// True when the slot holds a table, however it was read.
[[nodiscard]] inline bool loaded(SlotNumber slot) { return refPointers[slot].table != nullptr; }

// Runs a reader on the reference file. True when that failed: decided by its result, as a slot may
// keep a buffer that was not read.
[[nodiscard]] bool readFails(TableReader* reader, ProcObj* proc);

// The same for an empty slot only.
[[nodiscard]] inline bool loadFails(SlotNumber slot, TableReader* reader, ProcObj* proc) {
  return !loaded(slot) && readFails(reader, proc);
}

// Names packed as a signed length byte and the characters behind it: streets and firms.

// The name whose length byte is at `at`.
const char* packedName(const unsigned char* at, std::int32_t* length);

// A name of a loaded table of `bytes` bytes; null, *length untouched, at or behind its end.
const char* packedNameIn(const TableView& view, SlotNumber slot, std::uint32_t offset,
                         std::uint32_t bytes, std::int32_t* length);

// A name on disk, of which the first 99 bytes are there until the next short read; null, *length
// untouched, when it cannot be read.
const char* packedNameOff(std::uint32_t tableRba, std::uint32_t offset, std::int32_t* length,
                          ProcObj* proc);

}  // namespace statecut
