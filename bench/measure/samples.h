#pragma once
// What a row of the table measured: its figures, each with a pair of numbers a round.

#include <filesystem>
#include <string>
#include <vector>

namespace statecut::bench {

struct Figure {
  std::string name;          // of a row with several
  std::string unit;          // of both numbers: "s", "ns", "bytes", "MiB", "%"
  std::vector<double> ours;  // a number a round
  std::vector<double> peer;  // as many; empty when `ours` is no amount to compare
};

// Numbers round by round, ours over the peer's; ours when there is no peer.
std::vector<double> ratios(const Figure& figure);
double median(std::vector<double> values);  // NaN when there is none
double minimum(const std::vector<double>& values);

struct RowSamples {
  std::vector<Figure> figures;
  std::vector<std::string> notes;  // about this run, for the document
};

// One file a row, below the folder of the results: ROW.json, with every round.
void store(const std::filesystem::path& folder, const std::string& row, const RowSamples& samples);

}  // namespace statecut::bench
