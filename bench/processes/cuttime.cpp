// Cuts against cp of what they write: everything cached, or nothing.

#include <algorithm>
#include <functional>

#include "processes/cuts.h"

namespace statecut::bench {

namespace {

struct Copy {
  Command command;
  Paths to;
};

Copy prepareCopy(const Path& folder, const Paths& from) {
  std::filesystem::create_directories(folder);
  Copy copy;
  copy.command.words = {"cp"};
  for (const Path& path : from) {
    copy.command.words.push_back(path);
    copy.to.push_back(folder / path.filename());
  }
  copy.command.words.push_back(folder);
  return copy;
}

struct Contest {
  States states;
  std::size_t copied = 2;  // of the outputs of the cut; 1: the reference file alone
  // Before each run, with what it reads.
  std::function<void(const Paths&)> ready;
};

RowSamples hold(const Setup& setup, const std::string& name, const Contest& contest) {
  const Paths finished = finishedCut(setup, name, contest.states);
  const Cut cut = prepareCut(setup, setup.work / "cut", contest.states);
  const Paths copied(finished.begin(),
                     finished.begin() + static_cast<std::ptrdiff_t>(contest.copied));
  const Copy copy = prepareCopy(setup.work / "copy", copied);
  Figure wall{"wall", "s", {}, {}};
  Figure cpu{"CPU", "s", {}, {}};
  bool compared = false;
  cut.remove();
  const auto ours = [&] {
    contest.ready({setup.ref(), setup.rng()});
    const Usage usage = runWell(cut.command);
    if (!compared) compareCut(cut, finished);
    compared = true;
    cut.remove();
    settle({});
    return usage;
  };
  const auto peer = [&] {
    contest.ready(copied);
    const Usage usage = runWell(copy.command);
    settle(copy.to);
    return usage;
  };
  settle(copy.to);
  alternate(setup.rounds, ours, peer, wall, &cpu);
  RowSamples samples{{wall, cpu},
                     {std::to_string(bytesOf(finished)) + " bytes written by the cut, " +
                      std::to_string(bytesOf(copied)) + " by cp"}};
  removeFiles(finished);
  return samples;
}

}  // namespace

RowSamples cutWarm(const Setup& setup) {
  return hold(setup, "finished-txok", {{"TX", "OK"}, 2, loadIntoCache});
}

RowSamples cutAll(const Setup& setup) {
  return hold(setup, "finished-all", {allStates(), 2, loadIntoCache});
}

RowSamples cutSmall(const Setup& setup) {
  return hold(setup, "finished-de", {{"DE"}, 1, loadIntoCache});
}

RowSamples cutCold(const Setup& setup) {
  double stayed = 0;
  const auto evict = [&stayed](const Paths& paths) {
    stayed = std::max(stayed, evictFromCache(paths));
  };
  RowSamples samples = hold(setup, "finished-cold", {{"TX", "OK"}, 2, evict});
  samples.notes.push_back("at most " + std::to_string(100 * stayed) +
                          " % of the pages of a source stayed in the cache");
  return samples;
}

}  // namespace statecut::bench
