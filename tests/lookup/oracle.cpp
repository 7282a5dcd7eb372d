#include "oracle.h"

#include "oracle_buffers.h"

namespace statecut::test {

namespace {

template <std::size_t N>
std::string text(const std::optional<Bytes>& bytes, std::integral_constant<std::size_t, N>) {
  return bytes ? record(bytes->data(), N) : kNull;
}
template <std::size_t N>
constexpr std::integral_constant<std::size_t, N> kBytes{};

std::string route(std::uint32_t code) {
  const std::uint32_t letter = code >> 11 & 31;
  const std::uint32_t number = code & 1023;
  if (letter > 25 || number > 999) return "\"\"";
  std::string text = "\"";
  text += static_cast<char>('A' + letter);
  for (const std::uint32_t unit : {100U, 10U, 1U})
    text += static_cast<char>('0' + number / unit % 10);
  return text + "\"";
}

}  // namespace

std::string Oracle::answer(const Call& call) {
  differences_.reset();
  const std::int32_t length = call.nameLength();
  const auto index = [&](std::int32_t limit, std::uint32_t type) {
    return std::to_string(length >= limit ? -1 : hash(call.name, length, type));
  };
  switch (call.op) {
    case Op::kZipIndex:
      return std::to_string(zipIndex(call.signedA()));
    case Op::kZipData:
      return zipData(call.signedA());
    case Op::kZipDataFromKey:
      return text(zipFromKey(call.signedA()), kBytes<52>);
    case Op::kCityKeys:
      return cityKeys(call.signedA());
    case Op::kFinByIndex:
      return text(finance(call.signedA()), kBytes<8>);
    case Op::kFinOfZip:
      return financeOfZip(call.signedA());
    case Op::kMultiZips:
      return multiZips(call.unsignedA(), call.unsignedB());
    case Op::kCityName:
    case Op::kCityNameCached:
      return text(cityName(call.signedA(), call.op == Op::kCityNameCached), kBytes<34>);
    case Op::kCityNameIndex:
      return index(31, 2);
    case Op::kCityHash:
      return std::to_string(cityHash(call));
    case Op::kFindCity:
      return text(findCity(call), kBytes<34>);
    case Op::kTruncCity:
      return text(truncCity(call), kBytes<34>);
    case Op::kTruncCityIndex:
      return std::to_string(truncIndex(call));
    case Op::kSequential:
      return std::to_string(sequential(call.state, call.name, call.match, call.signedB()));
    case Op::kNearest:
      return std::to_string(nearest(call.state, call.name, 0));
    case Op::kNext:
      return std::to_string(nearest(call.state, call.name, call.signedB()));
    case Op::kCityDataByName:
      return cityDataOf(findCity(call), diskBuffers.cityDataByName);
    case Op::kCityDataByTrunc:
      return cityDataOf(truncCity(call), diskBuffers.cityDataByTrunc);
    case Op::kCityData:
      return text(cityData(call.signedA()), kBytes<36>);
    case Op::kCityZipKeys:
      return cityZipKeys(call.unsignedA(), call.unsignedB());
    case Op::kCityFinKeys:
      return cityFinKeys(call.unsignedA(), call.unsignedB());
    case Op::kCityMultiZip:
      return text(cityMultiZip(call.signedA()), kBytes<28>);
    case Op::kPhoneticIndex:
      return index(22, 5);
    case Op::kFindPhonetic:
      return findPhonetic(call);
    case Op::kPhonetic:
      return text(phonetic(call.signedA()), kBytes<26>);
    case Op::kStreetKey:
      return index(29, 1);
    case Op::kStreetName:
    case Op::kStreetNameCached:
      return packedName(kStreets, call.unsignedA(), call.op == Op::kStreetNameCached);
    case Op::kVariationIndex:
      return index(29, call.unsignedA());
    case Op::kVariation:
      return variation(call);
    case Op::kFirm:
      return index(41, 0);
    case Op::kFirmName:
      return packedName(kFirms, call.unsignedA(), false);
    case Op::kGeneralDelivery:
      return text(generalDelivery(call.unsignedA()), kBytes<4>);
    case Op::kRoute:
      return route(call.unsignedA() & 0xFFFF);
    case Op::kCount_:
      break;
  }
  return {};
}

}  // namespace statecut::test
