#include "format/directory.h"

#include <algorithm>

#include "dbfiles/controlrec.h"
#include "tables/rows.h"

namespace statecut::format {

namespace {

using R = RefControlRec;

constexpr TableDef records(const char* name, std::size_t rbaAt, std::size_t countAt,
                           std::uint32_t width) {
  return {name, rbaAt, countAt, width, width, Sizing::Records};
}
// A table that a cut leaves out.
constexpr TableDef uncutOnly(const char* name, std::size_t rbaAt, std::size_t countAt,
                             std::uint32_t width) {
  return {name, rbaAt, countAt, width, 0, Sizing::Records};
}
// A table of which a cut carries the first half.
constexpr TableDef halved(const char* name, std::size_t rbaAt, std::size_t countAt,
                          std::uint32_t width) {
  return {name, rbaAt, countAt, width, width / 2, Sizing::Records};
}

constexpr TableDef kDefs[] = {
    records("Street Patterns", R::streetPatternsRba.at, R::streetPatternsCount.at, 18),
    records("POB Patterns", R::pobPatternsRba.at, R::pobPatternsCount.at, 18),
    records("RR Patterns", R::rrPatternsRba.at, R::rrPatternsCount.at, 18),
    records("Street Names", R::streetNamesRba.at, R::streetNamesBytes.at, 1),
    uncutOnly("Street RBOs", R::streetRbosRba.at, R::streetNamesCount.at, 4),
    records("Firm Names", R::firmsRba.at, R::firmsBytes.at, 1),
    uncutOnly("Firm RBOs", R::firmRbosRba.at, R::firmsCount.at, 4),
    records("City Data", R::cityDataRba.at, R::cityDataCount.at, CityDataRow::size),
    records("City Multi Zip Lists", R::cityMultiZipListsRba.at, R::cityMultiZipListsCount.at, 6),
    records("City Multi Finance Lists", R::cityMultiFinanceListsRba.at,
            R::cityMultiFinanceListsCount.at, 2),
    records("City Multi Zip RBAs", R::cityMultiZipRbasRba.at, R::cityMultiZipRbasCount.at,
            CityMultiZipRow::size),
    records("Finance Multi Zip RBAs", R::finMultiZipRbasRba.at, R::finMultiZipRbasCount.at,
            FinMultiZipRow::size),
    records("City Names", R::cityNamesRba.at, R::cityNamesCount.at, CityNameRow::size),
    {"City Names By State", R::cityNamesByStateRba.at, R::cityNamesCount.at, CityByStateRow::size,
     CityByStateRow::size, Sizing::OneLess},
    records("City Phonetics", R::cityPhoneticsRba.at, R::cityPhoneticsCount.at,
            CityPhoneticRow::size),
    records("Zip Code Data", R::zipDataRba.at, R::zipDataCount.at, ZipDataRow::size),
    halved("Zip Multi City Lists", R::zipMultiCityListsRba.at, R::zipMultiCityListsCount.at, 4),
    {"Zip Code Index", R::zipIndexRba.at, 0, 2, 2, Sizing::Fixed},
    records("Unique Zips", R::uniqueZipsRba.at, R::uniqueZipsCount.at, 12),
    records("Counties", R::countiesRba.at, R::countiesCount.at, 32),
    records("Urbanizations", R::urbsRba.at, R::urbsCount.at, 32),
    records("Urb Multi Zip Lists", R::urbMultiZipListsRba.at, R::urbMultiZipListsCount.at, 2),
    records("Urb Variations", R::urbVariationsRba.at, R::urbVariationsCount.at, 32),
    records("Street Phonetic Lists", R::streetPhoneticAmbDataRba.at,
            R::streetPhoneticAmbDataBytes.at, 1),
    records("Street Phonetics", R::streetPhoneticsRba.at, R::streetPhoneticsBytes.at, 1),
    records("Street Phonetics RBOs", R::streetPhoneticsRbosRba.at, R::streetPhoneticsCount.at, 4),
    records("Street Standard Lists", R::streetStandardAmbDataRba.at,
            R::streetStandardAmbDataBytes.at, 1),
    records("Street Standards", R::streetStandardsRba.at, R::streetStandardsBytes.at, 1),
    records("Street Standards RBOs", R::streetStandardsRbosRba.at, R::streetStandardsCount.at, 4),
    records("General Delivery", R::generalDeliveryRba.at, R::generalDeliveryCount.at, 4),
    halved("Multi Zip Lists", R::multiZipListsRba.at, R::multiZipListsCount.at, 4),
    uncutOnly("SCFs", R::scfsRba.at, R::scfsCount.at, 4),
    uncutOnly("Zip Bytes", R::zipBytesRba.at, R::zipDataCount.at, ZipBytesRow::size),
    uncutOnly("SFH Multi Zip Bytes", R::sfhMultiZipBytesRba.at, R::sfhMultiZipBytesCount.at, 8),
    uncutOnly("POB Multi Zip Bytes", R::pobMultiZipBytesRba.at, R::pobMultiZipBytesCount.at, 8),
    uncutOnly("RR Multi Zip Bytes", R::rrMultiZipBytesRba.at, R::rrMultiZipBytesCount.at, 8),
    records("Hash Table", R::hashTableRba.at, R::hashTableCount.at, HashSlotRow::size),
    records("Hash Overflow", R::hashOverflowRba.at, R::hashOverflowCount.at, HashOverflowRow::size),
    {"Military Aliases", R::militaryRba.at, 0, 0, 1, Sizing::OwnHeader},
    {"PO Box Zones", R::pobZonesRba.at, 0, 0, 1, Sizing::OwnHeader},
};
static_assert(std::size(kDefs) == kTables);

bool liesInside(const TablePlace& place, std::uint64_t fileBytes) {
  return place.bytes == 0 ||
         (place.rba >= RefControlRec::size && place.rba + place.bytes <= fileBytes);
}

}  // namespace

std::span<const TableDef, kTables> tableDefs() { return kDefs; }

const TableDef& tableDef(TableId id) { return kDefs[static_cast<std::size_t>(id)]; }

TablePlace placeTable(TableId id, const RefControlRec& record, std::uint64_t fileBytes) {
  const TableDef& def = tableDef(id);
  const unsigned char* words = record.bytes.data();
  const bool cut = (record.get(R::typeFlags) & kTypeStateCut) != 0;
  TablePlace place;
  place.rba = le::get<4>(words + def.rbaAt);
  place.carried = !cut || def.cutWidth != 0;
  if (!place.carried) return place;
  if (def.countAt != 0) place.count = le::get<4>(words + def.countAt);
  if (def.sizing == Sizing::OneLess && place.count > 0) --place.count;
  if (def.sizing == Sizing::Fixed) place.count = kZipIndexEntries;
  place.bytes = place.count * (cut ? def.cutWidth : def.width);
  place.fits = liesInside(place, fileBytes);
  return place;
}

// The military table has two parts, each with its own count; the zones have one.
std::size_t headerBytes(TableId id) { return id == TableId::Military ? 4 : 2; }

TablePlace placeTable(TableId id, std::uint32_t rba, std::span<const unsigned char> header,
                      std::uint64_t fileBytes) {
  TablePlace place;
  place.rba = rba;
  place.carried = rba != 0;
  if (!place.carried) return place;
  place.bytes = headerBytes(id);
  if (header.size() >= headerBytes(id)) {
    const std::uint64_t first = le::get<2>(header.data());
    const std::uint64_t second = id == TableId::Military ? le::get<2>(header.data() + 2) : 0;
    place.count = first + second;
    place.bytes += id == TableId::Military ? first * 38 + second * 42 : first * 2;
  }
  place.fits = liesInside(place, fileBytes);
  return place;
}

TablePlace placeTable(TableId id, std::span<const unsigned char> file) {
  const auto& record = *reinterpret_cast<const RefControlRec*>(file.data());
  if (tableDef(id).sizing != Sizing::OwnHeader) return placeTable(id, record, file.size());
  const std::uint32_t rba = le::get<4>(file.data() + tableDef(id).rbaAt);
  return placeTable(id, rba, file.subspan(std::min<std::size_t>(rba, file.size())), file.size());
}

}  // namespace statecut::format
