// The calls that a damaged pair must answer.

#include <string_view>

#include "dbfiles/controlrec.h"
#include "format/names.h"
#include "programs.h"
#include "query/ops.h"

namespace statecut::test {

namespace {

using R = RefControlRec;

class Maker {
 public:
  explicit Maker(const PairImage& pair) : pair_(pair) {}

  void names() {
    using format::TableId;
    for (unsigned type = 0; type < format::kNameTypes; ++type) {
      const auto place = format::placeTable(format::tableOfType(type), pair_.ref);
      const std::span<const unsigned char> table(pair_.ref.data() + place.rba, place.bytes);
      format::forEachName(type, table, [&](std::uint64_t number, std::string_view name) {
        named(type, std::to_string(number), std::string(name));
        if (number % 3 == 0) named(type, std::to_string(number + 1), std::string(name) + "S");
      });
    }
  }

  void keys() {
    each({"dbGetZipDataFromKey", "dbGetCityKeysPtr", "dbGetZipFinMltZpRBA"}, R::zipDataCount);
    each({"dbGetMultiZipFinRBA"}, R::finMultiZipRbasCount);
    each({"dbGetGenrlDelvry"}, R::generalDeliveryCount);
    each({"dbGetCityData", "dbGetCityMultiZipRBAData"}, R::cityDataCount);
    each({"dbGetCityUSPS", "dbGetCityUSPSwc"}, R::cityNamesCount);
    each({"dbGetCityPh"}, R::cityPhoneticsCount);
    for (std::uint32_t start = 0; start < word(R::multiZipListsCount); start += 3)
      add({"dbGetMultiZips", "3", std::to_string(start)});
    for (const char* start : {"1", "2", "4"}) {
      add({"dbGetCityZipKeyPtr", "2", start});
      add({"dbGetCityFinKeyPtr", "2", start});
    }
    for (std::uint32_t key = 1; key < word(R::zipDataCount); ++key) {
      const std::uint32_t zip = le::get<4>(pair_.ref.data() + word(R::zipDataRba) + 52 * key);
      for (const std::uint32_t code : {zip, zip + 1}) {
        add({"dbGetZipIndex", std::to_string(code)});
        add({"dbGetZipData", std::to_string(code)});
      }
    }
    for (const char* code : {"1", "74000", "99999"}) add({"dbGetZipIndex", code});
  }

  void patterns() {
    for (const char* state : {"TX", "VT"})
      for (const char* pattern : {"*", "D*", "*G", "*L*", "NO SUCH"}) {
        add({"dbFindNearestCity", state, pattern});
        add({"dbFindNextCity", state, pattern, "2"});
      }
    for (const char* matcher : {"contains", "starts", "ends"})
      add({"seqSearchCity", "TX", "L", matcher, "0"});
    add({"uncompressCRT", "4097"});
  }

  std::vector<Query> take() { return std::move(made_); }

 private:
  template <typename Control>
  [[nodiscard]] std::uint32_t word(Control field) const {
    return le::get<4>(pair_.ref.data() + field.at);
  }

  void add(Query query) { made_.push_back(std::move(query)); }

  template <typename Count>
  void each(std::initializer_list<const char*> ops, Count count) {
    for (const char* op : ops)
      for (std::uint32_t key = 0; key <= word(count); ++key) add({op, std::to_string(key)});
  }

  void named(unsigned type, const std::string& number, const std::string& name) {
    const std::string state = name.substr(0, 2);
    const std::string rest = name.size() > 2 ? name.substr(2) : "";
    switch (type) {
      case 0:
        add({"dbFindFirm", name});
        add({"dbGetFirmName", number});
        return;
      case 1:
        add({"dbFindStreetKey", name});
        add({"dbGetStreetNameUSPS", number});
        add({"dbGetStreetNameUSPSwc", number});
        return;
      case 2:
        add({"dbFindCityNameIdx", name});
        for (const char* op : {"dbFindCityHash", "dbFindCity", "dbFindTruncCity",
                               "dbFindTruncCityIndex", "dbFindCityData", "dbFindTruncCityData"})
          add({op, state, rest});
        add({"dbFindTruncCity", state, rest.substr(0, rest.size() / 2)});
        return;
      case 5:
        add({"findCityPhIdx", name});
        add({"dbFindCityPh", state, rest});
        return;
      default:
        add({"dbFindStreetVarIdx", std::to_string(type), name});
        add({"dbFindStreetVar", name, type == 4 ? "0" : "1", "752,773"});
        add({"dbFindStreetVar", name, type == 4 ? "0" : "1", ""});
    }
  }

  const PairImage& pair_;
  std::vector<Query> made_;
};

}  // namespace

std::vector<Query> queriesOf(const PairImage& pair, Queries which) {
  Maker maker(pair);
  maker.names();
  maker.keys();
  maker.patterns();
  std::vector<Query> all = maker.take();
  if (which == Queries::kAll) return all;
  // The fourth call of each operation, or its last.
  std::vector<Query> few;
  for (const auto group : query::opGroups())
    for (const query::Op& op : group) {
      std::size_t seen = 0;
      const Query* chosen = nullptr;
      for (const Query& one : all)
        if (one.front() == op.name && seen++ < 4) chosen = &one;
      if (chosen != nullptr) few.push_back(*chosen);
    }
  return few;
}

}  // namespace statecut::test
