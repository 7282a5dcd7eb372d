#pragma once
// The rules that a database pair is checked by. The list is data: docs and tests enumerate it.

#include <cstddef>
#include <span>

namespace statecut::verify {

enum class RuleId {
  FileShort,
  TypeFlags,
  StampBuild,
  StampCut,
  TableBounds,
  TableOverlap,
  RangeAreas,
  ZipIndex,
  ZipRecord,
  ZipCities,
  RangeBounds,
  CityName,
  CityOrder,
  CityKey,
  CityLinks,
  ByStateOrder,
  ByStateNames,
  PhoneticKey,
  PhoneticOrder,
  NamePacking,
  StreetLinks,
  HashSize,
  HashChain,
  HashMissing,
  HashWrong,
  MultiZipLink,
  MultiZipKey,
  MultiZipOrder,
  MultiZipLists,
  MultiZipBytes,
  MultiZipBounds,
  RangeLayout,
  CutControl,
  CutLayout,
  CutTables,
  CutRangeControl,
  CutRangeLayout,
  CutZips,
  CutZipRecords,
  CutPartitions,
  CutCityData,
  CutCityMultiZip,
  CutFinance,
  CutMultiZipPartitions,
  CutNames,
  CutByState,
  CutPhonetics,
  CutHash,
  Count_
};
inline constexpr std::size_t kRules = static_cast<std::size_t>(RuleId::Count_);

struct Rule {
  const char* id;  // stable
  const char* meaning;
  bool needsSource;  // checked only when the source pair of a cut is given
};

std::span<const Rule, kRules> rules();
const Rule& rule(RuleId id);

}  // namespace statecut::verify
