// docs/sql.md lists the tables and columns that there are. STATECUT_UPDATE_DOCS writes the list.

#include <gtest/gtest.h>

#include <cstdlib>

#include "relations/relation.h"
#include "support/files.h"
#include "support/paths.h"

namespace statecut::test {
namespace {

std::string listOfColumns() {
  constexpr const char* kTypes[] = {"INTEGER", "TEXT", "BLOB", "any"};
  std::string text = "| Table | Column | Type | Meaning |\n|---|---|---|---|\n";
  for (const relations::Relation* relation : relations::all())
    for (const relations::Column& column : relation->columns)
      text += "| " +
              (&column == relation->columns.data() ? "`" + std::string(relation->name) + "`" : "") +
              " | `" + column.name + "` | " + kTypes[static_cast<std::size_t>(column.type)] +
              " | " + column.meaning + " |\n";
  return text;
}

TEST(SqlDocument, ListsTheColumnsOfAllTables) {
  const std::string path = std::string(kSourceFolder) + "/docs/sql.md";
  const std::string document = readTextFile(path);
  constexpr std::string_view kBegin = "<!-- columns of the relations -->\n";
  const std::size_t begin = document.find(kBegin) + kBegin.size();
  const std::size_t end = document.find("<!-- end of columns -->");
  ASSERT_LT(begin, document.size());
  ASSERT_LT(end, document.size());
  if (std::getenv("STATECUT_UPDATE_DOCS") != nullptr) {
    const std::string text = document.substr(0, begin) + listOfColumns() + document.substr(end);
    writeWholeFile(path, FileBytes(text.begin(), text.end()));
    return;
  }
  EXPECT_EQ(document.substr(begin, end - begin), listOfColumns()) << "scripts/update-docs";
}

}  // namespace
}  // namespace statecut::test
