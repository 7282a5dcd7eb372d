#include "processes/contest.h"

#include <chrono>

namespace statecut::bench {

Side sideOf(const Setup& setup, const Cut& cut) {
  return {cut.command, {setup.ref(), setup.rng()}, {cut.outputs[0], cut.outputs[1], cut.log}};
}

Side copyOf(const Path& folder, const Paths& files) {
  std::filesystem::create_directories(folder);
  Side side{{.words = {"cp"}}, files, {}};
  for (const Path& file : files) {
    side.command.words.push_back(file);
    side.writes.push_back(folder / file.filename());
  }
  side.command.words.push_back(folder);
  return side;
}

Usage runSide(const Setup& setup, const Side& side, std::uint64_t bytes,
              const Conditions& conditions) {
  primePages(setup.work / "scratch", bytes);
  conditions.ready(side.reads);
  Usage usage = runWell(side.command);
  if (conditions.synced) {
    const auto began = std::chrono::steady_clock::now();
    syncFiles(side.writes);
    usage.wall += std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
  }
  settle(side.writes);
  return usage;
}

RowSamples contest(const Setup& setup, const Side& ours, const Side& peer, std::uint64_t bytes,
                   const Conditions& conditions) {
  Figure wall{"wall", "s", {}, {}};
  Figure cpu{"CPU", "s", {}, {}};
  alternate(
      setup.rounds, [&] { return runSide(setup, ours, bytes, conditions); },
      [&] { return runSide(setup, peer, bytes, conditions); }, wall, &cpu);
  return {{wall, cpu}, {}};
}

}  // namespace statecut::bench
