#pragma once
// Many cuts of one pair: a folder of products, each of them verified, and a manifest of it all.

#include <iosfwd>
#include <string>
#include <vector>

#include "cuts/products.h"
#include "plan/plan.h"
#include "verify/pair.h"

namespace statecut::cuts {

struct Options {
  std::string ref;
  std::string rng;
  std::string out;
  std::size_t jobs = 1;    // cuts at once
  bool force = false;      // make anew what is there
  bool keepGoing = false;  // begin others after one has failed
  bool json = false;
};

// Which products; at most one of the three.
struct Choice {
  bool each = false;
  std::vector<std::string> words;  // NAME=TX,OK
  std::string file;
  [[nodiscard]] bool any() const { return each || !words.empty() || !file.empty(); }
};

// The pair to cut; false when it can't be: `error` says why.
bool openSource(const std::string& ref, const std::string& rng, verify::Pair& source,
                std::string& error);

// The plans of the products that are chosen; with `each`, of the states that have ZIP codes. What
// is wrong with the list goes to `problems`.
std::vector<plan::Named> planProducts(const Choice& choice, const verify::Pair& source,
                                      std::vector<std::string>& problems);

// 0 all made or already there, 1 some not, 2 can't run (why on `err`).
int run(const Options& options, const Choice& choice, std::ostream& out, std::ostream& err);

}  // namespace statecut::cuts
