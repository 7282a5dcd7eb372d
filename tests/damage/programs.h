#pragma once
// The programs and a Database on one pair, run inside this process: what each of them does is kept
// and compared, and each must end by itself in bounded time.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "damages.h"
#include "readerprogram.h"

namespace statecut::test {

struct PairFiles {
  std::string folder;
  std::string name;

  [[nodiscard]] std::string ref() const { return folder + "/" + name + ".ref"; }
  [[nodiscard]] std::string rng() const { return folder + "/" + name + ".rng"; }
};

using Query = std::vector<std::string>;  // OP ARG...

// Every operation, on every key and name of the pair and on some that it does not have; or one
// call each.
enum class Queries : std::uint8_t { kAll, kOneEach };
std::vector<Query> queriesOf(const PairImage& pair, Queries which);

enum class Program : std::uint8_t {
  kCut,
  kVerify,
  kInfo,
  kIn,
  kFirst,
  kOff,
  kCached,
  kReader,
  kDiff,
  kCount_
};
inline constexpr std::size_t kPrograms = static_cast<std::size_t>(Program::kCount_);
const char* nameOf(Program program);
inline constexpr std::uint16_t kAllPrograms = 0x1FF;
constexpr std::uint16_t bitOf(Program program) {
  return static_cast<std::uint16_t>(1U << static_cast<unsigned>(program));
}

// What a user of the pair gets.
struct Behaviour {
  int cutStatus = 0;
  std::string cutRef;
  std::string cutRng;
  std::array<std::string, 5> answers;  // by variant: in, first, off, cached, Database

  // "" when both are the same, else what differs; of the programs whose bits are set.
  [[nodiscard]] std::string difference(const Behaviour& other,
                                       std::uint16_t which = kAllPrograms) const;
  [[nodiscard]] bool cutDiffers(const Behaviour& other) const {
    return cutRef != other.cutRef || cutRng != other.cutRng;
  }
};

struct Verdict {
  int status = 0;
  std::string text;
};

class Programs {
 public:
  // `source` is empty, or the pair that the files were cut from.
  Programs(PairFiles files, PairFiles source, std::vector<Query> queries, ReaderProgram reader);

  // Runs those whose bits are set; `onStart(program)` is told before each. A program that takes
  // more processor time is named in `tooLong`.
  template <typename OnStart>
  void run(std::uint16_t which, double mostSeconds, OnStart&& onStart) {
    tooLong.clear();
    wrong.clear();
    for (std::size_t i = 0; i < kPrograms; ++i) {
      const auto program = static_cast<Program>(i);
      if ((which & bitOf(program)) == 0) continue;
      onStart(program);
      runOne(program, mostSeconds);
    }
  }

  Behaviour behaviour;
  Verdict alone;
  Verdict withSource;
  Verdict diff;  // from the sound pair to the files; the text is that of standard error
  std::string tooLong;
  std::string wrong;  // of the Database

 private:
  void runOne(Program program, double mostSeconds);
  void cut();
  void verify();
  void info();
  void query(Program program);
  void difference();

  PairFiles files_;
  PairFiles source_;
  std::vector<Query> queries_;
  ReaderProgram reader_;
  bool json_ = false;
};

}  // namespace statecut::test
