#pragma once
// The rules that a database pair is checked by. The list is data: docs and tests enumerate it.

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace statecut::verify {

enum class RuleId {
  FileShort,
  TypeFlags,
  HeaderForm,
  StampBuild,
  StampCut,
  TableBounds,
  TableOverlap,
  TableFirst,
  TableGap,
  RangeAreas,
  ZipIndex,
  ZipRecord,
  ZipCities,
  ZipState,
  RangeBounds,
  CityName,
  CityOrder,
  CityKey,
  CityLinks,
  CityZips,
  CityFinance,
  ByStateOrder,
  ByStateNames,
  PhoneticKey,
  PhoneticOrder,
  NamePacking,
  StreetLinks,
  StreetLists,
  HashSize,
  HashChain,
  HashMissing,
  HashWrong,
  MultiZipLink,
  MultiZipKey,
  MultiZipOrder,
  MultiZipLists,
  MultiZipEntries,
  MultiZipOwner,
  MultiZipBytes,
  MultiZipBounds,
  RangeLayout,
  RangeGap,
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
  const char* guards;  // what goes wrong in a pair that breaks it
  bool needsSource;    // checked only when the source pair of a cut is given
};

std::span<const Rule, kRules> rules();
const Rule& rule(RuleId id);
std::optional<RuleId> ruleNamed(std::string_view id);

}  // namespace statecut::verify
