#pragma once
// The records of the reference tables that this system interprets.

#include <tuple>

#include "../base/row.h"

namespace statecut {

struct CityDataRow : Row<36> {
  static constexpr Num<0, 4> nameUsps{"nameUsps", "position of a name in the city names table"};
  static constexpr Num<4, 4> nameStandard{"nameStandard", "position of the city's other name"};
  static constexpr Text<8, 2> reserved8{"reserved8", "not interpreted"};
  static constexpr Num<10, 2> finMultiZipFlag{"finMultiZipFlag", "1 = has a finance entry"};
  static constexpr Text<12, 6> reserved12{"reserved12", "not interpreted"};
  static constexpr Num<18, 2> zipCount{"zipCount", "ZIP codes that serve the city"};
  static constexpr Text<20, 10> reserved20{"reserved20", "not interpreted"};
  static constexpr Num<30, 2> multiZipRbaKey{"multiZipRbaKey", "key of its multi-ZIP RBA record"};
  static constexpr Num<32, 2> finMultiZipKey{"finMultiZipKey", "key of its finance entry"};
  static constexpr Text<34, 2> reserved34{"reserved34", "not interpreted"};
  static constexpr auto fields =
      std::tuple(nameUsps, nameStandard, reserved8, finMultiZipFlag, reserved12, zipCount,
                 reserved20, multiZipRbaKey, finMultiZipKey, reserved34);
};
STATECUT_ROW(CityDataRow, 36);

struct CityMultiZipRow : Row<28> {
  static constexpr Num<0, 2> sfhZipCount{"sfhZipCount", "ZIP codes of the SFH partition"};
  static constexpr Text<2, 2> reserved2{"reserved2", "not interpreted"};
  static constexpr Num<4, 4> sfhKey{"sfhKey", "multi-ZIP key"};
  static constexpr Num<8, 4> sfhRba{"sfhRba", "RBA in the range file"};
  static constexpr Num<12, 2> pobZipCount{"pobZipCount", "ZIP codes of the POB partition"};
  static constexpr Num<14, 2> pobKey{"pobKey", "multi-ZIP key"};
  static constexpr Num<16, 4> pobRba{"pobRba", "RBA in the range file"};
  static constexpr Num<20, 2> rrZipCount{"rrZipCount", "ZIP codes of the RR partition"};
  static constexpr Num<22, 2> rrKey{"rrKey", "multi-ZIP key"};
  static constexpr Num<24, 4> rrRba{"rrRba", "RBA in the range file"};
  static constexpr auto fields = std::tuple(sfhZipCount, reserved2, sfhKey, sfhRba, pobZipCount,
                                            pobKey, pobRba, rrZipCount, rrKey, rrRba);
};
STATECUT_ROW(CityMultiZipRow, 28);

struct FinMultiZipRow : Row<8> {
  static constexpr Num<0, 2> zipCount{"zipCount", "ZIP codes of the finance area"};
  static constexpr Num<2, 2> key{"key", "multi-ZIP key"};
  static constexpr Num<4, 4> rba{"rba", "RBA of the SFH partition in the range file"};
  static constexpr auto fields = std::tuple(zipCount, key, rba);
};
STATECUT_ROW(FinMultiZipRow, 8);

// City names, sorted by state, then name; record 0 is blank.
struct CityNameRow : Row<34> {
  static constexpr Num<0, 2> cityKey{"cityKey", "city data key, 0 = none"};
  static constexpr Num<2, 1> value{"value", "handed to callers of the city data lookups"};
  static constexpr Num<3, 1> nameLength{"nameLength", "at most 28"};
  static constexpr Text<4, 2> state{"state", "state abbreviation"};
  static constexpr Text<6, 28> name{"name", "city name, without terminator"};
  static constexpr auto fields = std::tuple(cityKey, value, nameLength, state, name);
};
STATECUT_ROW(CityNameRow, 34);

// City names by state: the name stands before the state; no blank first record.
struct CityByStateRow : Row<34> {
  static constexpr Num<0, 2> cityKey{"cityKey", "city data key, 0 = none"};
  static constexpr Num<2, 1> value{"value", "as in the city names table"};
  static constexpr Num<3, 1> nameLength{"nameLength", "at most 28"};
  static constexpr Text<4, 28> name{"name", "city name, without terminator"};
  static constexpr Text<32, 2> state{"state", "state abbreviation"};
  static constexpr auto fields = std::tuple(cityKey, value, nameLength, name, state);
};
STATECUT_ROW(CityByStateRow, 34);

// City phonetic keys, sorted by state; record 0 is blank.
struct CityPhoneticRow : Row<26> {
  static constexpr Text<0, 2> reserved0{"reserved0", "not interpreted"};
  static constexpr Text<2, 2> state{"state", "state abbreviation"};
  static constexpr Text<4, 20> key{"key", "phonetic key, without terminator"};
  static constexpr Num<24, 1> count{"count", "handed to callers, at most 9"};
  static constexpr Num<25, 1> keyLength{"keyLength", "at most 19 for a key that can be found"};
  static constexpr auto fields = std::tuple(reserved0, state, key, count, keyLength);
};
STATECUT_ROW(CityPhoneticRow, 26);

struct ZipDataRow : Row<52> {
  static constexpr Num<0, 4> zip{"zip", "five-digit ZIP code"};
  static constexpr Text<4, 4> reserved4{"reserved4", "not interpreted"};
  static constexpr Num<8, 4> sfhRba{"sfhRba", "RBA of the SFH partition, 0 = none"};
  static constexpr Num<12, 4> pobRba{"pobRba", "RBA of the POB partition, 0 = none"};
  static constexpr Num<16, 4> rrRba{"rrRba", "RBA of the RR partition, 0 = none"};
  static constexpr Text<20, 10> reserved20{"reserved20", "not interpreted"};
  static constexpr Num<30, 2> cityKey{"cityKey", "city data key of the only city"};
  static constexpr Num<32, 4> cityKeysIndex{"cityKeysIndex", "first entry in the city keys table"};
  static constexpr Num<36, 1> cityKeysCount{"cityKeysCount", "number of cities"};
  static constexpr Text<37, 1> reserved37{"reserved37", "not interpreted"};
  static constexpr Num<38, 2> finMultiZipKey{"finMultiZipKey",
                                             "key of its finance entry, 0 = none"};
  static constexpr Text<40, 12> reserved40{"reserved40", "not interpreted"};
  static constexpr auto fields =
      std::tuple(zip, reserved4, sfhRba, pobRba, rrRba, reserved20, cityKey, cityKeysIndex,
                 cityKeysCount, reserved37, finMultiZipKey, reserved40);
};
STATECUT_ROW(ZipDataRow, 52);

// Parallel to the ZIP data table.
struct ZipBytesRow : Row<12> {
  static constexpr Text<0, 2> state{"state", "state abbreviation"};
  static constexpr Num<2, 2> pobBytes{"pobBytes", "bytes of the POB partition"};
  static constexpr Num<4, 4> rrBytes{"rrBytes", "bytes of the RR partition"};
  static constexpr Num<8, 4> sfhBytes{"sfhBytes", "bytes of the SFH partition"};
  static constexpr auto fields = std::tuple(state, pobBytes, rrBytes, sfhBytes);
};
STATECUT_ROW(ZipBytesRow, 12);

// An entry of a ZIP code index: a ZIP key, 0 = no such ZIP code.
struct ZipIndexRow : Row<2> {
  static constexpr Num<0, 2> zipKey{"zipKey", "position in the ZIP data table"};
  static constexpr auto fields = std::tuple(zipKey);
};
STATECUT_ROW(ZipIndexRow, 2);

// The two forms of an entry of the multi-ZIP bytes tables.
struct MultiZipBytesShort : Row<6> {
  static constexpr Num<0, 2> key{"key", "multi-ZIP key"};
  static constexpr Num<2, 4> bytes_{"bytes", "bytes of the partition"};
  static constexpr auto fields = std::tuple(key, bytes_);
};
STATECUT_ROW(MultiZipBytesShort, 6);

struct MultiZipBytesLong : Row<8> {
  static constexpr Num<0, 4> key{"key", "multi-ZIP key"};
  static constexpr Num<4, 4> bytes_{"bytes", "bytes of the partition"};
  static constexpr auto fields = std::tuple(key, bytes_);
};
STATECUT_ROW(MultiZipBytesLong, 8);

// What stands before the text of a street's phonetic or standardized form: a street key, or with a
// negative flag the offset of a list. The flag's other bits are the length of the text.
struct VariationRow : Row<5> {
  static constexpr Num<0, 4> value{"value", "street key, or offset in the list data"};
  static constexpr Num<4, 1> flag{"flag", "signed; negative = ambiguous"};
  static constexpr auto fields = std::tuple(value, flag);
};
STATECUT_ROW(VariationRow, 5);

// A list of ambiguous streets: the number of its entries, then the entries, each before its SCF
// keys.
struct StreetListRow : Row<2> {
  static constexpr Num<0, 2> entries{"entries", "number of entries"};
  static constexpr auto fields = std::tuple(entries);
};
STATECUT_ROW(StreetListRow, 2);

struct StreetListEntryRow : Row<5> {
  static constexpr Num<0, 4> streetKey{"streetKey", "byte offset in the street names"};
  static constexpr Num<4, 1> scfCount{"scfCount", "signed; SCF keys behind it"};
  static constexpr auto fields = std::tuple(streetKey, scfCount);
};
STATECUT_ROW(StreetListEntryRow, 5);

struct HashSlotRow : Row<7> {
  static constexpr Num<0, 1> count{"count", "names in this slot"};
  static constexpr Num<1, 2> check{"check", "check value (count 1)"};
  static constexpr Num<3, 4> number{"number",
                                    "the name's number (count 1) or first overflow entry"};
  static constexpr auto fields = std::tuple(count, check, number);
};
STATECUT_ROW(HashSlotRow, 7);

struct HashOverflowRow : Row<6> {
  static constexpr Num<0, 2> check{"check", "check value"};
  static constexpr Num<2, 4> number{"number", "the name's number"};
  static constexpr auto fields = std::tuple(check, number);
};
STATECUT_ROW(HashOverflowRow, 6);

// A 16-bit key of the key lists.
struct KeyRow : Row<2> {
  static constexpr Num<0, 2> key{"key", "a ZIP, city, finance or SCF key"};
  static constexpr auto fields = std::tuple(key);
};
STATECUT_ROW(KeyRow, 2);

// An entry of the city multi-ZIP lists.
struct CityZipKeyRow : Row<6> {
  static constexpr Text<0, 6> entry{"entry", "not interpreted"};
  static constexpr auto fields = std::tuple(entry);
};
STATECUT_ROW(CityZipKeyRow, 6);

struct GeneralDeliveryRow : Row<4> {
  static constexpr Text<0, 4> entry{"entry", "not interpreted"};
  static constexpr auto fields = std::tuple(entry);
};
STATECUT_ROW(GeneralDeliveryRow, 4);

}  // namespace statecut
