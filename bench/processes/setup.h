#pragma once
// What every measurement of whole processes starts from.

#include <string>
#include <vector>

#include "measure/files.h"
#include "measure/process.h"
#include "measure/samples.h"

namespace statecut::bench {

struct Setup {
  Path bin;       // folder of the programs
  Path data;      // folder of the national pair
  Path work;      // folder for what a measurement makes, on the file system of the data
  Path baseline;  // folder of the programs of another version; empty: none
  int rounds = 9;
  bool quick = false;

  [[nodiscard]] Path ref() const { return data / "city.dir"; }
  [[nodiscard]] Path rng() const { return data / "zip4us.dir"; }
  [[nodiscard]] std::string program(const char* name) const { return bin / name; }
};

// Each measures one row of the table.
RowSamples cutWarm(const Setup& setup);
RowSamples cutAll(const Setup& setup);
RowSamples cutSmall(const Setup& setup);
RowSamples cutCold(const Setup& setup);
RowSamples cutSynced(const Setup& setup);
RowSamples cutEach(const Setup& setup);
RowSamples productsMade(const Setup& setup);
RowSamples productsCut(const Setup& setup);
RowSamples planEach(const Setup& setup);
RowSamples cutFloor(const Setup& setup);
RowSamples cutBaseline(const Setup& setup);
RowSamples openMemory(const Setup& setup);
RowSamples openBaseline(const Setup& setup);
RowSamples bytesRead(const Setup& setup);
RowSamples bytesWritten(const Setup& setup);
RowSamples memoryPeak(const Setup& setup);
RowSamples memorySlope(const Setup& setup);
RowSamples startup(const Setup& setup);
RowSamples query(const Setup& setup);
RowSamples verifyCut(const Setup& setup);
RowSamples growth(const Setup& setup);

inline void addRound(const Usage& ours, const Usage& peer, Figure& wall, Figure* cpu) {
  wall.ours.push_back(ours.wall);
  wall.peer.push_back(peer.wall);
  if (cpu == nullptr) return;
  cpu->ours.push_back(ours.cpu);
  cpu->peer.push_back(peer.cpu);
}

// Calls `ours` and `peer` in turn, one pair a round behind a first pair that is not counted, and
// adds their seconds.
template <typename Ours, typename Peer>
void alternate(int rounds, Ours ours, Peer peer, Figure& wall, Figure* cpu = nullptr) {
  for (int round = -1; round < rounds; ++round) {
    const Usage first = ours();
    const Usage second = peer();
    if (round >= 0) addRound(first, second, wall, cpu);
  }
}

}  // namespace statecut::bench
