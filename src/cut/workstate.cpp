#include "cut/workstate.h"

namespace statecut {

Stream* newRefDb = nullptr;
Stream* newRangeDb = nullptr;
std::uint32_t totalBytes = 0;
std::uint32_t totalRngBytes = 0;

ZipIndexRow* scZipCodeIndex = nullptr;
CityNameRow* scCityNames = nullptr;
CityByStateRow* scCityNamesByState = nullptr;
CityPhoneticRow* scCityPhonetics = nullptr;
std::uint32_t* cityKeys = nullptr;
MultiZipKey* multiZipKeys = nullptr;
std::uint32_t* cityNameMap = nullptr;
std::uint32_t* cityPhNameMap = nullptr;

std::uint32_t sourceCityNames = 0;
std::uint32_t sourceCityPhonetics = 0;

}  // namespace statecut
