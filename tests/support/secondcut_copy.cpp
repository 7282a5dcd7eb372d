// The first half of the cut reference file: placeholder, unchanged tables, and the tables that the
// cut holds in memory.

#include <algorithm>

#include "base/le.h"
#include "support/secondcut_state.h"

namespace statecut::secondcut {
namespace {

constexpr std::uint64_t kLargestAllocation = 2147483647;
constexpr std::size_t kSlack = 512;
constexpr std::uint32_t kChunk = 4088;

// Copies what the file holds at the RBA; the rest of the buffer stays as it is.
void readAt(const Bytes& file, std::uint32_t rba, std::size_t count, unsigned char* buffer) {
  for (std::size_t i = 0; i < count && rba + std::uint64_t{i} < file.size(); ++i)
    buffer[i] = file[rba + i];
}

}  // namespace

std::uint32_t Table::u16(std::size_t at) const { return u8(at) | u8(at + 1) << 8; }

std::uint32_t Table::u32(std::size_t at) const { return u16(at) | u16(at + 2) << 16; }

void Table::setU32(std::size_t at, std::uint32_t value) { le::put<4>(&bytes.at(at), value); }

// Copies in blocks of 4088 bytes through one buffer, so that bytes past the end of the source are
// those of the block before.
void Cut::copyPartition(const std::string& name, std::uint32_t rba, std::uint32_t bytes) {
  Bytes buffer(4096);
  Bytes copied;
  auto left = static_cast<std::int32_t>(bytes);
  while (left > 0) {
    readAt(*in.ref, rba, kChunk, buffer.data());
    const std::uint32_t chunk = std::min(static_cast<std::uint32_t>(left), kChunk);
    copied.insert(copied.end(), buffer.begin(), buffer.begin() + chunk);
    left -= static_cast<std::int32_t>(chunk);
    rba += chunk;
    totalBytes += chunk;
  }
  out.ref.append(name, copied.data(), copied.size());
}

Table Cut::load(std::uint32_t rba, std::uint64_t size) const {
  Table table;
  table.loaded = true;
  table.size = size;
  table.bytes.resize(size + kSlack);
  readAt(*in.ref, rba, size, table.bytes.data());
  return table;
}

// Announced first; a failed allocation is logged and the cut goes on without the table.
Table Cut::loadForCut(int line, const std::string& name, const std::string& errorName,
                      std::uint64_t size, std::size_t rbaField) {
  log.required("dbaccess", line, "Info Message", name, size);
  if (size > kLargestAllocation) {
    log.memoryError(errorName);
    return {};
  }
  return load(word(rbaField), size);
}

// Announced once allocated; false ends the cut.
bool Cut::loadStrict(Table& table, const std::string& name, const std::string& errorName, bool warn,
                     std::int64_t size, std::size_t rbaField) {
  if (size < 0 || size > static_cast<std::int64_t>(kLargestAllocation)) {
    if (warn) {
      log.memoryWarning(errorName);
    } else {
      log.memoryError(errorName);
    }
    return false;
  }
  log.required("dbapi", kAnyLine, "Info Message", name, static_cast<std::uint64_t>(size));
  table = load(word(rbaField), static_cast<std::uint64_t>(size));
  return true;
}

int Cut::copyReference() {
  const auto count = [this](std::size_t offset) { return std::uint64_t{word(offset)}; };
  const auto scount = [this](std::size_t offset) { return std::int64_t{word(offset)}; };
  const auto keep = [this](const std::string& name, std::size_t rbaField, std::uint32_t bytes) {
    copyPartition(name, word(rbaField), bytes);
  };
  const auto move = [this](const std::string& name, std::size_t rbaField, std::uint32_t bytes) {
    const std::uint32_t oldRba = word(rbaField);
    setWord(rbaField, totalBytes);
    copyPartition(name, oldRba, bytes);
  };
  sourceNames = word(132);
  sourcePhonetics = word(136);
  setWord(24, word(24) | 4);
  setWord(28, in.stamp);
  out.ref.append("control record", refRecord.data(), refRecord.size());
  totalBytes = 844;

  keep("street patterns", 120, 18 * word(212));
  keep("POB patterns", 124, 18 * word(216));
  keep("RR patterns", 128, 18 * word(220));
  keep("street names", 80, word(144));
  move("firm names", 112, word(176));
  cityData = loadForCut(284, "City Data Table", "City Data", 36 * count(188), 32);
  move("city multi-ZIP lists", 36, 6 * word(180));
  move("city finance lists", 40, 2 * word(184));
  cityMultiZip =
      loadForCut(316, "City Multiple Zip RBAs", "City Multiple Zip RBAs", 28 * count(256), 260);
  if (cityMultiZip.loaded)
    finance = loadForCut(337, "Zip Finance Multi Zip Data", "Zip Finance Multi Zip Data",
                         8 * count(268), 264);
  if (!loadStrict(names, "City Names Table", "City Names", true, 34 * scount(132), 44) ||
      !loadStrict(namesByState, "City State Names Table", "City State", false,
                  34 * scount(132) - 34, 48) ||
      !loadStrict(phonetics, "City Name Phonetics", "City Name Phonetics", true, 26 * scount(136),
                  52))
    return -1;
  zips = loadForCut(254, "Zip Code Data", "Zip Code Data", 52 * count(192), 56);
  move("ZIP city lists", 60, 2 * word(196));
  // The source's ZIP index: nothing of it reaches the cut.
  loadForCut(225, "Zip Code Index", "Zip Code Index", 200000, 64);
  move("unique ZIPs", 232, 12 * word(236));
  move("counties", 68, 32 * word(200));
  move("urbanizations", 72, 32 * word(204));
  move("urbanization multi-ZIP lists", 276, 2 * word(272));
  move("urbanization variations", 76, 32 * word(208));
  move("street phonetic lists", 88, word(156));
  move("street phonetics", 92, word(152));
  move("street phonetic offsets", 96, 4 * word(148));
  move("street standard lists", 100, word(168));
  move("standardized streets", 104, word(164));
  move("standardized street offsets", 108, 4 * word(160));
  move("general delivery", 228, 4 * word(224));
  move("multi-ZIP lists", 248, 2 * word(252));
  return loadRewrittenTables() ? 0 : -1;
}

bool Cut::loadRewrittenTables() {
  if (word(280) == 0 && word(192) != 0) {
    log.readRefError("Zip Bytes Table");
    return false;
  }
  const auto count = [this](std::size_t offset) { return std::int64_t{word(offset)}; };
  const auto strict = [this](Table& table, const std::string& name, std::int64_t size,
                             std::size_t rbaField) {
    return loadStrict(table, name, name, false, size, rbaField);
  };
  if (!strict(zipBytes, "Zip Bytes Table", 12 * count(192), 280) ||
      !strict(sfhBytes, "Multi-Zip SFH Bytes Table", 8 * count(296), 284) ||
      !strict(pobBytes, "Multi-Zip POB Bytes Table", 8 * count(300), 288) ||
      !strict(rrBytes, "Multi-Zip RR Bytes Table", 8 * count(304), 292))
    return false;
  if (!loadStrict(hashSlots, "Hash Table", "Hash Table", true, 7 * count(312), 308) ||
      !loadStrict(hashOverflow, "Hash Overflow", "Hash Overflow", true, 6 * count(320), 316))
    return false;
  if (word(324) != 0) loadMilitary();
  if (word(328) != 0) loadZones();
  return true;
}

void Cut::loadMilitary() {
  readAt(*in.ref, word(324), 4, militaryHeader.data());
  military.resize(std::size_t{38} * le::get<2>(militaryHeader.data()) +
                  std::size_t{42} * le::get<2>(militaryHeader.data() + 2));
  log.required("dbapi", kAnyLine, "Info Message", "Military Alias Table", military.size());
  readAt(*in.ref, word(324) + 4, military.size(), military.data());
}

void Cut::loadZones() {
  readAt(*in.ref, word(328), 2, zoneHeader.data());
  zones.resize(std::size_t{2} * le::get<2>(zoneHeader.data()));
  readAt(*in.ref, word(328) + 2, zones.size(), zones.data());
}

}  // namespace statecut::secondcut
