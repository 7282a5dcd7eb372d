// The cut range file up to the multi-ZIP partitions.

#include <algorithm>

#include "base/le.h"
#include "support/secondcut_state.h"

namespace statecut::secondcut {
namespace {

constexpr std::int32_t kRangeChunk = 4088;

// Where a ZIP record holds the RBA of its partition of a kind.
std::size_t rbaFieldOf(Kind kind) { return kind == kSfh ? 8 : kind == kPob ? 12 : 16; }

const char* labelOf(Kind kind) {
  return kind == kSfh ? "Zp SFH " : kind == kPob ? "Zp POB " : "Zp RR ";
}

}  // namespace

void Cut::writeRangeRecord() {
  le::put<4>(&rngRecord[24], le::get<4>(&rngRecord[24]) | 4);
  le::put<4>(&rngRecord[28], in.stamp);
  out.rng.append("control record", rngRecord.data(), rngRecord.size());
  totalRngBytes = 624;
}

void Cut::copyZipPartitions(Kind kind) {
  for (const std::uint32_t key : zipIndex) {
    if (key == 0) continue;
    const std::size_t field = std::size_t{52} * key + rbaFieldOf(kind);
    const std::uint32_t oldRba = zips.u32(field);
    if (oldRba == 0) continue;
    const std::int32_t size = zipPartitionSize(key, kind);
    copyFromRange(std::string(labelOf(kind)) + std::to_string(key), oldRba, size);
    zips.setU32(field, totalRngBytes);
    totalRngBytes += static_cast<std::uint32_t>(size);
  }
}

std::int32_t Cut::zipPartitionSize(std::uint32_t key, Kind kind) {
  const std::size_t record = std::size_t{12} * key;
  const std::uint32_t size = kind == kPob  ? zipBytes.u16(record + 2)
                             : kind == kRr ? zipBytes.u32(record + 4)
                                           : zipBytes.u32(record + 8);
  if (size == 0)
    log.record(kWarning, "cutstate", 1531, 0, "Get Bytes", labelOf(kind) + std::to_string(key));
  return static_cast<std::int32_t>(size);
}

// As the copy of a reference table: blocks through one buffer, zero at the start.
void Cut::copyFromRange(const std::string& name, std::uint32_t rba, std::int32_t bytes) {
  Bytes buffer(4096);
  Bytes copied;
  while (bytes > 0) {
    for (std::uint32_t i = 0; i < kRangeChunk && std::uint64_t{rba} + i < in.rng->size(); ++i)
      buffer[i] = (*in.rng)[rba + i];
    const std::int32_t chunk = std::min(bytes, kRangeChunk);
    copied.insert(copied.end(), buffer.begin(), buffer.begin() + chunk);
    bytes -= chunk;
    rba += static_cast<std::uint32_t>(chunk);
  }
  out.rng.append(name, copied.data(), copied.size());
}

}  // namespace statecut::secondcut
