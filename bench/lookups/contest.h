#pragma once
// Lookups that are measured against each other: benchmarks of one group, run in turn.

#include <benchmark/benchmark.h>

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "measure/samples.h"

namespace statecut::bench {

// Nanoseconds of each benchmark, a number a round.
using Times = std::map<std::string, std::vector<double>>;

// Runs every registered benchmark whose name begins with `group`, one after the other, as often as
// there are rounds. CPU time, which other processes disturb least.
Times runGroup(const std::string& group, int rounds, Times times = {});

// Times of "GROUP/ours" and "GROUP/peer" as a figure.
Figure figureOf(const Times& times, const std::string& group, const std::string& ours,
                const std::string& peer);

// Registers a benchmark that asks `find` for each of the queries in turn. The queries must outlive
// it. The answers are numbers.
template <typename Query, typename Find>
void addLookups(const std::string& name, const std::vector<Query>& queries, Find find) {
  benchmark::RegisterBenchmark(name.c_str(), [&queries, find](benchmark::State& state) {
    std::uint32_t sum = 0;
    std::size_t at = 0;
    for (auto _ : state) {
      sum += find(queries[at]);
      if (++at == queries.size()) at = 0;
    }
    benchmark::DoNotOptimize(sum);
  });
}

// Throws when two ways to ask give another answer to a query.
template <typename Query, typename Ours, typename Peer>
void compareAnswers(const std::string& what, const std::vector<Query>& queries, Ours ours,
                    Peer peer) {
  for (const Query& query : queries)
    if (ours(query) != peer(query)) throw std::runtime_error(what + ": answers differ");
}

}  // namespace statecut::bench
