#pragma once
// Database pairs as bytes, what their models say of them, and cuts of them by the whole program.

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "dbbuilder/model.h"
#include "dbfiles/controlrec.h"
#include "support/process.h"

namespace statecut::test {

struct Pair {
  FileBytes ref;
  FileBytes rng;

  template <std::size_t At>
  [[nodiscard]] std::uint32_t word(Num<At, 4>) const {
    return le::get<4>(ref.data() + At);
  }
  // `count` bytes at an RBA, fewer at the file's end.
  [[nodiscard]] FileBytes refBytes(std::uint64_t rba, std::uint64_t count) const;
  [[nodiscard]] FileBytes rngBytes(std::uint64_t rba, std::uint64_t count) const;
  // Record `index` of the table at an RBA.
  template <typename RowType>
  [[nodiscard]] RowType row(std::uint32_t rba, std::uint64_t index) const {
    RowType found{};
    const FileBytes bytes = refBytes(rba + index * RowType::size, RowType::size);
    std::copy(bytes.begin(), bytes.end(), found.bytes.begin());
    return found;
  }
  [[nodiscard]] std::uint32_t zipKey(std::uint32_t zip) const;  // 0 = not in the index
};

Pair pairOf(const builder::Model& model);

// A valid pair in which the lookups find something, a function of the seed; perhaps with ZIP codes
// of areas that no list can name, and with a ZIP code in record 0.
struct Source {
  builder::Model model;
  Pair pair;
  std::vector<std::string> states;  // that it has names or ZIP codes of, sorted
};
Source randomSource(std::uint64_t seed);

using States = std::vector<std::string>;

std::string linesOf(const States& states);

// How a cut is called. The names are relative to the folder, except that of the program.
struct Manner {
  std::string list;          // the state list
  bool listInFile = false;   // else on standard input
  std::string folder = ".";  // in the run's folder; the names below start there
  std::string ref = "city.dir";
  std::string rng = "zip4us.dir";
  std::string refOut = "city.sc";
  std::string rngOut = "zip4us.sc";
  std::string log = "tolvlog.txt";
  int logLevel = 5;
  std::uint32_t stamp = 1500000000;
  bool loaded = false;  // by a fresh load of the program: other addresses, other old memory
};

struct CutRun {
  int status = 0;   // 0 to 255, or 1000 and the signal
  Pair made;        // empty where a file was not made
  std::string log;  // without times and process ids
  std::string out;
  std::string err;
  std::string harm;  // what happened to the inputs; empty when they stayed as they were
};

// Runs the program on the pair in a process and a folder of its own.
CutRun cut(const Pair& source, const Manner& manner);
CutRun cut(const Pair& source, const States& states);  // an empty list means all

// What a task gives, done in a process of its own: the lookups keep buffers from call to call, and
// so does the oracle of what stands in them.
std::vector<std::string> inOwnProcess(const std::function<std::vector<std::string>()>& task);

}  // namespace statecut::test
