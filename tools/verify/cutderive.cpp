// What a cut must hold, derived from its source and the states.

#include <algorithm>

#include "tables/rows.h"
#include "verify/cutchecks.h"

namespace statecut::verify {

namespace {

void deriveZips(DerivedCut& cut) {
  const auto zips = cut.source.records<ZipDataRow>(TableId::ZipData);
  const auto sizes = cut.source.records<ZipBytesRow>(TableId::ZipBytes);
  cut.zipIndex.assign(kZipIndexEntries, 0);
  cut.zipKept.assign(zips.size(), false);
  for (std::size_t key = 0; key < zips.size(); ++key) {
    const std::uint32_t zip = zips[key].get(ZipDataRow::zip);
    if (cut.stateChosen[stateIndex(sizes[key].get(ZipBytesRow::state).data())] &&
        zip < kZipIndexEntries)
      cut.zipIndex[zip] = static_cast<std::uint32_t>(key & 0xFFFF);
  }
  for (const std::uint32_t key : cut.zipIndex)
    if (key != 0) cut.zipKeys.push_back(key);
  for (const std::uint32_t key : cut.zipKeys) cut.zipKept[key] = true;
}

// Kept records keep their order behind the blank first record.
template <typename RowType>
std::vector<std::uint32_t> deriveMap(const DerivedCut& cut, TableId id) {
  const auto records = cut.source.records<RowType>(id);
  std::vector<std::uint32_t> map(records.size(), 0);
  std::uint32_t next = 1;
  for (std::size_t i = 0; i < records.size(); ++i)
    if (cut.stateChosen[stateIndex(records[i].get(RowType::state).data())]) map[i] = next++;
  return map;
}

// The same for the records that are met when each state in turn is looked for behind the one
// before, up to the first record of a later state.
template <typename RowType>
std::vector<std::uint32_t> deriveSortedMap(const DerivedCut& cut,
                                           const std::vector<std::string>& states, TableId id) {
  const auto records = cut.source.records<RowType>(id);
  std::vector<std::uint32_t> map(records.size(), 0);
  std::uint32_t next = 1;
  std::size_t at = 0;
  for (const std::string& state : states) {
    const std::size_t wanted = stateIndex(reinterpret_cast<const unsigned char*>(state.data()));
    for (; at < records.size(); ++at) {
      const std::size_t found = stateIndex(records[at].get(RowType::state).data());
      if (found > wanted) break;
      if (found == wanted) map[at] = next++;
    }
  }
  return map;
}

void deriveCities(DerivedCut& cut) {
  const auto names = cut.source.records<CityNameRow>(TableId::CityNames);
  cut.cityKept.assign(cut.source.place(TableId::CityData).count, false);
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::uint32_t key = names[i].get(CityNameRow::cityKey);
    if (cut.nameMap[i] != 0 && key != 0 && key < cut.cityKept.size()) cut.cityKept[key] = true;
  }
}

}  // namespace

std::string sourceProblem(const Pair& source) {
  if (!source.holdsControlRecords()) return "shorter than its control record";
  const std::uint32_t refFlags = source.ref().get(RefControlRec::typeFlags);
  const std::uint32_t rngFlags = source.rng().get(RngControlRec::typeFlags);
  if ((refFlags & kTypeReference) == 0 || (rngFlags & kTypeRange) == 0)
    return "not a reference and a range database";
  if (source.isCut()) return "itself a state cut";
  for (std::size_t i = 0; i < kTables; ++i) {
    const auto id = static_cast<TableId>(i);
    if (source.place(id).carried && !source.place(id).fits)
      return std::string("its table ") + tableDef(id).name + " lies outside the file";
  }
  return {};
}

std::uint32_t keptCount(const std::vector<std::uint32_t>& map) {
  const auto kept = std::count_if(map.begin(), map.end(), [](std::uint32_t n) { return n != 0; });
  return static_cast<std::uint32_t>(kept) + 1;
}

DerivedCut deriveCut(const Pair& source, const std::vector<std::string>& states, CityScan scan) {
  DerivedCut result{source, std::vector<bool>(65536, false), {}, {}, {}, {}, {}, {}};
  for (const std::string& state : states)
    result.stateChosen[stateIndex(reinterpret_cast<const unsigned char*>(state.data()))] = true;
  deriveZips(result);
  if (scan == CityScan::All) {
    result.nameMap = deriveMap<CityNameRow>(result, TableId::CityNames);
    result.phoneticMap = deriveMap<CityPhoneticRow>(result, TableId::CityPhonetics);
  } else {
    result.nameMap = deriveSortedMap<CityNameRow>(result, states, TableId::CityNames);
    result.phoneticMap = deriveSortedMap<CityPhoneticRow>(result, states, TableId::CityPhonetics);
  }
  deriveCities(result);
  return result;
}

}  // namespace statecut::verify
