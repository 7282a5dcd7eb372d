#pragma once
// The tables of docs/format.md, rendered from the field lists and the directory of the tables that
// the code is built with.

#include <string>
#include <vector>

namespace statecut::docs {

struct FieldTable {
  std::string name;      // the row type, as in the marker of the document
  std::string markdown;  // header line to last row, each ending in a new line
};

// Every record that docs/format.md describes byte by byte.
std::vector<FieldTable> fieldTables();

std::string startMarker(const std::string& name);  // the line before a table
std::string endMarker();                           // the line after it

// The list of the reference tables, between markers of its own.
std::string directoryTable();
inline constexpr char kDirectoryStart[] = "<!-- directory of the tables -->\n";
inline constexpr char kDirectoryEnd[] = "<!-- end of directory -->\n";

// The document with the text between the markers of each table replaced by the table. Throws
// std::runtime_error when a marker is missing.
std::string withFieldTables(std::string document);

}  // namespace statecut::docs
