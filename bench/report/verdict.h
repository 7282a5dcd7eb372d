#pragma once
// A row with what was measured for it.

#include <map>
#include <string>
#include <vector>

#include "measure/samples.h"
#include "report/rows.h"

namespace statecut::bench {

struct Result {
  const Row* row;
  RowSamples samples;

  // The figure with the largest median; null when nothing was measured.
  [[nodiscard]] const Figure* worst() const;
  [[nodiscard]] bool meets(double bound) const;
};

// "0.87", "+3.1 MiB", "4.2 %".
std::string valueText(Measure measure, double value);
std::string boundText(Measure measure, double bound);
// "stretch", "goal", "misses", "not measured".
std::string verdict(const Result& result);

std::vector<Result> loadResults(const std::filesystem::path& folder);

}  // namespace statecut::bench
