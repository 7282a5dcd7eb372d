#pragma once
// The two control records: the first bytes of a reference file (844) and of a range file (624).

#include <tuple>

#include "../base/row.h"

namespace statecut {

// Bits of the database type flags.
inline constexpr std::uint32_t kTypeReference = 1;
inline constexpr std::uint32_t kTypeRange = 2;
inline constexpr std::uint32_t kTypeStateCut = 4;

// Reference control record: identification, then the directory of RBAs and counts.
struct RefControlRec : Row<844> {
  static constexpr Text<0, 8> version{"version", "version and release, 8 characters"};
  static constexpr Text<8, 1> reserved8{"reserved8", "carried unchanged"};
  static constexpr Text<9, 4> copyrightDate{"copyrightDate", "month, then year, two digits each"};
  static constexpr Text<13, 5> reserved13{"reserved13", "carried unchanged"};
  static constexpr Num<18, 1> characterType{"characterType", "1 = ASCII, else EBCDIC"};
  static constexpr Num<19, 1> endianType{"endianType", "1 = little endian, else big endian"};
  static constexpr Num<20, 4> buildTimeStamp{
      "buildTimeStamp", "seconds since 1970; the same in both files of a pair"};
  static constexpr Num<24, 4> typeFlags{"typeFlags", "1 reference, 2 range, 4 state cut"};
  static constexpr Num<28, 4> stateCutTimeStamp{"stateCutTimeStamp",
                                                "seconds since 1970; 0 = not state cut"};
  static constexpr Num<32, 4> cityDataRba{"cityDataRba", "City Data: RBA"};
  static constexpr Num<36, 4> cityMultiZipListsRba{"cityMultiZipListsRba",
                                                   "City Multi Zip Lists: RBA"};
  static constexpr Num<40, 4> cityMultiFinanceListsRba{"cityMultiFinanceListsRba",
                                                       "City Multi Finance Lists: RBA"};
  static constexpr Num<44, 4> cityNamesRba{"cityNamesRba", "City Names USPS: RBA"};
  static constexpr Num<48, 4> cityNamesByStateRba{"cityNamesByStateRba",
                                                  "City Names By State: RBA"};
  static constexpr Num<52, 4> cityPhoneticsRba{"cityPhoneticsRba", "City Phonetics: RBA"};
  static constexpr Num<56, 4> zipDataRba{"zipDataRba", "Zip Code Data: RBA"};
  static constexpr Num<60, 4> zipMultiCityListsRba{"zipMultiCityListsRba",
                                                   "Zip Multi City Lists: RBA"};
  static constexpr Num<64, 4> zipIndexRba{"zipIndexRba", "Zip Code Index Table: RBA"};
  static constexpr Num<68, 4> countiesRba{"countiesRba", "County Data: RBA"};
  static constexpr Num<72, 4> urbsRba{"urbsRba", "Urbanizations: RBA"};
  static constexpr Num<76, 4> urbVariationsRba{"urbVariationsRba", "Urb Variations: RBA"};
  static constexpr Num<80, 4> streetNamesRba{"streetNamesRba", "Street Names USPS: RBA"};
  static constexpr Num<84, 4> streetRbosRba{"streetRbosRba", "Street RBOs (aka Keys): RBA"};
  static constexpr Num<88, 4> streetPhoneticAmbDataRba{"streetPhoneticAmbDataRba",
                                                       "Street Phonetic Amb Data: RBA"};
  static constexpr Num<92, 4> streetPhoneticsRba{"streetPhoneticsRba", "Street Phonetics: RBA"};
  static constexpr Num<96, 4> streetPhoneticsRbosRba{"streetPhoneticsRbosRba",
                                                     "Street Phonetics RBOs: RBA"};
  static constexpr Num<100, 4> streetStandardAmbDataRba{"streetStandardAmbDataRba",
                                                        "Street Standard Amb Data: RBA"};
  static constexpr Num<104, 4> streetStandardsRba{"streetStandardsRba",
                                                  "Street Names Standardized: RBA"};
  static constexpr Num<108, 4> streetStandardsRbosRba{"streetStandardsRbosRba",
                                                      "Street Standards RBOs: RBA"};
  static constexpr Num<112, 4> firmsRba{"firmsRba", "Firm Names: RBA"};
  static constexpr Num<116, 4> firmRbosRba{"firmRbosRba", "Firm RBOs (aka Keys): RBA"};
  static constexpr Num<120, 4> streetPatternsRba{"streetPatternsRba", "Street Patterns: RBA"};
  static constexpr Num<124, 4> pobPatternsRba{"pobPatternsRba", "POB Patterns: RBA"};
  static constexpr Num<128, 4> rrPatternsRba{"rrPatternsRba", "RR Pattern: RBA"};
  static constexpr Num<132, 4> cityNamesCount{
      "cityNamesCount",
      "City Names USPS and Standard: count of 34-byte records, the blank first one included"};
  static constexpr Num<136, 4> cityPhoneticsCount{"cityPhoneticsCount", "City Phonetics: count"};
  static constexpr Num<140, 4> streetNamesCount{"streetNamesCount", "Street Names USPS: count"};
  static constexpr Num<144, 4> streetNamesBytes{"streetNamesBytes",
                                                "Street Names USPS Bytes: byte length"};
  static constexpr Num<148, 4> streetPhoneticsCount{"streetPhoneticsCount",
                                                    "Street Phonetics: count"};
  static constexpr Num<152, 4> streetPhoneticsBytes{"streetPhoneticsBytes",
                                                    "Street Phonetics Bytes: byte length"};
  static constexpr Num<156, 4> streetPhoneticAmbDataBytes{
      "streetPhoneticAmbDataBytes", "Street Phntc Ambig Data Bytes: byte length"};
  static constexpr Num<160, 4> streetStandardsCount{"streetStandardsCount",
                                                    "Street Standardized Names: count"};
  static constexpr Num<164, 4> streetStandardsBytes{"streetStandardsBytes",
                                                    "Street Stndrdzed Names Bytes: byte length"};
  static constexpr Num<168, 4> streetStandardAmbDataBytes{
      "streetStandardAmbDataBytes", "Street Stnd Ambig Data Bytes: byte length"};
  static constexpr Num<172, 4> firmsCount{"firmsCount", "Firms: count"};
  static constexpr Num<176, 4> firmsBytes{"firmsBytes", "Firms Bytes: byte length"};
  static constexpr Num<180, 4> cityMultiZipListsCount{"cityMultiZipListsCount",
                                                      "Multi Zip Lists for City: count"};
  static constexpr Num<184, 4> cityMultiFinanceListsCount{"cityMultiFinanceListsCount",
                                                          "Multi Finance Lists for City: count"};
  static constexpr Num<188, 4> cityDataCount{"cityDataCount", "City Data: count"};
  static constexpr Num<192, 4> zipDataCount{"zipDataCount", "Zip Code Data: count"};
  static constexpr Num<196, 4> zipMultiCityListsCount{"zipMultiCityListsCount",
                                                      "Multi City Lists for Zip: count"};
  static constexpr Num<200, 4> countiesCount{"countiesCount", "Counties: count"};
  static constexpr Num<204, 4> urbsCount{"urbsCount", "Urbanizations: count"};
  static constexpr Num<208, 4> urbVariationsCount{"urbVariationsCount", "Urb Variations: count"};
  static constexpr Num<212, 4> streetPatternsCount{"streetPatternsCount", "Street Patterns: count"};
  static constexpr Num<216, 4> pobPatternsCount{"pobPatternsCount", "POB Patterns: count"};
  static constexpr Num<220, 4> rrPatternsCount{"rrPatternsCount", "RR Patterns: count"};
  static constexpr Num<224, 4> generalDeliveryCount{"generalDeliveryCount",
                                                    "General Delivery: count"};
  static constexpr Num<228, 4> generalDeliveryRba{"generalDeliveryRba", "General Delivery: RBA"};
  static constexpr Num<232, 4> uniqueZipsRba{"uniqueZipsRba", "Unique Zip Data: RBA"};
  static constexpr Num<236, 4> uniqueZipsCount{"uniqueZipsCount", "Unique Zips: count"};
  static constexpr Num<240, 4> scfsCount{"scfsCount", "SCFs: count"};
  static constexpr Num<244, 4> scfsRba{"scfsRba", "SCFs: RBA"};
  static constexpr Num<248, 4> multiZipListsRba{"multiZipListsRba", "Multi Zip Lists: RBA"};
  static constexpr Num<252, 4> multiZipListsCount{"multiZipListsCount",
                                                  "Multi Zip Lists for City n Zip: count"};
  static constexpr Num<256, 4> cityMultiZipRbasCount{"cityMultiZipRbasCount",
                                                     "Multi Zip RBAs for City: count"};
  static constexpr Num<260, 4> cityMultiZipRbasRba{"cityMultiZipRbasRba",
                                                   "City Multi Zip RBA Data: RBA"};
  static constexpr Num<264, 4> finMultiZipRbasRba{"finMultiZipRbasRba",
                                                  "Fin Multi Zip RBA Data: RBA"};
  static constexpr Num<268, 4> finMultiZipRbasCount{"finMultiZipRbasCount",
                                                    "Fin Multi Zip RBAs 4 Cty n Zip: count"};
  static constexpr Num<272, 4> urbMultiZipListsCount{"urbMultiZipListsCount",
                                                     "urbanization multi-ZIP list count: count"};
  static constexpr Num<276, 4> urbMultiZipListsRba{"urbMultiZipListsRba",
                                                   "Urb Multi Zip Lists: RBA"};
  static constexpr Num<280, 4> zipBytesRba{"zipBytesRba", "Zip Bytes: RBA"};
  static constexpr Num<284, 4> sfhMultiZipBytesRba{"sfhMultiZipBytesRba",
                                                   "SFH Multi Zip Bytes: RBA"};
  static constexpr Num<288, 4> pobMultiZipBytesRba{"pobMultiZipBytesRba",
                                                   "POB Multi Zip Bytes: RBA"};
  static constexpr Num<292, 4> rrMultiZipBytesRba{"rrMultiZipBytesRba", "RR Multi Zip Bytes: RBA"};
  static constexpr Num<296, 4> sfhMultiZipBytesCount{"sfhMultiZipBytesCount",
                                                     "SFH Multi-Zip Bytes: count"};
  static constexpr Num<300, 4> pobMultiZipBytesCount{"pobMultiZipBytesCount",
                                                     "POB Multi-Zip Bytes: count"};
  static constexpr Num<304, 4> rrMultiZipBytesCount{"rrMultiZipBytesCount",
                                                    "RR Multi-Zip Bytes: count"};
  static constexpr Num<308, 4> hashTableRba{"hashTableRba", "Hash Table: RBA"};
  static constexpr Num<312, 4> hashTableCount{"hashTableCount",
                                              "Hash Table Count: count of 7-byte slots"};
  static constexpr Num<316, 4> hashOverflowRba{"hashOverflowRba", "Hash Overflow: RBA"};
  static constexpr Num<320, 4> hashOverflowCount{"hashOverflowCount",
                                                 "Hash Overflow Count: count of 6-byte entries"};
  static constexpr Num<324, 4> militaryRba{"militaryRba", "Military RBA: RBA; 0 = no such table"};
  static constexpr Num<328, 4> pobZonesRba{"pobZonesRba",
                                           "PO BOX Zone RBA: RBA; 0 = no such table"};
  static constexpr Text<332, 512> trailing{"trailing", "carried unchanged"};
  static constexpr auto fields = std::tuple(
      version, reserved8, copyrightDate, reserved13, characterType, endianType, buildTimeStamp,
      typeFlags, stateCutTimeStamp, cityDataRba, cityMultiZipListsRba, cityMultiFinanceListsRba,
      cityNamesRba, cityNamesByStateRba, cityPhoneticsRba, zipDataRba, zipMultiCityListsRba,
      zipIndexRba, countiesRba, urbsRba, urbVariationsRba, streetNamesRba, streetRbosRba,
      streetPhoneticAmbDataRba, streetPhoneticsRba, streetPhoneticsRbosRba,
      streetStandardAmbDataRba, streetStandardsRba, streetStandardsRbosRba, firmsRba, firmRbosRba,
      streetPatternsRba, pobPatternsRba, rrPatternsRba, cityNamesCount, cityPhoneticsCount,
      streetNamesCount, streetNamesBytes, streetPhoneticsCount, streetPhoneticsBytes,
      streetPhoneticAmbDataBytes, streetStandardsCount, streetStandardsBytes,
      streetStandardAmbDataBytes, firmsCount, firmsBytes, cityMultiZipListsCount,
      cityMultiFinanceListsCount, cityDataCount, zipDataCount, zipMultiCityListsCount,
      countiesCount, urbsCount, urbVariationsCount, streetPatternsCount, pobPatternsCount,
      rrPatternsCount, generalDeliveryCount, generalDeliveryRba, uniqueZipsRba, uniqueZipsCount,
      scfsCount, scfsRba, multiZipListsRba, multiZipListsCount, cityMultiZipRbasCount,
      cityMultiZipRbasRba, finMultiZipRbasRba, finMultiZipRbasCount, urbMultiZipListsCount,
      urbMultiZipListsRba, zipBytesRba, sfhMultiZipBytesRba, pobMultiZipBytesRba,
      rrMultiZipBytesRba, sfhMultiZipBytesCount, pobMultiZipBytesCount, rrMultiZipBytesCount,
      hashTableRba, hashTableCount, hashOverflowRba, hashOverflowCount, militaryRba, pobZonesRba,
      trailing);
};
STATECUT_ROW(RefControlRec, 844);

// Range control record: identification, partition starts and lengths, buffer maxima.
struct RngControlRec : Row<624> {
  static constexpr Text<0, 8> version{"version", "version and release, 8 characters"};
  static constexpr Text<8, 1> reserved8{"reserved8", "carried unchanged"};
  static constexpr Text<9, 4> copyrightDate{"copyrightDate", "month, then year, two digits each"};
  static constexpr Text<13, 5> reserved13{"reserved13", "carried unchanged"};
  static constexpr Num<18, 1> characterType{"characterType", "1 = ASCII, else EBCDIC"};
  static constexpr Num<19, 1> endianType{"endianType", "1 = little endian, else big endian"};
  static constexpr Num<20, 4> buildTimeStamp{
      "buildTimeStamp", "seconds since 1970; the same in both files of a pair"};
  static constexpr Num<24, 4> typeFlags{"typeFlags", "1 reference, 2 range, 4 state cut"};
  static constexpr Num<28, 4> stateCutTimeStamp{"stateCutTimeStamp",
                                                "seconds since 1970; 0 = not state cut"};
  static constexpr Num<32, 4> sfhZipStart{"sfhZipStart", "SFH Zip partition start: RBA"};
  static constexpr Num<36, 4> sfhMultiZipStart{"sfhMultiZipStart",
                                               "SFH Multi Zip partition start: RBA"};
  static constexpr Text<40, 4> reserved40{"reserved40", "carried unchanged"};
  static constexpr Num<44, 4> pobZipStart{"pobZipStart", "POB Zip partition start: RBA"};
  static constexpr Num<48, 4> pobMultiZipStart{"pobMultiZipStart",
                                               "POB Multi Zip partition start: RBA"};
  static constexpr Num<52, 4> rrZipStart{"rrZipStart", "RR Zip partition start: RBA"};
  static constexpr Num<56, 4> rrMultiZipStart{"rrMultiZipStart",
                                              "RR Multi Zip partition start: RBA"};
  static constexpr Num<60, 4> pobZipBytes{"pobZipBytes", "POB Zip: byte length"};
  static constexpr Num<64, 4> pobMultiZipBytes{"pobMultiZipBytes", "POB Multi Zip: byte length"};
  static constexpr Num<68, 4> rrZipBytes{"rrZipBytes", "RR Zip: byte length"};
  static constexpr Num<72, 4> rrMultiZipBytes{"rrMultiZipBytes", "RR Multi Zip: byte length"};
  static constexpr Num<76, 4> sfhZipBytes{"sfhZipBytes", "SFH Zip: byte length"};
  static constexpr Num<80, 4> sfhMultiZipBytes{"sfhMultiZipBytes", "SFH Multi Zip: byte length"};
  static constexpr Text<84, 4> reserved84{"reserved84", "carried unchanged"};
  static constexpr Num<88, 4> maxRangeOverheads{"maxRangeOverheads", "largest range overhead"};
  static constexpr Num<92, 4> sfhZipMaxStreets{"sfhZipMaxStreets", "SFH Zip Max Street Count"};
  static constexpr Num<96, 4> sfhMultiZipMaxStreets{"sfhMultiZipMaxStreets",
                                                    "SFH Multi Zip Max Street Cnt"};
  static constexpr Num<100, 4> rrZipMaxStreets{"rrZipMaxStreets", "RR Zip Max Street Count"};
  static constexpr Num<104, 4> rrMultiZipMaxStreets{"rrMultiZipMaxStreets",
                                                    "RR Multi Zip Max Street Cnt"};
  static constexpr Text<108, 516> trailing{"trailing", "carried unchanged"};
  static constexpr auto fields = std::tuple(
      version, reserved8, copyrightDate, reserved13, characterType, endianType, buildTimeStamp,
      typeFlags, stateCutTimeStamp, sfhZipStart, sfhMultiZipStart, reserved40, pobZipStart,
      pobMultiZipStart, rrZipStart, rrMultiZipStart, pobZipBytes, pobMultiZipBytes, rrZipBytes,
      rrMultiZipBytes, sfhZipBytes, sfhMultiZipBytes, reserved84, maxRangeOverheads,
      sfhZipMaxStreets, sfhMultiZipMaxStreets, rrZipMaxStreets, rrMultiZipMaxStreets, trailing);
};
STATECUT_ROW(RngControlRec, 624);

}  // namespace statecut
