// The ZIP index, the ZIP records and their partitions.

#include <algorithm>
#include <cstdio>
#include <string>

#include "tables/rows.h"
#include "verify/pairrules.h"

namespace statecut::verify {

namespace {

std::string zipText(std::uint32_t zip) {
  char text[16];
  std::snprintf(text, sizeof text, "%05u", zip);
  return text;
}

bool isState(std::span<const unsigned char> letters) {
  return std::all_of(letters.begin(), letters.end(),
                     [](unsigned char c) { return c >= 'A' && c <= 'Z'; });
}

}  // namespace

void checkZipIndex(const Pair& pair, Report& report) {
  if (!pair.usable(TableId::ZipIndex) || !pair.usable(TableId::ZipData)) return;
  const auto index = pair.table(TableId::ZipIndex);
  const auto zips = pair.records<ZipDataRow>(TableId::ZipData);
  for (std::uint32_t zip = 0; zip < kZipIndexEntries; ++zip) {
    const std::uint32_t key = number16(index, zip);
    if (key == 0) continue;
    const std::uint64_t at = pair.place(TableId::ZipIndex).rba + zip * 2ULL;
    if (key >= zips.size())
      report.add(RuleId::ZipIndex, File::Reference, zip, at, [&] {
        return "ZIP code " + zipText(zip) + " leads to record " + std::to_string(key) + " of " +
               std::to_string(zips.size());
      });
    else if (zips[key].get(ZipDataRow::zip) != zip)
      report.add(RuleId::ZipIndex, File::Reference, zip, at, [&] {
        return "ZIP code " + zipText(zip) + " leads to the record of " +
               zipText(zips[key].get(ZipDataRow::zip));
      });
  }
}

void checkZipRecords(const Pair& pair, Report& report) {
  const auto index = pair.table(TableId::ZipIndex);
  const auto zips = pair.records<ZipDataRow>(TableId::ZipData);
  const auto sizes = pair.records<ZipBytesRow>(TableId::ZipBytes);
  const auto lists = pair.table(TableId::ZipMultiCityLists);
  // A cut's index leaves the other states out.
  const bool checkIndex = !pair.isCut() && pair.usable(TableId::ZipIndex);
  const bool checkCities =
      pair.usable(TableId::CityData) && pair.usable(TableId::ZipMultiCityLists);
  const std::uint64_t cities = pair.place(TableId::CityData).count;
  const std::uint64_t listed = pair.place(TableId::ZipMultiCityLists).count;
  for (std::size_t key = 1; key < zips.size(); ++key) {
    const ZipDataRow& row = zips[key];
    const std::uint32_t zip = row.get(ZipDataRow::zip);
    const auto record = static_cast<std::int64_t>(key);
    const bool valid = zip >= 1 && zip < kZipIndexEntries;
    if (checkIndex && (!valid || number16(index, zip) != key))
      report.add(RuleId::ZipRecord, File::Reference, record, zips.offset(key), [&] {
        return "ZIP code " + zipText(zip) +
               (valid ? " leads to another record or none" : " is no ZIP code");
      });
    if (key < sizes.size() && !isState(sizes[key].get(ZipBytesRow::state)))
      report.add(RuleId::ZipRecord, File::Reference, record, sizes.offset(key), [&] {
        return "ZIP code " + zipText(zip) + " has no two-letter state in the Zip Bytes table";
      });
    if (!checkCities) continue;
    const std::uint32_t count = row.get(ZipDataRow::cityKeysCount);
    const std::uint64_t first = row.get(ZipDataRow::cityKeysIndex);
    const auto isCity = [&](std::uint32_t city) { return city != 0 && city < cities; };
    bool ok = count == 1 && isCity(row.get(ZipDataRow::cityKey));
    if (count > 1) {
      ok = first >= 1 && first + count <= listed;
      for (std::uint64_t i = first; ok && i < first + count; ++i) ok = isCity(number16(lists, i));
    }
    if (!ok)
      report.add(RuleId::ZipCities, File::Reference, record, zips.offset(key), [&] {
        return "ZIP code " + zipText(zip) + " leads to no city or one outside the city data";
      });
  }
}

void checkZipPartitions(const Pair& pair, Report& report) {
  const auto zips = pair.records<ZipDataRow>(TableId::ZipData);
  const auto index = pair.table(TableId::ZipIndex);
  const auto sizes = pair.records<ZipBytesRow>(TableId::ZipBytes);
  const std::uint64_t end = pair.rngBytes().size();
  const bool cut = pair.isCut();
  const auto check = [&](std::size_t key, const char* kind, auto field, std::uint64_t bytes) {
    const std::uint64_t rba = zips[key].get(field);
    if (rba == 0 ? bytes == 0 : rba >= RngControlRec::size && rba + bytes <= end) return;
    report.add(RuleId::RangeBounds, File::Reference, static_cast<std::int64_t>(key),
               zips.offset(key) + field.at, [&] {
                 return std::string(kind) + " partition at " + std::to_string(rba) + " with " +
                        std::to_string(bytes) + " bytes, the range file has " + std::to_string(end);
               });
  };
  for (std::size_t key = 1; key < zips.size(); ++key) {
    // Records of ZIP codes that a cut does not hold keep RBAs of the source; a cut has no sizes.
    if (cut && number16(index, zips[key].get(ZipDataRow::zip)) != key) continue;
    const ZipBytesRow* size = key < sizes.size() ? &sizes[key] : nullptr;
    check(key, "SFH", ZipDataRow::sfhRba, size ? size->get(ZipBytesRow::sfhBytes) : 0);
    check(key, "POB", ZipDataRow::pobRba, size ? size->get(ZipBytesRow::pobBytes) : 0);
    check(key, "RR", ZipDataRow::rrRba, size ? size->get(ZipBytesRow::rrBytes) : 0);
  }
}

}  // namespace statecut::verify
