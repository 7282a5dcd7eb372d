#include "draw/files.h"

#include <algorithm>
#include <numeric>
#include <unordered_set>

#include "tables/rows.h"

namespace statecut::draw {

namespace {

using diff::Partition;
using diff::Partitions;
using diff::Release;
using format::TableId;

Family familyOf(TableId id) {
  switch (id) {
    case TableId::StreetNames:
    case TableId::StreetRbos:
    case TableId::StreetPhoneticAmbData:
    case TableId::StreetPhonetics:
    case TableId::StreetPhoneticsRbos:
    case TableId::StreetStandardAmbData:
    case TableId::StreetStandards:
    case TableId::StreetStandardsRbos:
      return Family::Streets;
    case TableId::Firms:
    case TableId::FirmRbos:
      return Family::Firms;
    case TableId::CityData:
    case TableId::CityMultiZipLists:
    case TableId::CityMultiFinanceLists:
    case TableId::CityMultiZipRbas:
    case TableId::FinMultiZipRbas:
    case TableId::CityNames:
    case TableId::CityNamesByState:
    case TableId::CityPhonetics:
      return Family::Cities;
    case TableId::ZipData:
    case TableId::ZipMultiCityLists:
    case TableId::ZipIndex:
    case TableId::UniqueZips:
    case TableId::MultiZipLists:
      return Family::Zips;
    case TableId::ZipBytes:
    case TableId::SfhMultiZipBytes:
    case TableId::PobMultiZipBytes:
    case TableId::RrMultiZipBytes:
      return Family::Sizes;
    case TableId::HashTable:
    case TableId::HashOverflow:
      return Family::Names;
    default:
      return Family::Rest;
  }
}

// What a piece has in the two files; in the order of the first.
struct Bytes {
  std::uint64_t whole = 0, cut = 0;
};

std::uint64_t less(std::uint64_t all, std::uint64_t part) { return all > part ? all - part : 0; }

// The last piece: what none of the others holds.
void addRest(File& file, bool cut) {
  Bytes sum;
  for (const Piece& piece : file.pieces) {
    sum.whole += piece.bytes;
    sum.cut += piece.kept;
  }
  const Bytes rest = {less(file.bytes, sum.whole), cut ? less(file.cutBytes, sum.cut) : 0};
  if (rest.whole != 0 || rest.cut != 0)
    file.pieces.push_back({"Nothing leads to these", Family::Other, rest.whole, rest.cut});
}

std::array<std::uint64_t, kKindCount> sharedBytes(const Release& release,
                                                  const Partitions& partitions) {
  std::array<std::uint64_t, kKindCount> sums = {};
  for (const SharedPartition& shared : sharedPartitions(release, partitions))
    sums[indexOf(shared.kind)] += shared.bytes;
  return sums;
}

constexpr std::size_t kSumCount = 2 * kKindCount;

// By kind: of single ZIP codes, then shared.
std::array<std::uint64_t, kSumCount> rangeSums(const Release& release) {
  const Partitions partitions(release);
  const auto single = singleBytes(release, partitions);
  const auto shared = sharedBytes(release, partitions);
  std::array<std::uint64_t, kSumCount> sums = {};
  for (std::size_t i = 0; i < kKindCount; ++i) {
    sums[2 * i] = single[i];
    sums[2 * i + 1] = shared[i];
  }
  return sums;
}

}  // namespace

std::array<std::uint64_t, kKindCount> singleBytes(const Release& release,
                                                  const Partitions& partitions) {
  std::array<std::uint64_t, kKindCount> sums = {};
  for (std::uint32_t zip = 0; zip < format::kZipIndexEntries; ++zip) {
    const std::uint32_t key = release.zipKey(zip);
    if (key == 0) continue;
    for (const diff::Kind kind : kKinds)
      if (const auto partition = partitions.ofZip(key, kind))
        sums[indexOf(kind)] += partition->bytes;
  }
  return sums;
}

std::vector<SharedPartition> sharedPartitions(const Release& release,
                                              const Partitions& partitions) {
  std::vector<SharedPartition> found;
  std::unordered_set<std::uint32_t> seen;
  const auto add = [&](const std::optional<Partition>& partition, diff::Kind kind,
                       std::string_view state) {
    if (partition && seen.insert(partition->rba).second)
      found.push_back({kind, state, partition->bytes});
  };
  const std::size_t cities = release.records<CityDataRow>(TableId::CityData).size();
  for (std::uint32_t city = 1; city < cities; ++city) {
    const std::string_view name = release.cityName(city);
    if (release.isCut() && name.empty()) continue;  // what it leads to was not copied
    const std::string_view state = name.substr(0, 2);
    for (const diff::Kind kind : kKinds) add(partitions.ofCity(city, kind), kind, state);
    add(partitions.ofCityArea(city), diff::Kind::Sfh, state);
  }
  for (std::uint32_t zip = 0; zip < format::kZipIndexEntries; ++zip)
    if (const std::uint32_t key = release.zipKey(zip); key != 0)
      add(partitions.ofZipArea(key), diff::Kind::Sfh, release.stateOf(key, release.isCut()));
  return found;
}

File referenceFile(const Release& release, const Release* cut) {
  File file;
  file.bytes = release.referenceBytes().size();
  if (cut != nullptr) file.cutBytes = cut->referenceBytes().size();
  const std::uint64_t control = RefControlRec::size;
  file.pieces.push_back({"Control record", Family::Other, control, cut != nullptr ? control : 0});
  std::array<TableId, format::kTables> ids;
  for (std::size_t i = 0; i < ids.size(); ++i) ids[i] = static_cast<TableId>(i);
  std::stable_sort(ids.begin(), ids.end(), [&](TableId a, TableId b) {
    return release.place(a).rba < release.place(b).rba;
  });
  const auto bytes = [](const Release& of, TableId id) {
    return of.place(id).carried ? of.place(id).bytes : std::uint64_t{0};
  };
  for (const TableId id : ids) {
    const Bytes both = {bytes(release, id), cut != nullptr ? bytes(*cut, id) : 0};
    if (both.whole != 0 || both.cut != 0)
      file.pieces.push_back({format::tableDef(id).name, familyOf(id), both.whole, both.cut});
  }
  addRest(file, cut != nullptr);
  return file;
}

File rangeFile(const Release& release, const Release* cut) {
  static constexpr struct {
    const char* name;
    Family family;
  } kPieces[] = {
      {"Streets (SFH)", Family::Sfh},    {"Streets, shared by ZIP codes", Family::SfhShared},
      {"PO Boxes (POB)", Family::Pob},   {"PO Boxes, shared by ZIP codes", Family::PobShared},
      {"Rural routes (RR)", Family::Rr}, {"Rural routes, shared by ZIP codes", Family::RrShared}};
  File file;
  file.bytes = release.rangeBytes().size();
  if (cut != nullptr) file.cutBytes = cut->rangeBytes().size();
  const std::uint64_t control = RngControlRec::size;
  file.pieces.push_back({"Control record", Family::Other, control, cut != nullptr ? control : 0});
  const auto whole = rangeSums(release);
  const auto kept = cut != nullptr ? rangeSums(*cut) : std::array<std::uint64_t, kSumCount>{};
  for (std::size_t i = 0; i < std::size(kPieces); ++i)
    file.pieces.push_back({kPieces[i].name, kPieces[i].family, whole[i], kept[i]});
  addRest(file, cut != nullptr);
  return file;
}

}  // namespace statecut::draw
