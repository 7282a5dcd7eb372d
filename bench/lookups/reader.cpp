// Lookups of a Database: against a map, through the C interface, by two threads; and its opening.

#include "reader/database.h"

#include <fcntl.h>
#include <malloc.h>
#include <statecut/statecut_c.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <random>
#include <thread>

#include "lookups/contest.h"
#include "lookups/measurements.h"
#include "lookups/peers.h"

namespace statecut::bench {

namespace {

std::uint32_t codeOf(const std::string& digits) {
  std::uint32_t code = 0;
  for (const char digit : digits) code = code * 10 + static_cast<std::uint32_t>(digit - '0');
  return code;
}

// What is asked for by its name, with the state of a city before it. The answer is a key.
enum class Kind : std::uint8_t { kZip, kCity, kStreet, kFirm };

template <Kind kKind>
struct ByDatabase {
  const Database* database;
  std::uint32_t operator()(const std::string& text) const {
    const auto number = [](const auto& found) { return found ? found.key : kNoNumber; };
    const std::string_view name = text;
    if constexpr (kKind == Kind::kZip) return number(database->zip(codeOf(text)));
    if constexpr (kKind == Kind::kCity)
      return number(database->findCity(name.substr(0, 2), name.substr(2)));
    if constexpr (kKind == Kind::kStreet) return number(database->findStreet(name));
    return number(database->findFirm(name));
  }
};

template <Kind kKind>
struct ByC {
  const statecut_db* db;
  std::uint32_t operator()(const std::string& text) const {
    const auto number = [](std::int32_t status, const auto& record) {
      return status == STATECUT_OK ? record.key : kNoNumber;
    };
    const char* const name = text.data();
    const std::size_t length = text.size();
    if constexpr (kKind == Kind::kZip) {
      statecut_zip zip;
      return number(statecut_zip_by_code(db, codeOf(text), &zip), zip);
    } else if constexpr (kKind == Kind::kCity) {
      statecut_city_name city;
      return number(statecut_find_city(db, name, name + 2, length - 2, &city), city);
    } else {
      const auto find = kKind == Kind::kStreet ? statecut_find_street : statecut_find_firm;
      statecut_name found;
      return number(find(db, name, length, &found), found);
    }
  }
};

Names zipNames(const Database& database) {
  Names names{"ZIP", 0, {}, {}, {}};
  std::mt19937 random(1);
  for (std::uint32_t code = 1; code < 100000; ++code) {
    std::string digits = std::to_string(100000 + code).substr(1);
    const Zip zip = database.zip(code);
    (zip ? names.hits : names.misses).push_back(digits);
    if (zip) names.all.emplace_back(std::move(digits), zip.key);
  }
  std::shuffle(names.hits.begin(), names.hits.end(), random);
  std::shuffle(names.misses.begin(), names.misses.end(), random);
  return names;
}

template <typename Ours, typename Peer>
void hold(LookupSetup& setup, const std::string& row, const Names& names, Ours ours, Peer peer) {
  if (!setup.wants(row)) return;
  for (const bool hit : {true, false}) {
    const std::vector<std::string>& queries = hit ? names.hits : names.misses;
    const std::string label = std::string(names.kind) + (hit ? " hit" : " miss");
    const std::string group = row + " " + label;
    compareAnswers(group, queries, ours, peer);
    addLookups(group + "/statecut", queries, ours);
    addLookups(group + "/peer", queries, peer);
    Figure figure = figureOf(runGroup(group, setup.rounds), group, "statecut", "peer");
    figure.name = label;
    setup.rows[row].figures.push_back(figure);
  }
}

template <Kind kKind>
void holdKind(LookupSetup& setup, const Names& names, const Database& database,
              const statecut_db* db) {
  const ByDatabase<kKind> ours{&database};
  if (setup.wants("reader-map")) {
    const MapPeer map(names);
    hold(setup, "reader-map", names, ours,
         [&map](const std::string& name) { return map.find(name); });
  }
  hold(setup, "reader-c", names, ByC<kKind>{db}, ours);
}

// Wall time of so many threads that each ask for all names some times, in ns a lookup.
double threadsTime(std::size_t threads, const Database& database,
                   const std::vector<std::string>& names) {
  constexpr std::size_t kTimes = 40;
  const auto start = std::chrono::steady_clock::now();
  std::vector<std::thread> running;
  for (std::size_t i = 0; i < threads; ++i)
    running.emplace_back([&] {
      const ByDatabase<Kind::kCity> find{&database};
      std::uint32_t sum = 0;
      for (std::size_t time = 0; time < kTimes; ++time)
        for (const std::string& name : names) sum += find(name);
      benchmark::DoNotOptimize(sum);
    });
  for (std::thread& thread : running) thread.join();
  const std::chrono::duration<double, std::nano> passed = std::chrono::steady_clock::now() - start;
  return passed.count() / static_cast<double>(threads * kTimes * names.size());
}

void measureThreads(LookupSetup& setup, const Database& database, const Names& cities) {
  if (!setup.wants("reader-threads")) return;
  Figure figure{"", "ns", {}, {}};
  for (int round = 0; round < setup.rounds; ++round) {
    figure.ours.push_back(threadsTime(2, database, cities.hits));
    figure.peer.push_back(threadsTime(1, database, cities.hits));
  }
  setup.rows["reader-threads"].figures.push_back(figure);
}

std::uint32_t openAndFind(const std::string& file) {
  Error error;
  const auto database = Database::open(file, {}, error);
  return database != nullptr && database->findCity("TX", "DALLAS") ? 1 : 0;
}

std::uint32_t readWhole(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status {};
  if (file < 0 || ::fstat(file, &status) != 0) return 0;
  const auto bytes = static_cast<std::size_t>(status.st_size);
  void* memory = std::malloc(bytes);
  const bool good = memory != nullptr && ::pread(file, memory, bytes, 0) == status.st_size;
  benchmark::DoNotOptimize(memory);
  std::free(memory);
  ::close(file);
  return good ? 1 : 0;
}

void measureReaderOpening(LookupSetup& setup, const std::string& file) {
  if (!setup.wants("reader-open")) return;
  ::mallopt(M_MMAP_THRESHOLD, 128 << 10);  // every reading touches fresh pages, like the first one
  const std::vector<std::string> files = {file};
  compareAnswers("reader-open", files, openAndFind, readWhole);
  addLookups("reader-open/statecut", files, openAndFind);
  addLookups("reader-open/read", files, readWhole);
  Figure figure =
      figureOf(runGroup("reader-open", setup.rounds), "reader-open", "statecut", "read");
  figure.name.clear();
  setup.rows["reader-open"].figures.push_back(figure);
}

}  // namespace

void measureReader(LookupSetup& setup, const std::vector<Names>& kinds) {
  bool wanted = false;
  for (const char* row : {"reader-map", "reader-c", "reader-threads", "reader-open"})
    wanted = wanted || setup.wants(row);
  if (!wanted) return;
  const std::string file = setup.data / "city.dir";
  {
    OpenOptions options;
    options.indexNames = true;
    Error error;
    const auto database = Database::open(file, options, error);
    if (database == nullptr) throw std::runtime_error(error.text);
    statecut_options asC = STATECUT_OPTIONS_INIT;
    asC.index_names = 1;
    statecut_db* db = nullptr;
    if (statecut_open(file.c_str(), &asC, &db, nullptr) != STATECUT_OK)
      throw std::runtime_error("statecut_open");
    const std::unique_ptr<statecut_db, decltype(&statecut_close)> closed(db, statecut_close);
    holdKind<Kind::kZip>(setup, zipNames(*database), *database, db);
    holdKind<Kind::kCity>(setup, kinds.at(0), *database, db);
    holdKind<Kind::kStreet>(setup, kinds.at(1), *database, db);
    holdKind<Kind::kFirm>(setup, kinds.at(2), *database, db);
    measureThreads(setup, *database, kinds.front());
  }
  measureReaderOpening(setup, file);
}

}  // namespace statecut::bench
