#pragma once
// Control records by hand: every directory word holds its own offset, so no partition is empty.

#include <algorithm>
#include <cstdint>
#include <string>

#include "support/logfixture.h"

namespace statecut::test {

inline constexpr std::uint32_t kBuildStamp = 1489536000;  // 2017-03-15 00:00:00
inline constexpr std::uint32_t kCutStamp = 1489622461;    // 2017-03-16 00:01:01

inline void identify(Bytes& record, std::uint32_t flags, std::uint32_t cutStamp) {
  const std::string version = "10000OF1";
  const std::string date = "0317";
  std::copy(version.begin(), version.end(), record.begin());
  std::copy(date.begin(), date.end(), record.begin() + 9);
  record[18] = 1;
  record[19] = 1;
  putWord(record, 20, kBuildStamp);
  putWord(record, 24, flags);
  putWord(record, 28, cutStamp);
}

inline Bytes refRecord(std::uint32_t flags = 1, std::uint32_t cutStamp = 0) {
  Bytes record(844);
  for (std::uint32_t at = 32; at < 332; at += 4) putWord(record, at, at);
  identify(record, flags, cutStamp);
  return record;
}

inline Bytes rngRecord(std::uint32_t flags = 2, std::uint32_t cutStamp = 0) {
  Bytes record(624);
  for (std::uint32_t at = 32; at < 108; at += 4) putWord(record, at, at);
  identify(record, flags, cutStamp);
  return record;
}

}  // namespace statecut::test
