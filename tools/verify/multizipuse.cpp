#include "verify/multizipuse.h"

#include "verify/multizipsizes.h"

namespace statecut::verify {

namespace {

using M = CityMultiZipRow;

TableId sizesOf(MultiZipKind kind) {
  if (kind == MultiZipKind::Sfh) return TableId::SfhMultiZipBytes;
  return kind == MultiZipKind::Pob ? TableId::PobMultiZipBytes : TableId::RrMultiZipBytes;
}

class Derivation {
 public:
  Derivation(const DerivedCut& cut, MultiZipKind kind)
      : kind_(kind),
        sizes_(cut.source.table(sizesOf(kind))),
        cities_(cut.source.records<CityDataRow>(TableId::CityData)),
        cityRecords_(cut.source.records<M>(TableId::CityMultiZipRbas)),
        finRecords_(cut.source.records<FinMultiZipRow>(TableId::FinMultiZipRbas)) {
    // A key takes at least a record, so that a count beyond the file has no keys that are used.
    use_.keys.resize(keyCount(cut));
    use_.cityRecords.resize(cityRecords_.size());
    use_.finRecords.resize(finRecords_.size());
  }

  void useCity(std::size_t city) {
    const std::uint32_t zipCount = cities_[city].get(CityDataRow::zipCount);
    if (zipCount == 1) return;
    if (zipCount >= 2 && !useCityRecord(cities_[city].get(CityDataRow::multiZipRbaKey))) return;
    if (kind_ == MultiZipKind::Sfh && cities_[city].get(CityDataRow::finMultiZipFlag) == 1)
      useFinance(cities_[city].get(CityDataRow::finMultiZipKey));
  }

  void useFinance(std::uint32_t index) {
    if (index == 0 || index >= finRecords_.size()) return;
    const MultiZipEntry entry = entryOf(finRecords_[index], kind_);
    if (entry.zipCount < 2) return;
    use_.finRecords[index] = true;
    fill(entry, MultiZipForm::Short);
  }

  MultiZipUse take() { return std::move(use_); }

 private:
  static std::size_t keyCount(const DerivedCut& cut) {
    return cut.source.place(TableId::MultiZipLists).count;
  }

  // False when the record is no multi-ZIP entry of the kind.
  bool useCityRecord(std::uint32_t index) {
    if (index == 0 || index >= cityRecords_.size()) return false;
    const MultiZipEntry entry = entryOf(cityRecords_[index], kind_);
    if (entry.zipCount < 2) return false;
    if (kind_ != MultiZipKind::Sfh && entry.rba == 0) return false;
    use_.cityRecords[index] = true;
    fill(entry, kind_ == MultiZipKind::Sfh ? MultiZipForm::Long : MultiZipForm::Short);
    return true;
  }

  // The first record of a key decides where its partition comes from.
  void fill(const MultiZipEntry& entry, MultiZipForm form) {
    if (entry.key >= use_.keys.size() || use_.keys[entry.key].bytes != 0) return;
    use_.keys[entry.key] = {entry.rba, multiZipSize(sizes_, form, entry.key).value_or(0)};
    if (use_.keys[entry.key].bytes != 0) use_.usedKeys.push_back(entry.key);
  }

  MultiZipKind kind_;
  std::span<const unsigned char> sizes_;
  Records<CityDataRow> cities_;
  Records<M> cityRecords_;
  Records<FinMultiZipRow> finRecords_;
  MultiZipUse use_;
};

}  // namespace

MultiZipEntry entryOf(const CityMultiZipRow& row, MultiZipKind kind) {
  if (kind == MultiZipKind::Sfh)
    return {row.get(M::sfhZipCount), row.get(M::sfhKey), row.get(M::sfhRba)};
  if (kind == MultiZipKind::Pob)
    return {row.get(M::pobZipCount), row.get(M::pobKey), row.get(M::pobRba)};
  return {row.get(M::rrZipCount), row.get(M::rrKey), row.get(M::rrRba)};
}

MultiZipEntry entryOf(const FinMultiZipRow& row, MultiZipKind) {
  return {row.get(FinMultiZipRow::zipCount), row.get(FinMultiZipRow::key),
          row.get(FinMultiZipRow::rba)};
}

void setRba(CityMultiZipRow& row, MultiZipKind kind, std::uint32_t rba) {
  if (kind == MultiZipKind::Sfh) row.set(M::sfhRba, rba);
  if (kind == MultiZipKind::Pob) row.set(M::pobRba, rba);
  if (kind == MultiZipKind::Rr) row.set(M::rrRba, rba);
}

void setRba(FinMultiZipRow& row, MultiZipKind, std::uint32_t rba) {
  row.set(FinMultiZipRow::rba, rba);
}

MultiZipUse deriveMultiZipUse(const DerivedCut& cut, MultiZipKind kind) {
  Derivation derivation(cut, kind);
  for (std::size_t city = 0; city < cut.cityKept.size(); ++city)
    if (cut.cityKept[city]) derivation.useCity(city);
  if (kind == MultiZipKind::Sfh) {
    const auto zips = cut.source.records<ZipDataRow>(TableId::ZipData);
    for (const std::uint32_t key : cut.zipKeys)
      derivation.useFinance(zips[key].get(ZipDataRow::finMultiZipKey));
  }
  return derivation.take();
}

}  // namespace statecut::verify
