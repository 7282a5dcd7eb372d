// Packed names, variations of street names, general delivery.

#include <algorithm>

#include "base/le.h"
#include "oracle.h"
#include "oracle_buffers.h"

namespace statecut::test {

namespace {

constexpr std::int32_t kListRoom = 504;
constexpr std::int32_t kFullFrom = 500;

std::int32_t signedByte(unsigned char byte) { return static_cast<signed char>(byte); }

std::string nameWithLength(const unsigned char* at) {
  const std::int32_t length = signedByte(at[0]);
  return "name" + record(at + 1, static_cast<std::size_t>(std::clamp(length, 0, kNameShown))) +
         named("length", length);
}

}  // namespace

std::string Oracle::packedName(Slot slot, std::uint32_t offset, bool cached) {
  const std::string untouched = kNull + named("length", kUntouched);
  const bool streets = slot == kStreets;
  const bool behind = offset >= word(streets ? 144 : 176);
  if (behind) note(Difference::kNameOffsetBehindTheEnd);
  if (kind_ == kMemory) {
    if (behind) return untouched;
    const Optional bytes = view(slot, offset, 100);
    return bytes ? nameWithLength(bytes->data()) : untouched;
  }
  if (!views_[slot].loaded) note(Difference::kTableTooLarge);
  const std::uint32_t rba = word(streets ? 80 : 112) + offset;
  cached = cached && cache_ != nullptr;
  Bytes& buffer = cached ? diskBuffers.packedCached : diskBuffers.packed;
  if (cached) {
    if (!readCached(rba, 100, buffer)) return untouched;
  } else {
    readDirect(rba, 100, buffer);
  }
  // A name that runs on behind its table.
  if (std::uint64_t{offset} + 1 + static_cast<std::uint64_t>(std::max(0, signedByte(buffer[0]))) >
      views_[slot].bytes)
    note(Difference::kListBehindTheTable);
  return nameWithLength(buffer.data());
}

void Oracle::append(std::uint32_t key, std::int32_t& count) {
  if (count < 0 || count >= kListRoom) return;
  keyList_[static_cast<std::size_t>(count)] = key;
  ++count;
}

std::string Oracle::streets(std::int32_t flag, std::int32_t count, bool null) const {
  std::string text = null ? kNull : "keys";
  text += runs(keyList_.data(), std::min(count, kListRoom));
  return text + named("flag", flag) + named("count", count);
}

std::string Oracle::variation(const Call& call) {
  keyList_.fill(0);
  const auto before = call.signedB();
  if (call.scfs.size() >= 6 || (call.signedA() != 0 && call.signedA() != 1))
    return streets(kUntouchedFlag, before, true);
  const std::int32_t length = call.nameLength();
  const std::int64_t position =
      length >= 29 ? -1 : hash(call.name, length, call.signedA() == 0 ? 4 : 3);
  return kind_ == kMemory ? variationIn(call, position) : variationOff(call, position);
}

std::string Oracle::variationIn(const Call& call, std::int64_t position) {
  const bool phonetic = call.signedA() == 0;
  std::int32_t count = call.signedB();
  std::int32_t flag = kUntouchedFlag;
  const Slot index = phonetic ? kPhoneticStreets : kStandardStreets;
  const auto at = static_cast<std::uint64_t>(position);
  if (position != -1 && count < kFullFrom && at + 5 <= views_[index].bytes) {
    if (const Optional entry = view(index, at, 5)) {
      flag = signedByte((*entry)[4]);
      const std::uint32_t value = le::get<4>(entry->data());
      if (flag < 0) {
        ambiguous(value, call, count);
      } else {
        append(value, count);
      }
    }
  }
  return streets(flag, count, count == 0);
}

std::string Oracle::variationOff(const Call& call, std::int64_t position) {
  const bool phonetic = call.signedA() == 0;
  std::int32_t count = call.signedB();
  if (position == -1) {
    // In memory the list of an earlier call would still be handed out.
    if (count != 0) note(Difference::kNoStreets);
    return streets(kUntouchedFlag, count, true);
  }
  if (!views_[phonetic ? kPhoneticStreets : kStandardStreets].loaded ||
      !views_[phonetic ? kPhoneticLists : kStandardLists].loaded)
    note(Difference::kTableTooLarge);
  if (count >= kFullFrom) note(Difference::kFullStreetList);
  Bytes entry(5);
  readDirect(word(phonetic ? 92 : 104) + static_cast<std::uint32_t>(position), 5, entry);
  const std::int32_t flag = signedByte(entry[4]);
  const std::uint32_t value = le::get<4>(entry.data());
  if (flag < 0) {
    ambiguous(value, call, count);
    if (count == 0) note(Difference::kNoStreets);
  } else {
    if (count != 0) note(Difference::kSingleStreetReplaces);
    count = 1;
    keyList_[0] = value;
  }
  return streets(flag, count, false);
}

// In memory reading ends with the field that the table does not hold wholly.
void Oracle::ambiguous(std::uint32_t value, const Call& call, std::int32_t& count) {
  const bool phonetic = call.signedA() == 0;
  const Slot slot = phonetic ? kPhoneticLists : kStandardLists;
  const std::uint32_t rba = word(phonetic ? 88 : 100) + value;
  std::uint64_t at = 0;
  const auto field = [&](std::uint32_t width, Bytes& to) {
    const bool behind = value + at + width > views_[slot].bytes;
    if (behind) note(Difference::kStreetListBehindTheEnd);
    if (kind_ == kDisk) {
      readDirect(rba + static_cast<std::uint32_t>(at), width, to);
    } else {
      const Optional bytes = view(slot, value + at, width);
      if (behind || !bytes) return false;
      to = *bytes;
    }
    at += width;
    return true;
  };
  Bytes entries(2), street(4), scfCount(1), scf(2);
  if (!field(2, entries)) return;
  for (std::uint32_t left = le::get<2>(entries.data()); left > 0; --left) {
    if (!field(4, street) || !field(1, scfCount)) return;
    const std::int32_t scfs = signedByte(scfCount[0]);
    const std::uint64_t next = at + 2 * static_cast<std::uint64_t>(std::max(0, scfs));
    bool fits = call.scfs.empty() || scfs == 0;
    for (std::int32_t i = 0; i < scfs && !fits; ++i) {
      if (!field(2, scf)) return;
      fits = le::get<2>(scf.data()) == call.scfs[0];
    }
    if (fits) append(le::get<4>(street.data()), count);
    at = next;
  }
}

Oracle::Optional Oracle::generalDelivery(std::uint32_t key) {
  key &= 0xFFFF;
  if (key == 0 || key > word(224)) return std::nullopt;
  return row(kDeliveries, key, 4, diskBuffers.delivery, false);
}

}  // namespace statecut::test
