#pragma once
// Two processes that move files, measured in turn.

#include "processes/cuts.h"

namespace statecut::bench {

// What a side of a contest runs, reads and writes.
struct Side {
  Command command;
  Paths reads;
  Paths writes;
};

Side sideOf(const Setup& setup, const Cut& cut);
// cp of the files into the folder, which is made.
Side copyOf(const Path& folder, const Paths& files);

struct Conditions {
  void (*ready)(const Paths& reads) = loadIntoCache;
  bool synced = false;  // the clock stops when the disk has what was written
};

// One run: memory primed with the size of the output, then `ready`, the clock, and removal of what
// was written. `bytes` is the size of the output.
Usage runSide(const Setup& setup, const Side& side, std::uint64_t bytes,
              const Conditions& conditions);

// Both in turn, round by round: figures "wall" and "CPU".
RowSamples contest(const Setup& setup, const Side& ours, const Side& peer, std::uint64_t bytes,
                   const Conditions& conditions = {});

}  // namespace statecut::bench
