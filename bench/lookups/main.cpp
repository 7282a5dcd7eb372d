// bench_lookups: measures lookups, one row of the table a name.

#include <cstdio>
#include <cstdlib>

#include "lookups/contest.h"
#include "lookups/measurements.h"

namespace statecut::bench {

namespace {

void measure(LookupSetup& setup) {
  std::vector<Names> kinds;
  {
    Session session;
    openSession(session, setup, LookupMode::kIn);
    kinds = collectNames();
    measureNamesInMemory(setup, kinds);
    measureZipsInMemory(setup);
  }
  measureNamesOnDisk(setup, kinds);
  measureCache(setup);
  measureOpening(setup, kinds.front());
  measureSql(setup);
  measureReader(setup, kinds);  // last: it changes how memory is taken
}

// Options with a value each, then names of rows.
bool parse(int argc, char** argv, LookupSetup& setup, std::filesystem::path& results) {
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word.rfind("--", 0) != 0) {
      setup.wanted.insert(word);
      continue;
    }
    if (++i == argc) return false;
    if (word == "--data") setup.data = argv[i];
    if (word == "--work") setup.work = argv[i];
    if (word == "--results") results = argv[i];
    if (word == "--rounds") setup.rounds = std::atoi(argv[i]);
  }
  return !setup.data.empty() && !setup.work.empty() && !results.empty() && setup.rounds > 0;
}

}  // namespace

}  // namespace statecut::bench

int main(int argc, char** argv) {
  using namespace statecut::bench;
  LookupSetup setup;
  std::filesystem::path results;
  if (!parse(argc, argv, setup, results)) {
    std::fputs("usage: bench_lookups --data D --work D --results D [--rounds N] ROW...\n", stderr);
    return 2;
  }
  std::string program = argv[0];
  std::string minTime = "--benchmark_min_time=0.02";
  char* words[] = {program.data(), minTime.data(), nullptr};
  int count = 2;
  benchmark::Initialize(&count, words);
  try {
    std::filesystem::create_directories(results);
    std::filesystem::create_directories(setup.work);
    measure(setup);
    for (const auto& [row, samples] : setup.rows) store(results, row, samples);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench: %s\n", error.what());
    return 1;
  }
  return 0;
}
