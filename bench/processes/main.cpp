// bench_processes: measures whole processes, one row of the table a name.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "processes/setup.h"

namespace statecut::bench {

namespace {

constexpr std::pair<const char*, RowSamples (*)(const Setup&)> kRows[] = {
    {"cut-warm", cutWarm},
    {"cut-small", cutSmall},
    {"cut-all", cutAll},
    {"cut-each", cutEach},
    {"cuts-made", productsMade},
    {"cuts-alone", productsCut},
    {"cuts-plan", planEach},
    {"cut-floor", cutFloor},
    {"cut-cold", cutCold},
    {"cut-synced", cutSynced},
    {"cut-baseline", cutBaseline},
    {"bytes-read", bytesRead},
    {"bytes-written", bytesWritten},
    {"memory-peak", memoryPeak},
    {"memory-slope", memorySlope},
    {"open-memory", openMemory},
    {"open-baseline", openBaseline},
    {"startup", startup},
    {"query", query},
    {"verify", verifyCut},
    {"growth", growth}};

int measure(const Setup& setup, const Path& results, const std::vector<std::string>& rows) {
  for (const auto& [row, measureRow] : kRows) {
    if (std::find(rows.begin(), rows.end(), row) == rows.end()) continue;
    std::fprintf(stderr, "bench: %s\n", row);
    store(results, row, measureRow(setup));
  }
  return 0;
}

}  // namespace

}  // namespace statecut::bench

int main(int argc, char** argv) {
  using namespace statecut::bench;
  // Two cuts of the same states must be equal.
  setenv("SOURCE_DATE_EPOCH", "1700000000", 1);
  Setup setup;
  Path results;
  std::vector<std::string> rows;
  CLI::App app{"Measures whole processes"};
  app.add_option("--bin", setup.bin)->required();
  app.add_option("--baseline", setup.baseline);
  app.add_option("--data", setup.data)->required();
  app.add_option("--work", setup.work)->required();
  app.add_option("--results", results)->required();
  app.add_option("--rounds", setup.rounds)->capture_default_str();
  app.add_flag("--quick", setup.quick);
  app.add_option("rows", rows);
  CLI11_PARSE(app, argc, argv);
  try {
    std::filesystem::create_directories(results);
    std::filesystem::create_directories(setup.work);
    return measure(setup, results, rows);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench: %s\n", error.what());
    return 1;
  }
}
