#include "query/loading.h"

#include <span>

#include "format/directory.h"
#include "query/run.h"

namespace statecut::query {

namespace {

using format::TableId;

// The tables that a set loads.
struct SetTables {
  TableSet set;
  std::span<const TableId> tables;
};

constexpr TableId kZip[] = {TableId::ZipData, TableId::ZipMultiCityLists, TableId::ZipIndex};
constexpr TableId kCity[] = {TableId::CityData, TableId::CityMultiZipLists,
                             TableId::CityMultiFinanceLists, TableId::CityMultiZipRbas,
                             TableId::FinMultiZipRbas};
constexpr TableId kCityName[] = {TableId::CityNames};
constexpr TableId kZipBytes[] = {TableId::ZipBytes, TableId::SfhMultiZipBytes,
                                 TableId::PobMultiZipBytes, TableId::RrMultiZipBytes};
constexpr TableId kStreetName[] = {TableId::StreetNames};
constexpr TableId kStreetPhonetic[] = {TableId::StreetPhoneticAmbData, TableId::StreetPhonetics};
constexpr TableId kStreetStandard[] = {TableId::StreetStandardAmbData, TableId::StreetStandards};
constexpr TableId kFirm[] = {TableId::Firms};
constexpr TableId kHash[] = {TableId::HashTable, TableId::HashOverflow};

constexpr SetTables kSetTables[] = {
    {kZipSet, kZip},
    {kCitySet, kCity},
    {kCityNameSet, kCityName},
    {kZipBytesSet, kZipBytes},
    {kStreetNameSet, kStreetName},
    {kStreetPhoneticSet, kStreetPhonetic},
    {kStreetStandardSet, kStreetStandard},
    {kFirmSet, kFirm},
    {kHashSet, kHash},
};

format::TablePlace placed(Session& session, TableId id) {
  return format::placeTable(id, session.ref(), streamSize(session.proc()->files->reference));
}

std::string namesOf(std::span<const TableId> tables) {
  std::string names;
  for (const TableId id : tables)
    names += (names.empty() ? "" : ", ") + std::string(format::tableDef(id).name);
  return names;
}

}  // namespace

bool hasZipBytes(Session& session) {
  const format::TablePlace place = placed(session, TableId::ZipBytes);
  return place.carried && place.rba != 0;
}

std::string loadFailure(Session& session, std::uint32_t sets) {
  if (!hasZipBytes(session)) sets &= ~std::uint32_t{kZipBytesSet};
  // One set at a time: nothing is read behind a failure.
  for (const SetTables& set : kSetTables) {
    if ((sets & set.set) == 0) continue;
    for (const TableId id : set.tables)
      if (!placed(session, id).fits)
        return "cannot load " + namesOf({&id, 1}) + ": it lies outside the reference file";
    if (session.prepare(set.set)) continue;
    const std::string reason = readFailure();
    return "cannot load " + namesOf(set.tables) + ": " +
           (reason.empty() ? "not enough memory" : reason);
  }
  return {};
}

}  // namespace statecut::query
