#pragma once
// Damages a pair's files, one damage after the other, in child processes that run the programs on
// each: a child that dies names the damage that killed it, and another goes on behind it.

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <span>
#include <string>
#include <vector>

#include "damages.h"
#include "programs.h"
#include "support/process.h"

namespace statecut::test {

struct Outcome {
  std::uint64_t damages = 0;
  // Damages whose cut has status 0 and other bytes than that of the sound pair: those that verify
  // reports, and those that are exceptions.
  std::uint64_t silentCuts = 0;
  std::uint64_t exceptedCuts = 0;
  std::vector<std::string> failures;  // each with the name of its damage
  std::vector<std::string> notes;     // what `judge` noted, each once
};

// What the parent knows of a child that died.
struct Progress {
  std::size_t next;  // position in the chosen damages
  Program program;
};

// What is wrong with what the programs did, "" when nothing is. A text behind '\n' is a note.
using Judge = std::function<std::string(const Damage&, const Programs&, const Behaviour& sound)>;

struct Limits {
  double seconds = 1.0;               // of processor time, each program
  std::uint64_t memory = 256U << 20;  // resident, beyond what the child began with, and this
  std::uint64_t timesTables = 0;      // many times what the damaged count has tables take
};

class Damager {
 public:
  // Works in a folder of its own on a memory file system when there is one. With `source`, the
  // pair is a cut of it.
  Damager(PairImage pair, const PairImage* source, Queries which);
  Damager(const Damager&) = delete;
  Damager& operator=(const Damager&) = delete;

  // The damages at `chosen`, or the one of these that STATECUT_DAMAGE names.
  Outcome run(const Damages& damages, std::vector<std::size_t> chosen, const Limits& limits,
              const Judge& judge);

  // The cut of the sound pair.
  [[nodiscard]] PairImage cutOf();

 private:
  void restore() const;
  // In the child: the damages from `from` to `end`, with their outcome in the file "report".
  void serve(const Damages& damages, std::span<const std::size_t> chosen, const Limits& limits,
             const Judge& judge, Progress& progress);
  // What is wrong with one of them, and a line for a cut with status 0 that differs.
  std::string tryOne(const Damages& damages, const Damage& damage, const Limits& limits,
                     const Judge& judge, const Behaviour& sound, std::ostream& report,
                     Progress& progress);

  PairImage pair_;
  TempDir folder_;
  PairFiles files_;
  Programs programs_;
};

}  // namespace statecut::test
