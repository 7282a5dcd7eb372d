#include "databasecalls.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "calls.h"
#include "reader/database.h"

namespace statecut::fuzz {

namespace {

// How the second Database is opened and asked, a byte of bits.
constexpr std::uint8_t kFromFile = 1;
constexpr std::uint8_t kMapped = 2;
constexpr std::uint8_t kIndexedNames = 4;
constexpr std::uint8_t kIndexedCityZips = 8;
constexpr std::uint8_t kBatches = 16;
constexpr std::uint8_t kRange = 32;

// A copy that ends with its last byte, as far as a sanitizer sees; null for nothing.
class Exact {
 public:
  explicit Exact(std::string_view text)
      : bytes_(text.empty() ? nullptr : new char[text.size()]), size_(text.size()) {
    std::copy(text.begin(), text.end(), bytes_.get());
  }
  [[nodiscard]] std::string_view view() const { return {bytes_.get(), size_}; }
  [[nodiscard]] std::span<const unsigned char> bytes() const {
    return {reinterpret_cast<const unsigned char*>(bytes_.get()), size_};
  }

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t size_;
};

std::string_view textOf(std::span<const unsigned char> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

struct Question {
  std::uint8_t op;
  std::uint32_t number;
  std::uint32_t count;
  Exact state;
  Exact text;
  Exact pattern;
  std::optional<std::uint16_t> scf;
};

// An answer as bytes: whatever a lookup gave is read whole.
class Answer {
 public:
  Answer& operator<<(std::uint64_t number) {
    bytes_ += std::to_string(number);
    bytes_ += ',';
    return *this;
  }
  Answer& operator<<(std::string_view text) {
    bytes_ += text;
    bytes_ += ';';
    return *this;
  }
  template <typename RowType>
  Answer& operator<<(const RowType* row) {
    return row == nullptr ? *this << std::string_view("none") : *this << textOf(row->bytes);
  }
  template <typename RowType>
  Answer& operator<<(const Found<RowType>& found) {
    return *this << found.key << found.row;
  }
  Answer& operator<<(const NamedKey& named) {
    return *this << named.found << named.key << named.name;
  }
  template <typename RowType>
  Answer& operator<<(std::span<const RowType> list) {
    *this << list.size();
    for (const RowType& row : list) *this << &row;
    return *this;
  }
  Answer& operator<<(std::span<const std::uint16_t> list) {
    *this << list.size();
    for (const std::uint16_t number : list) *this << number;
    return *this;
  }
  template <typename Cursor>
  Answer& operator<<(const Walk<Cursor>& walk) {
    for (const auto& item : walk) *this << item;
    return *this;
  }
  [[nodiscard]] const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

class Asker {
 public:
  Asker(const Database& database, bool batches) : database_(database), batches_(batches) {}

  std::string answer(const Question& question) const {
    Answer to;
    switch (question.op % 4) {
      case 0:
        zips(question, to);
        break;
      case 1:
        cities(question, to);
        break;
      case 2:
        names(question, to);
        break;
      default:
        tables(question, to);
    }
    return to.bytes();
  }

 private:
  // Several times the same question is as many answers.
  template <typename Item, typename Asked, typename Ask>
  static Item inBatch(const Asked& question, std::size_t count, Ask ask) {
    const std::vector<Asked> questions(count, question);
    std::vector<Item> items(count);
    ask(std::span<const Asked>(questions), std::span<Item>(items));
    return items.back();
  }

  void zips(const Question& q, Answer& to) const {
    const Zip byCode =
        batches_ ? inBatch<Zip>(q.number, 1 + q.count % 40,
                                [&](auto from, auto items) { database_.findZips(from, items); })
                 : database_.zip(q.number);
    for (const Zip& zip : {byCode, database_.zipOfKey(q.number)}) {
      to << zip;
      if (!zip) continue;
      to << database_.citiesOf(*zip) << database_.financeOf(*zip)
         << database_.stateOf(zip).value_or("?");
      for (const PartitionKind kind :
           {PartitionKind::kPoBox, PartitionKind::kStreet, PartitionKind::kRuralRoute})
        to << database_.partitionBytes(zip, kind).value_or(7);
    }
    to << database_.finance(q.number) << database_.multiZips(q.number, q.count);
  }

  void cities(const Question& q, Answer& to) const {
    const CityQuery query{q.state.view(), q.text.view()};
    const CityName byName =
        batches_
            ? inBatch<CityName>(query, 1 + q.count % 40,
                                [&](auto from, auto items) { database_.findCities(from, items); })
            : database_.findCity(query.state, query.name);
    const TruncatedCity truncated = database_.findTruncatedCity(query.state, query.name);
    to << truncated.ambiguous;
    for (const CityName& name : {byName, truncated.city, database_.cityName(q.number)}) {
      to << name;
      if (name) to << nameOf(*name) << stateOf(*name) << database_.cityOf(*name);
    }
    for (const CityPhonetic& phonetic :
         {database_.findPhonetic(query.state, query.name), database_.phonetic(q.number)}) {
      to << phonetic;
      if (phonetic) to << keyOf(*phonetic) << countOf(*phonetic);
    }
    to << database_.cities(q.state.view(), q.pattern.view());
    const City city = database_.cityData(q.number);
    to << city;
    if (city) to << database_.multiZipOf(*city) << database_.financeOf(*city);
    const auto zips = database_.zipsOfCity(q.number);
    to << zips.value_or(std::span<const std::uint16_t>())
       << database_.cityZipEntries(q.number, q.count)
       << database_.cityFinanceKeys(q.number, q.count);
  }

  void names(const Question& q, Answer& to) const {
    const std::string_view text = q.text.view();
    if (batches_) {
      to << inBatch<NamedKey>(text, 1 + q.count % 40,
                              [&](auto from, auto items) { database_.findStreets(from, items); });
      to << inBatch<NamedKey>(text, 1 + q.count % 40,
                              [&](auto from, auto items) { database_.findFirms(from, items); });
    } else {
      to << database_.findStreet(text) << database_.findFirm(text);
    }
    to << database_.streetName(q.number).value_or("?")
       << database_.firmName(q.number).value_or("?");
    for (const VariationKind kind : {VariationKind::kPhonetic, VariationKind::kStandard})
      to << database_.variations(kind, text, q.scf);
  }

  void tables(const Question& q, Answer& to) const {
    to << database_.generalDelivery(q.number) << textOf(database_.county(q.number))
       << textOf(database_.urbanization(q.number)) << database_.buildTime() << database_.copyright()
       << database_.version() << database_.cutTime().value_or(7);
    switch (q.count % 8) {
      case 0:
        to << database_.zips();
        break;
      case 1:
        to << database_.cityNames();
        break;
      case 2:
        to << database_.streets();
        break;
      case 3:
        to << database_.firms();
        break;
      case 4:
        for (const std::string& state : database_.states()) to << state;
        break;
      default:
        break;
    }
  }

  const Database& database_;
  bool batches_;
};

// A partition, or a reason; the bytes are those of the file.
void readSome(const Database& database, const DamagedPair& pair, Input& input,
              std::uint32_t number) {
  Error error;
  std::vector<unsigned char> buffer(input.u16() % 5000);
  const auto kind = static_cast<PartitionKind>(input.u8() % 3);
  const Zip zip = database.zipOfKey(number);
  const auto got = database.readPartition(zip, kind, buffer, error);
  if (!got) {
    if (error.code == ErrorCode::kNone || error.text.empty()) finding("no partition and no reason");
    return;
  }
  const std::uint32_t rba = kind == PartitionKind::kStreet  ? zip->get(ZipDataRow::sfhRba)
                            : kind == PartitionKind::kPoBox ? zip->get(ZipDataRow::pobRba)
                                                            : zip->get(ZipDataRow::rrRba);
  const auto range = pair.rng().bytes();
  if (*got > buffer.size() || (*got != 0 && std::uint64_t{rba} + *got > range.size()) ||
      !std::equal(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(*got),
                  range.begin() + (*got == 0 ? 0 : rba)))
    finding("a partition has other bytes than the file");
}

bool isOfRange(const Error& error) {
  return error.code == ErrorCode::kOtherBuild || error.text.find(kRngPath) != std::string::npos;
}

// Why the ways differ in whether they open the file; null when they do not.
const char* flaw(const Error& first, const Error& second) {
  if (first.code == ErrorCode::kNoMemory || second.code == ErrorCode::kNoMemory) return nullptr;
  if (first.code != ErrorCode::kNone && first.text.empty()) return "refused without a reason";
  if (first.code == ErrorCode::kNone && isOfRange(second)) return nullptr;
  if (first.code != second.code || first.table != second.table || first.offset != second.offset)
    return "a file and its bytes are not refused alike";
  return nullptr;
}

}  // namespace

void askDatabase(const DamagedPair& pair, Input& input) {
  const std::uint8_t bits = input.u8();
  Error error;
  const Exact bytes(textOf(pair.ref().bytes()));
  const auto database = Database::open(bytes.bytes(), {}, error);

  OpenOptions options;
  options.mapped = (bits & kMapped) != 0;
  options.indexNames = (bits & kIndexedNames) != 0;
  options.indexCityZips = (bits & kIndexedCityZips) != 0;
  if ((bits & kRange) != 0) options.range = kRngPath;
  Error otherError;
  const auto other = (bits & kFromFile) != 0
                         ? Database::open(std::string(kRefPath), options, otherError)
                         : Database::open(bytes.bytes(), options, otherError);
  if ((database == nullptr) != (error.code != ErrorCode::kNone) ||
      (other == nullptr) != (otherError.code != ErrorCode::kNone))
    finding("a database and an error, or neither");
  if (const char* what = flaw(error, otherError); what != nullptr) finding(what);
  if (database == nullptr || other == nullptr) return;

  const Asker first(*database, false);
  const Asker second(*other, (bits & kBatches) != 0);
  const unsigned char* const record = pair.ref().bytes().data();
  constexpr int kMostCalls = 40;
  for (int calls = 0; calls < kMostCalls && !input.empty(); ++calls) {
    const std::uint8_t op = input.u8();
    const std::uint32_t number = numberFrom(record, input);
    const std::uint32_t count = (op & 128) != 0 ? numberFrom(record, input) : input.u8();
    const Question question{op,
                            number,
                            count,
                            Exact(stateFrom(input)),
                            Exact(textFrom(input)),
                            Exact(patternFrom(input)),
                            (op & 64) != 0 ? std::optional(input.u16()) : std::nullopt};
    if (first.answer(question) != second.answer(question)) finding("two answers differ");
    if ((bits & kRange) != 0) readSome(*other, pair, input, number);
  }
}

}  // namespace statecut::fuzz
