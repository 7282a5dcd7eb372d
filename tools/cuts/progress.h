#pragma once
// What a run tells while it goes on: on a terminal a line a running product and a total, drawn over
// and over; in a pipe a line a product that ended; or a JSON object for each.

#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace statecut::cuts {

enum class Outcome { Made, There, Failed };

struct Running {
  std::string product;
  std::string step;  // "cutting" ...
  std::uint64_t bytes = 0;
  std::uint64_t planned = 0;
};

struct Finished {
  std::string product;
  Outcome outcome = Outcome::Made;
  std::uint64_t bytes = 0;
  double seconds = 0;
  std::string error;
  std::vector<std::string> warnings;
};

struct Totals {
  std::size_t products = 0;        // of the run
  std::uint64_t plannedBytes = 0;  // of what is to be made
};

class Progress {
 public:
  enum class Form { Terminal, Lines, Json };

  Progress(Form form, const Totals& totals, std::ostream& out, std::ostream& err);

  // How often draw() is worth a call; 0 = never.
  [[nodiscard]] int interval() const { return form_ == Form::Terminal ? 200 : 0; }
  void draw(const std::vector<Running>& running);
  void finish(const Finished& one);
  // After the last product: `notMade` were not begun or not ended, and why.
  void end(const std::vector<std::string>& notMade, const std::string& why);

 private:
  [[nodiscard]] double seconds() const;
  [[nodiscard]] std::string totalLine(std::uint64_t runningBytes) const;
  void clear();
  void printTable(std::size_t notMade);
  void printSummaryJson(const std::vector<std::string>& notMade, const std::string& why);

  Form form_;
  Totals totals_;
  std::ostream& out_;
  std::ostream& err_;
  std::chrono::steady_clock::time_point begin_;
  int drawn_ = 0;  // lines that are to be drawn over

  struct Sum {
    std::size_t products = 0;
    std::uint64_t bytes = 0;
  };
  Sum made_, there_;
  std::vector<std::string> failed_;
};

}  // namespace statecut::cuts
