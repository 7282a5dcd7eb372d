#pragma once
// A run over products: what is there already, what is to be made, and the processes that make it.

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "cuts/checking.h"
#include "cuts/children.h"
#include "cuts/cuts.h"
#include "cuts/manifest.h"
#include "cuts/progress.h"
#include "cuts/signals.h"
#include "plan/plan.h"

namespace statecut::cuts {

// How many products are begun and not done at most when so many are cut at once: those that wait
// for the disk take no processor.
constexpr std::size_t mostAtOnce(std::size_t jobs) { return 3 * jobs; }

class Schedule {
 public:
  // `plans` in the order in which they are to be made.
  Schedule(const Options& options, Source& source, const std::string& statecut,
           const std::vector<plan::Named>& plans);

  // Digests the source, and what the manifest says is there. False when that can't be done.
  bool compare(std::string& error);
  [[nodiscard]] const std::vector<const plan::Named*>& toMake() const { return toMake_; }

  // Makes what is to be made. True when all products of the run are there in the end.
  bool run(Progress& progress);

 private:
  using Clock = std::chrono::steady_clock;

  enum class Step { Cutting, Checking, Publishing };

  struct Job {
    const plan::Named* named = nullptr;
    Step step = Step::Cutting;
    Child child;  // that does the step
    Clock::time_point begin;
    Checked checked;
  };

  bool describeSource(std::string& error);
  [[nodiscard]] bool agrees(const Manifest& earlier, const plan::Named& named) const;
  bool callAll(const std::vector<std::function<std::string()>>& functions,
               std::vector<std::string>& results);

  [[nodiscard]] bool hasRoom() const;  // for one more job
  void start(const plan::Named& named);
  bool advance(Job& job);  // false: it is at its end
  bool failedStep(const Job& job, const Ended& ended);
  void check(Job& job);
  bool publishChecked(Job& job);
  void finish(const Job& job);
  void fail(const Job& job, const std::string& why);
  [[nodiscard]] std::string reasonOf(const Job& job, const Ended& ended) const;
  void stopAll();
  void draw() const;
  bool save(bool now);

  [[nodiscard]] std::string pathOf(const std::string& product) const;
  [[nodiscard]] std::string partOf(const std::string& product) const;

  const Options& options_;
  Source& source_;
  const std::string& statecut_;
  const std::vector<plan::Named>& plans_;
  Signals signals_;
  Manifest manifest_;
  std::string saved_;  // the manifest as it was last written
  Clock::time_point savedAt_;
  std::vector<const plan::Named*> there_;
  std::vector<const plan::Named*> toMake_;
  std::size_t next_ = 0;  // of toMake_
  std::vector<Job> running_;
  std::vector<std::string> unfinished_;  // begun, and stopped
  std::string why_;                      // no more products are begun
  std::size_t failures_ = 0;
  Progress* progress_ = nullptr;
};

}  // namespace statecut::cuts
