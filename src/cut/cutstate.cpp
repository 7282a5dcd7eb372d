#include "cut/cutstate.h"

#include <cerrno>
#include <cstring>

#include "base/cmdline.h"
#include "base/procobj.h"
#include "cut/distinctfiles.h"
#include "cut/logsites.h"
#include "cut/multizip.h"
#include "cut/openfiles.h"
#include "cut/progress.h"
#include "cut/rangecopy.h"
#include "cut/refcopy.h"
#include "cut/refupdate.h"
#include "cut/refwrite.h"
#include "cut/workstate.h"
#include "cut/zipselect.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/dbaccess.h"

namespace statecut {

namespace {

constexpr std::int32_t kFailed = -1;
constexpr std::int32_t kTimeStampsDiffer = -13;

std::int32_t createReferenceOutput() {
  const char* path = orEmpty(cmdLine.refOut);
  if (std::strlen(path) <= kMaxOutputPath && checkOutputNames() != 0) return kFailed;
  newRefDb = openOutput(path);
  if (newRefDb != nullptr) return 0;
  logPathError(logsite::kOpenOutput, "Open Error", kReasonOpen, path, std::strerror(errno));
  return kFailed;
}

// Deliberate: logs nothing when it fails, unlike the reference side; the log has always been so.
std::int32_t createRangeOutput() {
  newRangeDb = openOutput(orEmpty(cmdLine.rangeOut));
  return newRangeDb == nullptr ? kFailed : 0;
}

std::int32_t compareTimeStamps() {
  if (pProcObj->refControlRec->get(RefControlRec::buildTimeStamp) ==
      pProcObj->rngControlRec->get(RngControlRec::buildTimeStamp)) {
    return 0;
  }
  logText(logsite::kTimeStamps, kError, "DB Error", "DB Timestamps are not the same.");
  return kTimeStampsDiffer;
}

// Each of the four ends a step that used files: false when it failed or a file of it did.
bool copiedReference() {
  const bool done = copyRefDb() == 0;
  const bool unread = refSourceFailed();
  return !outputsFailed() && done && !unread;
}

bool wroteRangeRecord() {
  const bool done = writeRngControlRec(newRangeDb) == 0;
  return !outputsFailed() && done;
}

bool copiedPartitions(std::int32_t (*step)()) {
  const bool done = step() == 0;
  progressClear();
  const bool unread = rangeSourceFailed();
  return !outputsFailed() && done && !unread;
}

bool wroteReference() {
  const bool done = writeRefDb() == 0;
  flushOutputs();
  return !outputsFailed() && done;
}

// Steps 9 to 16, from the selection to the closed files.
std::int32_t writeCut() {
  // 9, 10: the new city tables, the name hash index.
  if (createNewRefDb() != 0 || updateRefDb() != 0) return kFailed;
  // 11, 12: the cut range file and its control record.
  if (createRangeOutput() != 0 || !wroteRangeRecord()) return kFailed;
  // 13, 14: the range partitions, of one ZIP code and of several.
  if (!copiedPartitions(buildZipEntryPoints)) return kFailed;
  if (!copiedPartitions(buildMltZpEntryPoints)) return kFailed;
  // 15: the rewritten tables, then the final reference control record.
  if (!wroteReference()) return kFailed;
  // 16: release everything; a failed close is a failed write.
  closeDbs();
  return outputsFailed() || refCopyOutOfMemory() ? kFailed : 0;
}

}  // namespace

// The order is what makes the pair consistent: the partitions are copied before the ZIP and city
// records that point at them are written, and the reference control record is written last.
// A failing step ends the run; what is open stays open, what is written stays.
std::int32_t cutStates() {
  forgetEarlierCut();
  // 1: the source reference database and its control record; every failure is -1.
  if (openRefDb() != 0) return kFailed;
  // 2: the cut reference file.
  if (createReferenceOutput() != 0) return kFailed;
  // 3: a first control record, the tables that do not change, the tables to rewrite.
  if (!copiedReference()) return kFailed;
  // 4: from here on the reference side works in memory.
  dbCloseRefDB();
  // 5: the source range database; its status is the run's.
  if (const std::int32_t status = openRangeDb(); status != 0) return status;
  // 6: both files of a pair carry the stamp of one build.
  if (const std::int32_t status = compareTimeStamps(); status != 0) return status;
  // 7, 8: the new ZIP code index, filled with the ZIP codes of the selected states.
  if (createNewZipIndex() != 0 || buildZips() != 0) return kFailed;
  return writeCut();
}

}  // namespace statecut
