#pragma once
// The field tables of docs/format.md, rendered from the field lists that the code is built with.

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

// The document with the text between the markers of each table replaced by the table. Throws
// std::runtime_error when a marker is missing.
std::string withFieldTables(std::string document);

}  // namespace statecut::docs
