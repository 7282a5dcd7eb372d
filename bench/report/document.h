#pragma once
// The table on a terminal, and the document.

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "report/verdict.h"

namespace statecut::bench {

// Rows that were measured, with all their figures.
void printTable(std::ostream& out, const std::vector<Result>& results);

// `facts` are lines about machine and run; `reasons` tell of rows that miss, by row id.
void writeDocument(std::ostream& out, const std::vector<Result>& results,
                   const std::vector<std::string>& facts,
                   const std::map<std::string, std::string>& reasons);

}  // namespace statecut::bench
