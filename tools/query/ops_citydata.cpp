// City data and the key lists of cities, and city phonetic keys.

#include <algorithm>

#include "query/lists.h"
#include "query/ops.h"

namespace statecut::query {

namespace {

void findData(FindCityData* find, const Args& args, Answer& answer) {
  CityNameRow* name = nullptr;
  std::uint32_t value = 0;
  std::uint32_t key = 0;
  answer.record("record", find(&name, args[0].text.data(), args[1].text.data(), &value, &key,
                               args[1].length()));
  answer.record("name", name, "nameFields");
  if (name == nullptr) {
    answer.null("value");
    answer.null("key");
  } else {
    answer.number("value", value);
    answer.number("key", key);
  }
}

void findCityData(Session&, const Args& args, Answer& answer) {
  findData(dbFindCityData, args, answer);
}

void findTruncCityData(Session&, const Args& args, Answer& answer) {
  findData(dbFindTruncCityData, args, answer);
}

void cityData(Session&, const Args& args, Answer& answer) {
  answer.record("record", dbGetCityData(args[0].asSigned()));
}

void cityZipKeys(Session& session, const Args& args, Answer& answer) {
  const CityZipKeyRow* entries = dbGetCityZipKeyPtr(args[0].number, args[1].number);
  if (entries == nullptr) return answer.null("entries");
  const std::uint64_t bytes =
      std::uint64_t{session.ref().get(RefControlRec::cityMultiZipListsCount)} * CityZipKeyRow::size;
  const std::size_t count = std::min(args[0].number, kCityZipKeysMax);
  answer.hex("entries", listBytes(entries->bytes.data(), count * CityZipKeyRow::size,
                                  {kSlotCityMultiZip, bytes}));
}

void cityFinKeys(Session& session, const Args& args, Answer& answer) {
  const std::uint64_t bytes =
      std::uint64_t{session.ref().get(RefControlRec::cityMultiFinanceListsCount)} * KeyRow::size;
  writeKeys(answer, dbGetCityFinKeyPtr(args[0].number, args[1].number),
            std::min(args[0].number, kCityFinKeysMax), {kSlotCityMultiFinance, bytes});
}

void cityMultiZipRba(Session&, const Args& args, Answer& answer) {
  const CityDataRow* city = dbGetCityData(args[0].asSigned());
  answer.record("record", city == nullptr ? nullptr : dbGetCityMultiZipRBAData(city));
}

void phoneticIdx(Session& session, const Args& args, Answer& answer) {
  answer.number("result", session.proc()->pfnFindCityPhIdx(args[0].text.data(), args[0].length(),
                                                           session.proc()));
}

void findPhonetic(Session&, const Args& args, Answer& answer) {
  // Neither value is ever stored without a record.
  std::int32_t count = -1;
  std::int32_t index = INT32_MIN;
  const CityPhoneticRow* record =
      dbFindCityPh(args[0].text.data(), args[1].text.data(), args[1].length(), &count, &index);
  answer.record("record", record);
  if (count == -1)
    answer.null("count");
  else
    answer.number("count", count);
  if (record == nullptr && index == INT32_MIN)
    answer.null("index");
  else
    answer.number("index", index);
}

void phonetic(Session& session, const Args& args, Answer& answer) {
  answer.record("record", session.proc()->pfnGetCityPh(args[0].asSigned()));
}

constexpr Parameter kName[] = {{"STATE", ArgKind::kState}, {"NAME", ArgKind::kText}};
constexpr Parameter kKey[] = {{"KEY", ArgKind::kNumber}};
constexpr Parameter kRun[] = {{"COUNT", ArgKind::kNumber}, {"START", ArgKind::kNumber}};
constexpr Parameter kHashKey[] = {{"STATE+CODE", ArgKind::kText}};
constexpr Parameter kCode[] = {{"STATE", ArgKind::kState}, {"CODE", ArgKind::kText}};
constexpr Parameter kIndex[] = {{"INDEX", ArgKind::kNumber}};

constexpr std::uint32_t kPhonetic = kCityPhoneticSet | kHashSet;

constexpr Op kOps[] = {{"dbFindCityData", kName, "record, name, value, key",
                        kCitySet | kCityNameSet | kHashSet, findCityData},
                       {"dbFindTruncCityData", kName, "record, name, value, key",
                        kCitySet | kCityNameSet, findTruncCityData},
                       {"dbGetCityData", kKey, "record", kCitySet, cityData},
                       {"dbGetCityZipKeyPtr", kRun, "entries", kCitySet, cityZipKeys},
                       {"dbGetCityFinKeyPtr", kRun, "keys", kCitySet, cityFinKeys},
                       {"dbGetCityMultiZipRBAData", kKey, "record", kCitySet, cityMultiZipRba},
                       {"findCityPhIdx", kHashKey, "result", kPhonetic, phoneticIdx},
                       {"dbFindCityPh", kCode, "record, count, index", kPhonetic, findPhonetic},
                       {"dbGetCityPh", kIndex, "record", kCityPhoneticSet, phonetic}};

}  // namespace

std::span<const Op> cityDataOps() { return kOps; }

}  // namespace statecut::query
