// City names by sequential search and wildcard pattern.

#include <algorithm>
#include <array>
#include <cstring>

#include "dbfiles/apiutil.h"
#include "lookup/cities.h"
#include "lookup/dispatch.h"
#include "lookup/inmemory.h"
#include "lookup/refaccess.h"

namespace statecut {

namespace {

constexpr LogSource kCitiesSource{"cities", 4000};

constexpr std::size_t kMaxName = CityNameRow::name.width;
constexpr std::uint64_t kRbaSpace = std::uint64_t{1} << 32;

bool nameMatches(const CityNameRow& record, const char* text, NameMatcher matcher) {
  std::array<char, kMaxName + 1> name{};
  std::memcpy(name.data(), record.get(CityNameRow::name).data(), memory::nameLength(record));
  return matcher(name.data(), text) == 0;
}

bool matches(const CityNameRow& record, const char* state, const char* text, NameMatcher matcher) {
  return std::memcmp(record.get(CityNameRow::state).data(), state, 2) == 0 &&
         nameMatches(record, text, matcher);
}

// The key of the record at a position, and the position behind it.
constexpr std::uint64_t kLastPosition = 0x7FFFFFFF;

std::int32_t behind(std::uint64_t position) { return static_cast<std::int32_t>(position + 1); }

}  // namespace

std::int32_t seqSearchCityIn(const char* state, const char* text, NameMatcher matcher,
                             std::int32_t start) {
  const Trace trace(kCitiesSource);
  if (matcher == nullptr) return -1;
  return trace.leave(memory::searchCities(
      processTables(), state, start,
      [&](const CityNameRow& record) { return nameMatches(record, text, matcher); }));
}

std::int32_t seqSearchCityOff(const char* state, const char* text, NameMatcher matcher,
                              std::int32_t start) {
  const Trace trace(kCitiesSource);
  const RefControlRec* ref = refRecord();
  if (start < 0 || matcher == nullptr || ref == nullptr) return -1;
  // A position behind the last one that is searched is a signed number.
  const auto count =
      std::min<std::uint64_t>(ref->get(RefControlRec::cityNamesCount), kLastPosition);
  const std::uint32_t table = ref->get(RefControlRec::cityNamesRba);
  CityNameRow record{};
  bool wasShort = false;
  for (auto position = static_cast<std::uint64_t>(start); position < count; ++position) {
    const std::uint32_t rba =
        entryRba(table, static_cast<std::uint32_t>(position), CityNameRow::size);
    if (!readDirect(rba, CityNameRow::size, &record)) return -1;
    if (matches(record, state, text, matcher)) return trace.leave(behind(position));
    const bool isShort = streamEof(refStream(pProcObj));
    // Behind the end of the file nothing changes until RBAs start over.
    if (isShort && wasShort) position += (kRbaSpace - 1 - rba) / CityNameRow::size;
    wasShort = isShort;
  }
  return -1;
}

std::int32_t findNearestCity(const char* state, const char* pattern, std::int32_t start) {
  const Trace trace(kCitiesSource);
  const auto search = [&](const char* text, NameMatcher matcher) {
    return trace.leave(
        orFirst(&ProcObj::pfnSeqSearchCity, seqSearchCityFirst)(state, text, matcher, start));
  };
  std::array<char, kMaxName + 1> work{};
  std::size_t length = std::min(std::strlen(pattern), kMaxName);
  if (length == 0) return -1;
  std::memcpy(work.data(), pattern, length);
  const bool leading = work[0] == '*';
  const bool trailing = work[length - 1] == '*';
  if (leading && !trailing) {
    // The rest of the pattern as the caller gave it, however long. Meant.
    return pattern[1] == '*' ? -1 : search(pattern + 1, endsWith);
  }
  if (trailing) work[--length] = '\0';
  if (!leading) return trailing && work[length - 1] == '*' ? -1 : search(work.data(), startsWith);
  if (length <= 1 || work[1] == '*' || work[length - 1] == '*') return -1;
  return search(work.data() + 1, containsString);
}

std::int32_t dbFindNearestCity(const char* state, const char* pattern) {
  const Trace trace(kCitiesSource);
  return findNearestCity(state, pattern, 0);
}

std::int32_t dbFindNextCity(const char* state, const char* pattern, std::int32_t start) {
  const Trace trace(kCitiesSource);
  return findNearestCity(state, pattern, start);
}

}  // namespace statecut
