#pragma once
// Inside of callsOn: one function a family of lookups.

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/le.h"
#include "call.h"
#include "dbbuilder/random.h"
#include "dbfiles/controlrec.h"

namespace statecut::test {

struct Name {
  std::string state;
  std::string name;
};

class CallMaker {
 public:
  CallMaker(const Bytes& file, std::uint64_t seed, std::size_t most)
      : file_(file), random_(seed), most_(most) {}

  std::vector<Call> all() {
    zips();
    cityNames();
    cityKeys();
    phonetics();
    streets();
    variations();
    firms();
    std::stable_sort(calls_.begin(), calls_.end(),
                     [](const Call& a, const Call& b) { return a.op < b.op; });
    return calls_;
  }

 private:
  template <std::size_t At>
  [[nodiscard]] std::uint32_t word(Num<At, 4>) const {
    return le::get<4>(file_.data() + At);
  }

  Call& add(Op op, std::int64_t a = 0, std::int64_t b = 0) {
    calls_.push_back({});
    calls_.back().op = op;
    calls_.back().a = a;
    calls_.back().b = b;
    return calls_.back();
  }
  void addNamed(Op op, const std::string& state, const std::string& name) {
    Call& call = add(op);
    call.state = state;
    call.name = name;
  }

  // In and around 0 to count.
  std::vector<std::int64_t> keys(std::int64_t count) {
    std::vector<std::int64_t> made = {-2147483648L, -1,    0,         1,         2,
                                      count - 1,    count, count + 1, count + 2, 65535,
                                      65536,        65537, 2147483647};
    if (count <= static_cast<std::int64_t>(most_)) {
      for (std::int64_t key = 3; key < count - 1; ++key) made.push_back(key);
    } else {
      for (std::size_t i = 0; i < most_; ++i)
        made.push_back(random_.below(static_cast<std::uint32_t>(count)));
    }
    return made;
  }
  template <typename T>
  std::vector<T> sample(const std::vector<T>& from) {
    if (from.size() <= most_) return from;
    std::vector<T> chosen = {from.front(), from[1], from.back()};
    while (chosen.size() < most_)
      chosen.push_back(from[random_.below(static_cast<std::uint32_t>(from.size()))]);
    return chosen;
  }
  [[nodiscard]] std::string bytes(std::uint64_t at, std::size_t count) const {
    return {file_.begin() + static_cast<std::ptrdiff_t>(at),
            file_.begin() + static_cast<std::ptrdiff_t>(at + count)};
  }

  // A name, and names that are near it.
  std::vector<std::string> around(const std::string& name) {
    std::string changed = name.empty() ? "Q" : name;
    char& c = changed[random_.below(static_cast<std::uint32_t>(changed.size()))];
    c = static_cast<char>(c + 1);
    return {name, changed, name + "X", name.substr(0, name.size() / 2),
            name.substr(0, name.empty() ? 0 : name.size() - 1)};
  }
  // Around the longest length that is looked up; and a negative one.
  void lengths(Op op, std::int32_t longest, std::int64_t a = 0) {
    for (std::int32_t more = -1; more <= 2; ++more) {
      Call& call = add(op, a);
      call.state = "TX";
      call.name.assign(static_cast<std::size_t>(longest + more), 'A');
    }
    for (const std::int32_t length : {-1, 0}) {
      Call& call = add(op, a);
      call.state = "TX";
      call.name.push_back('A');
      call.length = length;
    }
  }

  void zips();
  void cityNames();
  void patterns(const Name& name, std::uint32_t position);
  void cityKeys();
  void phonetics();
  void streets();
  void variations();
  void firms();
  std::vector<std::pair<std::uint32_t, std::string>> packed(std::uint64_t rba, std::uint64_t count,
                                                            std::uint32_t skipped);

  const Bytes& file_;
  builder::Random random_;
  std::size_t most_;
  std::vector<Call> calls_;
};

}  // namespace statecut::test
