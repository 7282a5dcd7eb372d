#include <array>
#include <cstddef>

#include "base/memory.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/dbaccess.h"
#include "dbfiles/reports.h"

namespace statecut {

namespace {

using Ref = RefControlRec;

constexpr std::size_t kPartitions = 14;
constexpr std::size_t kNoWord = 0;
// For each partition the words (byte offsets) of which a zero makes it empty.
using PartitionWords = std::array<std::array<std::size_t, 3>, kPartitions>;

// Deliberate: the two readers test different words of partitions 11 and 12; each has its own
// records in the log.
constexpr PartitionWords partitionWords(std::size_t word11, std::size_t word12) {
  return {
      {{Ref::streetPatternsCount.at, Ref::pobPatternsCount.at, Ref::rrPatternsCount.at},
       {Ref::cityDataCount.at, Ref::cityMultiZipListsCount.at, Ref::cityMultiFinanceListsCount.at},
       {Ref::cityNamesCount.at, kNoWord, kNoWord},
       {Ref::cityPhoneticsCount.at, kNoWord, kNoWord},
       {Ref::zipDataCount.at, Ref::zipMultiCityListsCount.at, kNoWord},
       {Ref::uniqueZipsCount.at, kNoWord, kNoWord},
       {Ref::countiesCount.at, kNoWord, kNoWord},
       {Ref::urbsCount.at, kNoWord, kNoWord},
       {Ref::urbVariationsCount.at, kNoWord, kNoWord},
       {Ref::streetNamesBytes.at, kNoWord, kNoWord},
       {word11, kNoWord, kNoWord},
       {word12, kNoWord, kNoWord},
       {Ref::firmsBytes.at, kNoWord, kNoWord},
       {Ref::generalDeliveryCount.at, kNoWord, kNoWord}}};
}

constexpr PartitionWords kProgramWords =
    partitionWords(Ref::streetPhoneticAmbDataBytes.at, Ref::streetStandardAmbDataBytes.at);
constexpr PartitionWords kLibraryWords =
    partitionWords(Ref::streetPhoneticsBytes.at, Ref::streetStandardsBytes.at);

bool isEmpty(const RefControlRec& record, const std::array<std::size_t, 3>& words) {
  for (const std::size_t at : words)
    if (at != kNoWord && le::get<4>(record.bytes.data() + at) == 0) return true;
  return false;
}

constexpr LogSource kProgram{kDbaccess, 2000};
constexpr LogSource kLibrary{kApiutil, 10000};

void logEmptyPartitions(const RefControlRec& record, const PartitionWords& words, LogSource source,
                        ProcObj* proc) {
  char text[64];
  std::int32_t empty = 0;
  for (std::size_t i = 0; i < kPartitions; ++i) {
    if (!isEmpty(record, words[i])) continue;
    ++empty;
    logFormatted(text, proc, source.at(__LINE__), kInfo, "Info Message", kReasonNone,
                 "partition %d is empty.", static_cast<int>(i + 1));
  }
  if (empty == 0) return;
  const auto debugLine = [&](LogSite site, const char* line) {
    utlWriteLogMsg(proc, site.source, site.line, kDebug, "Debug Message", kReasonNone, kMsgText,
                   line);
  };
  std::snprintf(text, sizeof text, "There are %d empty partitions in the ", empty);
  debugLine(source.at(__LINE__), text);
  debugLine(source.at(__LINE__), "reference database.");
  debugLine(source.at(__LINE__), "See log file.");
}

void logRecordSize(LogSource source, ProcObj* proc) {
  utlWriteLogMsg(proc, source.name, source.line(__LINE__), kInfo, "Info Message", kReasonNone,
                 kMsgSize, "Reference Control Record",
                 static_cast<std::int32_t>(RefControlRec::size));
}

// A control record is only good when every byte of it came, unlike other block reads.
bool came(const BlockRead& read, std::size_t size) { return read.result >= 0 && read.got == size; }

// `read` fills the record from the file's start.
template <typename Read>
RngControlRec* loadRangeRecord(Read&& read, ProcObj* proc) {
  auto* const record = static_cast<RngControlRec*>(allocTable(RngControlRec::size));
  if (record == nullptr) {
    memoryError("Range Control Record", proc);
    return nullptr;
  }
  if (!came(read(record), RngControlRec::size)) {
    readRangeError("Range Control Record", proc);
    freeTable(record);
    return nullptr;
  }
  return record;
}

}  // namespace

RefControlRec* ReadRefControlRec(Stream* fp, ProcObj* proc) {
  if (proc == nullptr) return nullptr;
  logRecordSize(kProgram, proc);
  auto* const record = static_cast<RefControlRec*>(allocTable(RefControlRec::size));
  if (record == nullptr) {
    memoryError("reading control record", proc);
    return nullptr;
  }
  if (!came(readBlock(fp, 0, RefControlRec::size, record, proc), RefControlRec::size)) {
    readRefError("control record", proc);
    freeTable(record);
    return nullptr;
  }
  logEmptyPartitions(*record, kProgramWords, kProgram, proc);
  proc->refControlRec = record;
  return record;
}

RefControlRec* dbReadRefControlRec(Stream* fp, ProcObj* proc) {
  if (proc == nullptr) return nullptr;
  traceEntering(proc, kLibrary, __LINE__, "dbReadRefControlRec");
  auto* const record = static_cast<RefControlRec*>(allocTable(RefControlRec::size));
  proc->refControlRec = record;
  if (record == nullptr) {
    memoryError("reading control record", proc);
    return nullptr;
  }
  logRecordSize(kLibrary, proc);
  if (!came(dbReadBlock(fp, 0, static_cast<std::int32_t>(RefControlRec::size), record, proc),
            RefControlRec::size)) {
    // Deliberate: the unread buffer stays in proc until the tables are released, for callers that
    // look at it there.
    readRefError("control record", proc);
    return nullptr;
  }
  logEmptyPartitions(*record, kLibraryWords, kLibrary, proc);
  traceLeaving(proc, kLibrary, __LINE__, "dbReadRefControlRec");
  return record;
}

RngControlRec* ReadRangeControlRec(Stream* fp, ProcObj* proc) {
  if (proc == nullptr) return nullptr;
  return loadRangeRecord(
      [&](RngControlRec* to) { return readBlock(fp, 0, RngControlRec::size, to, proc); }, proc);
}

RngControlRec* dbReadRangeControlRec(Stream* fp, ProcObj* proc) {
  if (proc == nullptr) return nullptr;
  return loadRangeRecord(
      [&](RngControlRec* to) {
        return dbReadBlock(fp, 0, static_cast<std::int32_t>(RngControlRec::size), to, proc);
      },
      proc);
}

}  // namespace statecut
