#include "lookups/contest.h"

namespace statecut::bench {

namespace {

class Collector : public benchmark::BenchmarkReporter {
 public:
  explicit Collector(Times& times) : times_(times) {}
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) times_[run.benchmark_name()].push_back(run.GetAdjustedCPUTime());
  }

 private:
  Times& times_;
};

}  // namespace

Times runGroup(const std::string& group, int rounds, Times times) {
  Collector collector(times);
  for (int round = 0; round < rounds; ++round)
    if (benchmark::RunSpecifiedBenchmarks(&collector, "^" + group + "/") == 0)
      throw std::runtime_error("no benchmark " + group);
  return times;
}

Figure figureOf(const Times& times, const std::string& group, const std::string& ours,
                const std::string& peer) {
  return {group, "ns", times.at(group + "/" + ours), times.at(group + "/" + peer)};
}

}  // namespace statecut::bench
