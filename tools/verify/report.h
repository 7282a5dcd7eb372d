#pragma once
// The findings of a check.

#include <array>
#include <concepts>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "verify/rules.h"

namespace statecut::verify {

enum class File { Reference, Range };
inline constexpr std::int64_t kNoRecord = -1;

struct Finding {
  RuleId rule;
  File file;
  std::int64_t record;   // position in its table, the ZIP code in the ZIP index, or kNoRecord
  std::uint64_t offset;  // in the file
  std::string text;
};

// Keeps the first findings of each rule and counts the rest, so that damage cannot flood.
class Report {
 public:
  static constexpr std::uint64_t kKeptPerRule = 20;

  void add(RuleId rule, File file, std::int64_t record, std::uint64_t offset, std::string text) {
    if (countOne(rule)) keep(rule, file, record, offset, std::move(text));
  }
  // The text is made only for a finding that is kept.
  template <std::invocable MakeText>
  void add(RuleId rule, File file, std::int64_t record, std::uint64_t offset, MakeText&& make) {
    if (countOne(rule)) keep(rule, file, record, offset, make());
  }

  // The rule's findings are counted, for the rules that go by its count, and not kept.
  void ignore(RuleId rule) { ignored_[static_cast<std::size_t>(rule)] = true; }
  bool ignored(RuleId rule) const { return ignored_[static_cast<std::size_t>(rule)]; }

  std::uint64_t count(RuleId rule) const { return counts_[static_cast<std::size_t>(rule)]; }
  bool clean() const;
  const std::vector<Finding>& findings() const { return findings_; }

 private:
  bool countOne(RuleId rule) {
    return counts_[static_cast<std::size_t>(rule)]++ < kKeptPerRule && !ignored(rule);
  }
  void keep(RuleId rule, File file, std::int64_t record, std::uint64_t offset, std::string text);

  std::array<std::uint64_t, kRules> counts_ = {};
  std::array<bool, kRules> ignored_ = {};
  std::vector<Finding> findings_;
};

struct FileNames {
  std::string reference;
  std::string range;
};

// One line per finding, by rule; then a line for those of a rule that were not kept; last a line
// for each ignored rule that would have found something.
void printText(std::ostream& out, const Report& report, const FileNames& names);
void printJson(std::ostream& out, const Report& report, const FileNames& names);

}  // namespace statecut::verify
