// Name to number, in memory and on disk, against the peers.

#include "hash/namehash.h"
#include "lookups/contest.h"
#include "lookups/measurements.h"
#include "lookups/peers.h"

namespace statecut::bench {

namespace {

// dbHashFind, or dbHashFindOff.
using Find = decltype(&dbHashFind);

// A peer, and how it is called in the name of its row.
template <typename Peer>
struct Contender {
  const char* name;
  Peer& peer;
};

void noteSizes(RowSamples& row, const std::vector<Names>& kinds) {
  std::string note;
  for (const Names& names : kinds)
    note += (note.empty() ? "" : ", ") + std::to_string(names.all.size()) + " names of kind " +
            names.kind;
  row.notes.push_back(note);
}

template <typename Ours, typename Peer>
void addPeer(const std::string& group, const std::vector<std::string>& queries, Ours ours,
             Contender<Peer> contender) {
  const std::string name = group + "/" + contender.name;
  const auto find = [peer = &contender.peer](const std::string& query) {
    return peer->find(query);
  };
  compareAnswers(name, queries, ours, find);
  addLookups(name, queries, find);
}

// Hits, then misses; the figures go to the rows PREFIX + name of the peer that are wanted.
template <typename... Peers>
void hold(LookupSetup& setup, const std::string& prefix, const Names& names, Find find,
          Contender<Peers>... contenders) {
  const auto ours = [find, type = names.type](const std::string& name) {
    return find(reinterpret_cast<const unsigned char*>(name.data()),
                static_cast<std::int32_t>(name.size()), type, pProcObj);
  };
  const auto wanted = [&](const char* peer) { return setup.wants(prefix + peer); };
  for (const bool hit : {true, false}) {
    const std::vector<std::string>& queries = hit ? names.hits : names.misses;
    const std::string label = std::string(names.kind) + (hit ? " hit" : " miss");
    const std::string group = prefix + " " + label;
    addLookups(group + "/statecut", queries, ours);
    ((wanted(contenders.name) ? addPeer(group, queries, ours, contenders) : void()), ...);
    const Times times = runGroup(group, setup.rounds);
    for (const char* peer : {contenders.name...}) {
      if (!wanted(peer)) continue;
      Figure figure = figureOf(times, group, "statecut", peer);
      figure.name = label;
      setup.rows[prefix + peer].figures.push_back(figure);
    }
  }
}

}  // namespace

void measureNamesInMemory(LookupSetup& setup, const std::vector<Names>& kinds) {
  bool wanted = false;
  for (const char* row : {"names-map", "names-cdb", "names-lmdb", "names-sqlite"})
    wanted = wanted || setup.wants(row);
  if (!wanted) return;
  for (const Names& names : kinds) {
    MapPeer map(names);
    CdbPeer cdb(names, setup.work / "names.cdb");
    LmdbPeer lmdb(names, setup.work / "names.mdb");
    SqlitePeer sqlite(names, ":memory:");
    hold(setup, "names-", names, dbHashFind, Contender<MapPeer>{"map", map},
         Contender<CdbPeer>{"cdb", cdb}, Contender<LmdbPeer>{"lmdb", lmdb},
         Contender<SqlitePeer>{"sqlite", sqlite});
  }
  if (setup.wants("names-map")) noteSizes(setup.rows["names-map"], kinds);
}

void measureNamesOnDisk(LookupSetup& setup, const std::vector<Names>& kinds) {
  if (!setup.wants("disk-lmdb") && !setup.wants("disk-sqlite")) return;
  Session session;
  openSession(session, setup, LookupMode::kOff);
  for (const Names& names : kinds) {
    LmdbPeer lmdb(names, setup.work / "names.mdb");
    SqlitePeer sqlite(names, setup.work / "names.sqlite");
    hold(setup, "disk-", names, dbHashFindOff, Contender<LmdbPeer>{"lmdb", lmdb},
         Contender<SqlitePeer>{"sqlite", sqlite});
  }
}

}  // namespace statecut::bench
