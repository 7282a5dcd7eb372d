// ZIP codes, their keys and lists, and general delivery.

#include <algorithm>

#include "dbfiles/apiutil.h"
#include "query/lists.h"
#include "query/ops.h"
#include "tables/directory.h"

namespace statecut::query {

namespace {

constexpr std::uint32_t kNoZipKey = 0xFFFFFFFF;  // a key has 16 bits

void zipIndex(Session&, const Args& args, Answer& answer) {
  answer.number("result", dbGetZipIndex(args[0].asSigned()));
}

void zipData(Session&, const Args& args, Answer& answer) {
  std::uint32_t key = kNoZipKey;
  answer.record("record", dbGetZipData(args[0].asSigned(), &key));
  if (key == kNoZipKey)
    answer.null("key");
  else
    answer.number("key", key);
}

void zipDataFromKey(Session&, const Args& args, Answer& answer) {
  answer.record("record", dbGetZipDataFromKey(args[0].asSigned()));
}

void cityKeys(Session& session, const Args& args, Answer& answer) {
  const ZipDataRow* zip = dbGetZipDataFromKey(args[0].asSigned());
  if (zip == nullptr) return answer.null("keys");
  const auto bytes =
      static_cast<std::uint64_t>(tableBytes(session.ref(), TableId::kZipMultiCityLists));
  writeKeys(answer, dbGetCityKeysPtr(zip), zip->get(ZipDataRow::cityKeysCount),
            {kSlotZipMultiCity, bytes});
}

void multiZipFinRba(Session&, const Args& args, Answer& answer) {
  answer.record("record", dbGetMultiZipFinRBA(args[0].asSigned()));
}

void zipFinMltZpRba(Session&, const Args& args, Answer& answer) {
  const ZipDataRow* zip = dbGetZipDataFromKey(args[0].asSigned());
  answer.record("record", zip == nullptr ? nullptr : dbGetZipFinMltZpRBA(zip));
}

void multiZips(Session& session, const Args& args, Answer& answer) {
  const auto bytes = static_cast<std::uint64_t>(tableBytes(session.ref(), TableId::kMultiZipLists));
  writeKeys(answer, dbGetMultiZips(args[0].number, args[1].number),
            std::min(args[0].number, kMultiZipsMax), {kSlotMultiZip, bytes});
}

void generalDelivery(Session&, const Args& args, Answer& answer) {
  answer.record("record", dbGetGenrlDelvry(args[0].number));
}

void carrierRoute(Session&, const Args& args, Answer& answer) {
  answer.text("result", uncompressCRT(static_cast<std::uint16_t>(args[0].number)));
}

constexpr Parameter kZip[] = {{"ZIP", ArgKind::kNumber}};
constexpr Parameter kKey[] = {{"KEY", ArgKind::kNumber}};
constexpr Parameter kIndex[] = {{"INDEX", ArgKind::kNumber}};
constexpr Parameter kRun[] = {{"COUNT", ArgKind::kNumber}, {"START", ArgKind::kNumber}};
constexpr Parameter kCode[] = {{"CODE", ArgKind::kNumber}};

constexpr Op kOps[] = {{"dbGetZipIndex", kZip, "result", kZipSet, zipIndex},
                       {"dbGetZipData", kZip, "record, key", kZipSet, zipData},
                       {"dbGetZipDataFromKey", kKey, "record", kZipSet, zipDataFromKey},
                       {"dbGetCityKeysPtr", kKey, "keys", kZipSet, cityKeys},
                       {"dbGetMultiZipFinRBA", kIndex, "record", kCitySet, multiZipFinRba},
                       {"dbGetZipFinMltZpRBA", kKey, "record", kZipSet | kCitySet, zipFinMltZpRba},
                       {"dbGetMultiZips", kRun, "keys", kMultiZipSet, multiZips},
                       {"dbGetGenrlDelvry", kKey, "record", kGeneralDeliverySet, generalDelivery},
                       {"uncompressCRT", kCode, "result", 0, carrierRoute}};

}  // namespace

std::span<const Op> zipOps() { return kOps; }

}  // namespace statecut::query
