#include "measure/samples.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>

#include "measure/files.h"

namespace statecut::bench {

std::vector<double> ratios(const Figure& figure) {
  if (figure.peer.empty()) return figure.ours;
  std::vector<double> values;
  for (std::size_t i = 0; i < figure.ours.size() && i < figure.peer.size(); ++i)
    values.push_back(figure.ours[i] / figure.peer[i]);
  return values;
}

double median(std::vector<double> values) {
  if (values.empty()) return std::numeric_limits<double>::quiet_NaN();
  std::sort(values.begin(), values.end());
  const std::size_t half = values.size() / 2;
  return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

double minimum(const std::vector<double>& values) {
  if (values.empty()) return std::numeric_limits<double>::quiet_NaN();
  return *std::min_element(values.begin(), values.end());
}

void store(const std::filesystem::path& folder, const std::string& row, const RowSamples& samples) {
  nlohmann::ordered_json json = {
      {"row", row}, {"figures", nlohmann::ordered_json::array()}, {"notes", samples.notes}};
  for (const Figure& figure : samples.figures)
    json["figures"].push_back({{"name", figure.name},
                               {"unit", figure.unit},
                               {"ours", figure.ours},
                               {"other", figure.peer},
                               {"median", median(ratios(figure))},
                               {"minimum", minimum(ratios(figure))}});
  writeFile(folder / (row + ".json"), json.dump(1) + "\n");
}

}  // namespace statecut::bench
