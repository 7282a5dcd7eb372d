#pragma once
// The reference files of the suite, in memory.

#include <cstdint>
#include <string>
#include <vector>

#include "call.h"
#include "dbbuilder/model.h"

namespace statecut::test {

struct Database {
  std::string name;
  Bytes file;
};

Database tinyDatabase();
Database smallDatabase();
Database randomLookupDatabase(std::uint64_t seed);     // valid; a function of the seed
builder::Model randomLookupModel(std::uint64_t seed);  // what it is made from
Database edgeDatabase();                               // where memory and file differ on purpose

// The same with lists inside of their tables and a sound ZIP index, as a Database demands.
Database randomReaderDatabase(std::uint64_t seed);
Database edgeReaderDatabase();

// Cuts of the tiny database and of such a random one, to one state or two.
Database tinyCutDatabase();
Database randomCutDatabase(std::uint64_t seed);

// The edge database (without its long lists) with one number damaged, each in turn.
std::vector<Database> damagedDatabases();
std::vector<Database> damagedReaderDatabases();  // of edgeReaderDatabase

}  // namespace statecut::test
