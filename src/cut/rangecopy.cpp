#include "cut/rangecopy.h"

#include <vector>

#include "base/procobj.h"
#include "cut/openfiles.h"
#include "cut/progress.h"
#include "cut/rangeplan.h"
#include "cut/zipselect.h"
#include "tables/refpointers.h"

namespace statecut {

namespace {

constexpr std::size_t kKeys = 65536;

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

// True when two ZIP codes in the cut lead to one ZIP record: the index keeps its number in 16 bits.
// The first of them points the record at the copy, and the later ones copy from there; a plan would
// have them copy from the first place.
bool shareRecords() {
  std::vector<bool> seen(kKeys);
  bool shared = false;
  visitSelectedZips([&](std::uint16_t key) {
    shared = seen[key];
    seen[key] = true;
    return !shared;
  });
  return shared;
}

// Plans the partitions of one kind, as far as the ZIP keys are good; without a plan it only counts.
// Their bytes. It reads the table itself: the copying has the lookups, and their traces.
template <typename RbaField>
std::uint64_t planKind(RangePlan* plan, std::int32_t kind, RbaField rbaField) {
  std::uint64_t total = 0;
  const std::uint32_t count = refWord(RefControlRec::zipDataCount);
  visitSelectedZips([&](std::uint16_t key) {
    const auto* record = rowAt<ZipDataRow>(kSlotZipData, key, count);
    if (record == nullptr) return false;
    const std::uint32_t rba = record->get(rbaField);
    if (rba == 0) return true;
    const std::uint32_t bytes = partitionBytes(key, kind);
    if (plan != nullptr) plan->add(rba, bytes);
    total += bytes;
    return true;
  });
  return total;
}

struct Kind {
  std::int32_t kind;
  const char* step;
  LogSite badKey;
};

template <typename RbaField>
std::int32_t copyKind(RangePlan& plan, const Kind& kind, std::uint64_t total, RbaField rbaField) {
  if (progressWanted()) progressStep(kind.step, total);
  return forEachSelectedZip(
      kind.badKey, "Build Single Zips", [&](std::uint16_t key, ZipDataRow& record) -> std::int32_t {
        const std::uint32_t rba = record.get(rbaField);
        if (rba == 0) return 0;
        const auto bytes = static_cast<std::uint32_t>(getEntryPointSize(key, kind.kind));
        const std::uint32_t newRba = totalRngBytes;
        if (appendRangePartition(plan, rba, bytes) != 0) return -1;
        record.set(rbaField, newRba);
        return 0;
      });
}

}  // namespace

CopyPath rangePath() { return {pProcObj->files->range, newRangeDb, pProcObj}; }

std::int32_t appendRangePartition(RangePlan& plan, std::uint32_t rba, std::uint32_t bytes) {
  plan.copy(rba, bytes);
  if (inError(pProcObj->files->range)) return -1;
  totalRngBytes += bytes;
  progressAdd(bytes);
  return 0;
}

std::int32_t getEntryPointSize(std::uint32_t key, std::int32_t kind) {
  const std::uint32_t bytes = partitionBytes(key, kind);
  if (bytes == 0 && refPointers[kSlotZipBytes].table != nullptr) {
    logNumber(logsite::kNoPartitionBytes, "Get Bytes", kindLabel(kind), key);
  }
  return static_cast<std::int32_t>(bytes);
}

std::int32_t buildZipEntryPoints() {
  constexpr Kind kSfhKind{kSfh, "SFH partitions", logsite::kSfhBadKey};
  constexpr Kind kPobKind{kPob, "POB partitions", logsite::kPobBadKey};
  constexpr Kind kRrKind{kRr, "RR partitions", logsite::kRrBadKey};
  RangePlan plan(rangePath());
  RangePlan* const planned = shareRecords() ? nullptr : &plan;
  const std::uint64_t sfh = planKind(planned, kSfh, ZipDataRow::sfhRba);
  const std::uint64_t pob = planKind(planned, kPob, ZipDataRow::pobRba);
  const std::uint64_t rr = planKind(planned, kRr, ZipDataRow::rrRba);
  plan.reserve();
  std::int32_t status = copyKind(plan, kSfhKind, sfh, ZipDataRow::sfhRba);
  if (status == 0) status = copyKind(plan, kPobKind, pob, ZipDataRow::pobRba);
  if (status == 0) status = copyKind(plan, kRrKind, rr, ZipDataRow::rrRba);
  return status;
}

}  // namespace statecut
