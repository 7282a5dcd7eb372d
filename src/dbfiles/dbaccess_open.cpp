#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/cmdline.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/dbaccess.h"
#include "dbfiles/reports.h"

namespace statecut {

namespace {

constexpr LogSource kRefSide{kDbaccess, 3000};
constexpr LogSource kRangeSide{kDbaccess, 4000};

// Opens the database for reading and logs which one, or why not ("ref/city", "range/zip4").
Stream* openDatabase(LogSource source, const char* kind, const char* path) {
  char text[kDbaccessTextSize];
  Stream* const stream = streamOpen(path, "rb");
  if (stream == nullptr) {
    const int error = errno;
    logFormatted(text, pProcObj, source.at(__LINE__), kError, "Error", kReasonNone,
                 "Could not open %s db: %s\nErrno = %d : %s\n", kind, orEmpty(path), error,
                 std::strerror(error));
    return nullptr;
  }
  std::snprintf(text, sizeof text, "Opened %s db: ", kind);
  utlWriteLogMsg(pProcObj, source.name, source.line(__LINE__), kInfo, "Info", kReasonNone,
                 kMsgTextText, text, orEmpty(path));
  return stream;
}

void reportNoControlRecord(LogSource source, const char* title, const char* text) {
  utlWriteLogMsg(pProcObj, source.name, source.line(__LINE__), kError, title, kReasonNone, kMsgText,
                 text);
}

}  // namespace

std::int32_t openRefDb() {
  if (pProcObj == nullptr || pProcObj->files == nullptr) return kRefDbNotOpened;
  Stream* const stream = openDatabase(kRefSide, "ref/city", cmdLine.refDb);
  pProcObj->files->reference = stream;
  if (stream == nullptr) return kRefDbNotOpened;

  const RefControlRec* const record = ReadRefControlRec(stream, pProcObj);
  if (record == nullptr) {
    // Deliberate: an error under a warning's title, part of the log's format; the range side says
    // "Error".
    reportNoControlRecord(kRefSide, "Warning", "Could not read ref/city db control record.");
    return kControlRecNotRead;
  }
  if ((record->get(RefControlRec::typeFlags) & kTypeReference) == 0) {
    utlWriteLogMsg(pProcObj, kDbaccess, kRefSide.line(__LINE__), kError, "RefDB Read Err",
                   kReasonNone, kMsgRefRead, "Ref/City DB Type Incorrect");
    return kDbWrongType;
  }
  dbDebugControlRecord(pProcObj);
  if (checkPlatform(record->get(RefControlRec::endianType),
                    record->get(RefControlRec::characterType), orEmpty(cmdLine.refDb)) != 0)
    return kPlatformRefused;
  return 0;
}

std::int32_t openRangeDb() {
  if (pProcObj == nullptr || pProcObj->files == nullptr) return kRangeDbNotOpened;
  Stream* const stream = openDatabase(kRangeSide, "range/zip4", cmdLine.rangeDb);
  pProcObj->files->range = stream;
  if (stream == nullptr) return kRangeDbNotOpened;

  const RngControlRec* const record = pProcObj->rngControlRec =
      ReadRangeControlRec(stream, pProcObj);
  if (record == nullptr) {
    reportNoControlRecord(kRangeSide, "Error", "Could not read range/zip4 db control record.");
    return kControlRecNotRead;
  }
  if ((record->get(RngControlRec::typeFlags) & kTypeRange) == 0) {
    utlWriteLogMsg(pProcObj, kDbaccess, kRangeSide.line(__LINE__), kError, "RngDB Err", kReasonNone,
                   kMsgRangeRead, "Range/Zip4 DB Type Incorrect");
    return kDbWrongType;
  }
  dbDebugRngControlRec(pProcObj);
  if (checkPlatform(record->get(RngControlRec::endianType),
                    record->get(RngControlRec::characterType), orEmpty(cmdLine.rangeDb)) != 0)
    return kPlatformRefused;
  return 0;
}

// The hook at which a database of another byte order or character set would be refused.
std::int32_t checkPlatform(std::uint8_t, std::uint8_t, const char*) { return 0; }

}  // namespace statecut
