#pragma once
// Which multi-ZIP partitions a cut copies, derived from the source.

#include <cstdint>
#include <vector>

#include "tables/rows.h"
#include "verify/cutchecks.h"

namespace statecut::verify {

enum class MultiZipKind { Sfh, Pob, Rr };

struct MultiZipEntry {
  std::uint32_t zipCount;
  std::uint32_t key;
  std::uint32_t rba;
};

MultiZipEntry entryOf(const CityMultiZipRow& row, MultiZipKind kind);
MultiZipEntry entryOf(const FinMultiZipRow& row, MultiZipKind kind);  // any kind: its SFH entry
void setRba(CityMultiZipRow& row, MultiZipKind kind, std::uint32_t rba);
void setRba(FinMultiZipRow& row, MultiZipKind kind, std::uint32_t rba);

struct MultiZipUse {
  struct Source {
    std::uint32_t rba = 0;   // in the source's range file
    std::int32_t bytes = 0;  // above 0: the cut copies the partition
  };
  std::vector<Source> keys;             // by multi-ZIP key
  std::vector<std::uint32_t> usedKeys;  // those with a size
  std::vector<bool> cityRecords;        // city multi-ZIP records in use
  std::vector<bool> finRecords;         // finance records in use, SFH only

  bool copied(std::uint32_t key) const { return key < keys.size() && keys[key].bytes > 0; }
};

MultiZipUse deriveMultiZipUse(const DerivedCut& cut, MultiZipKind kind);

}  // namespace statecut::verify
