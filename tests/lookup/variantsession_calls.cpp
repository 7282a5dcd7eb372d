// The calls, each as a user of the library would make it.

#include <algorithm>
#include <cstring>

#include "base/le.h"
#include "base/memory.h"
#include "dbfiles/apiutil.h"
#include "tables/refpointers.h"
#include "variantsession.h"

namespace statecut::test {

namespace {

template <typename RowType>
std::string text(const RowType* row) {
  return row == nullptr ? kNull : record(row->bytes.data(), RowType::size);
}

NameMatcher matcherOf(Match match) {
  switch (match) {
    case Match::kContains:
      return containsString;
    case Match::kStarts:
      return startsWith;
    case Match::kEnds:
      return endsWith;
  }
  return nullptr;
}

std::string quoted(const char* text) {
  std::string result = "\"";
  return result.append(text).append("\"");
}

std::string nameText(const char* name, std::int32_t length) {
  if (name == nullptr) return kNull + named("length", length);
  return "name" +
         record(reinterpret_cast<const unsigned char*>(name),
                static_cast<std::size_t>(std::clamp(length, 0, kNameShown))) +
         named("length", length);
}

}  // namespace

// A list in a loaded table may be asked for more than the table and the zeros behind it hold.
std::string Session::clipped(const void* list, std::size_t slot, std::size_t tableBytes,
                             std::size_t shown) const {
  if (list == nullptr) return kNull;
  const auto* bytes = static_cast<const unsigned char*>(list);
  std::size_t there = shown;
  const unsigned char* table = refPointers[slot].table;
  if (table != nullptr && bytes >= table && bytes <= table + tableBytes + kTableSlack)
    there = std::min(there, static_cast<std::size_t>(table + tableBytes + kTableSlack - bytes));
  Bytes copy(shown);
  std::copy_n(bytes, there, copy.begin());
  return record(copy.data(), shown);
}

std::string Session::zips(const Call& call) {
  switch (call.op) {
    case Op::kZipIndex:
      return std::to_string(dbGetZipIndex(call.signedA()));
    case Op::kZipData: {
      std::uint32_t key = kUntouched;
      const ZipDataRow* zip = dbGetZipData(call.signedA(), &key);
      return text(zip) + named("key", key);
    }
    case Op::kZipDataFromKey:
      return text(dbGetZipDataFromKey(call.signedA()));
    case Op::kFinByIndex:
      return text(dbGetMultiZipFinRBA(call.signedA()));
    case Op::kMultiZips:
      return clipped(dbGetMultiZips(call.unsignedA(), call.unsignedB()), kSlotMultiZip,
                     std::size_t{4} * record_.get(RefControlRec::multiZipListsCount),
                     std::size_t{2} * std::min(call.unsignedA(), kMultiZipsShown));
    default:
      break;
  }
  const ZipDataRow* zip = dbGetZipDataFromKey(call.signedA());
  if (zip == nullptr) return kNull;
  if (call.op == Op::kFinOfZip) return text(dbGetZipFinMltZpRBA(zip));
  const KeyRow* keys = dbGetCityKeysPtr(zip);
  if (keys == nullptr) return kNull;
  return record(keys->bytes.data(), std::size_t{2} * zip->get(ZipDataRow::cityKeysCount));
}

std::string Session::cities(const Call& call) {
  const char* const state = call.state.data();
  const char* const name = call.name.data();
  const std::int32_t length = call.nameLength();
  switch (call.op) {
    case Op::kCityName: {
      const std::uint32_t key = call.unsignedA();
      return text(dbGetCityName(&key));
    }
    case Op::kCityNameCached:
      return text(proc_.pfnGetCityUSPSwc(call.signedA()));
    case Op::kCityNameIndex:
      return std::to_string(proc_.pfnFindCityNameIdx(name, length, &proc_));
    case Op::kCityHash:
      return std::to_string(proc_.pfnFindCityIndex(state, name, length));
    case Op::kFindCity:
      return text(dbFindCity(state, name, length));
    case Op::kTruncCity:
      return text(dbFindTruncCity(state, name, length));
    case Op::kTruncCityIndex:
      return std::to_string(proc_.pfnFindTruncCityIndex(state, name, length));
    case Op::kSequential:
      return std::to_string(
          proc_.pfnSeqSearchCity(state, call.name.c_str(), matcherOf(call.match), call.signedB()));
    case Op::kNearest:
      return std::to_string(dbFindNearestCity(state, call.name.c_str()));
    case Op::kNext:
      return std::to_string(dbFindNextCity(state, call.name.c_str(), call.signedB()));
    case Op::kPhoneticIndex:
      return std::to_string(proc_.pfnFindCityPhIdx(name, length, &proc_));
    case Op::kFindPhonetic: {
      std::int32_t count = kUntouched;
      std::int32_t index = kUntouched;
      const CityPhoneticRow* row = dbFindCityPh(state, name, length, &count, &index);
      return text(row) + named("count", count) + named("index", index);
    }
    default:
      return text(proc_.pfnGetCityPh(call.signedA()));
  }
}

std::string Session::cityData(const Call& call) {
  switch (call.op) {
    case Op::kCityDataByName:
    case Op::kCityDataByTrunc: {
      CityNameRow* name = nullptr;
      std::uint32_t value = kUntouched;
      std::uint32_t key = kUntouched;
      FindCityData* find = call.op == Op::kCityDataByName ? dbFindCityData : dbFindTruncCityData;
      const CityDataRow* row =
          find(&name, call.state.data(), call.name.data(), &value, &key, call.nameLength());
      return text(row) + (name == nullptr ? named("name", 0) : " name" + text(name)) +
             named("value", value) + named("key", key);
    }
    case Op::kCityData:
      return text(dbGetCityData(call.signedA()));
    case Op::kCityZipKeys:
      return clipped(dbGetCityZipKeyPtr(call.unsignedA(), call.unsignedB()), kSlotCityMultiZip,
                     std::size_t{6} * record_.get(RefControlRec::cityMultiZipListsCount),
                     std::size_t{6} * std::min(call.unsignedA(), kCityZipKeysShown));
    case Op::kCityFinKeys:
      return clipped(dbGetCityFinKeyPtr(call.unsignedA(), call.unsignedB()), kSlotCityMultiFinance,
                     std::size_t{2} * record_.get(RefControlRec::cityMultiFinanceListsCount),
                     std::size_t{2} * std::min(call.unsignedA(), kCityFinKeysShown));
    default: {
      const CityDataRow* city = dbGetCityData(call.signedA());
      return city == nullptr ? kNull : text(dbGetCityMultiZipRBAData(city));
    }
  }
}

std::string Session::variation(const Call& call) {
  keyList.fill(0);
  std::int8_t flag = kUntouchedFlag;
  std::int32_t count = call.signedB();
  const std::uint32_t* keys = proc_.pfnFindStreetVar(
      call.name.data(), call.nameLength(), call.scfs.data(),
      static_cast<std::int32_t>(call.scfs.size()), call.signedA(), &flag, &count);
  std::string text = keys == nullptr ? kNull : "keys";
  text += runs(keyList.data(), std::min(count, kKeyListMax));
  return text + named("flag", flag) + named("count", count);
}

std::string Session::streets(const Call& call) {
  const char* const name = call.name.data();
  const std::int32_t length = call.nameLength();
  std::int32_t nameLength = kUntouched;
  const auto packed = [&](GetName* get) {
    const char* found = get(call.unsignedA(), &nameLength, &proc_);
    return nameText(found, nameLength);
  };
  switch (call.op) {
    case Op::kStreetKey:
      return std::to_string(proc_.pfnFindStreetKey(name, length, &proc_));
    case Op::kStreetName:
      return packed(proc_.pfnGetStreetNameUSPS);
    case Op::kStreetNameCached:
      return packed(proc_.pfnGetStreetNameUSPSwc);
    case Op::kVariationIndex:
      return std::to_string(proc_.pfnFindStreetVarIdx(call.unsignedA(), name, length, &proc_));
    case Op::kVariation:
      return variation(call);
    case Op::kFirm:
      return std::to_string(proc_.pfnFindFirm(name, length, &proc_));
    case Op::kFirmName:
      return packed(proc_.pfnGetFirmName);
    case Op::kGeneralDelivery:
      return text(dbGetGenrlDelvry(call.unsignedA()));
    default:
      return quoted(uncompressCRT(static_cast<std::uint16_t>(call.a)));
  }
}

std::string Session::answer(const Call& call) {
  if (call.op <= Op::kMultiZips) return zips(call);
  if (call.op >= Op::kCityDataByName && call.op <= Op::kCityMultiZip) return cityData(call);
  if (call.op >= Op::kStreetKey) return streets(call);
  return cities(call);
}

}  // namespace statecut::test
