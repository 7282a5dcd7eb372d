#pragma once
// The working state of the second derivation. Steps are member functions, spread over the
// secondcut_*.cpp files in the order in which a run takes them.

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "support/secondcut.h"

namespace statecut::secondcut {

inline constexpr int kAnyLine = -1;  // a log record whose source line is free

enum Severity { kError = 2, kWarning = 3, kInfo = 4, kDebug = 5 };

// Collects the lines that the log (or, without one, standard output) must hold.
class LogBook {
 public:
  LogBook(const Inputs& inputs, Outcome& outcome);

  void text(const std::string& line);
  void record(Severity severity, const std::string& source, int line, unsigned reason,
              const std::string& title, const std::string& message);
  // "name - required - n bytes", the name right-aligned, the size signed.
  void required(const std::string& source, int line, const std::string& title,
                const std::string& name, std::uint64_t size);
  // The one-line reports that the readers of tables and control records share.
  void memoryError(const std::string& name);
  void memoryWarning(const std::string& name);
  void readRefError(const std::string& name);
  void readRangeError(const std::string& name);

 private:
  Outcome& outcome_;
  int level_;
  bool hasFile_;
  bool failureReported_ = false;
};

// A table held in memory: its own bytes and 512 zero bytes behind them.
struct Table {
  bool loaded = false;
  std::size_t size = 0;
  Bytes bytes;

  [[nodiscard]] std::uint32_t u8(std::size_t at) const { return bytes.at(at); }
  [[nodiscard]] std::uint32_t u16(std::size_t at) const;
  [[nodiscard]] std::uint32_t u32(std::size_t at) const;
  void setU32(std::size_t at, std::uint32_t value);
};

// One multi-ZIP partition of one kind.
struct MultiZipEntry {
  std::uint32_t oldRba = 0;
  std::int32_t size = 0;
  std::uint32_t newRba = 0;
};

enum Kind { kPob = 0, kSfh = 1, kRr = 2 };

struct Cut {
  Cut(const Inputs& inputs, Outcome& outcome, LogBook& book, const std::vector<std::string>& list)
      : in(inputs), out(outcome), log(book), states(list) {}

  const Inputs& in;
  Outcome& out;
  LogBook& log;
  const std::vector<std::string>& states;

  Bytes refRecord;
  Bytes rngRecord;
  std::uint32_t sourceNames = 0;
  std::uint32_t sourcePhonetics = 0;
  std::uint32_t totalBytes = 0;
  std::uint32_t totalRngBytes = 0;

  Table cityData, cityMultiZip, finance, names, namesByState, phonetics, zips;
  Table zipBytes, sfhBytes, pobBytes, rrBytes, hashSlots, hashOverflow;
  Bytes militaryHeader = Bytes(4), military, zoneHeader = Bytes(2), zones;

  std::array<std::uint32_t, 100000> zipIndex{};
  Bytes newNames, newPhonetics;
  std::vector<Bytes> newByState;
  std::vector<std::uint32_t> nameMap, phoneticMap;
  std::map<std::uint32_t, std::uint32_t> cityUses;  // city key -> records of the new name table
  std::vector<MultiZipEntry> multiZips;

  [[nodiscard]] std::uint32_t word(std::size_t offset) const;
  void setWord(std::size_t offset, std::uint32_t value);

  int run();  // the status of the cut, 0 or negative

  // Opening (secondcut_open.cpp).
  int openReference();
  int openRange();
  void reportEmptyPartitions();
  void dumpHeader(const Bytes& record);
  void dumpReference();
  void dumpRange();

  // First half of the reference file (secondcut_copy.cpp).
  int copyReference();
  void copyPartition(const std::string& name, std::uint32_t rba, std::uint32_t bytes);
  Table load(std::uint32_t rba, std::uint64_t size) const;
  Table loadForCut(int line, const std::string& name, const std::string& errorName,
                   std::uint64_t size, std::size_t rbaField);
  bool loadStrict(Table& table, const std::string& name, const std::string& errorName, bool warn,
                  std::int64_t size, std::size_t rbaField);
  bool loadRewrittenTables();
  void loadMilitary();
  void loadZones();

  // Selection and city tables (secondcut_select.cpp).
  void selectZips();
  void announceNewTables();
  void updateReference();
  void keepState(const std::string& state, std::uint32_t& nameCursor,
                 std::uint32_t& phoneticCursor);
  void renumberHash();
  void zapName(const Table& table, std::size_t nameAt, std::uint32_t length, std::uint32_t type,
               std::uint32_t number);
  [[nodiscard]] bool candidateIs(std::uint32_t type, std::uint32_t number,
                                 const unsigned char* name, std::uint32_t length) const;

  // The range file (secondcut_range.cpp, secondcut_multizip.cpp).
  void writeRangeRecord();
  void copyZipPartitions(Kind kind);
  std::int32_t zipPartitionSize(std::uint32_t key, Kind kind);
  void copyFromRange(const std::string& name, std::uint32_t rba, std::int32_t bytes);
  int rebuildMultiZips();
  bool listCities();
  bool allocateMultiZips();
  void renumberCityNames();
  void fillSfh();
  void fillSmall(Kind kind);
  void writeMultiZips(Kind kind);
  void storeSfh();
  void storeSmall(Kind kind);
  [[nodiscard]] bool cityInCut(std::uint32_t city) const;
  [[nodiscard]] std::uint32_t cityCount() const;
  // Offset of the city's multi-ZIP record, or kNone.
  [[nodiscard]] std::size_t cityRecordOf(std::uint32_t city) const;
  // Offset of a finance record with more than one ZIP, or kNone.
  [[nodiscard]] std::size_t financeRecord(std::uint32_t key) const;
  template <typename OnCity, typename OnFinance>
  void walkSfh(OnCity onCity, OnFinance onFinance);
  void fill(std::uint32_t key, std::uint32_t rba, Kind kind, bool longForm);
  std::int32_t multiZipSize(std::uint32_t key, Kind kind, bool longForm);
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  // Second half of the reference file and the end (secondcut_write.cpp).
  void writeReference();
  void writeTable(const std::string& name, const Table& table, std::size_t rbaField);
  void writeBytes(const std::string& name, const Bytes& bytes, std::size_t rbaField);
  void reportNeverLoaded();
};

}  // namespace statecut::secondcut
