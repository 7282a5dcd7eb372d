#include <algorithm>

#include "dbbuilder/bytes.h"
#include "dbbuilder/multizipbytes.h"
#include "dbbuilder/tables.h"

namespace statecut::builder {

namespace {

constexpr std::size_t indexEntries = 100000;

Bytes zipData(const Model& model, const RangeLayout& range) {
  ByteWriter out;
  for (std::size_t i = 0; i < model.zips.size(); ++i) {
    const ZipRecord& zip = model.zips[i];
    const auto rba = [&](const Auto32& given, Section section) {
      return given ? *given : range.rba(section, static_cast<std::uint32_t>(i)).value_or(0);
    };
    out.u32(zip.zip);
    out.u32(zip.other4);
    out.u32(rba(zip.sfhRba, Section::SfhZip));
    out.u32(rba(zip.pobRba, Section::PobZip));
    out.u32(rba(zip.rrRba, Section::RrZip));
    out.raw(zip.other20);
    out.u16(zip.cityKey);
    out.u32(zip.cityKeysIndex);
    out.u8(zip.cityKeysCount);
    out.u8(zip.other37);
    out.u16(zip.finKey);
    out.raw(zip.other40);
  }
  return out.take();
}

Bytes zipBytes(const Model& model, const RangeLayout& range) {
  ByteWriter out;
  for (std::size_t i = 0; i < model.zipBytes.size(); ++i) {
    const ZipBytes& zip = model.zipBytes[i];
    const auto bytes = [&](const Auto32& given, Section section) {
      return given ? *given : range.bytes(section, static_cast<std::uint32_t>(i)).value_or(0);
    };
    out.text(zip.state, 2);
    out.u16(bytes(zip.pob, Section::PobZip));
    out.u32(bytes(zip.rr, Section::RrZip));
    out.u32(bytes(zip.sfh, Section::SfhZip));
  }
  return out.take();
}

Bytes zipIndex(const Model& model) {
  std::vector<std::uint16_t> entries(indexEntries);
  if (model.zipIndex) {
    std::copy_n(model.zipIndex->begin(), std::min(model.zipIndex->size(), indexEntries),
                entries.begin());
  } else {
    for (std::size_t i = 1; i < model.zips.size(); ++i)
      if (model.zips[i].zip < indexEntries)
        entries[model.zips[i].zip] = static_cast<std::uint16_t>(i);
  }
  ByteWriter out;
  for (const std::uint16_t key : entries) out.u16(key);
  return out.take();
}

// 2-byte entries in room for 4 bytes each.
Bytes roomyList(const std::vector<std::uint16_t>& entries, const std::vector<std::uint16_t>& tail) {
  ByteWriter out;
  for (const std::uint16_t key : entries) out.u16(key);
  for (const std::uint16_t key : tail) out.u16(key);
  Bytes bytes = out.take();
  bytes.resize(4 * entries.size());
  return bytes;
}

std::vector<MultiZipSize> multiZipSizes(const RangeModel& range, Section section) {
  std::vector<MultiZipSize> sizes;
  for (const Partition& partition : range.partitions)
    if (partition.section == section) sizes.push_back({partition.key, partition.bytes});
  std::stable_sort(sizes.begin(), sizes.end(),
                   [](const MultiZipSize& a, const MultiZipSize& b) { return a.key < b.key; });
  return sizes;
}

void store(EncodedTables& tables, Table table, MultiZipTable encoded) {
  tables.of(table) = std::move(encoded.bytes);
  tables.count(table) = encoded.count;
}

}  // namespace

void encodeZipTables(const Model& model, const RangeLayout& range, EncodedTables& tables) {
  tables.of(Table::ZipData) = zipData(model, range);
  tables.count(Table::ZipData) = static_cast<std::uint32_t>(model.zips.size());
  tables.of(Table::ZipBytes) = zipBytes(model, range);
  tables.of(Table::ZipIndex) = zipIndex(model);
  tables.of(Table::CityKeysOfZips) = roomyList(model.cityKeysOfZips, {});
  tables.count(Table::CityKeysOfZips) = static_cast<std::uint32_t>(model.cityKeysOfZips.size());
  tables.of(Table::MultiZipLists) = roomyList(model.multiZipLists, model.multiZipListsTail);
  tables.count(Table::MultiZipLists) = static_cast<std::uint32_t>(model.multiZipLists.size());

  store(tables, Table::SfhMultiZipBytes, sfhTable(multiZipSizes(model.range, Section::SfhMulti)));
  store(tables, Table::PobMultiZipBytes, shortTable(multiZipSizes(model.range, Section::PobMulti)));
  store(tables, Table::RrMultiZipBytes, shortTable(multiZipSizes(model.range, Section::RrMulti)));
}

}  // namespace statecut::builder
