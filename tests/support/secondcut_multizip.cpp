// The multi-ZIP partitions that cities and ZIP codes of the cut share.

#include "base/le.h"
#include "support/secondcut_state.h"

namespace statecut::secondcut {
namespace {

constexpr std::uint64_t kLargestTable = 2147483647;

std::size_t cityAt(std::uint32_t city) { return std::size_t{36} * city; }

const char* kindName(Kind kind) { return kind == kSfh ? "SFH" : kind == kPob ? "POB" : "RR"; }

}  // namespace

int Cut::rebuildMultiZips() {
  if (!listCities() || !allocateMultiZips()) return -1;
  renumberCityNames();
  fillSfh();
  writeMultiZips(kSfh);
  storeSfh();
  for (const Kind kind : {kPob, kRr}) {
    multiZips.assign(multiZips.size(), MultiZipEntry{});
    fillSmall(kind);
    writeMultiZips(kind);
    storeSmall(kind);
  }
  return 0;
}

bool Cut::listCities() {
  if (std::uint64_t{4} * word(188) > kLargestTable) {
    log.record(kError, "cutstate", 871, 0, "Mem Alloc Err",
               "Could not allocate memory for City Keys.");
    return false;
  }
  for (std::size_t record = 0; record < newNames.size(); record += 34) {
    const std::uint32_t city = le::get<2>(&newNames[record]);
    if (city != 0 && city < word(188)) ++cityUses[city];
  }
  return true;
}

bool Cut::allocateMultiZips() {
  if (std::uint64_t{12} * word(252) > kLargestTable) {
    log.record(kError, "cutstate", 571, 0, "Mem Alloc Err",
               "Could not allocate memory for Multi-Zip Keys.");
    return false;
  }
  multiZips.assign(word(252), MultiZipEntry{});
  return true;
}

bool Cut::cityInCut(std::uint32_t city) const { return cityUses.count(city) != 0; }

std::uint32_t Cut::cityCount() const { return cityData.loaded ? word(188) : 0; }

// Cities outside the cut lose both links; the others follow their names to the new table.
void Cut::renumberCityNames() {
  for (std::uint32_t city = 0; city < cityCount(); ++city) {
    for (const std::size_t link : {cityAt(city), cityAt(city) + 4}) {
      const std::uint32_t position = cityData.u32(link);
      const bool kept = cityInCut(city) && position < sourceNames;
      cityData.setU32(link, kept ? nameMap[position] : 0);
    }
  }
}

std::size_t Cut::cityRecordOf(std::uint32_t city) const {
  const std::uint32_t index = cityData.u16(cityAt(city) + 30);
  if (!cityMultiZip.loaded || index == 0 || index > word(256)) return kNone;
  return std::size_t{28} * index;
}

std::size_t Cut::financeRecord(std::uint32_t key) const {
  if (!finance.loaded || key == 0 || key > word(268)) return kNone;
  const std::size_t record = std::size_t{8} * key;
  return finance.u16(record) > 1 ? record : kNone;
}

// Calls onCity with each city record and onFinance with each finance record that the SFH
// partitions of the cut are reached through: first by city, then by ZIP code.
template <typename OnCity, typename OnFinance>
void Cut::walkSfh(OnCity onCity, OnFinance onFinance) {
  const auto visitFinance = [&](std::uint32_t key) {
    const std::size_t record = financeRecord(key);
    if (record != kNone) onFinance(record);
  };
  for (std::uint32_t city = 0; city < cityCount(); ++city) {
    if (!cityInCut(city)) continue;
    const std::uint32_t zipCount = cityData.u16(cityAt(city) + 18);
    if (zipCount == 1) continue;
    if (zipCount > 1) {
      const std::size_t record = cityRecordOf(city);
      if (record == kNone || cityMultiZip.u16(record) < 2) continue;
      onCity(record);
    }
    if (cityData.u16(cityAt(city) + 10) == 1) visitFinance(cityData.u16(cityAt(city) + 32));
  }
  for (const std::uint32_t key : zipIndex)
    if (key != 0) visitFinance(zips.u16(std::size_t{52} * key + 38));
}

void Cut::fillSfh() {
  walkSfh(
      [this](std::size_t record) {
        fill(cityMultiZip.u32(record + 4), cityMultiZip.u32(record + 8), kSfh, true);
      },
      [this](std::size_t record) {
        fill(finance.u16(record + 2), finance.u32(record + 4), kSfh, false);
      });
}

void Cut::storeSfh() {
  const auto store = [this](std::uint32_t key, Table& table, std::size_t field) {
    if (key < multiZips.size() && multiZips[key].newRba != 0)
      table.setU32(field, multiZips[key].newRba);
  };
  walkSfh(
      [&](std::size_t record) { store(cityMultiZip.u32(record + 4), cityMultiZip, record + 8); },
      [&](std::size_t record) { store(finance.u16(record + 2), finance, record + 4); });
}

// PO Box and rural-route parts: only cities of two ZIP codes or more, only with an RBA.
void Cut::fillSmall(Kind kind) {
  const std::size_t part = kind == kPob ? 12 : 20;
  for (std::uint32_t city = 0; city < cityCount(); ++city) {
    if (!cityInCut(city) || cityData.u16(cityAt(city) + 18) < 2) continue;
    const std::size_t record = cityRecordOf(city);
    if (record == kNone || cityMultiZip.u16(record + part) < 2) continue;
    const std::uint32_t rba = cityMultiZip.u32(record + part + 4);
    if (rba != 0) fill(cityMultiZip.u16(record + part + 2), rba, kind, false);
  }
}

void Cut::storeSmall(Kind kind) {
  const std::size_t part = kind == kPob ? 12 : 20;
  for (std::uint32_t city = 0; city < cityCount(); ++city) {
    if (!cityInCut(city) || cityData.u16(cityAt(city) + 18) < 2) continue;
    const std::size_t record = cityRecordOf(city);
    if (record == kNone || cityMultiZip.u16(record + part) < 2) continue;
    const std::uint32_t key = cityMultiZip.u16(record + part + 2);
    if (cityMultiZip.u32(record + part + 4) != 0 && key < multiZips.size() &&
        multiZips[key].newRba != 0)
      cityMultiZip.setU32(record + part + 4, multiZips[key].newRba);
  }
}

// The first record with a known size wins; one whose size is unknown asks again.
void Cut::fill(std::uint32_t key, std::uint32_t rba, Kind kind, bool longForm) {
  if (key >= multiZips.size()) return;
  MultiZipEntry& entry = multiZips[key];
  if (entry.size != 0) return;
  entry.size = multiZipSize(key, kind, longForm);
  entry.oldRba = rba;
}

// A binary search by the low 16 bits, in entries of 8 bytes (key, size) or, in the short form, as
// if they were 6 bytes wide (16-bit key, size), whatever the table's true layout.
std::int32_t Cut::multiZipSize(std::uint32_t key, Kind kind, bool longForm) {
  const Table& table = kind == kSfh ? sfhBytes : kind == kPob ? pobBytes : rrBytes;
  const std::size_t width = longForm ? 8 : 6;
  std::size_t low = 0;
  std::size_t high = word(kind == kSfh ? 296 : kind == kPob ? 300 : 304);
  while (low < high) {
    const std::size_t middle = (low + high) / 2;
    const std::uint32_t found = table.u16(middle * width);
    if ((key & 0xFFFF) < found) {
      high = middle;
    } else if ((key & 0xFFFF) > found) {
      low = middle + 1;
    } else {
      return static_cast<std::int32_t>(table.u32(middle * width + (longForm ? 4 : 2)));
    }
  }
  log.record(kWarning, "cutstate", longForm ? 191 : 136, 0, "Get Bytes",
             "SFH " + std::to_string(static_cast<std::int32_t>(key)));
  return 0;
}

void Cut::writeMultiZips(Kind kind) {
  std::uint32_t lastRba = 0;
  for (std::size_t key = 0; key < multiZips.size(); ++key) {
    MultiZipEntry& entry = multiZips[key];
    if (entry.size <= 0) continue;
    if (entry.oldRba < lastRba) out.out.emplace_back("must go forward!! not back!!");
    lastRba = entry.oldRba;
    copyFromRange(std::string("multi-ZIP ") + kindName(kind) + " " + std::to_string(key),
                  entry.oldRba, entry.size);
    entry.newRba = totalRngBytes;
    totalRngBytes += static_cast<std::uint32_t>(entry.size);
  }
}

}  // namespace statecut::secondcut
