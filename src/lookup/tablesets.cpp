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

template <SlotNumber... Slots>
constexpr SlotNumber kSlots[] = {Slots...};

constexpr SetReader kSetReaders[] = {
    {kZipSet, dbReadZipData, kSlots<kSlotZipData, kSlotZipMultiCity, kSlotZipIndex>, kZipChoices},
    {kCitySet, dbReadCityData,
     kSlots<kSlotCityData, kSlotCityMultiZip, kSlotCityMultiFinance, kSlotCityMultiZipRbas,
            kSlotFinMultiZip>,
     kCityChoices},
    {kMultiZipSet, dbReadMultiZipTable, kSlots<kSlotMultiZip>, kMultiZipChoices},
    {kGeneralDeliverySet, dbReadGenDelivery, kSlots<kSlotGeneralDelivery>, kGeneralDeliveryChoices},
    {kCityNameSet, dbReadCityNames, kSlots<kSlotCityNames>, {}},
    {kCityPhoneticSet, dbReadCityPhonetics, kSlots<kSlotCityPhonetics>, {}},
    {kStreetNameSet, dbReadStreetNames, kSlots<kSlotStreetNames>, {}},
    {kStreetPhoneticSet,
     dbReadStreetPhonetics,
     kSlots<kSlotStreetPhoneticAmb, kSlotStreetPhonetics>,
     {}},
    {kStreetStandardSet,
     dbReadStreetStndrdzd,
     kSlots<kSlotStreetStandardAmb, kSlotStreetStandards>,
     {}},
    {kFirmSet, dbReadFirmNames, kSlots<kSlotFirms>, {}},
    {kHashSet, dbReadHashedNames, kSlots<kSlotHashTable, kSlotHashOverflow>, {}},
    {kZipBytesSet,
     dbReadBytesTables,
     kSlots<kSlotZipBytes, kSlotSfhMultiZipBytes, kSlotPobMultiZipBytes, kSlotRrMultiZipBytes>,
     {}}};

}  // namespace

std::span<const SetReader> setReaders() { return kSetReaders; }

}  // namespace statecut
