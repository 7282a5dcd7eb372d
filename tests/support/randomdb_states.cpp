#include <algorithm>
#include <cctype>

#include "support/randomdb.h"

namespace statecut::test {
namespace {

using builder::Random;

std::string linesOf(const std::vector<std::string>& states) {
  std::string text;
  for (const std::string& state : states) text += state + "\n";
  return text;
}

std::string lowerCase(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// Some of the states, in any order, one or more.
std::vector<std::string> someOf(std::vector<std::string> states, Random& random) {
  for (std::size_t i = states.size(); i > 1; --i)
    std::swap(states[i - 1], states[random.below(static_cast<std::uint32_t>(i))]);
  states.resize(random.between(1, static_cast<std::uint32_t>(states.size())));
  return states;
}

std::vector<std::string> repeated(const std::string& state, std::uint32_t times) {
  return std::vector<std::string>(times, state);
}

struct ListKind {
  std::uint32_t weight;
  const char* name;
  std::string (*make)(const std::vector<std::string>& states, Random& random);
};

const ListKind kKinds[] = {
    {12, "all states by an empty list",
     [](const std::vector<std::string>&, Random&) { return std::string(); }},
    {2, "all states by an empty first line",
     [](const std::vector<std::string>&, Random&) { return std::string("\nTX\n"); }},
    {25, "one state",
     [](const std::vector<std::string>& s, Random& r) { return pick(s, r) + "\n"; }},
    {25, "some states",
     [](const std::vector<std::string>& s, Random& r) { return linesOf(someOf(s, r)); }},
    {5, "a state without ZIP codes",
     [](const std::vector<std::string>&, Random&) { return std::string("UM\n"); }},
    {8, "states given twice",
     [](const std::vector<std::string>& s, Random& r) {
       return linesOf(someOf(s, r)) + linesOf(someOf(s, r));
     }},
    {4, "a state given many times",
     [](const std::vector<std::string>& s, Random& r) {
       return linesOf(repeated(pick(s, r), r.between(3, 66)));
     }},
    {4, "AE four times",
     [](const std::vector<std::string>& s, Random& r) {
       return linesOf(repeated("AE", 4)) + pick(s, r) + "\n";
     }},
    {7, "lower case",
     [](const std::vector<std::string>& s, Random& r) { return lowerCase(linesOf(someOf(s, r))); }},
    {4, "comments, an empty line and more behind it",
     [](const std::vector<std::string>& s, Random& r) {
       return pick(s, r) + "  kept" + std::string(r.below(120), '.') + "\n" + pick(s, r) + "x\n\n" +
              pick(s, r) + "\n";
     }},
    {2, "no new line at the end",
     [](const std::vector<std::string>& s, Random& r) { return pick(s, r); }},
    {1, "a bad state",
     [](const std::vector<std::string>& s, Random& r) {
       return pick(s, r) + "\nZZ\nN\n" + pick(s, r) + "\n";
     }},
    {1, "more states than the list holds",
     [](const std::vector<std::string>& s, Random& r) {
       return linesOf(repeated(pick(s, r), 67));
     }},
};

}  // namespace

std::string chooseStates(RandomCase& made, const std::vector<std::string>& states, Random& random) {
  made.statesFromFile = random.percent(50);
  std::uint32_t total = 0;
  for (const ListKind& kind : kKinds) total += kind.weight;
  std::uint32_t chosen = random.below(total);
  const ListKind* kind = kKinds;
  while (chosen >= kind->weight) chosen -= (kind++)->weight;
  made.stateText = kind->make(states, random);
  if (made.statesFromFile && random.below(200) == 0) {
    made.stateText.reset();
    return "a missing state file";
  }
  return kind->name + std::string(made.statesFromFile ? " (file)" : " (standard input)");
}

}  // namespace statecut::test
