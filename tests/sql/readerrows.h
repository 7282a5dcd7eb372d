#pragma once
// What the tables hold, by the calls of a Database alone.

#include <map>
#include <string>

#include "connection.h"
#include "reader/database.h"

namespace statecut::test {

// Table by table, but `tables`, whose places are those of `statedb info`.
std::map<std::string, Answers> rowsOfReader(const Database& database);

std::string zipRow(const Database& database, const Zip& zip);
std::string cityRow(const Database& database, const CityName& name);

// "00501"
std::string digits(std::uint32_t zip);

}  // namespace statecut::test
