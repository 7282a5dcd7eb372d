#pragma once
// The entries that lead to shared partitions: three a city multi-ZIP record, one a finance record.

#include <cstddef>
#include <cstdint>

#include "tables/rows.h"
#include "verify/multizipsizes.h"
#include "verify/pair.h"

namespace statecut::verify {

struct SharedEntry {
  const char* kind;
  TableId sizes;      // where its bytes stand, and
  MultiZipForm form;  // how the cut reads that table for it
  std::uint32_t zipCount;
  std::uint32_t key;
  std::uint32_t rba;
  std::int64_t record;
  std::uint64_t offset;  // in the reference file
};

template <typename Visit>
void forEachSharedEntry(const Pair& pair, Visit&& visit) {
  using M = CityMultiZipRow;
  using F = FinMultiZipRow;
  const auto entry = [&](const char* kind, TableId sizes, MultiZipForm form, const auto& records,
                         std::size_t i, auto zipCount, auto key, auto rba) {
    const auto& row = records[i];
    visit(SharedEntry{kind, sizes, form, row.get(zipCount), row.get(key), row.get(rba),
                      static_cast<std::int64_t>(i), records.offset(i) + zipCount.at});
  };
  const auto cities = pair.records<M>(TableId::CityMultiZipRbas);
  for (std::size_t i = 1; i < cities.size(); ++i) {
    entry("SFH", TableId::SfhMultiZipBytes, MultiZipForm::Long, cities, i, M::sfhZipCount,
          M::sfhKey, M::sfhRba);
    entry("POB", TableId::PobMultiZipBytes, MultiZipForm::Short, cities, i, M::pobZipCount,
          M::pobKey, M::pobRba);
    entry("RR", TableId::RrMultiZipBytes, MultiZipForm::Short, cities, i, M::rrZipCount, M::rrKey,
          M::rrRba);
  }
  const auto areas = pair.records<F>(TableId::FinMultiZipRbas);
  for (std::size_t i = 1; i < areas.size(); ++i)
    entry("finance", TableId::SfhMultiZipBytes, MultiZipForm::Short, areas, i, F::zipCount, F::key,
          F::rba);
}

}  // namespace statecut::verify
