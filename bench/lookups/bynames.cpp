// Name to number, in memory and on disk, against the peers.

#include "hash/namehash.h"
#include "lookups/contest.h"
#include "lookups/measurements.h"
#include "lookups/peers.h"

namespace statecut::bench {

namespace {

const unsigned char* bytesOf(const std::string& name) {
  return reinterpret_cast<const unsigned char*>(name.data());
}

std::uint32_t findIn(const Names& names, const std::string& name) {
  return dbHashFind(bytesOf(name), static_cast<std::int32_t>(name.size()), names.type, pProcObj);
}

std::uint32_t findOff(const Names& names, const std::string& name) {
  return dbHashFindOff(bytesOf(name), static_cast<std::int32_t>(name.size()), names.type, pProcObj);
}

// Adds the lookups of one contender, after a comparison of its answers with ours.
template <typename Ours, typename Peer>
void addPeer(const std::string& group, const std::string& name,
             const std::vector<std::string>& queries, Ours ours, Peer& peer) {
  const auto find = [&peer](const std::string& query) { return peer.find(query); };
  compareAnswers(group + "/" + name, queries, ours, find);
  addLookups(group + "/" + name, queries, find);
}

void addFigure(LookupSetup& setup, const std::string& row, const Times& times,
               const std::string& group, const std::string& label, const std::string& peer) {
  Figure figure = figureOf(times, group, "statecut", peer);
  figure.name = label;
  setup.rows[row].figures.push_back(figure);
}

// Hits, then misses.
template <typename Use>
void forHitsAndMisses(const Names& names, Use use) {
  use(std::string(names.kind) + " hit", names.hits);
  use(std::string(names.kind) + " miss", names.misses);
}

void contestInMemory(LookupSetup& setup, const Names& names) {
  MapPeer map(names);
  CdbPeer cdb(names, setup.work / "names.cdb");
  LmdbPeer lmdb(names, setup.work / "names.mdb");
  SqlitePeer sqlite(names, ":memory:");
  forHitsAndMisses(names, [&](const std::string& label, const auto& queries) {
    const std::string group = "memory " + label;
    const auto ours = [&names](const std::string& name) { return findIn(names, name); };
    addLookups(group + "/statecut", queries, ours);
    if (setup.wants("names-map")) addPeer(group, "map", queries, ours, map);
    if (setup.wants("names-cdb")) addPeer(group, "cdb", queries, ours, cdb);
    if (setup.wants("names-lmdb")) addPeer(group, "lmdb", queries, ours, lmdb);
    if (setup.wants("names-sqlite")) addPeer(group, "sqlite", queries, ours, sqlite);
    const Times times = runGroup(group, setup.rounds);
    for (const char* peer : {"map", "cdb", "lmdb", "sqlite"}) {
      const std::string row = std::string("names-") + peer;
      if (setup.wants(row)) addFigure(setup, row, times, group, label, peer);
    }
  });
}

void contestOnDisk(LookupSetup& setup, const Names& names) {
  LmdbPeer lmdb(names, setup.work / "names.mdb");
  SqlitePeer sqlite(names, setup.work / "names.sqlite");
  forHitsAndMisses(names, [&](const std::string& label, const auto& queries) {
    const std::string group = "disk " + label;
    const auto ours = [&names](const std::string& name) { return findOff(names, name); };
    addLookups(group + "/statecut", queries, ours);
    if (setup.wants("disk-lmdb")) addPeer(group, "lmdb", queries, ours, lmdb);
    if (setup.wants("disk-sqlite")) addPeer(group, "sqlite", queries, ours, sqlite);
    const Times times = runGroup(group, setup.rounds);
    for (const char* peer : {"lmdb", "sqlite"}) {
      const std::string row = std::string("disk-") + peer;
      if (setup.wants(row)) addFigure(setup, row, times, group, label, peer);
    }
  });
}

void noteSizes(RowSamples& row, const std::vector<Names>& kinds) {
  std::string note;
  for (const Names& names : kinds)
    note += (note.empty() ? "" : ", ") + std::to_string(names.all.size()) + " names of kind " +
            names.kind;
  row.notes.push_back(note);
}

}  // namespace

void measureNamesInMemory(LookupSetup& setup, const std::vector<Names>& kinds) {
  bool wanted = false;
  for (const char* row : {"names-map", "names-cdb", "names-lmdb", "names-sqlite"})
    wanted = wanted || setup.wants(row);
  if (!wanted) return;
  for (const Names& names : kinds) contestInMemory(setup, names);
  if (setup.wants("names-map")) noteSizes(setup.rows["names-map"], kinds);
}

void measureNamesOnDisk(LookupSetup& setup, const std::vector<Names>& kinds) {
  if (!setup.wants("disk-lmdb") && !setup.wants("disk-sqlite")) return;
  Session session;
  openSession(session, setup, LookupMode::kOff);
  for (const Names& names : kinds) contestOnDisk(setup, names);
}

}  // namespace statecut::bench
