#include "damages.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "format/directory.h"
#include "layouts.h"
#include "programs.h"

namespace statecut::test {

namespace {

using R = RefControlRec;
using G = RngControlRec;

std::uint64_t maskOf(std::uint32_t width) {
  return width >= 4 ? 0xFFFFFFFFULL : (1ULL << (8 * width)) - 1;
}

std::uint64_t numberAt(const Bytes& file, const Field& field) {
  std::uint64_t value = 0;
  for (std::uint32_t i = std::min(field.width, 4U); i-- > 0;)
    value = value << 8 | file[field.at + i];
  return value;
}

// 0, 1, the largest, counts and one more, places in both files, and the neighbours of the value.
std::set<std::uint32_t> valuesFor(const PairImage& pair, const Field& field) {
  const std::uint64_t now = numberAt(pair.file(field.range), field);
  const auto word = [&](auto control) {
    return std::uint64_t{le::get<4>(pair.ref.data() + control.at)};
  };
  const std::uint64_t bytes = pair.file(field.range).size();
  std::set<std::uint32_t> values;
  for (const std::uint64_t value :
       {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{0xFFFFFFFF}, now + 1, now - 1,
        field.count, field.count + 1, word(R::cityDataCount), word(R::cityDataCount) + 1,
        word(R::zipDataCount), word(R::zipDataCount) + 1, word(R::cityNamesCount),
        word(R::cityNamesRba) + 3,
        std::uint64_t{le::get<4>(pair.rng.data() + G::pobZipStart.at)} + 5, bytes, bytes + 1,
        bytes + 0x01000000})
    values.insert(static_cast<std::uint32_t>(value & maskOf(field.width)));
  return values;
}

void addValues(const PairImage& pair, Damages& made) {
  for (std::uint32_t f = 0; f < made.fields.size(); ++f) {
    const Field& field = made.fields[f];
    for (const std::uint32_t value : valuesFor(pair, field)) {
      const Damage damage{How::kSet, field.range, field.at, field.width, value, f};
      const unsigned char* from = pair.file(field.range).data() + field.at;
      if (!(damagedBytes(damage, from) == Bytes(from, from + field.width)))
        made.list.push_back(damage);
    }
  }
}

}  // namespace

std::string nameOf(const Damages& damages, const Damage& damage) {
  const std::string file = damage.range ? "rng: " : "ref: ";
  if (damage.how == How::kShorten) return file + std::to_string(damage.at) + " bytes long";
  const Field& field = damages.fields[damage.field];
  std::string name = file;
  if (!field.table.empty()) name += field.table + "[" + std::to_string(field.record) + "].";
  name += field.name;
  if (damage.how == How::kSet) return name + " = " + std::to_string(damage.value);
  if (damage.at > field.at) name += " + " + std::to_string(damage.at - field.at);
  return name + " bit " + std::to_string(damage.value);
}

Bytes damagedBytes(const Damage& damage, const unsigned char* from) {
  if (damage.how == How::kFlip) return {static_cast<unsigned char>(*from ^ (1U << damage.value))};
  const std::uint64_t all = maskOf(damage.width);
  Bytes bytes(damage.width, damage.value == all ? 0xFF : 0);
  for (std::uint32_t i = 0; i < std::min(damage.width, 4U); ++i)
    bytes[i] = static_cast<unsigned char>(damage.value >> (8 * i));
  return bytes;
}

PairImage damaged(const PairImage& pair, const Damage& damage) {
  PairImage changed = pair;
  Bytes& file = damage.range ? changed.rng : changed.ref;
  if (damage.how == How::kShorten) {
    file.resize(damage.at);
    return changed;
  }
  const Bytes bytes = damagedBytes(damage, file.data() + damage.at);
  std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(damage.at));
  return changed;
}

Damages everyLength(const PairImage& pair) {
  const auto index = format::placeTable(format::TableId::ZipIndex, pair.ref);
  const auto programsAt = [&](bool range, std::uint64_t length) -> std::uint16_t {
    constexpr std::uint64_t kEdge = 64;
    if (range || length < index.rba + kEdge || length + kEdge > index.rba + index.bytes)
      return kAllPrograms;
    constexpr std::uint16_t kTurns[] = {
        bitOf(Program::kCut), bitOf(Program::kInfo) | bitOf(Program::kIn), bitOf(Program::kFirst),
        bitOf(Program::kOff) | bitOf(Program::kCached), bitOf(Program::kReader)};
    return kTurns[length / 4 % std::size(kTurns)] | bitOf(Program::kVerify);
  };
  Damages made;
  for (const bool range : {false, true})
    for (std::uint64_t length = pair.file(range).size(); length-- > 0;)
      made.list.push_back({How::kShorten, range, length, 0, 0, 0, programsAt(range, length)});
  return made;
}

Damages tableEdges(const PairImage& pair) {
  std::set<std::uint64_t> ref = {0, R::size - 1, R::size};
  std::set<std::uint64_t> rng = {0, G::size - 1, G::size};
  const auto add = [](std::set<std::uint64_t>& lengths, std::uint64_t begin, std::uint64_t bytes) {
    if (bytes > 0) lengths.insert({begin, begin + 1, begin + bytes - 1, begin + bytes});
  };
  for (std::size_t i = 0; i < format::kTables; ++i) {
    const auto place = format::placeTable(static_cast<format::TableId>(i), pair.ref);
    add(ref, place.rba, place.bytes);
  }
  for (const auto& [start, bytes] : rangeAreas(pair.rng)) add(rng, start, bytes);
  Damages made;
  for (const bool range : {false, true}) {
    const auto& lengths = range ? rng : ref;
    for (auto at = lengths.rbegin(); at != lengths.rend(); ++at)
      if (*at < pair.file(range).size()) made.list.push_back({How::kShorten, range, *at, 0, 0, 0});
  }
  return made;
}

Damages fieldValues(const PairImage& pair) {
  Damages made;
  addControlFields(pair, made.fields);
  for (std::size_t i = 0; i < format::kTables; ++i)
    addTableFields(pair, static_cast<format::TableId>(i), Choice::kThree, made.fields);
  addValues(pair, made);
  return made;
}

Damages everyBit(const PairImage& pair) {
  using format::TableId;
  Damages made;
  addControlFields(pair, made.fields);
  for (const TableId id :
       {TableId::HashTable, TableId::HashOverflow, TableId::CityData, TableId::CityMultiZipRbas,
        TableId::FinMultiZipRbas, TableId::CityNames, TableId::CityPhonetics, TableId::ZipData,
        TableId::ZipMultiCityLists, TableId::MultiZipLists, TableId::ZipBytes,
        TableId::SfhMultiZipBytes, TableId::PobMultiZipBytes, TableId::RrMultiZipBytes,
        TableId::StreetPhonetics, TableId::StreetStandards, TableId::StreetPhoneticsRbos,
        TableId::StreetStandardsRbos})
    addTableFields(pair, id, Choice::kAll, made.fields);
  for (std::uint32_t f = 0; f < made.fields.size(); ++f) {
    const Field& field = made.fields[f];
    for (std::uint64_t at = field.at; at < field.at + field.width; ++at)
      for (std::uint32_t bit = 0; bit < 8; ++bit)
        made.list.push_back({How::kFlip, field.range, at, 1, bit, f});
  }
  return made;
}

namespace {

// The number that the damage leaves in a 32-bit field, 0 in others.
std::uint64_t damagedNumber(const PairImage& pair, const Field& field, const Damage& damage) {
  if (field.width != 4) return 0;
  const Bytes changed = damagedBytes(damage, pair.file(damage.range).data() + damage.at);
  Bytes whole(field.width);
  std::copy_n(pair.file(field.range).data() + field.at, field.width, whole.begin());
  std::copy(changed.begin(), changed.end(),
            whole.begin() + static_cast<std::ptrdiff_t>(damage.at - field.at));
  return le::get<4>(whole.data());
}

// Work tables take 12 bytes a multi-ZIP key.
std::uint64_t multiZipKeyBytes(const Field& field, std::uint64_t value) {
  return field.name == R::multiZipListsCount.name ? 12 * value : 0;
}

}  // namespace

std::uint64_t prescribedBytes(const PairImage& pair, const Damages& damages, const Damage& damage) {
  if (damage.how == How::kShorten) return 0;
  const Field& field = damages.fields[damage.field];
  const std::uint64_t value = damagedNumber(pair, field, damage);
  if (!field.table.empty()) {
    const bool size = field.name == "bytes" || field.name == "sfhBytes" || field.name == "rrBytes";
    return size ? value : 0;
  }
  std::uint64_t most = multiZipKeyBytes(field, value);
  for (const format::TableDef& def : format::tableDefs())
    if (!field.range && def.countAt == field.at) most = std::max(most, value * def.width);
  return most;
}

std::uint64_t tableBytes(const PairImage& pair, const Damages& damages, const Damage& damage) {
  if (damage.how == How::kShorten) return 0;
  const Field& field = damages.fields[damage.field];
  if (field.range || !field.table.empty()) return 0;
  const std::uint64_t value = damagedNumber(pair, field, damage);
  const auto allocated = [](std::uint64_t bytes) {
    const std::uint64_t word = bytes & 0xFFFFFFFFU;
    return word < 0x80000000U ? word : 0;
  };
  std::uint64_t all = allocated(multiZipKeyBytes(field, value));
  for (const format::TableDef& def : format::tableDefs())
    if (def.countAt == field.at) all += allocated(value * def.width);
  return all;
}

void takeTurns(Damages& damages) {
  constexpr Program kTurns[] = {Program::kCut,    Program::kIn,   Program::kOff,   Program::kFirst,
                                Program::kCached, Program::kInfo, Program::kReader};
  // All of them in each of four shards, too.
  std::size_t i = 0;
  for (Damage& damage : damages.list) {
    const std::size_t turn = i + i / 4;
    ++i;
    damage.programs = static_cast<std::uint16_t>(bitOf(kTurns[turn % std::size(kTurns)]) |
                                                 bitOf(Program::kVerify));
  }
}

}  // namespace statecut::test
