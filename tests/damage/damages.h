#pragma once
// Damages to a database pair as data: a number written over a field, a flipped bit, a file cut
// short. Fields come from the field lists of the rows; their places from the pair's control record.

#include <cstdint>
#include <string>
#include <vector>

#include "dbbuilder/model.h"

namespace statecut::test {

using builder::Bytes;

struct PairImage {
  Bytes ref;
  Bytes rng;

  [[nodiscard]] const Bytes& file(bool range) const { return range ? rng : ref; }
};

// A field of a record in one of the files.
struct Field {
  bool range = false;
  std::string table;         // "" = the control record
  std::uint64_t record = 0;  // position in its table
  std::string name;
  std::uint64_t at = 0;  // in the file
  std::uint32_t width = 0;
  std::uint64_t count = 0;  // of the table, the bound of its keys
};

enum class How : std::uint8_t { kSet, kFlip, kShorten };

struct Damage {
  How how = How::kSet;
  bool range = false;
  std::uint64_t at = 0;           // byte offset; kShorten: the new length
  std::uint32_t width = 0;        // kSet
  std::uint32_t value = 0;        // kSet: little-endian number; kFlip: bit 0 to 7
  std::uint32_t field = 0;        // kSet, kFlip: index into Damages::fields
  std::uint16_t programs = 0xFF;  // which programs run, a bit each: all but the last, diff
};

struct Damages {
  std::vector<Field> fields;
  std::vector<Damage> list;
};

// "ref: Zip Code Data[12].sfhRba = 4294967295", "rng: typeFlags + 1 bit 7", "ref: 12 bytes long".
std::string nameOf(const Damages& damages, const Damage& damage);

// The bytes of a kSet or kFlip damage in place of `from`, its bytes in the sound file.
Bytes damagedBytes(const Damage& damage, const unsigned char* from);

// The pair with one damage.
PairImage damaged(const PairImage& pair, const Damage& damage);

// Every length from 0 to one byte less than the whole, longest first. Inside the ZIP index, most of
// the file, verify runs on each length and the other programs in turn.
Damages everyLength(const PairImage& pair);
// The lengths that end before and behind the first and the last byte of a table or area.
Damages tableEdges(const PairImage& pair);
// The values of section (b) in every field of the control records and of three records of every
// table: the first, the middle one and the last.
Damages fieldValues(const PairImage& pair);
// Every bit of the control records, the hash, and the records and lists that link tables.
Damages everyBit(const PairImage& pair);

// Bytes of the largest table that the counts of the damaged control record prescribe, or of the
// damaged size of a partition.
std::uint64_t prescribedBytes(const PairImage& pair, const Damages& damages, const Damage& damage);

// Bytes that all tables and work tables of the damaged count take in memory. Sizes are words of 32
// bits; of 2 GiB or more nothing is allocated.
std::uint64_t tableBytes(const PairImage& pair, const Damages& damages, const Damage& damage);

// One of the programs on each damage, in turn, beside verify: neighbours meet different ones.
void takeTurns(Damages& damages);

// A pair with a record in every table and as few others as that takes; `states` are two of its
// three states.
builder::Model microModel();
inline constexpr const char* kMicroStates = "TX\nVT\n";

}  // namespace statecut::test
