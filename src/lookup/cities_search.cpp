// City names by truncated name: binary search, and the check that one name alone fits.

#include "lookup/cities.h"
#include "lookup/dispatch.h"
#include "lookup/inmemory.h"
#include "lookup/refaccess.h"

namespace statecut {

namespace {

constexpr LogSource kCitiesSource{"cities", 5000};

// The record on disk, null when it cannot be read.
CityNameRow* readName(const RefControlRec& ref, std::uint32_t at, CityNameRow* record) {
  return readRow(ref.get(RefControlRec::cityNamesRba), at, record) ? record : nullptr;
}

std::int32_t truncatedIndex(const char* state, const char* name, std::int32_t length) {
  return orFirst(&ProcObj::pfnFindTruncCityIndex, dbFindTruncCityIndexFirst)(state, name, length);
}

}  // namespace

std::int32_t dbFindTruncCityIndex(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  return trace.leave(memory::truncatedIndex(processTables(), state, name, length));
}

std::int32_t dbFindTruncCityIdxOff(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  const RefControlRec* ref = refRecord();
  if (ref == nullptr) return -1;
  CityNameRow record{};
  return trace.leave(
      memory::searchTruncated(state, name, length, ref->get(RefControlRec::cityNamesCount),
                              [&](std::uint32_t at) { return readName(*ref, at, &record); }));
}

CityNameRow* dbFindTruncCityIn(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  const std::int32_t index = truncatedIndex(state, name, length);
  if (index == -1) return nullptr;
  return trace.leave(memory::onlyMatch(processTables(), state, name, length, index));
}

CityNameRow* dbFindTruncCityOff(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  static CityNameRow nextCityName{};
  const std::int32_t index = truncatedIndex(state, name, length);
  const RefControlRec* ref = refRecord();
  if (index == -1 || ref == nullptr) return nullptr;
  return trace.leave(
      memory::onlyMatch(state, name, length, index, ref->get(RefControlRec::cityNamesCount),
                        [ref](std::uint32_t at) { return readName(*ref, at, &nextCityName); }));
}

}  // namespace statecut
