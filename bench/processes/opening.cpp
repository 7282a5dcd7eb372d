// From nothing open to the first answer, in memory; and another version of ours.

#include "processes/contest.h"

namespace statecut::bench {

namespace {

constexpr int kOpenings = 20;  // in one process

Command openings(const Setup& setup, const Path& bin) {
  // A city that every national database has.
  return {.words = {bin / "bench_open", setup.ref(), std::to_string(kOpenings), "TX", "DALLAS"}};
}

RowSamples compareOpenings(const Setup& setup, const Command& peer) {
  const Paths reads = {setup.ref()};
  RowSamples samples =
      contest(setup, {openings(setup, setup.bin), reads, {}}, {peer, reads, {}}, bytesOf(reads));
  for (Figure& figure : samples.figures)
    for (std::vector<double>* seconds : {&figure.ours, &figure.peer})
      for (double& number : *seconds) number /= kOpenings;
  samples.notes.push_back("a run opens " + std::to_string(kOpenings) + " times");
  return samples;
}

}  // namespace

RowSamples openMemory(const Setup& setup) {
  return compareOpenings(
      setup, {.words = {setup.program("bench_open"), setup.ref(), std::to_string(kOpenings)}});
}

RowSamples openBaseline(const Setup& setup) {
  return compareOpenings(setup, openings(setup, setup.baseline));
}

RowSamples cutBaseline(const Setup& setup) {
  RowSamples samples;
  for (const States& states : {States{"TX", "OK"}, States{"DE"}}) {
    const Cut cut = prepareCut(setup, setup.work / "cut", states);
    const Side ours = sideOf(setup, cut);
    Side peer = ours;
    peer.command.words[0] = setup.baseline / "statecut";
    runWell(ours.command);
    const std::uint64_t bytes = bytesOf(cut.outputs);
    cut.remove();
    for (Figure figure : contest(setup, ours, peer, bytes).figures) {
      figure.name = joined(states) + ", " + figure.name;
      samples.figures.push_back(figure);
    }
  }
  return samples;
}

}  // namespace statecut::bench
