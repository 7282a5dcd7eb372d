#include "diff/partitions.h"

#include <algorithm>
#include <map>

#include "tables/rows.h"
#include "verify/multizipsizes.h"

namespace statecut::diff {

namespace {

using M = CityMultiZipRow;

TableId sharedSizes(Kind kind) {
  if (kind == Kind::Sfh) return TableId::SfhMultiZipBytes;
  return kind == Kind::Pob ? TableId::PobMultiZipBytes : TableId::RrMultiZipBytes;
}

constexpr Kind kKinds[] = {Kind::Sfh, Kind::Pob, Kind::Rr};

}  // namespace

Partitions::Partitions(const Release& release) : release_(release) {
  if (release.isCut()) measureCut();
}

// The partitions of a cut stand one behind the other: of each kind those of the ZIP codes, then the
// shared ones by their keys. A shared one that was not copied has an RBA of the source left, which
// is passed over where it leads back or out of the file.
void Partitions::measureCut() {
  struct Start {
    std::uint32_t rba;
    std::uint64_t* bytes;
  };
  std::vector<Start> starts;
  for (const Kind kind : kKinds) {
    for (std::uint32_t zip = 0; zip < format::kZipIndexEntries; ++zip) {
      const std::uint32_t key = release_.zipKey(zip);
      if (key != 0 && zipRba(key, kind) != 0)
        starts.push_back({zipRba(key, kind), &cutZipBytes_[static_cast<std::size_t>(kind)][key]});
    }
  }
  const std::size_t cities = release_.records<CityDataRow>(TableId::CityData).size();
  for (const Kind kind : kKinds) {
    std::map<std::uint32_t, std::uint32_t> rbas;  // by multi-ZIP key
    const auto use = [&](const std::optional<Link>& link) {
      if (link) rbas.emplace(link->key, link->rba);
    };
    for (std::uint32_t city = 1; city < cities; ++city) {
      if (release_.cityName(city).empty()) continue;
      use(cityLink(city, kind));
      if (kind == Kind::Sfh) use(cityAreaLink(city));
    }
    for (std::uint32_t zip = 0; kind == Kind::Sfh && zip < format::kZipIndexEntries; ++zip)
      if (const std::uint32_t key = release_.zipKey(zip); key != 0)
        use(areaLink(
            release_.records<ZipDataRow>(TableId::ZipData)[key].get(ZipDataRow::finMultiZipKey)));
    for (const auto& [key, rba] : rbas) starts.push_back({rba, &cutBytes_[rba]});
  }
  const std::uint64_t end = release_.rangeBytes().size();
  std::uint64_t reached = 0;
  std::erase_if(starts, [&](const Start& start) {
    if (start.rba < reached || start.rba > end) return true;
    reached = start.rba;
    return false;
  });
  for (std::size_t i = 0; i < starts.size(); ++i)
    *starts[i].bytes += (i + 1 < starts.size() ? starts[i + 1].rba : end) - starts[i].rba;
}

std::uint32_t Partitions::zipRba(std::uint32_t zipKey, Kind kind) const {
  const ZipDataRow& zip = release_.records<ZipDataRow>(TableId::ZipData)[zipKey];
  if (kind == Kind::Sfh) return zip.get(ZipDataRow::sfhRba);
  return kind == Kind::Pob ? zip.get(ZipDataRow::pobRba) : zip.get(ZipDataRow::rrRba);
}

std::optional<Partition> Partitions::ofZip(std::uint32_t zipKey, Kind kind) const {
  const std::uint32_t rba = zipRba(zipKey, kind);
  if (rba == 0) return {};
  if (release_.isCut()) {
    const auto& bytes = cutZipBytes_[static_cast<std::size_t>(kind)];
    const auto found = bytes.find(zipKey);
    return Partition{rba, found == bytes.end() ? 0 : found->second};
  }
  const auto sizes = release_.records<ZipBytesRow>(TableId::ZipBytes);
  if (zipKey >= sizes.size()) return {};
  const ZipBytesRow& size = sizes[zipKey];
  if (kind == Kind::Sfh) return Partition{rba, size.get(ZipBytesRow::sfhBytes)};
  return Partition{
      rba, kind == Kind::Pob ? size.get(ZipBytesRow::pobBytes) : size.get(ZipBytesRow::rrBytes)};
}

// As a cut takes them: an entry of fewer than two ZIP codes, or without an RBA, is none.
std::optional<Partitions::Link> Partitions::cityLink(std::uint32_t cityKey, Kind kind) const {
  const CityDataRow& city = release_.records<CityDataRow>(TableId::CityData)[cityKey];
  const auto rows = release_.records<M>(TableId::CityMultiZipRbas);
  const std::uint32_t index = city.get(CityDataRow::multiZipRbaKey);
  if (city.get(CityDataRow::zipCount) < 2 || index == 0 || index >= rows.size()) return {};
  const M& row = rows[index];
  std::uint32_t zips = row.get(M::sfhZipCount);
  Link link{row.get(M::sfhKey), row.get(M::sfhRba)};
  if (kind == Kind::Pob) {
    zips = row.get(M::pobZipCount);
    link = {row.get(M::pobKey), row.get(M::pobRba)};
  } else if (kind == Kind::Rr) {
    zips = row.get(M::rrZipCount);
    link = {row.get(M::rrKey), row.get(M::rrRba)};
  }
  if (zips < 2 || link.rba == 0) return {};
  return link;
}

std::optional<Partitions::Link> Partitions::areaLink(std::uint32_t index) const {
  const auto rows = release_.records<FinMultiZipRow>(TableId::FinMultiZipRbas);
  if (index == 0 || index >= rows.size()) return {};
  const FinMultiZipRow& row = rows[index];
  if (row.get(FinMultiZipRow::zipCount) < 2 || row.get(FinMultiZipRow::rba) == 0) return {};
  return Link{row.get(FinMultiZipRow::key), row.get(FinMultiZipRow::rba)};
}

// A city of one ZIP code, and one of several without a shared SFH partition, has no area of its
// own.
std::optional<Partitions::Link> Partitions::cityAreaLink(std::uint32_t cityKey) const {
  const CityDataRow& city = release_.records<CityDataRow>(TableId::CityData)[cityKey];
  if (city.get(CityDataRow::finMultiZipFlag) != 1 || city.get(CityDataRow::zipCount) == 1)
    return {};
  if (city.get(CityDataRow::zipCount) >= 2 && !cityLink(cityKey, Kind::Sfh)) return {};
  return areaLink(city.get(CityDataRow::finMultiZipKey));
}

std::optional<Partition> Partitions::shared(const std::optional<Link>& link, Kind kind,
                                            bool area) const {
  if (!link) return {};
  if (release_.isCut()) {
    const auto found = cutBytes_.find(link->rba);
    return Partition{link->rba, found == cutBytes_.end() ? 0 : found->second};
  }
  const auto form =
      kind == Kind::Sfh && !area ? verify::MultiZipForm::Long : verify::MultiZipForm::Short;
  const std::int32_t bytes =
      verify::multiZipSize(release_.table(sharedSizes(kind)), form, link->key).value_or(0);
  return Partition{link->rba, static_cast<std::uint64_t>(std::max(bytes, 0))};
}

std::optional<Partition> Partitions::ofCity(std::uint32_t cityKey, Kind kind) const {
  return shared(cityLink(cityKey, kind), kind, false);
}

std::optional<Partition> Partitions::ofZipArea(std::uint32_t zipKey) const {
  const ZipDataRow& zip = release_.records<ZipDataRow>(TableId::ZipData)[zipKey];
  return shared(areaLink(zip.get(ZipDataRow::finMultiZipKey)), Kind::Sfh, true);
}

std::optional<Partition> Partitions::ofCityArea(std::uint32_t cityKey) const {
  return shared(cityAreaLink(cityKey), Kind::Sfh, true);
}

}  // namespace statecut::diff
