#include "tables/tableload.h"

namespace statecut {

namespace {

using Ref = RefControlRec;

constexpr TableInfo kStreetNames[] = {{kSlotStreetNames, "Street Names", Ref::streetNamesRba.at,
                                       contextByteLength(Ref::streetNamesBytes), -10,
                                       Reports::kWarnings}};

// A failed allocation of the second table of a pair releases the first; that is meant.
constexpr TableInfo kStreetPhonetics[] = {
    {kSlotStreetPhoneticAmb, "Ambiguous Data for Street Phonetics",
     Ref::streetPhoneticAmbDataRba.at, byteLength(Ref::streetPhoneticAmbDataBytes), -11,
     Reports::kWarnings},
    {kSlotStreetPhonetics, "Phonetic Street Names", Ref::streetPhoneticsRba.at,
     contextByteLength(Ref::streetPhoneticsBytes), -11, Reports::kWarnings, nullptr, nullptr,
     kSlotStreetPhoneticAmb}};

// The size lines and the reports spell these tables in five ways; that is meant.
constexpr TableInfo kStreetStandards[] = {
    {kSlotStreetStandardAmb, "Ambiguous Data for Standardized Streets",
     Ref::streetStandardAmbDataRba.at, byteLength(Ref::streetStandardAmbDataBytes), -12,
     Reports::kErrors, "Ambiguous Data for Standrdzed Streets",
     "Ambiguous Data for Standrdzed Streets"},
    {kSlotStreetStandards, "Standard Street Names", Ref::streetStandardsRba.at,
     contextByteLength(Ref::streetStandardsBytes), -12, Reports::kErrors, "Standrdzed Street Names",
     "Standardzed Street Names", kSlotStreetStandardAmb}};

constexpr TableInfo kFirms[] = {{kSlotFirms, "Firm Names", Ref::firmsRba.at,
                                 contextByteLength(Ref::firmsBytes), -13, Reports::kWarnings}};

// A failed allocation names the partition, not the table; that is meant.
constexpr TableInfo kGeneralDelivery[] = {
    {kSlotGeneralDelivery, "General Delivery", Ref::generalDeliveryRba.at,
     counted(Ref::generalDeliveryCount, 4), -14, Reports::kErrors, "partition 14"}};

constexpr TableInfo kCounties[] = {
    {kSlotCounties, "County Data", Ref::countiesRba.at, counted(Ref::countiesCount, 32), -7}};

constexpr TableInfo kUrbMultiZip = {kSlotUrbMultiZip, "Urb MultiZips", Ref::urbMultiZipListsRba.at,
                                    counted(Ref::urbMultiZipListsCount, 2), -5};

constexpr TableInfo kUrbNames[] = {
    {kSlotUrbs, "URB names", Ref::urbsRba.at, counted(Ref::urbsCount, 32), -8}, kUrbMultiZip};

constexpr TableInfo kUrbMultiZips[] = {kUrbMultiZip};

constexpr TableInfo kUrbVariations[] = {{kSlotUrbVariations, "URB Variations",
                                         Ref::urbVariationsRba.at,
                                         counted(Ref::urbVariationsCount, 32), -9}};

}  // namespace

std::int32_t dbReadStreetNames(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadStreetNames", kStreetNames, file, controlRecord, proc);
}

std::int32_t dbReadStreetPhonetics(Stream* file, const RefControlRec* controlRecord,
                                   ProcObj* proc) {
  return loadTables("dbReadStreetPhonetics", kStreetPhonetics, file, controlRecord, proc);
}

std::int32_t dbReadStreetStndrdzd(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadStreetStndrdzd", kStreetStandards, file, controlRecord, proc);
}

std::int32_t dbReadFirmNames(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadFirmNames", kFirms, file, controlRecord, proc);
}

std::int32_t dbReadGenDelivery(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadGenDelivery", kGeneralDelivery, file, controlRecord, proc);
}

std::int32_t dbReadCountyData(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadCountyData", kCounties, file, controlRecord, proc);
}

// Loads the urbanization multi-ZIP lists as well; that is meant, as dbReadURBMultiZip does.
std::int32_t dbReadURBNames(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadURBNames", kUrbNames, file, controlRecord, proc);
}

std::int32_t dbReadURBMultiZip(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadURBMultiZip", kUrbMultiZips, file, controlRecord, proc);
}

std::int32_t dbReadURBVariations(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadURBVariations", kUrbVariations, file, controlRecord, proc);
}

}  // namespace statecut
