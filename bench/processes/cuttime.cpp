// Cuts against cp of what they write.

#include <algorithm>

#include "processes/contest.h"

namespace statecut::bench {

namespace {

const States kTwo = {"TX", "OK"};

RowSamples againstCopy(const Setup& setup, const States& states,
                       const Conditions& conditions = {}) {
  const Paths finished = finishedCut(setup, "finished", states);
  const Side ours = sideOf(setup, checkedCut(setup, states, finished));
  const Side peer = copyOf(setup.work / "copy", finished);
  RowSamples samples = contest(setup, ours, peer, bytesOf(finished), conditions);
  samples.notes.push_back(std::to_string(bytesOf(finished)) + " bytes written");
  removeFiles(finished);
  return samples;
}

}  // namespace

RowSamples cutWarm(const Setup& setup) { return againstCopy(setup, kTwo); }

RowSamples cutSmall(const Setup& setup) { return againstCopy(setup, {"DE"}); }

RowSamples cutAll(const Setup& setup) { return againstCopy(setup, allStates()); }

RowSamples cutSynced(const Setup& setup) {
  RowSamples samples = againstCopy(setup, kTwo, {.ready = loadIntoCache, .synced = true});
  samples.figures.pop_back();  // the CPU time of the process is that of the row without fsync
  return samples;
}

RowSamples cutCold(const Setup& setup) {
  static double stayed = 0;
  const auto evict = [](const Paths& paths) { stayed = std::max(stayed, evictFromCache(paths)); };
  RowSamples samples = againstCopy(setup, kTwo, {.ready = evict, .synced = false});
  samples.notes.push_back("at most " + std::to_string(100 * stayed) +
                          " % of the pages of a source stayed in the cache");
  return samples;
}

RowSamples cutEach(const Setup& setup) {
  struct Pair {
    Side ours;
    Side peer;
    std::uint64_t bytes;
  };
  std::vector<Pair> pairs;
  std::uint64_t sum = 0;
  for (const std::string& state : allStates()) {
    const Paths finished = finishedCut(setup, "finished-" + state, {state});
    pairs.push_back({sideOf(setup, checkedCut(setup, {state}, finished)),
                     copyOf(setup.work / "copy", finished), bytesOf(finished)});
    sum += pairs.back().bytes;
  }
  Figure wall{"wall", "s", {}, {}};
  Figure cpu{"CPU", "s", {}, {}};
  for (int round = -1; round < setup.rounds; ++round) {
    Usage ours, peer;
    for (const Pair& pair : pairs) {
      ours += runSide(setup, pair.ours, pair.bytes, {});
      peer += runSide(setup, pair.peer, pair.bytes, {});
    }
    if (round >= 0) addRound(ours, peer, wall, &cpu);
  }
  for (const Pair& pair : pairs) removeFiles(pair.peer.reads);
  return {{wall, cpu},
          {std::to_string(pairs.size()) + " states, " + std::to_string(sum) + " bytes written"}};
}

}  // namespace statecut::bench
