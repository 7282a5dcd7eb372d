#include "cut/rangecopy.h"

#include "cut/blockcopy.h"
#include "cut/guards.h"
#include "cut/progress.h"
#include "cut/zipselect.h"
#include "log/procobj.h"
#include "tables/refpointers.h"

namespace statecut {

namespace {

// The size in the ZIP Bytes table; 0 for a key outside it or an unknown kind.
std::uint32_t partitionBytes(std::uint32_t key, std::int32_t kind) {
  const auto* table = reinterpret_cast<const ZipBytesRow*>(refPointers[kSlotZipBytes].table);
  if (table == nullptr || key >= refWord(RefControlRec::zipDataCount)) return 0;
  if (kind == kSfh) return table[key].get(ZipBytesRow::sfhBytes);
  if (kind == kPob) return table[key].get(ZipBytesRow::pobBytes);
  if (kind == kRr) return table[key].get(ZipBytesRow::rrBytes);
  return 0;
}

const char* kindLabel(std::int32_t kind) {
  if (kind == kSfh) return "Zp SFH ";
  if (kind == kPob) return "Zp POB ";
  if (kind == kRr) return "Zp RR ";
  return "";
}

template <typename RbaField>
void startProgress(const char* step, std::int32_t kind, RbaField rba) {
  if (!progressWanted() || scZipCodeIndex == nullptr) return;
  std::uint64_t total = 0;
  for (std::uint32_t zip = 0; zip < kZipCodes; ++zip) {
    const std::uint16_t key = scZipCodeIndex[zip].get(ZipIndexRow::zipKey);
    const ZipDataRow* record = key == 0 ? nullptr : dbGetZipDataFromKeyIn(key);
    if (record != nullptr && record->get(rba) != 0) total += partitionBytes(key, kind);
  }
  progressStep(step, total);
}

template <typename RbaField>
std::int32_t copyKind(const char* step, std::int32_t kind, RbaField rbaField, LogSite badKey) {
  startProgress(step, kind, rbaField);
  return forEachSelectedZip(
      badKey, "Build Single Zips", [&](std::uint16_t key, ZipDataRow& record) -> std::int32_t {
        const std::uint32_t rba = record.get(rbaField);
        if (rba == 0) return 0;
        const auto bytes = static_cast<std::uint32_t>(getEntryPointSize(key, kind));
        copyEntryPoint(rba, bytes);  // a failed copy does not stop the cut; this is meant
        if (inError(pProcObj->files->range)) return -1;
        record.set(rbaField, totalRngBytes);
        totalRngBytes += bytes;
        progressAdd(bytes);
        return 0;
      });
}

}  // namespace

std::int32_t getEntryPointSize(std::uint32_t key, std::int32_t kind) {
  const std::uint32_t bytes = partitionBytes(key, kind);
  if (bytes == 0 && refPointers[kSlotZipBytes].table != nullptr) {
    logNumber(logsite::kNoPartitionBytes, "Get Bytes", kindLabel(kind), key);
  }
  return static_cast<std::int32_t>(bytes);
}

std::int32_t buildZipEntryPoints() {
  std::int32_t status = copyKind("SFH partitions", kSfh, ZipDataRow::sfhRba, logsite::kSfhBadKey);
  if (status == 0) {
    status = copyKind("POB partitions", kPob, ZipDataRow::pobRba, logsite::kPobBadKey);
  }
  if (status == 0) status = copyKind("RR partitions", kRr, ZipDataRow::rrRba, logsite::kRrBadKey);
  return status;
}

}  // namespace statecut
