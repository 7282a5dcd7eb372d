#include "call.h"

namespace statecut::test {

namespace {

constexpr std::array<const char*, kOps> kNames = {"dbGetZipIndex",
                                                  "dbGetZipData",
                                                  "dbGetZipDataFromKey",
                                                  "dbGetCityKeysPtr",
                                                  "dbGetMultiZipFinRBA",
                                                  "dbGetZipFinMltZpRBA",
                                                  "dbGetMultiZips",
                                                  "dbGetCityUSPS",
                                                  "dbGetCityUSPSwc",
                                                  "dbFindCityNameIdx",
                                                  "dbFindCityHash",
                                                  "dbFindCity",
                                                  "dbFindTruncCity",
                                                  "dbFindTruncCityIndex",
                                                  "seqSearchCity",
                                                  "dbFindNearestCity",
                                                  "dbFindNextCity",
                                                  "dbFindCityData",
                                                  "dbFindTruncCityData",
                                                  "dbGetCityData",
                                                  "dbGetCityZipKeyPtr",
                                                  "dbGetCityFinKeyPtr",
                                                  "dbGetCityMultiZipRBAData",
                                                  "findCityPhIdx",
                                                  "dbFindCityPh",
                                                  "dbGetCityPh",
                                                  "dbFindStreetKey",
                                                  "dbGetStreetNameUSPS",
                                                  "dbGetStreetNameUSPSwc",
                                                  "dbFindStreetVarIdx",
                                                  "dbFindStreetVar",
                                                  "dbFindFirm",
                                                  "dbGetFirmName",
                                                  "dbGetGenrlDelvry",
                                                  "uncompressCRT"};

}  // namespace

std::string described(const Call& call) {
  std::string text = kNames[static_cast<std::size_t>(call.op)];
  text.append("(").append(std::to_string(call.a)).append(", ").append(std::to_string(call.b));
  text.append(", \"").append(call.state).append("\", \"").append(call.name).append("\"");
  if (call.length) text.append(" of length ").append(std::to_string(*call.length));
  for (const std::uint16_t scf : call.scfs) text.append(", SCF ").append(std::to_string(scf));
  return text.append(", matcher ").append(std::to_string(static_cast<int>(call.match))).append(")");
}

bool readerHas(Op op) {
  return op != Op::kTruncCityIndex && op != Op::kVariationIndex && op != Op::kRoute;
}

std::string record(const unsigned char* bytes, std::size_t count) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text = ":";
  text.reserve(2 * count + 1);
  for (std::size_t i = 0; i < count; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 15];
  }
  return text;
}

std::string runs(const std::uint32_t* keys, std::int32_t count) {
  std::string text;
  for (std::int32_t i = 0, next = 0; i < count; i = next) {
    for (next = i; next < count && keys[next] == keys[i];) ++next;
    text.append(" ").append(std::to_string(keys[i])).append("*").append(std::to_string(next - i));
  }
  return text;
}

std::string named(const char* name, std::int64_t value) {
  std::string text = " ";
  return text.append(name).append("=").append(std::to_string(value));
}

}  // namespace statecut::test
