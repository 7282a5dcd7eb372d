// ZIP code to record, in memory, against the same arrays indexed in a loop.

#include <algorithm>
#include <random>

#include "lookups/contest.h"
#include "lookups/measurements.h"
#include "tables/refpointers.h"

namespace statecut::bench {

namespace {

std::uint32_t fieldOf(const ZipDataRow* record) {
  return record == nullptr ? 0 : record->get(ZipDataRow::sfhRba);
}

// The two tables, as a program of its own would hold them.
struct Arrays {
  std::vector<std::uint16_t> index;
  std::vector<ZipDataRow> records;

  [[nodiscard]] const ZipDataRow* find(std::uint32_t zip) const {
    if (zip >= index.size()) return nullptr;
    const std::uint32_t key = index[zip];
    return key == 0 || key >= records.size() ? nullptr : &records[key];
  }
};

Arrays copyTables() {
  Arrays arrays;
  constexpr std::size_t codes = 100000;
  const unsigned char* index = refPointers[kSlotZipIndex].table;
  for (std::size_t zip = 0; zip < codes; ++zip) arrays.index.push_back(le::get<2>(index + 2 * zip));
  const auto* records = reinterpret_cast<const ZipDataRow*>(refPointers[kSlotZipData].table);
  arrays.records.assign(records,
                        records + pProcObj->refControlRec->get(RefControlRec::zipDataCount));
  return arrays;
}

std::vector<std::uint32_t> zipCodes(const Arrays& arrays) {
  std::vector<std::uint32_t> zips;
  for (std::uint32_t zip = 1; zip < arrays.index.size(); ++zip)
    if (arrays.index[zip] != 0) zips.push_back(zip);
  std::shuffle(zips.begin(), zips.end(), std::mt19937(1));
  return zips;
}

}  // namespace

void measureZipsInMemory(LookupSetup& setup) {
  if (!setup.wants("zip-memory")) return;
  const Arrays arrays = copyTables();
  const std::vector<std::uint32_t> zips = zipCodes(arrays);
  const auto ours = [](std::uint32_t zip) {
    std::uint32_t key = 0;
    return fieldOf(dbGetZipData(static_cast<std::int32_t>(zip), &key));
  };
  const auto peer = [&arrays](std::uint32_t zip) { return fieldOf(arrays.find(zip)); };
  compareAnswers("ZIP", zips, ours, peer);
  addLookups("ZIP to record/statecut", zips, ours);
  addLookups("ZIP to record/array", zips, peer);
  const Times times = runGroup("ZIP to record", setup.rounds);
  Figure figure = figureOf(times, "ZIP to record", "statecut", "array");
  figure.name.clear();
  setup.rows["zip-memory"].figures.push_back(figure);
}

}  // namespace statecut::bench
