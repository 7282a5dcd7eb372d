#include "lookup/tablesets.h"

#include "lookup/dispatch.h"

namespace statecut {

namespace {

template <auto& pointer, auto in, auto off>
void choose(bool inMemory) {
  pointer = inMemory ? in : off;
}

constexpr ChooseVariant* kZipChoices[] = {
    choose<dbGetZipIndex, dbGetZipIndexIn, dbGetZipIndexOff>,
    choose<dbGetZipData, dbGetZipDataIn, dbGetZipDataOff>,
    choose<dbGetZipDataFromKey, dbGetZipDataFromKeyIn, dbGetZipDataFromKeyOff>,
    choose<dbGetCityKeysPtr, dbGetCityKeysPtrIn, dbGetCityKeysPtrOff>};

constexpr ChooseVariant* kCityChoices[] = {
    choose<dbFindCityData, dbFindCityDataIn, dbFindCityDataOff>,
    choose<dbFindTruncCityData, dbFindTruncCityDataIn, dbFindTruncCityDataOff>,
    choose<dbGetCityData, dbGetCityDataIn, dbGetCityDataOff>,
    choose<dbGetCityZipKeyPtr, dbGetCityZipKeyPtrIn, dbGetCityZipKeyPtrOff>,
    choose<dbGetCityFinKeyPtr, dbGetCityFinKeyPtrIn, dbGetCityFinKeyPtrOff>,
    choose<dbGetCityMultiZipRBAData, dbGetCityMultiZipRBADataIn, dbGetCityMultiZipRBADataOff>,
    choose<dbGetMultiZipFinRBA, dbGetMultiZipFinRBAIn, dbGetMultiZipFinRBAOff>,
    choose<dbGetZipFinMltZpRBA, dbGetZipFinMltZpRBAIn, dbGetZipFinMltZpRBAOff>};

constexpr ChooseVariant* kMultiZipChoices[] = {
    choose<dbGetMultiZips, dbGetMultiZipsIn, dbGetMultiZipsOff>};

constexpr ChooseVariant* kGeneralDeliveryChoices[] = {
    choose<dbGetGenrlDelvry, dbGetGenrlDelvryIn, dbGetGenrlDelvryOff>};

constexpr SetReader kSetReaders[] = {
    {kZipSet, dbReadZipData, kZipChoices},
    {kCitySet, dbReadCityData, kCityChoices},
    {kMultiZipSet, dbReadMultiZipTable, kMultiZipChoices},
    {kGeneralDeliverySet, dbReadGenDelivery, kGeneralDeliveryChoices},
    {kCityNameSet, dbReadCityNames, {}},
    {kCityPhoneticSet, dbReadCityPhonetics, {}},
    {kStreetNameSet, dbReadStreetNames, {}},
    {kStreetPhoneticSet, dbReadStreetPhonetics, {}},
    {kStreetStandardSet, dbReadStreetStndrdzd, {}},
    {kFirmSet, dbReadFirmNames, {}},
    {kHashSet, dbReadHashedNames, {}},
    {kZipBytesSet, dbReadBytesTables, {}}};

}  // namespace

std::span<const SetReader> setReaders() { return kSetReaders; }

}  // namespace statecut
