#pragma once
// What the file variants keep from call to call: one buffer a function, for the whole process.

#include "call.h"

namespace statecut::test {

struct DiskBuffers {
  Bytes zipFromKey = Bytes(64), zipData = Bytes(64), cityKeys = Bytes(512);
  Bytes finance = Bytes(8), financeOfZip = Bytes(8), multiZips = Bytes(608);
  std::uint16_t lastStart = 0xFFFF;
  Bytes cityName = Bytes(64), cityNameCached = Bytes(64), findCity = Bytes(64);
  Bytes truncCity = Bytes(64);
  Bytes cityDataByName = Bytes(64), cityDataByTrunc = Bytes(64), cityData = Bytes(64);
  Bytes zipLists = Bytes(1808), financeLists = Bytes(32), multiZipRba = Bytes(32);
  Bytes findPhonetic = Bytes(32), phonetic = Bytes(32);
  Bytes packed = Bytes(100), packedCached = Bytes(128), delivery = Bytes(4);
};

extern DiskBuffers diskBuffers;

}  // namespace statecut::test
