#include <cerrno>
#include <cstdio>

#include "dbfiles/apiutil.h"
#include "dbfiles/blockread.h"

namespace statecut {

void (*dbLookupInstaller)(ProcObj* proc) = nullptr;

namespace {

constexpr std::uint32_t kReasonDatafileOpen = 20024;
constexpr std::uint32_t kReasonCityfileOpen = 20025;
constexpr std::uint32_t kReasonNotAPair = 20113;

Stream* openLibraryFile(ProcObj* proc, const char* path, const char* nameTitle,
                        const char* errorTitle, std::uint32_t reason) {
  if (proc == nullptr) return nullptr;
  utlWriteLogMsg(proc, kApiutil, __LINE__, kDebug, nameTitle, kReasonNone, kMsgText, textOf(path));
  Stream* const stream = openPath(path, "rb");
  if (stream == nullptr) {
    const int error = errno;
    logFormatted(msgText, proc, {kApiutil, __LINE__}, kError, errorTitle, reason,
                 "Failed to open (%d) %s\n", error, textOf(path));
  }
  return stream;
}

void reportMismatch(ProcObj* proc, std::uint32_t reason, const char* text) {
  utlWriteLogMsg(proc, kApiutil, __LINE__, kError, "DB Error", reason, kMsgText, text);
}

[[gnu::format(printf, 2, 0)]] void showValue(ProcObj* proc, const char* format, const char* value) {
  std::snprintf(msgText, sizeof msgText, format, value);
  utlWriteLogMsg(proc, kApiutil, __LINE__, kInfo, "Info Message", kReasonNone, kMsgText, msgText);
}

void showPair(const RngControlRec& rng, ProcObj* proc) {
  char time[kTimeTextSize];
  if ((rng.get(RngControlRec::typeFlags) & kTypeStateCut) != 0) {
    formatTimeStamp(rng.get(RngControlRec::stateCutTimeStamp), time);
    showValue(proc, "State Cut DB Timestamp: %s", time);
  }
  formatTimeStamp(rng.get(RngControlRec::buildTimeStamp), time);
  showValue(proc, "DB Timestamp          : %s", time);
  showValue(proc, "DB Version            : %s",
            formatVersion(rng.get(RngControlRec::version).data()));
  showValue(proc, "DB Copyright Date     : %s",
            formatCopyRight(rng.get(RngControlRec::copyrightDate).data()));
}

}  // namespace

Stream* dbOpenRefDB(ProcObj* proc, const char* path) {
  Stream* const stream = openLibraryFile(proc, path, "Cityfile filename", "Cityfile DB Open Error",
                                         kReasonCityfileOpen);
  if (stream != nullptr && dbLookupInstaller != nullptr) dbLookupInstaller(proc);
  return stream;
}

Stream* dbOpenRangeDB(ProcObj* proc, const char* path) {
  return openLibraryFile(proc, path, "Datafile filename", "Datafile DB Open Error",
                         kReasonDatafileOpen);
}

// The pointer keeps its value after the close; that is meant, nothing uses the stream again.
void dbCloseRefDB() {
  if (pProcObj != nullptr && pProcObj->files != nullptr) streamClose(pProcObj->files->reference);
}

std::int32_t dbCloseRangeDB() {
  if (pProcObj == nullptr || pProcObj->files == nullptr) return 0;
  return streamClose(pProcObj->files->range);
}

std::int32_t evalTimeStamps(const RefControlRec* ref, const RngControlRec* rng, ProcObj* proc) {
  if (ref == nullptr || rng == nullptr || proc == nullptr) return -1;
  if (ref->get(RefControlRec::buildTimeStamp) != rng->get(RngControlRec::buildTimeStamp)) {
    reportMismatch(proc, kReasonNotAPair, "DB Timestamps are not the same.");
    return -1;
  }
  const std::uint32_t flags =
      ref->get(RefControlRec::typeFlags) ^ rng->get(RngControlRec::typeFlags);
  if ((flags & kTypeStateCut) != 0) {
    reportMismatch(proc, kReasonNone, "Ref or Range DB State Cut but not the other");
    return -1;
  }
  if (ref->get(RefControlRec::stateCutTimeStamp) != rng->get(RngControlRec::stateCutTimeStamp)) {
    reportMismatch(proc, kReasonNotAPair, "State Cut DB Timestamps are not the same.");
    return -1;
  }
  showPair(*rng, proc);
  return 0;
}

}  // namespace statecut
