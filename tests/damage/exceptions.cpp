#include "exceptions.h"

#include <algorithm>
#include <cstring>

#include "dbfiles/controlrec.h"
#include "format/directory.h"
#include "tables/rows.h"

namespace statecut::test {

namespace {

// Bits that no type has.
bool unknownFlags(const PairImage& sound, const Field& field, const Damage& damage) {
  const Bytes now = damaged(sound, damage).file(field.range);
  constexpr std::uint32_t kKnown = kTypeReference | kTypeRange | kTypeStateCut;
  return ((le::get<4>(now.data() + field.at) ^
           le::get<4>(sound.file(field.range).data() + field.at)) &
          kKnown) == 0;
}

bool dummyRecord(const PairImage&, const Field& field, const Damage&) { return field.record == 0; }

bool behindKey(const PairImage& sound, const Field& field, const Damage& damage) {
  const std::uint64_t record = field.at - CityPhoneticRow::key.at;
  return damage.how == How::kFlip && field.record > 0 &&
         damage.at >= field.at + sound.ref[record + CityPhoneticRow::keyLength.at];
}

bool cityListNotRead(const PairImage& sound, const Field& field, const Damage&) {
  return sound.ref[field.at - ZipDataRow::cityKeysIndex.at + ZipDataRow::cityKeysCount.at] == 1;
}

bool onlyCityNotRead(const PairImage& sound, const Field& field, const Damage&) {
  return sound.ref[field.at - ZipDataRow::cityKey.at + ZipDataRow::cityKeysCount.at] != 1;
}

// A slot of no name, or of several, whose entries have the check values.
bool checkNotRead(const PairImage& sound, const Field& field, const Damage&) {
  return sound.ref[field.at - HashSlotRow::check.at] != 1;
}
bool slotEmpty(const PairImage& sound, const Field& field, const Damage&) {
  return sound.ref[field.at - HashSlotRow::number.at] == 0;
}

// The ZIP count or the RBA, before and after the damage, tells that there is no entry.
template <std::size_t Count, std::size_t Rba, std::size_t At>
bool noEntry(const PairImage& sound, const Field& field, const Damage& damage) {
  const auto none = [&](const Bytes& ref) {
    const unsigned char* record = ref.data() + field.at - At;
    return le::get<2>(record + Count) < 2 || le::get<4>(record + Rba) == 0;
  };
  return none(sound.ref) && none(damaged(sound, damage).ref);
}

// A place inside the file for a partition of no bytes.
template <std::size_t SizeAt, std::size_t Width>
bool emptyPartition(const PairImage& sound, const Field& field, const Damage& damage) {
  const auto sizes = format::placeTable(format::TableId::ZipBytes, sound.ref);
  const unsigned char* size = sound.ref.data() + sizes.rba + field.record * ZipBytesRow::size;
  const std::uint32_t rba = le::get<4>(damaged(sound, damage).ref.data() + field.at);
  return le::get<Width>(size + SizeAt) == 0 && rba >= RngControlRec::size &&
         rba <= sound.rng.size();
}

// One of several names of the city.
bool ownName(const PairImage& sound, const Field& field, const Damage& damage) {
  const auto names = format::placeTable(format::TableId::CityNames, sound.ref);
  const std::uint32_t link = le::get<4>(damaged(sound, damage).ref.data() + field.at);
  return link > 0 && link < names.count &&
         le::get<2>(sound.ref.data() + names.rba + link * CityNameRow::size) == field.record;
}

// Behind the entries that the count tells, where the table has room for as many again.
bool secondHalf(const PairImage&, const Field& field, const Damage&) {
  return field.record >= field.count;
}

// Bits 5 to 15 of a hash are in neither the slot number nor the check value: another letter in
// place of the byte that is hashed last may lead to the same entry.
bool hashedAlike(const PairImage&, const Field& field, const Damage& damage) {
  return damage.how == How::kFlip && damage.at == field.at && damage.value >= 5;
}

// The number that the damage leaves in the field.
std::uint32_t valueOf(const PairImage& sound, const Field& field, const Damage& damage) {
  const PairImage now = damaged(sound, damage);
  const unsigned char* at = now.file(field.range).data() + field.at;
  return field.width >= 4 ? le::get<4>(at) : field.width == 2 ? le::get<2>(at) : *at;
}

std::uint32_t countOf(format::TableId id, const PairImage& sound) {
  return static_cast<std::uint32_t>(format::placeTable(id, sound.ref).count);
}

// A key of a record: 0 leads to the dummy.
template <format::TableId Table>
bool validKey(const PairImage& sound, const Field& field, const Damage& damage) {
  const std::uint32_t key = valueOf(sound, field, damage);
  return key != 0 && key < countOf(Table, sound);
}

// The same, or none.
template <format::TableId Table>
bool validKeyOrNone(const PairImage& sound, const Field& field, const Damage& damage) {
  return valueOf(sound, field, damage) < countOf(Table, sound);
}

// Behind the count the table holds what no list needs.
bool validListed(const PairImage& sound, const Field& field, const Damage& damage) {
  return field.record >= field.count || validKey<format::TableId::ZipData>(sound, field, damage);
}

// Where a street name begins.
bool isStreet(const PairImage& sound, std::uint32_t key) {
  const auto place = format::placeTable(format::TableId::StreetNames, sound.ref);
  std::uint64_t at = 0;
  while (at < key && at < place.bytes) at += 1U + sound.ref[place.rba + at];
  return at == key && at < place.bytes;
}
bool validStreet(const PairImage& sound, const Field& field, const Damage& damage) {
  return isStreet(sound, valueOf(sound, field, damage));
}
bool validVariation(const PairImage& sound, const Field& field, const Damage& damage) {
  return sound.ref[field.at + 4] < 0x80 && validStreet(sound, field, damage);
}

using M = CityMultiZipRow;
using format::TableId;

constexpr const char* kCarried = "carried, not interpreted";
constexpr const char* kNoEntry =
    "not read where the ZIP count or the RBA tells that there is no entry";
constexpr const char* kOtherZip = "another ZIP code: the list is all that tells which belong there";
constexpr const char* kOtherStreet = "another street: only the spelling tells which one is meant";
constexpr const char* kOtherArea = "another finance area: only this key tells which one";
constexpr const char* kOtherScf = "an SCF key: the format does not say which there are";
constexpr const char* kAlike = "another first letter that hashes like the right one";

constexpr const char* kOtherName = "another name of the city";
constexpr const char* kEmpty = "a partition of no bytes may stand anywhere";
constexpr const char* kBehind = "not read, but shown behind a name that is asked for by a bad key";
constexpr const char* kDummy = "no key leads to the first record";

constexpr Exception kExceptions[] = {
    {"", "typeFlags", "flags that stand for nothing are carried", unknownFlags},
    {"", "version", kCarried},
    {"", "reserved8", kCarried},
    {"", "copyrightDate", kCarried},
    {"", "reserved13", kCarried},
    {"", "trailing", kCarried},
    {"", "reserved40", kCarried},
    {"", "reserved84", kCarried},
    {"", "maxRangeOverheads", kCarried},
    {"", "sfhZipMaxStreets", kCarried},
    {"", "sfhMultiZipMaxStreets", kCarried},
    {"", "rrZipMaxStreets", kCarried},
    {"", "rrMultiZipMaxStreets", kCarried},
    {"City Data", "*", kDummy, dummyRecord},
    {"City Data", "nameUsps", kOtherName, ownName},
    {"City Data", "nameStandard", kOtherName, ownName},
    {"City Data", "reserved8", kCarried},
    {"City Data", "reserved12", kCarried},
    {"City Data", "reserved20", kCarried},
    {"City Data", "reserved34", kCarried},
    {"City Data", "finMultiZipKey", kOtherArea, validKey<TableId::FinMultiZipRbas>},
    {"City Multi Zip RBAs", "*", kDummy, dummyRecord},
    {"City Multi Zip RBAs", "reserved2", kCarried},
    {"City Multi Zip RBAs", "rrZipCount", kNoEntry,
     noEntry<M::rrZipCount.at, M::rrRba.at, M::rrZipCount.at>},
    {"City Multi Zip RBAs", "rrKey", kNoEntry, noEntry<M::rrZipCount.at, M::rrRba.at, M::rrKey.at>},
    {"City Multi Zip RBAs", "rrRba", kNoEntry, noEntry<M::rrZipCount.at, M::rrRba.at, M::rrRba.at>},
    {"Finance Multi Zip RBAs", "*", kDummy, dummyRecord},
    {"Zip Code Data", "*", kDummy, dummyRecord},
    {"Zip Code Data", "sfhRba", kEmpty, emptyPartition<ZipBytesRow::sfhBytes.at, 4>},
    {"Zip Code Data", "pobRba", kEmpty, emptyPartition<ZipBytesRow::pobBytes.at, 2>},
    {"Zip Code Data", "rrRba", kEmpty, emptyPartition<ZipBytesRow::rrBytes.at, 4>},
    {"Zip Code Data", "reserved4", kCarried},
    {"Zip Code Data", "reserved20", kCarried},
    {"Zip Code Data", "reserved37", kCarried},
    {"Zip Code Data", "reserved40", kCarried},
    {"Zip Code Data", "cityKeysIndex", "not read with one city", cityListNotRead},
    {"Zip Code Data", "cityKey", "not read with several cities", onlyCityNotRead},
    {"Zip Code Data", "finMultiZipKey", kOtherArea, validKeyOrNone<TableId::FinMultiZipRbas>},
    {"Zip Bytes", "*", kDummy, dummyRecord},
    {"Zip Multi City Lists", "key", kDummy, dummyRecord},
    {"Zip Multi City Lists", "key", "not read by the count, carried by no cut", secondHalf},
    {"City Phonetics", "key", "not read behind the length of the key", behindKey},
    {"City Phonetics", "reserved0", kCarried},
    {"City Phonetics", "count", "handed to callers, not interpreted"},
    {"City Phonetics", "state", kAlike, hashedAlike},
    {"Firm RBOs", "*", kBehind},
    {"Street RBOs", "*", kBehind},
    {"Street Phonetics RBOs", "offset", kCarried},
    {"Street Standards RBOs", "offset", kCarried},
    {"Street Patterns", "*", kCarried},
    {"POB Patterns", "*", kCarried},
    {"RR Patterns", "*", kCarried},
    {"Unique Zips", "*", kCarried},
    {"Counties", "*", kCarried},
    {"Urbanizations", "*", kCarried},
    {"Urb Multi Zip Lists", "*", kCarried},
    {"Urb Variations", "*", kCarried},
    {"General Delivery", "*", kCarried},
    {"City Multi Zip Lists", "*", kCarried},
    {"City Multi Finance Lists", "key", kCarried},
    {"Military Aliases", "firstText", kCarried},
    {"Military Aliases", "lastText", kCarried},
    {"PO Box Zones", "zone", kCarried},
    {"SCFs", "*", kBehind},
    {"Multi Zip Lists", "key", kOtherZip, validListed},
    {"Street Phonetics", "value", kOtherStreet, validVariation},
    {"Street Phonetics", "text", kAlike, hashedAlike},
    {"Street Standards", "value", kOtherStreet, validVariation},
    {"Street Standards", "text", kAlike, hashedAlike},
    {"Street Phonetic Lists", "street", kOtherStreet, validStreet},
    {"Street Phonetic Lists", "scf", kOtherScf},
    {"Street Standard Lists", "street", kOtherStreet, validStreet},
    {"Street Standard Lists", "scf", kOtherScf},
    {"Hash Table", "check", "read in a slot of one name only", checkNotRead},
    {"Hash Table", "number", "not read in an empty slot", slotEmpty},
};

}  // namespace

std::span<const Exception> exceptions() { return kExceptions; }

std::string nameOf(const Exception& one) { return std::string(one.table) + "." + one.field; }

const Exception* exceptionOf(const PairImage& sound, const Field& field, const Damage& damage) {
  for (const Exception& one : kExceptions)
    if (field.table == one.table && (std::strcmp(one.field, "*") == 0 || field.name == one.field) &&
        (one.holds == nullptr || one.holds(sound, field, damage)))
      return &one;
  return nullptr;
}

}  // namespace statecut::test
