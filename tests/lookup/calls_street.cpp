// Calls about streets, their variations, firms and general delivery.

#include "callmaker.h"

namespace statecut::test {

using Ref = RefControlRec;

std::vector<std::pair<std::uint32_t, std::string>> CallMaker::packed(std::uint64_t rba,
                                                                     std::uint64_t count,
                                                                     std::uint32_t skipped) {
  std::vector<std::pair<std::uint32_t, std::string>> names;
  for (std::uint64_t at = 0; at + skipped < count;) {
    const std::uint64_t text = at + skipped + 1;
    const std::size_t length = file_[rba + text - 1] & 0x7F;
    names.emplace_back(static_cast<std::uint32_t>(at), bytes(rba + text, length));
    at = text + length;
  }
  return names;
}

void CallMaker::streets() {
  const std::uint32_t end = word(Ref::streetNamesBytes);
  for (const auto& [offset, name] : sample(packed(word(Ref::streetNamesRba), end, 0))) {
    for (const std::string& near : around(name)) addNamed(Op::kStreetKey, "", near);
    for (const Op op : {Op::kStreetName, Op::kStreetNameCached}) {
      add(op, offset);
      add(op, std::int64_t{offset} + 1);
    }
  }
  lengths(Op::kStreetKey, 28);
  for (const std::int64_t offset : {std::int64_t{end} - 1, std::int64_t{end}, std::int64_t{end} + 1,
                                    65535L, 2147483647L, 4294967295L})
    for (const Op op : {Op::kStreetName, Op::kStreetNameCached}) add(op, offset);
  for (const std::int64_t code : {0, 1, 999, 1000, 1023, 1024, 4097, 25 * 2048, 26 * 2048, 65535})
    add(Op::kRoute, code);
}

void CallMaker::variations() {
  for (const std::int64_t kind : {0, 1}) {
    const auto names =
        kind == 0 ? packed(word(Ref::streetPhoneticsRba), word(Ref::streetPhoneticsBytes), 4)
                  : packed(word(Ref::streetStandardsRba), word(Ref::streetStandardsBytes), 4);
    auto chosen = sample(names);
    // The last ones are those that a database adds on purpose.
    for (std::size_t i = names.size() < 5 ? 0 : names.size() - 5; i < names.size(); ++i)
      chosen.push_back(names[i]);
    bool odd = false;
    for (const auto& [offset, name] : chosen) {
      for (const std::string& near : around(name)) {
        Call& index = add(Op::kVariationIndex, kind == 0 ? 4 : 3);
        index.name = near;
        Call& keys = add(Op::kVariation, kind);
        keys.name = near;
      }
      odd = !odd;
      for (const std::int64_t before :
           odd ? std::vector<std::int64_t>{0, 3, 500} : std::vector<std::int64_t>{0, 499, 504}) {
        Call& call = add(Op::kVariation, kind, before);
        call.name = name;
        if (random_.percent(50)) call.scfs.push_back(static_cast<std::uint16_t>(random_.below(9)));
        Call& fixed = add(Op::kVariation, kind, before);
        fixed.name = name;
        fixed.scfs.assign(1 + random_.below(5), static_cast<std::uint16_t>(750 + before % 3));
      }
    }
    lengths(Op::kVariation, 28, kind);
    lengths(Op::kVariationIndex, 28, kind == 0 ? 4 : 3);
  }
  for (const std::int64_t kind : {-1, 2}) add(Op::kVariation, kind).name = "MAIN";
  add(Op::kVariation, 0).scfs.assign(6, 750);
}

void CallMaker::firms() {
  const std::uint32_t end = word(Ref::firmsBytes);
  for (const auto& [offset, name] : sample(packed(word(Ref::firmsRba), end, 0))) {
    for (const std::string& near : around(name)) addNamed(Op::kFirm, "", near);
    add(Op::kFirmName, offset);
    add(Op::kFirmName, std::int64_t{offset} + 1);
  }
  lengths(Op::kFirm, 40);
  for (const std::int64_t offset : {std::int64_t{end} - 1, std::int64_t{end}, std::int64_t{end} + 1,
                                    65535L, 2147483647L, 4294967295L})
    add(Op::kFirmName, offset);
  for (const std::int64_t key : keys(word(Ref::generalDeliveryCount)))
    add(Op::kGeneralDelivery, key);
}

}  // namespace statecut::test
