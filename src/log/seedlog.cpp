#include "log/seedlog.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

#include "base/stream.h"

namespace statecut {

SeedRecord* DPVRecords = nullptr;
SeedRecord* LACSRecords = nullptr;

namespace {

constexpr const char* kSeedLogName = "seedlog.txt";
constexpr std::size_t kCopied = 184;
constexpr std::size_t kLinePayload = 180;
constexpr std::size_t kLacsPrefix = 16;
constexpr std::size_t kDpvPrefix = 9;

bool isType(const char* typeCode, const char* wanted) {
  return std::strncmp(typeCode, wanted, 2) == 0;
}

// Copies the text behind the prefix; nothing when the record ends inside its prefix.
void copyBehindPrefix(char (&to)[kSeedRecordSize], const char* record, std::size_t prefix) {
  if (::strnlen(record, prefix) < prefix) return;
  std::memcpy(to, record + prefix, ::strnlen(record + prefix, kCopied));
}

void writeLine(Stream* stream, const char* data) {
  char line[kLinePayload + 1];
  std::memcpy(line, data, kLinePayload);
  line[kLinePayload] = '\n';
  // Deliberate: the result is not looked at; a postal run does not end for want of its seed log.
  streamWrite(stream, line, sizeof line);
}

std::int32_t writeBatch(ProcObj* proc, SeedRecord** list, const char* header) {
  const std::int32_t opened = utlInitSeedLog(proc);
  if (opened != kSeedLogReady) return opened;
  logSeedRecords(proc, *list, header);
  *list = nullptr;
  const std::int32_t closed = utlSeedLogMsgClose(proc->files->seedLog);
  proc->files->seedLog = nullptr;
  return closed;
}

}  // namespace

std::int32_t utlLogSeedDetail(ProcObj* proc, const char* record, const char* typeCode) {
  if (record == nullptr || typeCode == nullptr) return 0;
  char work[kSeedRecordSize] = {};
  if (isType(typeCode, "DD")) {
    std::memset(work, ' ', sizeof work);
    copyBehindPrefix(work, record, 0);
    DPVRecords = addSeedRecord(DPVRecords, work);
    return 0;
  }
  if (isType(typeCode, "LD")) {
    // Deliberate: filled with zero bytes, unlike the blanks of "DD"; readers of the seed log know.
    copyBehindPrefix(work, record, 0);
    LACSRecords = addSeedRecord(LACSRecords, work);
    return 0;
  }
  const bool lacs = isType(typeCode, "LH");
  copyBehindPrefix(work, record, lacs ? kLacsPrefix : kDpvPrefix);
  return writeBatch(proc, lacs ? &LACSRecords : &DPVRecords, work);
}

std::int32_t utlInitSeedLog(ProcObj* proc) {
  if (proc == nullptr || proc->files == nullptr) return kSeedLogOpenFailed;
  if (proc->files->seedLog != nullptr) return kSeedLogReady;
  if (proc->seedLogSwitches[0] == 0 && proc->seedLogSwitches[1] == 0) return kSeedLogReady;
  proc->files->seedLog = streamOpen(kSeedLogName, "a+");
  if (proc->files->seedLog != nullptr) return kSeedLogReady;
  const int error = errno;
  std::fprintf(stderr, "Could not open Seed log file: %s\n", kSeedLogName);
  std::fprintf(stderr, "Error = %d: %s\n", error, std::strerror(error));
  return kSeedLogOpenFailed;
}

std::int32_t utlSeedLogMsgClose(Stream* stream) {
  if (stream != nullptr) streamClose(stream);
  return 0;
}

SeedRecord* addSeedRecord(SeedRecord* head, const char* data) {
  if (data == nullptr) return head;
  SeedRecord* const record = new (std::nothrow) SeedRecord{};
  if (record == nullptr) return head;
  std::memcpy(record->data, data, kSeedRecordSize);
  if (head == nullptr) return record;
  SeedRecord* tail = head;
  while (tail->next != nullptr) tail = tail->next;
  tail->next = record;
  return head;
}

void logSeedRecords(ProcObj* proc, SeedRecord* list, const char* header) {
  Stream* stream = proc == nullptr || proc->files == nullptr ? nullptr : proc->files->seedLog;
  if (stream != nullptr && header != nullptr) writeLine(stream, header);
  while (list != nullptr) {
    SeedRecord* record = list;
    list = record->next;
    if (stream != nullptr) writeLine(stream, record->data);
    delete record;
  }
}

}  // namespace statecut
