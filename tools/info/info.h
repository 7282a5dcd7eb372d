#pragma once
// What a database file is: its type, version, stamps, tables, and the ZIP codes of its states.

#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <vector>

namespace statecut::info {

struct TableInfo {
  std::string name;
  std::uint32_t rba = 0;
  std::uint64_t count = 0;
  std::uint64_t bytes = 0;
  bool fits = true;  // inside the file
};

struct StateInfo {
  std::string state;
  std::uint64_t zips = 0;
  std::uint64_t sfhBytes = 0;
  std::uint64_t pobBytes = 0;
  std::uint64_t rrBytes = 0;
};

struct FileInfo {
  std::string path;
  std::uint64_t bytes = 0;
  std::string type;  // "reference", "range", or "" when it is no database
  bool stateCut = false;
  std::string version;
  std::string copyright;
  std::uint32_t buildStamp = 0;
  std::uint32_t cutStamp = 0;     // 0 = not cut
  std::uint64_t zipCodes = 0;     // in the ZIP index of a reference file
  std::uint64_t cityNames = 0;    // of a reference file, without the blank first record
  std::vector<TableInfo> tables;  // of a range file: its partition areas
  std::vector<StateInfo> states;  // by abbreviation; only of a file with the Zip Bytes table
  std::vector<std::string> damage;
};

// Any bytes are described; what is wrong with them goes to `damage`.
FileInfo describe(const std::string& path, std::span<const unsigned char> bytes);

void printText(std::ostream& out, const FileInfo& file);
void printJson(std::ostream& out, const std::vector<FileInfo>& files);

// One value of the JSON of a file: "zipCodes", "tables.City Data.bytes", "states.TX.zips". False
// when there is no such key, or more than one value.
bool printValue(std::ostream& out, const FileInfo& file, const std::string& key);

// Lines with tabs: FILE TABLE RBA COUNT BYTES, and FILE ZIP KIND BYTES of the partitions that the
// ZIP codes of a reference file have. What is unknown is empty: the counts of areas, the bytes in a
// cut.
enum class Tsv { None, Tables, Zips };
void printTsvHeader(std::ostream& out, Tsv which);
void printTsvTables(std::ostream& out, const FileInfo& file);
void printTsvZips(std::ostream& out, const FileInfo& file, std::span<const unsigned char> bytes);

struct Show {
  bool json = false;
  Tsv tsv = Tsv::None;
  std::string key;  // of the one value that is asked for
};

// 0 all files are sound, 1 some file is damaged or no database, 2 some file can't be opened or has
// no such value.
int run(const std::vector<std::string>& paths, const Show& show, std::ostream& out,
        std::ostream& err);

}  // namespace statecut::info
