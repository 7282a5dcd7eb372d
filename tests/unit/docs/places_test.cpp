// The places that records of the log name: a pair of source name and line stands for one place of
// the code. A source's lines are fixed ones, and thousands that belong to one C++ file each.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/paths.h"

namespace statecut::docs {
namespace {

struct File {
  std::string name;
  std::string text;
};

std::vector<File> coreFiles() {
  std::vector<File> files;
  const std::filesystem::path folder = std::filesystem::path(test::kSourceFolder) / "src";
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    const std::string extension = entry.path().extension();
    if (extension != ".cpp" && extension != ".h") continue;
    std::ostringstream text;
    text << std::ifstream(entry.path(), std::ios::binary).rdbuf();
    files.push_back({entry.path().filename(), text.str()});
  }
  std::sort(files.begin(), files.end(),
            [](const File& a, const File& b) { return a.name < b.name; });
  return files;
}

// Calls visit(match) for every match. Each match begins with `start`, which is found without the
// regular expression: that is slow in an unoptimised build.
template <typename Visit>
void forEachMatch(const std::string& text, const std::string& start, const char* pattern,
                  Visit&& visit) {
  const std::regex regex(pattern);
  for (std::size_t at = 0; (at = text.find(start, at)) != std::string::npos; at += start.size()) {
    std::smatch match;
    if (std::regex_search(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), match, regex,
                          std::regex_constants::match_continuous))
      visit(match);
  }
}

bool inName(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

// The name that ends in front of `end`; empty when none does.
std::string nameBefore(const std::string& text, std::size_t end) {
  std::size_t at = end;
  while (at > 0 && inName(text[at - 1])) --at;
  return text.substr(at, end - at);
}

class Places : public testing::Test {
 protected:
  using Place = std::pair<std::string, int>;  // source name, line or first line of a thousand

  Places() : files_(coreFiles()) {
    for (const File& file : files_) {
      forEachMatch(file.text, "constexpr c",
                   R"re(constexpr (?:char|const char\*) (k\w+)(?:\[\])? = "(\w+)")re",
                   [&](const std::smatch& match) { names_[match[1]] = match[2]; });
    }
    for (const File& file : files_) {
      collectNumbers(file);
      collectPlain(file);
    }
  }

  // How often each name stands in the code, but for where it is defined: in front of a brace. Names
  // of logsite with that in front.
  std::map<std::string, int> usesOfNames() const {
    const std::string space = "logsite::";
    std::map<std::string, int> uses;
    for (const auto& [file, text] : files_) {
      for (std::size_t at = 0, end = 0; at < text.size(); at = end + 1) {
        for (end = at; end < text.size() && inName(text[end]);) ++end;
        if (end == at || (end < text.size() && text[end] == '{')) continue;
        const bool site =
            at >= space.size() && text.compare(at - space.size(), space.size(), space) == 0;
        ++uses[(site ? space : "") + text.substr(at, end - at)];
      }
    }
    return uses;
  }

  // {kApiutil, 3000} and {"cities", 1000} are thousands, {kDbaccess, 100} is a fixed line.
  void collectNumbers(const File& file) {
    const auto collect = [&](const std::string& source, const std::string& digits) {
      const int number = std::stoi(digits);
      (number % 1000 == 0 ? thousands_ : fixed_)[{source, number}].push_back(file.name);
    };
    forEachMatch(file.text, "{k", R"(\{(k\w+), ([0-9]+)\})", [&](const std::smatch& match) {
      const auto name = names_.find(match[1]);
      if (name != names_.end()) collect(name->second, match[2]);
    });
    forEachMatch(file.text, "LogSource k", R"re(LogSource k\w+\{"(\w+)", ([0-9]+)\})re",
                 [&](const std::smatch& match) { collect(match[1], match[2]); });
  }

  // A name alone with a line of the file: the first thousand of that name.
  void collectPlain(const File& file) {
    std::map<std::string, bool> used;
    const auto use = [&](const std::string& name) {
      if (file.text.find("LogSource " + name + "{") != std::string::npos) return;
      ASSERT_EQ(names_.count(name), 1u) << file.name << ' ' << name;
      used[names_[name]] = true;
    };
    const std::string line = ", __LINE__";
    for (std::size_t at = 0; (at = file.text.find(line, at)) != std::string::npos; at += 1)
      if (const std::string name = nameBefore(file.text, at); name.starts_with('k')) use(name);
    forEachMatch(file.text, "Trace trace(", R"(Trace trace\((k\w+)\))",
                 [&](const std::smatch& match) { use(match[1]); });
    for (const auto& [source, yes] : used) thousands_[{source, 0}].push_back(file.name);
  }

  std::vector<File> files_;
  std::map<std::string, std::string> names_;  // of constants
  std::map<Place, std::vector<std::string>> thousands_;
  std::map<Place, std::vector<std::string>> fixed_;
};

TEST_F(Places, ThousandOfASourceBelongsToOneFileAndOneUse) {
  EXPECT_GE(thousands_.size(), 25u);
  for (const auto& [place, owners] : thousands_) {
    EXPECT_EQ(owners.size(), 1u) << place.first << ' ' << place.second << " of " << owners[0]
                                 << " and " << owners.back();
  }
}

TEST_F(Places, FixedLineIsOneConstantOutsideOfTheThousands) {
  EXPECT_GE(fixed_.size(), 32u);
  for (const auto& [place, owners] : fixed_) {
    EXPECT_EQ(owners.size(), 1u) << place.first << ' ' << place.second;
    EXPECT_EQ(thousands_.count({place.first, place.second / 1000 * 1000}), 0u)
        << place.first << ' ' << place.second;
  }
}

TEST_F(Places, FixedLineIsUsedOnce) {
  std::vector<std::string> constants;
  for (const File& file : files_) {
    const std::string prefix = file.name == "logsites.h" ? "logsite::" : "";
    forEachMatch(file.text, "LogSite k", R"(LogSite (k\w+)\{)",
                 [&](const std::smatch& match) { constants.push_back(prefix + match[1].str()); });
  }
  EXPECT_GE(constants.size(), 32u);
  const std::map<std::string, int> uses = usesOfNames();
  for (const std::string& constant : constants) {
    const auto found = uses.find(constant);
    EXPECT_EQ(found == uses.end() ? 0 : found->second, 1) << constant;
  }
}

// One would be collected by none of the tests above.
TEST_F(Places, NoCallHasALineOfItsOwn) {
  const char* const call = R"re(\(\s*\w+,\s*(?:k\w+|"\w+"|\w+\.(?:name|source)),\s*[0-9]+,)re";
  const auto found = [regex = std::regex(call)](const std::string& text) {
    return std::regex_search(text, regex);
  };
  ASSERT_TRUE(found("utlWriteLogMsg(proc, kApiutil,\n    22, kError, title, 0, kMsgText, text);"));
  ASSERT_TRUE(found("utlWriteLogMsg(proc, site.source, 1326, kError, title, 0, kMsgText, text);"));
  ASSERT_FALSE(found("utlWriteLogMsg(proc, kApiutil, kHere.line(__LINE__), kError, title);"));
  int calls = 0;
  for (const File& file : files_) {
    for (const char* function : {"utlWriteLogMsg(", "traceEntering(", "traceLeaving("}) {
      for (std::size_t at = 0; (at = file.text.find(function, at)) != std::string::npos; ++at) {
        const std::string text = file.text.substr(at, file.text.find(';', at) - at);
        ++calls;
        EXPECT_FALSE(found(text)) << file.name << ": " << text;
      }
    }
  }
  EXPECT_GE(calls, 30);
}

TEST_F(Places, LineOfTheCodeHasOnePlace) {
  int places = 0;
  for (const File& file : files_) {
    std::istringstream lines(file.text);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
      int here = 0;
      for (const char* place : {"__LINE__", "Trace trace(", "trace.leave(", "trace.again("})
        for (std::size_t at = 0; (at = line.find(place, at)) != std::string::npos; ++at) ++here;
      EXPECT_LE(here, 1) << file.name << ": " << line;
      places += here;
    }
    EXPECT_LT(count, 1000) << file.name;
  }
  EXPECT_GE(places, 100);
}

}  // namespace
}  // namespace statecut::docs
