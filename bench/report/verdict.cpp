#include "report/verdict.h"

#include <cmath>
#include <cstdio>

namespace statecut::bench {

namespace {

// As the table shows it.
double rounded(Measure measure, double value) {
  const double steps = measure == Measure::kRatio ? 100 : 10;
  return std::round(value * steps) / steps;
}

std::string format(const char* pattern, double value) {
  char text[40];
  std::snprintf(text, sizeof text, pattern, value);
  return text;
}

}  // namespace

const Figure* Result::worst() const {
  const Figure* worst = nullptr;
  for (const Figure& figure : samples.figures)
    if (worst == nullptr || median(ratios(figure)) > median(ratios(*worst))) worst = &figure;
  return worst;
}

bool Result::meets(double bound) const {
  const Figure* figure = worst();
  return figure != nullptr && rounded(row->measure, median(ratios(*figure))) <= bound;
}

std::string valueText(Measure measure, double value) {
  switch (measure) {
    case Measure::kMebibytes:
      return format("%+.1f MiB", rounded(measure, value) + 0.0);
    case Measure::kPercent:
      return format("%.1f %%", value);
    default:
      return format(value < 0.095 ? "%.3f" : "%.2f", value);
  }
}

std::string boundText(Measure measure, double bound) {
  switch (measure) {
    case Measure::kMebibytes:
      return bound == 0 ? "0" : format("+ %g MiB", bound);
    case Measure::kPercent:
      return format("%g %%", bound);
    default:
      return "≤ " + format("%.2f", bound);
  }
}

std::string verdict(const Result& result) {
  if (result.worst() == nullptr) return "not measured";
  if (result.meets(result.row->stretch)) return "stretch";
  return result.meets(result.row->goal) ? "goal" : "misses";
}

std::vector<Result> loadResults(const std::filesystem::path& folder) {
  std::vector<Result> results;
  for (const Row& row : rows()) results.push_back({&row, load(folder, row.id)});
  return results;
}

}  // namespace statecut::bench
