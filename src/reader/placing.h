#pragma once
// Finding the tables in the bytes of a file, and the checks that a lookup relies on.

#include "reader/loaded.h"

namespace statecut {

// Where the tables that lookups use end, from the control record alone.
[[nodiscard]] std::uint64_t endOfTables(const RefControlRec& record);

// Fills slots and view from loaded.bytes. False when a table lies outside of the file.
[[nodiscard]] bool placeTables(Database::Loaded& loaded, Error& error);

// Every ZIP code leads to its own record, and every list lies in its table.
[[nodiscard]] bool checkTables(const Database::Loaded& loaded, Error& error);
// The same of the lists of streets.
[[nodiscard]] bool checkStreetLists(const Database::Loaded& loaded, Error& error);

// Sets the error and is false.
bool failed(Error& error, ErrorCode code, int number, std::string text);
bool failedTable(Error& error, ErrorCode code, const std::string& file, const char* table,
                 std::uint64_t offset, const std::string& what);

}  // namespace statecut
