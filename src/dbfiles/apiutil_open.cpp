#include <cerrno>
#include <cstdio>

#include "base/clock.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/reports.h"

namespace statecut {

void (*dbLookupInstaller)(ProcObj* proc) = nullptr;

namespace {

constexpr std::uint32_t kReasonDatafileOpen = 20024;
constexpr std::uint32_t kReasonCityfileOpen = 20025;
constexpr std::uint32_t kReasonNotAPair = 20113;

constexpr LogSource kHere{kApiutil, 3000};

void logPath(ProcObj* proc, LogSite site, const char* title, const char* path) {
  utlWriteLogMsg(proc, site.source, site.line, kDebug, title, kReasonNone, kMsgText, orEmpty(path));
}

void logNotOpened(ProcObj* proc, LogSite site, const char* title, std::uint32_t reason,
                  const char* path) {
  const int error = errno;
  logFormatted(msgText, proc, site, kError, title, reason, "Failed to open (%d) %s\n", error,
               orEmpty(path));
}

void reportMismatch(ProcObj* proc, LogSite site, std::uint32_t reason, const char* text) {
  utlWriteLogMsg(proc, site.source, site.line, kError, "DB Error", reason, kMsgText, text);
}

[[gnu::format(printf, 3, 0)]] void showValue(ProcObj* proc, LogSite site, const char* format,
                                             const char* value) {
  std::snprintf(msgText, sizeof msgText, format, value);
  utlWriteLogMsg(proc, site.source, site.line, kInfo, "Info Message", kReasonNone, kMsgText,
                 msgText);
}

void showPair(const RngControlRec& rng, ProcObj* proc) {
  char time[kStampTextSize];
  if ((rng.get(RngControlRec::typeFlags) & kTypeStateCut) != 0) {
    formatLocalTime(time, sizeof time, kStampFormat, rng.get(RngControlRec::stateCutTimeStamp));
    showValue(proc, kHere.at(__LINE__), "State Cut DB Timestamp: %s", time);
  }
  formatLocalTime(time, sizeof time, kStampFormat, rng.get(RngControlRec::buildTimeStamp));
  showValue(proc, kHere.at(__LINE__), "DB Timestamp          : %s", time);
  showValue(proc, kHere.at(__LINE__), "DB Version            : %s",
            formatVersion(rng.get(RngControlRec::version).data()));
  showValue(proc, kHere.at(__LINE__), "DB Copyright Date     : %s",
            formatCopyRight(rng.get(RngControlRec::copyrightDate).data()));
}

}  // namespace

Stream* dbOpenRefDB(ProcObj* proc, const char* path) {
  if (proc == nullptr) return nullptr;
  logPath(proc, kHere.at(__LINE__), "Cityfile filename", path);
  Stream* const stream = streamOpen(path, "rb");
  if (stream == nullptr) {
    logNotOpened(proc, kHere.at(__LINE__), "Cityfile DB Open Error", kReasonCityfileOpen, path);
  } else if (dbLookupInstaller != nullptr) {
    dbLookupInstaller(proc);
  }
  return stream;
}

Stream* dbOpenRangeDB(ProcObj* proc, const char* path) {
  if (proc == nullptr) return nullptr;
  logPath(proc, kHere.at(__LINE__), "Datafile filename", path);
  Stream* const stream = streamOpen(path, "rb");
  if (stream == nullptr) {
    logNotOpened(proc, kHere.at(__LINE__), "Datafile DB Open Error", kReasonDatafileOpen, path);
  }
  return stream;
}

// Deliberate: the pointer keeps its value after the close. What it points to stays a closed stream,
// so that a second close, or that of a session, finds it closed.
void dbCloseRefDB() {
  if (pProcObj != nullptr && pProcObj->files != nullptr)
    streamCloseKept(pProcObj->files->reference);
}

std::int32_t dbCloseRangeDB() {
  if (pProcObj == nullptr || pProcObj->files == nullptr) return 0;
  return streamCloseKept(pProcObj->files->range);
}

std::int32_t evalTimeStamps(const RefControlRec* ref, const RngControlRec* rng, ProcObj* proc) {
  if (ref == nullptr || rng == nullptr || proc == nullptr) return -1;
  if (ref->get(RefControlRec::buildTimeStamp) != rng->get(RngControlRec::buildTimeStamp)) {
    reportMismatch(proc, kHere.at(__LINE__), kReasonNotAPair, "DB Timestamps are not the same.");
    return -1;
  }
  const std::uint32_t flags =
      ref->get(RefControlRec::typeFlags) ^ rng->get(RngControlRec::typeFlags);
  if ((flags & kTypeStateCut) != 0) {
    reportMismatch(proc, kHere.at(__LINE__), kReasonNone,
                   "Ref or Range DB State Cut but not the other");
    return -1;
  }
  if (ref->get(RefControlRec::stateCutTimeStamp) != rng->get(RngControlRec::stateCutTimeStamp)) {
    reportMismatch(proc, kHere.at(__LINE__), kReasonNotAPair,
                   "State Cut DB Timestamps are not the same.");
    return -1;
  }
  showPair(*rng, proc);
  return 0;
}

}  // namespace statecut
