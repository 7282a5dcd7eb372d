#pragma once
// One lookup call as data, and its answer as a text: what the suite gives to the library and to the
// oracle alike.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace statecut::test {

using Bytes = std::vector<unsigned char>;

enum class Op : std::uint8_t {
  kZipIndex,
  kZipData,
  kZipDataFromKey,
  kCityKeys,
  kFinByIndex,
  kFinOfZip,
  kMultiZips,
  kCityName,
  kCityNameCached,
  kCityNameIndex,
  kCityHash,
  kFindCity,
  kTruncCity,
  kTruncCityIndex,
  kSequential,
  kNearest,
  kNext,
  kCityDataByName,
  kCityDataByTrunc,
  kCityData,
  kCityZipKeys,
  kCityFinKeys,
  kCityMultiZip,
  kPhoneticIndex,
  kFindPhonetic,
  kPhonetic,
  kStreetKey,
  kStreetName,
  kStreetNameCached,
  kVariationIndex,
  kVariation,
  kFirm,
  kFirmName,
  kGeneralDelivery,
  kRoute,
  kCount_
};
inline constexpr std::size_t kOps = static_cast<std::size_t>(Op::kCount_);

// Those that a Database has, too: the others tell of positions inside of a search.
bool readerHas(Op op);

enum class Match : std::uint8_t { kContains, kStarts, kEnds };

struct Call {
  Op op = Op::kZipIndex;
  std::int64_t a = 0;  // key, index, offset, count, table or kind
  std::int64_t b = 0;  // start, or street keys that the list holds already
  std::string state;
  std::string name;
  std::optional<std::int32_t> length;  // in place of the name's
  std::vector<std::uint16_t> scfs;
  Match match = Match::kContains;

  [[nodiscard]] std::int32_t signedA() const { return static_cast<std::int32_t>(a); }
  [[nodiscard]] std::uint32_t unsignedA() const { return static_cast<std::uint32_t>(a); }
  [[nodiscard]] std::int32_t signedB() const { return static_cast<std::int32_t>(b); }
  [[nodiscard]] std::uint32_t unsignedB() const { return static_cast<std::uint32_t>(b); }
  [[nodiscard]] std::int32_t nameLength() const {
    return length.value_or(static_cast<std::int32_t>(name.size()));
  }
};

std::string described(const Call& call);

// The most keys, entries and name bytes that an answer holds.
inline constexpr std::uint32_t kMultiZipsShown = 304;
inline constexpr std::uint32_t kCityZipKeysShown = 300;
inline constexpr std::uint32_t kCityFinKeysShown = 16;
inline constexpr std::int32_t kNameShown = 99;
// What a call finds in its out-parameters, so that untouched ones can be told.
inline constexpr std::int32_t kUntouched = 0x5A5A5A5A;
inline constexpr std::int8_t kUntouchedFlag = 0x5A;

// Texts of answers.
inline constexpr char kNull[] = "null";
std::string record(const unsigned char* bytes, std::size_t count);
std::string runs(const std::uint32_t* keys, std::int32_t count);  // " 0*3 17*1"
std::string named(const char* name, std::int64_t value);          // " name=value"

}  // namespace statecut::test
