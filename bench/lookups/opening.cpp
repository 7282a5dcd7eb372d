// From nothing open to the first answer, on disk.

#include "hash/namehash.h"
#include "lookups/contest.h"
#include "lookups/measurements.h"
#include "lookups/peers.h"

namespace statecut::bench {

namespace {

std::uint32_t openAndFind(const LookupSetup& setup, const std::string& name) {
  Session session;
  openSession(session, setup, LookupMode::kOff);
  const auto* bytes = reinterpret_cast<const unsigned char*>(name.data());
  return dbHashFindOff(bytes, static_cast<std::int32_t>(name.size()), kCityNames, session.proc());
}

std::uint32_t openAndQuery(const std::string& file, const std::string& name) {
  sqlite3* db = nullptr;
  sqlite3_stmt* find = nullptr;
  std::uint32_t found = kNoNumber;
  if (sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr) ==
          SQLITE_OK &&
      sqlite3_prepare_v2(db, SqlitePeer::kFind, -1, &find, nullptr) == SQLITE_OK) {
    sqlite3_bind_text(find, 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
    if (sqlite3_step(find) == SQLITE_ROW)
      found = static_cast<std::uint32_t>(sqlite3_column_int64(find, 0));
  }
  sqlite3_finalize(find);
  sqlite3_close(db);
  return found;
}

}  // namespace

void measureOpening(LookupSetup& setup, const Names& cities) {
  if (!setup.wants("open-disk")) return;
  const std::string file = setup.work / "opening.sqlite";
  SqlitePeer::build(cities, file);
  const std::vector<std::string> names(cities.hits.begin(), cities.hits.begin() + 500);
  const auto ours = [&setup](const std::string& name) { return openAndFind(setup, name); };
  const auto peer = [&file](const std::string& name) { return openAndQuery(file, name); };
  compareAnswers("opening", names, ours, peer);
  addLookups("opening/statecut", names, ours);
  addLookups("opening/sqlite", names, peer);
  Figure figure = figureOf(runGroup("opening", setup.rounds), "opening", "statecut", "sqlite");
  figure.name.clear();
  setup.rows["open-disk"].figures.push_back(figure);
}

}  // namespace statecut::bench
