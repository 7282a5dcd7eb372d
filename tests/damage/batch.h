#pragma once
// Damages a pair's files, one damage after the other, in child processes that run the programs on
// each: a child that dies names the damage that killed it, and another goes on behind it.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "damages.h"
#include "programs.h"
#include "support/process.h"

namespace statecut::test {

struct Outcome {
  std::uint64_t damages = 0;
  std::vector<std::string> failures;  // each with the name of its damage
  std::vector<std::string> notes;     // what `judge` noted, each once
};

// What is wrong with what the programs did, "" when nothing is. A text behind '\n' is a note.
using Judge = std::function<std::string(const Damage&, const Programs&, const Behaviour& sound)>;

struct Limits {
  double seconds = 1.0;               // of processor time, each program
  std::uint64_t memory = 256U << 20;  // resident, beyond what the child began with
};

class Damager {
 public:
  // Works in a folder of its own on a memory file system when there is one. With `source`, the
  // pair is a cut of it.
  Damager(PairImage pair, const PairImage* source, Queries which);
  ~Damager();
  Damager(const Damager&) = delete;
  Damager& operator=(const Damager&) = delete;

  // The damages at `chosen`, or the one of these that STATECUT_DAMAGE names.
  Outcome run(const Damages& damages, std::vector<std::size_t> chosen, const Limits& limits,
              const Judge& judge);

  // The cut of the sound pair.
  [[nodiscard]] PairImage cutOf();

 private:
  void restore() const;
  void serve(const Damages& damages, const std::vector<std::size_t>& chosen, std::size_t from,
             std::size_t end, const Limits& limits, const Judge& judge);

  PairImage pair_;
  PairFiles files_;
  Programs programs_;
};

}  // namespace statecut::test
