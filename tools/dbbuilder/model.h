#pragma once
// A database pair as plain data. profiles.h makes models; writer.h turns a model into the bytes of
// the reference file and the range file. What a field leaves empty (Auto32, optional) the writer
// fills in so that the pair is consistent; what is set is written as it stands, however odd.
// Records are stored in vector order: the vector index is the record's position (key) in its
// table, so tables with a dummy record 0 hold it as their first element.

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace statecut::builder {

using Byte = unsigned char;
using Bytes = std::vector<Byte>;
using Auto32 = std::optional<std::uint32_t>;  // empty = resolved by the writer

// The 32 bytes at the start of both control records.
struct Header {
  std::string version = "10000001";       // 8 characters
  Byte byte8 = 0;                         // not interpreted
  std::string copyright = "0126";         // month and year, 4 characters
  std::array<Byte, 5> bytes13 = {};       // not interpreted
  Byte charType = 1;                      // 1 = ASCII
  Byte endianType = 1;                    // 1 = little endian
  std::uint32_t buildStamp = 1767225600;  // seconds since 1970
  std::uint32_t typeFlags = 0;            // 1 reference, 2 range, 4 state cut
  std::uint32_t cutStamp = 0;             // 0 = not cut
};

// The tables of the reference file, in the order in which the writer stores them. The first four
// stand right behind the control record, the order that a cut relies on.
enum class Table {
  SfhPatterns,
  PobPatterns,
  RrPatterns,
  StreetNames,
  StreetRbos,  // offsets of the street names, 4 bytes each
  CityData,
  CityZipLists,
  CityFinanceLists,
  CityNames,
  CityNamesByState,
  CityPhonetics,
  CityMultiZip,
  FinMultiZip,
  ZipData,
  CityKeysOfZips,  // 4 bytes of room per entry, 2-byte entries in the first half
  ZipIndex,
  UniqueZips,
  Counties,
  Urbanizations,
  UrbMultiZips,
  UrbVariations,
  StreetPhoneticLists,  // ambiguous lists
  StreetPhonetics,
  StreetPhoneticRbos,
  StreetStandardLists,  // ambiguous lists
  StreetStandards,
  StreetStandardRbos,
  FirmNames,
  FirmRbos,  // offsets of the firm names, 4 bytes each
  GeneralDelivery,
  Scfs,
  MultiZipLists,  // 4 bytes of room per entry, see writer.h
  ZipBytes,
  SfhMultiZipBytes,
  PobMultiZipBytes,
  RrMultiZipBytes,
  HashSlots,
  HashOverflow,
  Military,
  PoBoxZones,
  Count_
};
inline constexpr std::size_t tableCount = static_cast<std::size_t>(Table::Count_);

using Pattern = std::array<std::uint16_t, 9>;

struct CityData {              // 36 bytes
  std::uint32_t nameUsps = 0;  // position in cityNames
  std::uint32_t nameStandard = 0;
  std::array<Byte, 2> other8 = {};
  std::uint16_t finFlag = 0;  // 1 = has a finance entry
  std::array<Byte, 6> other12 = {};
  std::uint16_t zipCount = 0;  // ZIP codes that serve the city
  std::array<Byte, 10> other20 = {};
  std::uint16_t multiZipRbaKey = 0;  // position in cityMultiZip, 0 = none
  std::uint16_t finKey = 0;          // position in finMultiZip
  std::array<Byte, 2> other34 = {};
};

struct CityZipEntry {  // 6 bytes
  std::uint16_t zipKey = 0;
  std::uint32_t zip = 0;
};

// rba empty = RBA of the range partition (section of the field, key), 0 when there is none.
struct MultiZipRef {
  std::uint16_t zipCount = 0;
  std::uint32_t key = 0;  // 16 bits but in CityMultiZip::sfh
  Auto32 rba;
};

struct CityMultiZip {  // 28 bytes
  MultiZipRef sfh;
  std::uint16_t other2 = 0;
  MultiZipRef pob;
  MultiZipRef rr;
};

using FinMultiZip = MultiZipRef;  // 8 bytes; section SfhMulti

struct CityName {  // 34 bytes; texts are padded with zero bytes
  std::uint16_t cityKey = 0;
  Byte value = 0;
  std::string state;           // 2 letters
  std::string name;            // at most 28
  std::optional<Byte> length;  // empty = name.size()
};

struct CityPhonetic {  // 26 bytes
  std::uint16_t other0 = 0;
  std::string state;
  std::string key;             // at most 20 stored, 19 can be found
  Byte count = 0;              // cities with this key
  std::optional<Byte> length;  // empty = key.size()
};

// The RBAs are those of the range partitions (SfhZip, PobZip, RrZip; key = this record's
// position), 0 where there is none.
struct ZipRecord {  // 52 bytes
  std::uint32_t zip = 0;
  std::uint32_t other4 = 0;
  Auto32 sfhRba;
  Auto32 pobRba;
  Auto32 rrRba;
  std::array<Byte, 10> other20 = {};
  std::uint16_t cityKey = 0;
  std::uint32_t cityKeysIndex = 0;  // first entry in cityKeysOfZips
  Byte cityKeysCount = 0;
  Byte other37 = 0;
  std::uint16_t finKey = 0;  // position in finMultiZip, 0 = none
  std::array<Byte, 12> other40 = {};
};

// Parallel to zips; sizes empty = the partition's bytes, 0 where there is none.
struct ZipBytes {  // 12 bytes
  std::string state;
  Auto32 pob;  // low 16 bits are stored
  Auto32 rr;
  Auto32 sfh;
};

struct UniqueZip {  // 12 bytes
  std::uint32_t zip = 0;
  std::uint32_t firm = 0;  // offset of the firm's name
  std::uint16_t plus4 = 0;
  std::uint16_t flags = 0;
};

struct County {  // 32 bytes
  std::string state;
  std::uint16_t number = 0;
  std::string name;  // at most 27, behind its length byte
};

struct Urbanization {      // 32 bytes
  std::uint16_t link = 0;  // first entry in urbMultiZips; a variation: urbanization key
  Byte count = 0;          // ZIPs in that list
  std::string name;        // at most 28, behind its length byte
};

struct Scf {                 // 4 bytes
  std::uint16_t prefix = 0;  // first three digits of the ZIP codes: this is the SCF key
  std::string state;
};

// A street that a variation stands for.
struct Candidate {
  std::uint32_t street = 0;  // index into streetNames; stored as its offset
  std::vector<std::uint16_t> scfs;
  Auto32 key;  // stored instead of that offset
};

// One candidate: its street key stands in the entry. Any other number: an ambiguous list.
struct Variation {
  std::string name;  // at most 28 to be found; 7 bits of length
  std::vector<Candidate> candidates;
  Auto32 value;                   // stored instead of the street key or list offset
  std::optional<bool> ambiguous;  // flag bit, whatever the number of candidates
};

struct MilitaryTable {
  std::vector<std::array<Byte, 38>> first;
  std::vector<std::array<Byte, 42>> second;
};

// Name types of the hash index: 0 firms, 1 streets, 2 city names, 3 standardized streets,
// 4 street phonetics, 5 city phonetics. Types 2 and 5: state and name as one text.
struct HashName {
  unsigned type = 0;
  std::string name;
  std::uint32_t number = 0;
};

struct HashPlan {
  bool indexNames = true;  // false: only `extra` is indexed
  std::vector<HashName> extra;
  std::uint32_t slots = 0;  // 0 = a power of two that suits the number of names
};

// The runs of the range file. Key: ZIP key (position of the ZIP record) or multi-ZIP key.
enum class Section { SfhZip, PobZip, RrZip, SfhMulti, PobMulti, RrMulti };

// The content is a function of the seed and the size, so that it needs no memory.
struct Partition {
  Section section = Section::SfhZip;
  std::uint32_t key = 0;
  std::uint32_t bytes = 0;
  std::uint64_t seed = 0;
};

// A 32-bit word stored at a byte offset of a control record, last of all.
struct WordPatch {
  std::uint32_t offset = 0;
  std::uint32_t value = 0;
};

struct RangeModel {
  Header header;                      // typeFlags 2 in a valid pair
  std::uint32_t firstRba = 4088;      // where the partitions begin, not before 624
  std::vector<Partition> partitions;  // stored back to back in this order
  std::uint32_t word40 = 0;
  std::uint32_t word84 = 0;
  std::uint32_t maxOverhead = 0;
  std::array<std::uint32_t, 4> maxStreets = {};  // SFH ZIP, SFH multi, RR ZIP, RR multi
  Bytes trailing;                                // up to 516 bytes at +108
  std::vector<WordPatch> words;
  std::optional<std::uint64_t> fileBytes;  // cuts the file short or extends it with zero bytes
};

struct Model {
  Header header;   // typeFlags 1 in a valid pair
  Bytes trailing;  // up to 512 bytes at +332
  std::vector<WordPatch> words;
  std::map<Table, Bytes> raw;  // bytes stored instead of a table's; its count stays

  std::vector<Pattern> sfhPatterns, pobPatterns, rrPatterns;
  std::vector<std::string> streetNames;                // at most 28 characters
  std::vector<std::string> firmNames;                  // at most 40 characters
  std::vector<CityData> cityData;                      // record 0 is a dummy
  std::vector<CityZipEntry> cityZipLists;              // entry 0 is a dummy
  std::vector<std::uint16_t> cityFinanceLists;         // entry 0 is a dummy
  std::vector<CityMultiZip> cityMultiZip;              // record 0 is a dummy
  std::vector<FinMultiZip> finMultiZip;                // record 0 is a dummy
  std::vector<CityName> cityNames;                     // record 0 is blank
  std::optional<std::vector<CityName>> byState;        // empty = cityNames[1..] by name, then state
  std::vector<CityPhonetic> cityPhonetics;             // record 0 is blank
  std::vector<ZipRecord> zips;                         // record 0 is a dummy
  std::vector<ZipBytes> zipBytes;                      // as many as zips
  std::optional<std::vector<std::uint16_t>> zipIndex;  // empty = from zips; 100000 entries
  std::vector<std::uint16_t> cityKeysOfZips;           // entry 0 is a dummy
  std::vector<UniqueZip> uniqueZips;                   // record 0 is a dummy
  std::vector<County> counties;                        // record 0 is a dummy
  std::vector<Urbanization> urbanizations;             // record 0 is a dummy
  std::vector<std::uint16_t> urbMultiZips;             // ZIP keys; entry 0 is a dummy
  std::vector<Urbanization> urbVariations;             // record 0 is a dummy
  std::vector<Variation> streetPhonetics;
  std::vector<Variation> streetStandards;
  std::vector<std::uint32_t> generalDelivery;  // entry 0 is a dummy
  std::vector<Scf> scfs;                       // record 0 is a dummy
  // ZIP keys by start index; the start index of a list is its multi-ZIP key, so this size is the
  // bound of all multi-ZIP keys (+252).
  std::vector<std::uint16_t> multiZipLists;
  // The second half of that table's room: entries from multiZipLists.size() on, zeros where short.
  std::vector<std::uint16_t> multiZipListsTail;
  HashPlan hash;
  std::optional<MilitaryTable> military;                 // empty = no table, RBA 0
  std::optional<std::vector<std::uint16_t>> poBoxZones;  // empty = no table, RBA 0

  RangeModel range;
};

}  // namespace statecut::builder
