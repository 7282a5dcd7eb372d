// street, firm and street_variation.

#include "relations/zipwalk.h"

namespace statecut::relations {

namespace {

enum NameColumn : std::uint8_t { kNameKey, kNameText };
constexpr Column kStreetColumns[] = {
    {"streetKey", Type::kInteger, StreetListEntryRow::streetKey.meaning},
    {"name", Type::kText, "street name"},
};
constexpr Column kFirmColumns[] = {
    {"firmKey", Type::kInteger, "byte offset in the firm names"},
    {"name", Type::kText, "firm name"},
};
constexpr int kNamePrimary[] = {kNameKey};
constexpr int kNameByName[] = {kNameText};
constexpr Columns kNameIndexes[] = {kNameByName};
constexpr Path kNamePaths[] = {
    {"name=?", {{{kNameText, Match::kText}}}, 1, false},
    {"rowid=?", {{{kRowId, Match::kKey}}}, 1, true},
};

// Streets or firms: one of two lists of packed names.
template <bool IsStreet>
class NameRows : public Cursor {
 public:
  explicit NameRows(Source& source) : source_(source), database_(source.database()) {}

  void startAll() override {
    fault_ = Error();
    walk_ = IsStreet ? database_.streets() : database_.firms();
    at_ = walk_->begin();
    isFirst_ = true;
    one_ = {};
  }

  void start(std::size_t path, std::span<const Wanted> wanted) override {
    fault_ = Error();
    walk_.reset();
    one_ = {};
    if (path == 0) {
      source_.countNameLookup();
      one_ = IsStreet ? database_.findStreet(wanted[0].text) : database_.findFirm(wanted[0].text);
    } else if (wanted[0].low <= UINT32_MAX) {
      one_.key = static_cast<std::uint32_t>(wanted[0].low);
      const auto name = IsStreet ? database_.streetName(one_.key) : database_.firmName(one_.key);
      one_.found = name.has_value();
      one_.name = name.value_or(std::string_view());
    }
    // A number that leads into the middle of a name is none.
    if (one_ && !(IsStreet ? source_.streetStarts() : source_.firmStarts()).has(one_.key))
      one_ = {};
  }

  bool next() override {
    if (!walk_) {
      if (!one_) return false;
      name_ = one_;
      one_ = {};
      return true;
    }
    if (!isFirst_) ++at_;
    isFirst_ = false;
    if (at_ == walk_->end()) return false;
    name_ = *at_;
    return true;
  }

  [[nodiscard]] std::int64_t id() const override { return name_.key; }

  Value value(std::size_t column) override {
    if (column == kNameKey) return Value::integer(name_.key);
    // The length byte stands in front of the text.
    const auto* length = reinterpret_cast<const unsigned char*>(name_.name.data()) - 1;
    if (*length == name_.name.size()) return Value::text(name_.name);
    fault_ = source_.damage(IsStreet ? "Street names" : "Firm names", length,
                            "has a name that does not end in its table");
    return Value::fault();
  }

 private:
  using Names = Walk<Database::NameCursor>;

  Source& source_;
  const Database& database_;
  std::optional<Names> walk_;
  Names::Iterator at_;
  bool isFirst_ = false;
  NamedKey one_;
  NamedKey name_;
};

enum VariationColumn : std::uint8_t { kKind, kEntry, kText, kStreet, kScf };
constexpr Column kVariationColumns[] = {
    {"kind", Type::kText, "phonetic or standard"},
    {"entry", Type::kInteger, "byte offset of the variation in its table"},
    {"name", Type::kText, "phonetic key or standardized name"},
    {"streetKey", Type::kInteger, "a street that it stands for", false, "street", "streetKey"},
    {"scf", Type::kInteger, "key of an SCF where the street is served; null: everywhere", true},
};
constexpr int kVariationByName[] = {kText, kKind};
constexpr int kVariationByStreet[] = {kStreet};
constexpr Columns kVariationIndexes[] = {kVariationByName, kVariationByStreet};
constexpr Path kVariationPaths[] = {
    {"kind=? AND name=?", {{{kKind, Match::kText}, {kText, Match::kText}}}, 2, false},
    {"name=?", {{{kText, Match::kText}}}, 1, false},
    {"rowid=?", {{{kRowId, Match::kKey}}}, 1, true},
};

constexpr const char* kPhoneticText = "phonetic";
constexpr const char* kStandardText = "standard";

// A row is a street and an SCF of a variation. Its id holds the kind, the offset of the variation,
// the place of the street in its list and that of the SCF.
class VariationRows : public Cursor {
 public:
  explicit VariationRows(Source& source) : source_(source), database_(source.database()) {}

  void startAll() override {
    begin();
    beginTable(VariationKind::kPhonetic);
  }

  void start(std::size_t path, std::span<const Wanted> wanted) override {
    begin();
    if (path == 2) return startId(wanted[0].low);
    const std::string_view name = wanted[path == 0 ? 1 : 0].text;
    source_.countNameLookup();
    if (path == 1 || wanted[0].text == kPhoneticText) add(VariationKind::kPhonetic, name);
    if (path == 1 || wanted[0].text == kStandardText) add(VariationKind::kStandard, name);
  }

  bool next() override {
    while (!nextOfList())
      if (fault() != nullptr || !nextVariation()) return false;
    return true;
  }

  [[nodiscard]] std::int64_t id() const override {
    const std::uint64_t kind = variation_.kind == VariationKind::kPhonetic ? 0 : 1;
    return static_cast<std::int64_t>(kind << kKindShift |
                                     std::uint64_t{variation_.key} << kEntryShift |
                                     streetPlace_ << kStreetShift | scfPlace_);
  }

  Value value(std::size_t column) override {
    switch (column) {
      case kKind:
        return Value::text(isPhonetic() ? kPhoneticText : kStandardText);
      case kEntry:
        return Value::integer(variation_.key);
      case kText:
        return Value::text(variation_.name);
      case kStreet:
        if (database_.streetName(street_.street)) return Value::integer(street_.street);
        fault_ = source_.damage(tableName(), variation_.row, "leads to a street behind the names");
        return Value::fault();
      case kScf:
        if (street_.everywhere) return Value::null();
        return Value::integer(street_.scfs[scfPlace_].get(KeyRow::key));
      default:
        return Value::null();
    }
  }

 private:
  static constexpr int kStreetShift = 8, kEntryShift = 24, kKindShift = 56;

  void begin() {
    fault_ = Error();
    found_ = {};
    foundCount_ = 0;
    isWhole_ = false;
    onlyId_.reset();
    list_ = Database::ServedStreetCursor();
    street_ = ServedStreet();
    variation_ = Variation();
  }

  [[nodiscard]] bool isPhonetic() const { return variation_.kind == VariationKind::kPhonetic; }
  [[nodiscard]] const char* tableName() const {
    return isPhonetic() ? "Street phonetics" : "Standardized street names";
  }

  void beginTable(VariationKind kind) {
    isWhole_ = true;
    kind_ = kind;
    table_ = database_.variationCursor(kind);
  }

  void add(VariationKind kind, std::string_view name) {
    const Variation found = database_.findVariation(kind, name);
    if (found && source_.variationStarts(kind).has(found.key)) found_[foundCount_++] = found;
  }

  void startId(std::uint64_t id) {
    const std::uint64_t kind = id >> kKindShift;
    if (kind > 1) return;
    const auto entry = static_cast<std::uint32_t>(id >> kEntryShift);
    const auto of = kind == 0 ? VariationKind::kPhonetic : VariationKind::kStandard;
    if (!source_.variationStarts(of).has(entry)) return;
    Database::VariationNameCursor cursor = database_.variationCursor(of);
    cursor.at = entry;
    if (!cursor.next(found_[0])) return;
    foundCount_ = 1;
    onlyId_ = static_cast<std::int64_t>(id);
  }

  bool nextVariation() {
    if (isWhole_) {
      if (!nextOfTable()) return false;
    } else {
      if (foundCount_ == 0) return false;
      variation_ = found_[0];
      found_[0] = found_[1];
      --foundCount_;
    }
    list_ = database_.streetCursor(variation_);
    streetPlace_ = UINT64_MAX;
    street_ = ServedStreet();
    scfPlace_ = 0;
    return true;
  }

  bool nextOfTable() {
    while (!table_.next(variation_)) {
      if (table_.at < table_.table.size()) {
        variation_.kind = kind_;
        fault_ = source_.damage(tableName(), table_.table.data() + table_.at,
                                "has an entry that does not end in it");
        return false;
      }
      if (kind_ == VariationKind::kStandard) return false;
      beginTable(VariationKind::kStandard);
    }
    return true;
  }

  // The next SCF of the street, or the next street.
  bool nextOfList() {
    if (!variation_) return false;
    for (;;) {
      if (scfPlace_ + 1 < street_.scfs.size()) {
        ++scfPlace_;
      } else {
        if (!list_.next(street_)) return endList();
        ++streetPlace_;
        scfPlace_ = 0;
        if (!street_.everywhere && street_.scfs.empty())
          return broken("has a street with a negative count of SCFs");
      }
      if (!onlyId_ || id() == *onlyId_) return true;
    }
  }

  bool endList() {
    street_ = ServedStreet();
    return list_.left == 0 ? false : broken("has a list of streets that does not end in its table");
  }
  bool broken(const char* what) {
    fault_ = source_.damage(tableName(), variation_.row, what);
    return false;
  }

  Source& source_;
  const Database& database_;
  bool isWhole_ = false;  // walks over the table
  VariationKind kind_ = VariationKind::kPhonetic;
  Database::VariationNameCursor table_;
  std::array<Variation, 2> found_;
  std::size_t foundCount_ = 0;
  std::optional<std::int64_t> onlyId_;
  Variation variation_;
  Database::ServedStreetCursor list_;
  ServedStreet street_;
  std::uint64_t streetPlace_ = 0, scfPlace_ = 0;
};

std::uint64_t countStreets(const Source& source) {
  return source.database().referenceRecord().get(RefControlRec::streetNamesCount);
}
std::uint64_t countFirms(const Source& source) {
  return source.database().referenceRecord().get(RefControlRec::firmsCount);
}
std::uint64_t countVariations(const Source& source) {
  const RefControlRec& record = source.database().referenceRecord();
  return std::uint64_t{record.get(RefControlRec::streetPhoneticsCount)} +
         record.get(RefControlRec::streetStandardsCount);
}

}  // namespace

constinit const Relation kStreet = {"street",   "street names", kStreetColumns,
                                    kNameKey,   kNamePrimary,   kNameIndexes,
                                    kNamePaths, countStreets,   openRows<NameRows<true>>};
constinit const Relation kFirm = {"firm",     "firm names", kFirmColumns,
                                  kNameKey,   kNamePrimary, kNameIndexes,
                                  kNamePaths, countFirms,   openRows<NameRows<false>>};
constinit const Relation kStreetVariation = {"street_variation",
                                             "phonetic keys and standardized names of streets",
                                             kVariationColumns,
                                             kRowId,
                                             {},
                                             kVariationIndexes,
                                             kVariationPaths,
                                             countVariations,
                                             openRows<VariationRows>};

}  // namespace statecut::relations
