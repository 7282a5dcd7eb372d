#pragma once
// The answers that the bytes of a reference file call for, found by the plainest means: in memory a
// view of each table, from the file single reads. It shares no code with the library.

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "call.h"
#include "differences.h"

namespace statecut::test {

// Blocks of the file, as the block cache keeps them: most recently used first.
class BlockModel {
 public:
  BlockModel(const Bytes& file, std::uint32_t blockBytes, std::size_t entries);
  [[nodiscard]] bool read(std::uint32_t rba, std::uint32_t count, unsigned char* to);

  std::uint32_t found = 0;
  std::uint32_t whole = 0;
  std::uint32_t partial = 0;
  std::vector<std::uint32_t> fills;  // the start of each block that was read

 private:
  struct Block {
    std::uint32_t start = 0;
    std::uint32_t end = 0;
    bool filled = false;
    Bytes data;
  };
  Block* holding(std::uint32_t rba);
  void fill(std::uint32_t rba);

  const Bytes& file_;
  std::uint32_t blockBytes_;
  std::vector<Block> blocks_;
};

class Oracle {
 public:
  enum Kind : std::uint8_t { kMemory, kDisk };

  Oracle(const Bytes& file, Kind kind, BlockModel* cache = nullptr);

  std::string answer(const Call& call);
  // What made the last answer differ from that of the other kind, perhaps.
  [[nodiscard]] const Differences& differences() const { return differences_; }

  // For a file that is not damaged: what a scan of the names says about an index answer; empty when
  // nothing contradicts it.
  std::string contradiction(const Call& call, const std::string& answer);

 protected:
  bool exact_ = false;  // names that run on behind their table are none

  struct View {  // a loaded table
    bool loaded = false;
    std::uint32_t rba = 0;
    std::uint64_t bytes = 0;
  };
  enum Slot : std::uint8_t {
    kZips,
    kZipIndexes,
    kKeysOfZips,
    kCities,
    kZipLists,
    kFinanceLists,
    kMultiZipRbas,
    kFinances,
    kNames,
    kPhonetics,
    kLists,
    kStreets,
    kPhoneticLists,
    kPhoneticStreets,
    kStandardLists,
    kStandardStreets,
    kFirms,
    kDeliveries,
    kSlots,
    kOverflow,
    kSlotCount
  };
  using Optional = std::optional<Bytes>;

  [[nodiscard]] std::uint32_t word(std::size_t at) const;
  void note(Difference difference) { differences_.set(static_cast<std::size_t>(difference)); }
  void loadTables();
  void group(std::initializer_list<Slot> slots);

  // Bytes from memory; nothing when the table is not loaded.
  Optional view(Slot slot, std::uint64_t at, std::uint64_t count);
  void readDirect(std::uint32_t rba, std::uint64_t count, Bytes& to);
  bool readCached(std::uint32_t rba, std::uint64_t count, Bytes& to);
  // Record `index` of a table: from memory, or from the file into `buffer`.
  Optional row(Slot slot, std::uint64_t index, std::uint32_t width, Bytes& buffer, bool cached);

  std::int64_t zipIndex(std::int32_t zip);
  std::string zipData(std::int32_t zip);
  Optional zipFromKey(std::int32_t key);
  std::string cityKeys(std::int32_t zipKey);
  Optional finance(std::int64_t index);
  std::string financeOfZip(std::int32_t zipKey);
  std::string multiZips(std::uint32_t count, std::uint32_t start);

  Optional cityName(std::int32_t key, bool cached);
  std::int64_t cityHash(const Call& call);
  Optional findCity(const Call& call);
  std::int64_t truncIndex(const Call& call);
  Optional truncCity(const Call& call);
  [[nodiscard]] bool rival(const Bytes& name, const Call& call) const;
  std::int64_t sequential(const std::string& state, const std::string& text, Match match,
                          std::int32_t start);
  std::int64_t nearest(const std::string& state, const std::string& pattern, std::int32_t start);
  std::string cityDataOf(const Optional& name, Bytes& buffer);
  Optional cityData(std::int32_t key);
  std::string cityZipKeys(std::uint32_t count, std::uint32_t start);
  std::string cityFinKeys(std::uint32_t count, std::uint32_t start);
  Optional cityMultiZip(std::int32_t cityKey);
  std::string findPhonetic(const Call& call);
  Optional phonetic(std::int64_t index);

  std::string packedName(Slot slot, std::uint32_t offset, bool cached);
  std::string variation(const Call& call);
  std::string variationIn(const Call& call, std::int64_t position);
  std::string variationOff(const Call& call, std::int64_t position);
  void ambiguous(std::uint32_t value, const Call& call, std::int32_t& count);
  void append(std::uint32_t key, std::int32_t& count);
  [[nodiscard]] std::string streets(std::int32_t flag, std::int32_t count, bool null) const;
  Optional generalDelivery(std::uint32_t key);

  std::int64_t hash(std::string_view name, std::int64_t length, std::uint32_t type);
  std::int64_t hashOverflow(std::string_view name, std::uint32_t type, std::uint32_t check,
                            std::uint32_t first, std::uint32_t count);
  bool candidate(std::string_view name, std::uint32_t type, std::uint32_t number);
  std::vector<std::int64_t> scan(std::string_view name, std::uint32_t type);

  const Bytes& file_;
  Kind kind_;
  BlockModel* cache_;
  std::array<View, kSlotCount> views_{};
  std::array<std::uint32_t, 504> keyList_{};
  Differences differences_;
};

}  // namespace statecut::test
