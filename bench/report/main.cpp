// bench_report RESULTS [FACTS REASONS DOCUMENT]: prints the table, and writes the document.

#include <fstream>
#include <iostream>

#include "report/document.h"

namespace {

std::vector<std::string> linesOf(const char* path) {
  std::ifstream file(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

// Lines "ROW: TEXT"; a line that begins with a blank goes on with the text.
std::map<std::string, std::string> reasonsOf(const char* path) {
  std::map<std::string, std::string> reasons;
  std::string row;
  for (const std::string& line : linesOf(path)) {
    const std::size_t colon = line.find(": ");
    if (line.empty() || line[0] == '#') continue;
    if (line[0] == ' ') {
      reasons[row] += " " + line.substr(line.find_first_not_of(' '));
    } else if (colon != std::string::npos) {
      row = line.substr(0, colon);
      reasons[row] = line.substr(colon + 2);
    }
  }
  return reasons;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace statecut::bench;
  if (argc != 2 && argc != 5) {
    std::cerr << "usage: bench_report RESULTS [FACTS REASONS DOCUMENT]\n";
    return 2;
  }
  const std::vector<Result> results = loadResults(argv[1]);
  printTable(std::cout, results);
  if (argc == 2) return 0;
  std::ofstream document(argv[4]);
  writeDocument(document, results, linesOf(argv[2]), reasonsOf(argv[3]));
  return document.flush() ? 0 : 1;
}
