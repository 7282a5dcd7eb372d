#include "cuts/products.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <optional>
#include <set>
#include <string_view>

#include "cuts/names.h"
#include "plan/plan.h"
#include "run/statetable.h"
#include "verify/verify.h"

namespace statecut::cuts {

namespace {

constexpr char kBlanks[] = " \t\r";

std::string trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Adds products to a list, or what is wrong with them.
class Adder {
 public:
  // `place` begins each problem: "--product" or "FILE:12".
  void add(const std::string& place, const std::string& name, const std::string& states) {
    if (!isProductName(name)) return problem({place, ": no name for a folder: \"", name, "\""});
    if (!names_.insert(name).second) return problem({place, ": ", name, " stands there twice"});
    const auto parsed = verify::parseStates(states);
    if (!parsed)
      return problem({place, ": ", name, ": no list of two-letter states: \"", states, "\""});
    for (const std::string& state : *parsed)
      if (!plan::isState(state)) problem({place, ": ", name, ": no such state: ", state});
    list_.products.push_back({name, *parsed});
  }

  void problem(std::initializer_list<std::string_view> pieces) {
    std::string& text = list_.problems.emplace_back();
    for (const std::string_view piece : pieces) text += piece;
  }
  ProductList take() { return std::move(list_); }

 private:
  ProductList list_;
  std::set<std::string> names_;
};

}  // namespace

ProductList parseProducts(const std::vector<std::string>& words) {
  Adder adder;
  for (const std::string& word : words) {
    const std::size_t sign = word.find('=');
    if (sign == std::string::npos)
      adder.problem({"--product: not NAME=STATES: \"", word, "\""});
    else
      adder.add("--product", trimmed(word.substr(0, sign)), word.substr(sign + 1));
  }
  return adder.take();
}

ProductList readProducts(const std::string& path) {
  Adder adder;
  std::ifstream in(path);
  std::string line;
  std::size_t number = 0;
  while (std::getline(in, line)) {
    std::string place = path;
    place.append(":").append(std::to_string(++number));
    const std::string text = trimmed(line.substr(0, line.find('#')));
    if (text.empty()) continue;
    const std::size_t sign = text.find(':');
    if (sign == std::string::npos)
      adder.problem({place, ": not NAME: STATES: \"", text, "\""});
    else
      adder.add(place, trimmed(text.substr(0, sign)), trimmed(text.substr(sign + 1)));
  }
  // A folder opens, and fails at its first line.
  if (in.bad() || (number == 0 && !in.eof())) adder.problem({path, ": ", std::strerror(errno)});
  return adder.take();
}

ProductList everyState() {
  ProductList list;
  for (const char* state : abvstates) list.products.push_back({state, {state}});
  return list;
}

}  // namespace statecut::cuts
