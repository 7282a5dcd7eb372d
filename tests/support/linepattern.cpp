#include "support/linepattern.h"

#include <algorithm>
#include <cctype>

namespace statecut::test {
namespace {

bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

}  // namespace

bool matchesLine(std::string_view pattern, std::string_view line) {
  if (pattern.empty()) return line.empty();
  const char first = pattern.front();
  const std::string_view rest = pattern.substr(1);
  if (first == kDigits || first == kAnyText) {
    std::size_t taken = first == kDigits ? 1 : 0;
    if (taken == 1 && (line.empty() || !isDigit(line.front()))) return false;
    while (true) {
      if (matchesLine(rest, line.substr(taken))) return true;
      if (taken == line.size()) return false;
      const char next = line[taken];
      if (first == kDigits ? !isDigit(next) : next == ';') return false;
      ++taken;
    }
  }
  if (line.empty()) return false;
  if (first == kDigit ? !isDigit(line.front()) : first != line.front()) return false;
  return matchesLine(rest, line.substr(1));
}

std::string showPattern(std::string_view pattern) {
  std::string shown;
  for (const char c : pattern) {
    if (c == kDigit) {
      shown += '#';
    } else if (c == kDigits) {
      shown += "<number>";
    } else if (c == kAnyText) {
      shown += "<any>";
    } else {
      shown += c;
    }
  }
  return shown;
}

std::vector<std::string> splitLines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    lines.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return lines;
}

std::string compareLines(const std::string& what, const std::vector<std::string>& patterns,
                         std::string_view text) {
  const std::vector<std::string> lines = splitLines(text);
  const std::size_t common = std::min(patterns.size(), lines.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (matchesLine(patterns[i], lines[i])) continue;
    return what + " differs at line " + std::to_string(i + 1) +
           "\n  expected: " + showPattern(patterns[i]) + "\n  actual:   " + lines[i] + "\n";
  }
  if (patterns.size() > common)
    return what + " ends early: line " + std::to_string(common + 1) + " of " +
           std::to_string(patterns.size()) +
           " is missing\n  expected: " + showPattern(patterns[common]) + "\n";
  if (lines.size() > common)
    return what + " has a line too many\n  after line " + std::to_string(common) +
           "\n  actual:   " + lines[common] + "\n";
  if (!text.empty() && text.back() != '\n') return what + " does not end in a new line\n";
  return {};
}

}  // namespace statecut::test
