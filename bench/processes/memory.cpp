// Largest resident size of a cut: beyond its tables, and as the range file grows.

#include <regex>

#include "processes/cuts.h"

namespace statecut::bench {

namespace {

constexpr double kMiB = 1024 * 1024;

// Largest resident size of a command, in bytes.
double peakOf(const Setup& setup, const Command& command) {
  const Path file = setup.work / "peak.txt";
  Command launched{.words = {setup.program("bench_launch"), file}};
  launched.words.insert(launched.words.end(), command.words.begin(), command.words.end());
  run(launched);
  return std::stod(readFile(file)) * 1024;
}

// Sum of the tables that the log reports.
double loadedBytes(const Path& log) {
  const std::string text = readFile(log);
  static const std::regex required("required - +([0-9]+) bytes");
  double sum = 0;
  for (std::sregex_iterator at(text.begin(), text.end(), required), end; at != end; ++at)
    sum += std::stod((*at)[1]);
  return sum;
}

}  // namespace

RowSamples memoryPeak(const Setup& setup) {
  const Cut cut = prepareCut(setup, setup.work / "cut", {"TX", "OK"}, "4");
  const Command idle{.words = {setup.program("statecut"), "-h"}};
  Figure beyond{"", "MiB", {}, {}};
  double tables = 0;
  double base = 0;
  for (int round = 0; round < setup.rounds; ++round) {
    cut.remove();
    const double peak = peakOf(setup, cut.command);
    base = peakOf(setup, idle);
    tables = loadedBytes(cut.log);
    beyond.ours.push_back((peak - base - tables) / kMiB);
  }
  cut.remove();
  return {{beyond},
          {std::to_string(tables / kMiB) + " MiB of tables by the log; " +
           std::to_string(base / kMiB) + " MiB with none loaded (statecut -h)"}};
}

RowSamples memorySlope(const Setup& setup) {
  const int few = setup.quick ? 20 : 200;
  const int many = 10 * few;
  std::vector<Cut> cuts;
  for (const int megabytes : {few, many}) {
    const Path folder = setup.work / ("range-" + std::to_string(megabytes));
    runWell({.words = {setup.program("statedb"), "build", "--profile", "national", "--range-mb",
                       std::to_string(megabytes), "--out", folder}});
    cuts.push_back(prepareCut(setup, folder / "cut", {"TX", "OK"}, folder / "city.dir",
                              folder / "zip4us.dir"));
  }
  Figure grown{"", "MiB", {}, {}};
  for (int round = 0; round < setup.rounds; ++round) {
    const double small = peakOf(setup, cuts[0].command);
    const double large = peakOf(setup, cuts[1].command);
    grown.ours.push_back((large - small) / kMiB);
    for (const Cut& cut : cuts) cut.remove();
  }
  for (const Cut& cut : cuts) std::filesystem::remove_all(cut.log.parent_path().parent_path());
  return {{grown},
          {"range files of " + std::to_string(few) + " and " + std::to_string(many) + " MiB"}};
}

}  // namespace statecut::bench
