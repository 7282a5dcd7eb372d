#pragma once
// The measurements of lookups. Each adds figures to rows of the table, of those that are wanted.

#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "lookup/session.h"
#include "lookups/names.h"
#include "measure/samples.h"

namespace statecut::bench {

struct LookupSetup {
  std::filesystem::path data;  // folder of the national pair
  std::filesystem::path work;
  int rounds = 9;
  std::set<std::string> wanted;
  std::map<std::string, RowSamples> rows;  // what was measured

  [[nodiscard]] bool wants(const std::string& row) const { return wanted.count(row) != 0; }
};

// Opens the reference file of the setup; throws when that fails.
void openSession(Session& session, const LookupSetup& setup, LookupMode mode,
                 std::uint32_t cacheEntries = 0);

// These two need a session in memory.
void measureNamesInMemory(LookupSetup& setup, const std::vector<Names>& kinds);
void measureZipsInMemory(LookupSetup& setup);
// These need that no session is open.
void measureNamesOnDisk(LookupSetup& setup, const std::vector<Names>& kinds);
void measureCache(LookupSetup& setup);
void measureOpening(LookupSetup& setup, const Names& cities);
// The rows of a Database.
void measureReader(LookupSetup& setup, const std::vector<Names>& kinds);
void measureSql(LookupSetup& setup);

}  // namespace statecut::bench
