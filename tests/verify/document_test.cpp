// Holds docs/verify-rules.md to the rules. With STATECUT_UPDATE_DOCS set (scripts/update-docs) its
// table is rewritten instead of compared.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "support/paths.h"
#include "verify/rules.h"

namespace statecut::test {

namespace {

const std::string kPath = std::string(kSourceFolder) + "/docs/verify-rules.md";
const std::string kBegin = "<!-- rules -->\n";
const std::string kEnd = "<!-- end -->\n";

std::string document() {
  std::ifstream in(kPath, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string table() {
  std::ostringstream out;
  out << "| Rule | Demands that | Guards against |\n|---|---|---|\n";
  for (const verify::Rule& rule : verify::rules())
    out << "| `" << rule.id << "` | " << rule.meaning << " | " << rule.guards << " |\n";
  return out.str();
}

// The document with the table of the rules between its marks; empty when it has no marks.
std::string withTable(const std::string& text) {
  const std::size_t begin = text.find(kBegin);
  const std::size_t end = text.find(kEnd);
  if (begin == std::string::npos || end == std::string::npos || end < begin) return "";
  return text.substr(0, begin + kBegin.size()) + table() + text.substr(end);
}

TEST(RulesDocument, ItsTableIsTheListOfRules) {
  const std::string rendered = withTable(document());
  ASSERT_NE(rendered, "") << kPath;
  if (std::getenv("STATECUT_UPDATE_DOCS") != nullptr) {
    std::ofstream(kPath, std::ios::binary) << rendered;
    return;
  }
  EXPECT_EQ(document(), rendered) << "run scripts/update-docs";
}

TEST(RulesDocument, AMissingRuleIsNoticed) {
  std::string text = document();
  ASSERT_EQ(text, withTable(text));
  const std::size_t row = text.find("| `table.gap`");
  ASSERT_NE(row, std::string::npos);
  text.erase(row, text.find('\n', row) + 1 - row);
  EXPECT_NE(text, withTable(text));
}

}  // namespace

}  // namespace statecut::test
