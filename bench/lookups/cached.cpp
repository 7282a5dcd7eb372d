// The on-disk lookups that read through the block cache, with it and without.

#include <random>

#include "lookups/contest.h"
#include "lookups/measurements.h"

namespace statecut::bench {

namespace {

constexpr std::uint32_t kBlock = 4096;
constexpr std::uint32_t kEntries = 64;

using Find = std::uint32_t (*)(std::uint32_t);

std::uint32_t zipRecord(std::uint32_t zip) {
  std::uint32_t key = 0;
  const ZipDataRow* record = dbGetZipData(static_cast<std::int32_t>(zip), &key);
  return record == nullptr ? 0 : record->get(ZipDataRow::sfhRba) + key;
}

std::uint32_t cityRecord(std::uint32_t key) {
  const CityDataRow* record = dbGetCityData(static_cast<std::int32_t>(key));
  return record == nullptr ? 0 : record->get(CityDataRow::nameUsps);
}

std::uint32_t cityName(std::uint32_t number) {
  const CityNameRow* record = pProcObj->pfnGetCityUSPSwc(static_cast<std::int32_t>(number));
  return record == nullptr ? 0 : record->get(CityNameRow::cityKey);
}

std::uint32_t streetName(std::uint32_t offset) {
  std::int32_t length = 0;
  const char* name = pProcObj->pfnGetStreetNameUSPSwc(offset, &length, pProcObj);
  return name == nullptr || length <= 0 ? 0 : static_cast<unsigned char>(name[length - 1]);
}

struct CachedLookup {
  const char* name;
  Find find;
  std::uint32_t first;  // of the keys that are asked for
  std::uint32_t count;  // of which the cache holds all records
};

// Each set of records fills at most half of the blocks.
constexpr CachedLookup kLookups[] = {{"ZIP to record", zipRecord, 75000, 1500},
                                     {"city key to record", cityRecord, 10000, 3000},
                                     {"number to city name", cityName, 10000, 3000},
                                     {"offset to street name", streetName, 100000, 100000}};

std::vector<std::uint32_t> queriesOf(const CachedLookup& lookup) {
  std::mt19937 random(1);
  std::vector<std::uint32_t> queries;
  for (int i = 0; i < 20000; ++i)
    queries.push_back(lookup.first + static_cast<std::uint32_t>(random()) % lookup.count);
  return queries;
}

std::vector<std::uint32_t> answersTo(const std::vector<std::uint32_t>& queries, Find find) {
  std::vector<std::uint32_t> answers;
  for (const std::uint32_t query : queries) answers.push_back(find(query));
  return answers;
}

}  // namespace

void measureCache(LookupSetup& setup) {
  if (!setup.wants("disk-cache")) return;
  RowSamples& row = setup.rows["disk-cache"];
  for (const CachedLookup& lookup : kLookups) {
    const std::vector<std::uint32_t> queries = queriesOf(lookup);
    addLookups("cached " + std::string(lookup.name) + "/it", queries, lookup.find);
    addLookups("direct " + std::string(lookup.name) + "/it", queries, lookup.find);
    Times times;
    std::vector<std::uint32_t> answers[2];
    for (int round = 0; round < setup.rounds; ++round) {
      for (const bool cached : {true, false}) {
        Session session;
        openSession(session, setup, LookupMode::kOff, cached ? kEntries : 0);
        answers[cached] = answersTo(queries, lookup.find);
        times = runGroup((cached ? "cached " : "direct ") + std::string(lookup.name), 1, times);
      }
      if (answers[0] != answers[1]) throw std::runtime_error("the cache changes answers");
    }
    row.figures.push_back({lookup.name, "ns",
                           times.at("cached " + std::string(lookup.name) + "/it"),
                           times.at("direct " + std::string(lookup.name) + "/it")});
  }
  row.notes.push_back(std::to_string(kEntries) + " blocks of " + std::to_string(kBlock) +
                      " bytes; name to number passes the cache by");
}

void openSession(Session& session, const LookupSetup& setup, LookupMode mode,
                 std::uint32_t cacheEntries) {
  SessionSettings settings;
  settings.ref = setup.data / "city.dir";
  settings.mode = mode;
  settings.cached = cacheEntries != 0;
  settings.cacheBlock = kBlock;
  settings.cacheEntries = cacheEntries;
  std::string error;
  if (!session.open(settings, error)) throw std::runtime_error(error);
}

}  // namespace statecut::bench
