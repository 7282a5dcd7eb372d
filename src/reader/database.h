#pragma once
// A reference database for any number of threads. It never changes once it is open; a lookup takes
// no lock and no memory and answers from tables in memory. What it gives back points into the
// database and is good as long as that.

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "../dbfiles/controlrec.h"
#include "../reader/error.h"
#include "../reader/records.h"

namespace statecut {
inline namespace v1 {

struct OpenOptions {
  std::string range;  // the range file of the pair, for readPartition; empty: none
  // Maps the reference file instead of reading it: it opens at once, and pages come when they are
  // asked for. A file that is shortened or written while it is mapped then ends the process by a
  // signal, or changes the answers. For files that nobody touches.
  bool mapped = false;
  bool indexNames = false;     // as Database::indexNames
  bool indexCityZips = false;  // as Database::indexCityZips
};

class Database {
 public:
  // Null, with the reason in `error`, when the file or the pair cannot be used. All that the
  // lookups need is checked here.
  [[nodiscard]] static std::shared_ptr<const Database> open(const std::string& reference,
                                                            const OpenOptions& options,
                                                            Error& error) noexcept;
  // The same of a file that is in memory. The caller keeps the bytes, unchanged, as long as the
  // database.
  [[nodiscard]] static std::shared_ptr<const Database> open(std::span<const unsigned char> bytes,
                                                            const OpenOptions& options,
                                                            Error& error) noexcept;

  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // What the control record says.
  [[nodiscard]] std::uint32_t buildTime() const noexcept;     // seconds since 1970
  [[nodiscard]] std::string_view copyright() const noexcept;  // month and year, two digits each
  [[nodiscard]] std::string_view version() const noexcept;    // eight characters
  [[nodiscard]] bool isCut() const noexcept;
  [[nodiscard]] std::optional<std::uint32_t> cutTime() const noexcept;  // none: not a cut
  // The states of the city names, sorted; of a cut, its states.
  [[nodiscard]] std::vector<std::string> states() const;
  // The names and the control records of the files as they were opened, for who reports on them. Of
  // the range file: empty, null and 0 without one.
  [[nodiscard]] const std::string& referenceFile() const noexcept;
  [[nodiscard]] const RefControlRec& referenceRecord() const noexcept;
  [[nodiscard]] const std::string& rangeFile() const noexcept;
  [[nodiscard]] const RngControlRec* rangeRecord() const noexcept;
  [[nodiscard]] std::uint64_t rangeFileBytes() const noexcept;
  // Where in the reference file a record or a name stands that a lookup gave.
  [[nodiscard]] std::uint64_t offsetOf(const void* given) const noexcept;

  // ZIP codes, by code (1 to 99999) and by key.
  [[nodiscard]] Zip zip(std::uint32_t code) const noexcept;
  [[nodiscard]] Zip zipOfKey(std::uint32_t key) const noexcept;
  [[nodiscard]] std::span<const KeyRow> citiesOf(const ZipDataRow& zip) const noexcept;  // keys
  [[nodiscard]] const FinMultiZipRow* finance(std::uint32_t index) const noexcept;
  [[nodiscard]] const FinMultiZipRow* financeOf(const ZipDataRow& zip) const noexcept;
  [[nodiscard]] const FinMultiZipRow* financeOf(const CityDataRow& city) const noexcept;
  // `count` ZIP keys of the multi-ZIP lists from `start`; empty when the table does not hold them.
  [[nodiscard]] std::span<const KeyRow> multiZips(std::uint32_t start,
                                                  std::uint32_t count) const noexcept;
  // The state of a ZIP code, and the bytes of a partition (0: none). Unknown in a cut.
  [[nodiscard]] std::optional<std::string_view> stateOf(const Zip& zip) const noexcept;
  [[nodiscard]] std::optional<std::uint32_t> partitionBytes(const Zip& zip,
                                                            PartitionKind kind) const noexcept;

  // Cities. A state has two characters; names are as they stand, in upper case.
  [[nodiscard]] CityName findCity(std::string_view state, std::string_view name) const noexcept;
  [[nodiscard]] CityName cityName(std::uint32_t key) const noexcept;
  // The one name that begins with `name`.
  [[nodiscard]] TruncatedCity findTruncatedCity(std::string_view state,
                                                std::string_view name) const noexcept;
  // A phonetic key by state and code, and by its own key.
  [[nodiscard]] CityPhonetic findPhonetic(std::string_view state,
                                          std::string_view code) const noexcept;
  [[nodiscard]] CityPhonetic phonetic(std::uint32_t key) const noexcept;

  [[nodiscard]] City cityData(std::uint32_t key) const noexcept;
  [[nodiscard]] City cityOf(const CityNameRow& name) const noexcept;
  [[nodiscard]] const CityMultiZipRow* multiZipOf(const CityDataRow& city) const noexcept;
  // Runs of the city ZIP entries and the finance keys; empty when the table does not hold them.
  [[nodiscard]] std::span<const CityZipKeyRow> cityZipEntries(std::uint32_t start,
                                                              std::uint32_t count) const noexcept;
  [[nodiscard]] std::span<const KeyRow> cityFinanceKeys(std::uint32_t start,
                                                        std::uint32_t count) const noexcept;
  // The keys of the ZIP codes that have the city, ascending; none of key 0, which is no city. The
  // first call makes the index: nothing without memory for it, as indexCityZips tells.
  [[nodiscard]] std::optional<std::span<const std::uint16_t>> zipsOfCity(
      std::uint32_t cityKey) const noexcept;

  // Streets and firms. A key is the offset of a name.
  [[nodiscard]] NamedKey findStreet(std::string_view name) const noexcept;
  [[nodiscard]] std::optional<std::string_view> streetName(std::uint32_t key) const noexcept;
  [[nodiscard]] NamedKey findFirm(std::string_view name) const noexcept;
  [[nodiscard]] std::optional<std::string_view> firmName(std::uint32_t key) const noexcept;

  // Bytes of small tables, by position (from 1).
  [[nodiscard]] const GeneralDeliveryRow* generalDelivery(std::uint32_t key) const noexcept;
  [[nodiscard]] std::span<const unsigned char> county(std::uint32_t position) const noexcept;
  [[nodiscard]] std::span<const unsigned char> urbanization(std::uint32_t position) const noexcept;

  // What a range walks over. Positions and bytes; not for use by themselves.
  struct ZipCursor;
  struct CityCursor;
  struct PatternCursor;
  struct NameCursor;
  struct VariationCursor;
  struct PhoneticCursor;
  struct VariationNameCursor;
  struct ServedStreetCursor;

  // The names of a state that fit a pattern, in their order: "SAN" and "SAN*" begin with SAN,
  // "*SAN" ends with it, "*SAN*" holds it. Nothing fits another pattern, nor a text of more than 28
  // characters, which no name has.
  [[nodiscard]] Walk<PatternCursor> cities(std::string_view state,
                                           std::string_view pattern) const noexcept;
  // The streets that a variation of a name stands for: their keys. With an SCF only those that are
  // served there or everywhere.
  [[nodiscard]] Walk<VariationCursor> variations(
      VariationKind kind, std::string_view name,
      std::optional<std::uint16_t> scf = std::nullopt) const noexcept;
  // The same with what the file holds of them: the variation of a name, and its streets with their
  // SCFs.
  [[nodiscard]] Variation findVariation(VariationKind kind, std::string_view name) const noexcept;
  [[nodiscard]] Walk<ServedStreetCursor> streetsOf(const Variation& variation) const noexcept;
  [[nodiscard]] ServedStreetCursor streetCursor(const Variation& variation) const noexcept;

  // Whole tables: ZIP codes ascending, city names by state and name, phonetic keys, streets, firms
  // and variations.
  [[nodiscard]] Walk<ZipCursor> zips() const noexcept;
  [[nodiscard]] Walk<CityCursor> cityNames() const noexcept;
  [[nodiscard]] Walk<NameCursor> streets() const noexcept;
  [[nodiscard]] Walk<NameCursor> firms() const noexcept;
  [[nodiscard]] Walk<PhoneticCursor> phonetics() const noexcept;
  [[nodiscard]] Walk<VariationNameCursor> variationNames(VariationKind kind) const noexcept;
  [[nodiscard]] VariationNameCursor variationCursor(VariationKind kind) const noexcept;

  // One answer for each question, as the single lookups give it, with cache misses that overlap.
  // As many as both spans hold.
  void findZips(std::span<const std::uint32_t> codes, std::span<Zip> zips) const noexcept;
  void findCities(std::span<const CityQuery> queries, std::span<CityName> cities) const noexcept;
  void findStreets(std::span<const std::string_view> names,
                   std::span<NamedKey> streets) const noexcept;
  void findFirms(std::span<const std::string_view> names, std::span<NamedKey> firms) const noexcept;

  // Makes an index of all names, with which a lookup of one takes a third of the time: some
  // milliseconds and a MiB for a national database. The answers are the same. False without memory.
  // Any thread may call it, also while others look up.
  bool indexNames() const noexcept;
  // Makes the index of zipsOfCity. False without memory.
  bool indexCityZips() const noexcept;

  // Reads a partition of a ZIP code from the range file into the buffer. The bytes read, which are
  // the partition's; of a cut, which knows no sizes, as many as the buffer has and the file still
  // holds. None, with the reason in `error`, when there is no such partition or it cannot be read.
  [[nodiscard]] std::optional<std::size_t> readPartition(const Zip& zip, PartitionKind kind,
                                                         std::span<unsigned char> buffer,
                                                         Error& error) const noexcept;

  struct Loaded;  // the tables; of the library alone
  explicit Database(std::unique_ptr<Loaded> loaded) noexcept;

 private:
  std::unique_ptr<Loaded> loaded_;
};

// The cursors of the ranges.

struct Database::ZipCursor {
  using Item = Zip;
  bool next(Zip& item) noexcept;
  const Loaded* loaded = nullptr;
  std::uint32_t code = 0;
};

struct Database::CityCursor {
  using Item = CityName;
  bool next(CityName& item) noexcept;
  const Loaded* loaded = nullptr;
  std::uint32_t key = 0;
};

struct Database::PatternCursor {
  using Item = CityName;
  enum class Match : std::uint8_t { kNothing, kStarts, kEnds, kHolds };
  bool next(CityName& item) noexcept;
  const Loaded* loaded = nullptr;
  char state[2] = {};
  std::array<char, 28> text{};  // a copy: the caller's pattern may be gone
  std::uint8_t length = 0;
  Match match = Match::kNothing;
  std::int32_t start = 0;
};

struct Database::NameCursor {
  using Item = NamedKey;
  bool next(NamedKey& item) noexcept;
  std::span<const unsigned char> names;
  std::uint64_t at = 0;
};

struct Database::VariationCursor {
  using Item = std::uint32_t;
  bool next(std::uint32_t& street) noexcept;
  std::optional<std::uint32_t> single;     // the only street
  std::span<const unsigned char> streets;  // the rest of an ambiguous list
  std::uint32_t left = 0;                  // its entries
  std::optional<std::uint16_t> scf;
};

struct Database::PhoneticCursor {
  using Item = CityPhonetic;
  bool next(CityPhonetic& item) noexcept;
  const Loaded* loaded = nullptr;
  std::uint32_t key = 0;
};

// Ends with a name that its table does not hold wholly: `at` is then where that begins.
struct Database::VariationNameCursor {
  using Item = Variation;
  bool next(Variation& item) noexcept;
  std::span<const unsigned char> table;
  VariationKind kind = VariationKind::kPhonetic;
  std::uint64_t at = 0;
};

// Ends with an entry that the table does not hold wholly: `left` entries are missing then.
struct Database::ServedStreetCursor {
  using Item = ServedStreet;
  bool next(ServedStreet& item) noexcept;
  std::optional<std::uint32_t> single;  // the only street
  std::span<const unsigned char> rest;
  std::uint32_t left = 0;
};

}  // namespace v1
}  // namespace statecut
