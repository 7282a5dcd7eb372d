#include "lookup/tablesets.h"

namespace statecut {

namespace {

template <SlotNumber... Slots>
constexpr SlotNumber kSlots[] = {Slots...};

constexpr SetReader kSetReaders[] = {
    {kZipSet, dbReadZipData, kSlots<kSlotZipData, kSlotZipMultiCity, kSlotZipIndex>},
    {kCitySet, dbReadCityData,
     kSlots<kSlotCityData, kSlotCityMultiZip, kSlotCityMultiFinance, kSlotCityMultiZipRbas,
            kSlotFinMultiZip>},
    {kMultiZipSet, dbReadMultiZipTable, kSlots<kSlotMultiZip>},
    {kGeneralDeliverySet, dbReadGenDelivery, kSlots<kSlotGeneralDelivery>},
    {kCityNameSet, dbReadCityNames, kSlots<kSlotCityNames>},
    {kCityPhoneticSet, dbReadCityPhonetics, kSlots<kSlotCityPhonetics>},
    {kStreetNameSet, dbReadStreetNames, kSlots<kSlotStreetNames>},
    {kStreetPhoneticSet, dbReadStreetPhonetics,
     kSlots<kSlotStreetPhoneticAmb, kSlotStreetPhonetics>},
    {kStreetStandardSet, dbReadStreetStndrdzd,
     kSlots<kSlotStreetStandardAmb, kSlotStreetStandards>},
    {kFirmSet, dbReadFirmNames, kSlots<kSlotFirms>},
    {kHashSet, dbReadHashedNames, kSlots<kSlotHashTable, kSlotHashOverflow>},
    {kZipBytesSet, dbReadBytesTables,
     kSlots<kSlotZipBytes, kSlotSfhMultiZipBytes, kSlotPobMultiZipBytes, kSlotRrMultiZipBytes>}};

}  // namespace

std::span<const SetReader> setReaders() { return kSetReaders; }

}  // namespace statecut
