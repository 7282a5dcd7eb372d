#include "measure/samples.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace statecut::bench {

namespace {

// Lines "figure NAME", "unit UNIT", "ours NUMBER...", "peer NUMBER...", "note TEXT".
void writeNumbers(std::ofstream& file, const char* word, const std::vector<double>& numbers) {
  file << word;
  for (const double number : numbers) file << ' ' << number;
  file << '\n';
}

std::vector<double> readNumbers(const std::string& text) {
  std::istringstream stream(text);
  std::vector<double> numbers;
  for (double number = 0; stream >> number;) numbers.push_back(number);
  return numbers;
}

std::filesystem::path fileOf(const std::filesystem::path& folder, const std::string& row) {
  return folder / (row + ".txt");
}

}  // namespace

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
  std::ofstream file(fileOf(folder, row));
  file.precision(9);
  for (const Figure& figure : samples.figures) {
    file << "figure " << figure.name << "\nunit " << figure.unit << '\n';
    writeNumbers(file, "ours", figure.ours);
    writeNumbers(file, "peer", figure.peer);
  }
  for (const std::string& note : samples.notes) file << "note " << note << '\n';
  if (!file.flush()) throw std::runtime_error(fileOf(folder, row).string() + ": cannot be written");
}

RowSamples load(const std::filesystem::path& folder, const std::string& row) {
  std::ifstream file(fileOf(folder, row));
  RowSamples samples;
  for (std::string line; std::getline(file, line);) {
    const std::size_t blank = std::min(line.find(' '), line.size());
    const std::string word = line.substr(0, blank);
    const std::string rest = blank < line.size() ? line.substr(blank + 1) : "";
    if (word == "figure") samples.figures.push_back({rest, "", {}, {}});
    if (word == "note") samples.notes.push_back(rest);
    if (samples.figures.empty()) continue;
    Figure& figure = samples.figures.back();
    if (word == "unit") figure.unit = rest;
    if (word == "ours") figure.ours = readNumbers(rest);
    if (word == "peer") figure.peer = readNumbers(rest);
  }
  return samples;
}

}  // namespace statecut::bench
