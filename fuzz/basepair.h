#pragma once
// The database pairs that inputs damage: a few places from the builder, made once a process, and
// what their tables hold.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "input.h"
#include "memorydisk.h"

namespace statecut::fuzz {

enum BaseKind : std::uint8_t {
  kWhole,
  kShortIndex,  // its ZIP index ends with the file: quick to describe
  kCutPair,     // a cut of the first
  kBaseKinds
};

// What a caller of the lookups may know of a pair.
struct Pool {
  std::vector<std::uint32_t> numbers;  // ZIP codes, keys, offsets
  std::vector<std::string> texts;      // names; those of cities and phonetic keys also with state
  std::vector<std::string> states;
};
const Pool& pool();

// A file of a base pair with the damage of one input. The room behind the file holds zeros.
class DamagedFile {
 public:
  [[nodiscard]] std::span<const unsigned char> bytes() const { return {room_.data(), size_}; }
  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] std::uint32_t word(std::size_t at) const;

  void assign(const Bytes& original);
  void store(std::size_t at, std::span<const unsigned char> bytes);  // inside the room
  void put(std::size_t at, std::size_t width, std::uint32_t value);
  void resize(std::size_t size);  // up to kExtension more than the original
  void restore();

  static constexpr std::size_t kExtension = 4096;

 private:
  struct Saved {
    std::size_t at;
    Bytes bytes;
  };
  Bytes room_;
  std::size_t size_ = 0;
  std::size_t originalSize_ = 0;
  std::vector<Saved> saved_;
};

// The base pair that the input selects, damaged as it says, until the end of the scope.
class DamagedPair {
 public:
  // Without `mayBeRaw`, or in the edit mode: edits, then the rest of the input. Raw: the input
  // holds the beginnings of both files.
  explicit DamagedPair(Input& input);
  ~DamagedPair();
  DamagedPair(const DamagedPair&) = delete;
  DamagedPair& operator=(const DamagedPair&) = delete;

  [[nodiscard]] const DamagedFile& ref() const { return *ref_; }
  [[nodiscard]] const DamagedFile& rng() const { return *rng_; }
  [[nodiscard]] BaseKind kind() const { return kind_; }
  [[nodiscard]] bool changed() const { return changed_; }
  void mount() const;  // as kRefPath and kRngPath of the memory disk

 private:
  void edit(Input& input);
  void editRecord(Input& input);
  void editLength(Input& input);
  std::uint32_t value(Input& input, std::uint32_t old) const;

  BaseKind kind_;
  DamagedFile* ref_;
  DamagedFile* rng_;
  bool changed_ = false;
};

// Paths of the memory disk, in a folder that does not exist.
inline constexpr char kRefPath[] = "/nowhere/ref";
inline constexpr char kRngPath[] = "/nowhere/rng";
inline constexpr char kLogPath[] = "/nowhere/log";
inline constexpr char kStatesPath[] = "/nowhere/states";
inline constexpr char kOutRefPath[] = "/nowhere/outref";
inline constexpr char kOutRngPath[] = "/nowhere/outrng";

// Once a process: standard output and error go nowhere, the time stands still.
void quietProcess();

// One whole run of the utility; its status. Releases what a failed run leaves until the process
// ends; what a finished one leaves is a finding.
std::int32_t runUtility(int argc, const char* const* argv);
// A run on the mounted pair.
std::int32_t runCut(const std::string& states, int logLevel);

// The first byte of an input: base pair, raw or edits.
constexpr std::uint8_t header(BaseKind kind, bool raw = false) {
  return static_cast<std::uint8_t>(kind | (raw ? 0x80 : 0));
}
// Kinds of edit, the byte that begins each.
enum EditKind : std::uint8_t {
  kRefWord,     // word number, value
  kRngWord,     // word number, value
  kRecord,      // table, record, byte in it, width, value
  kRefBytes,    // offset (3), count, bytes
  kRngBytes,    // offset (3), count, bytes
  kLength,      // file and way, ...
  kBit,         // table, offset (2), bit
  kCopyRecord,  // table, from, to
  kEditKinds
};
// Kinds of value.
enum ValueKind : std::uint8_t {
  kZero,
  kOne,
  kAllOnes,
  kMaxSigned,
  kMinSigned,
  kOneMore,
  kOneLess,
  kDoubled,
  kFileSize,
  kFileSizeLessOne,
  kTableRba,     // table
  kTablePlus,    // table, distance
  kByteLiteral,  // 1
  kHalfLiteral,  // 2
  kWordLiteral,  // 4
  kTableCount,   // table
  kValueKinds
};

}  // namespace statecut::fuzz
