#include <algorithm>

#include "dbbuilder/bytes.h"
#include "dbbuilder/header.h"
#include "dbbuilder/tables.h"
#include "dbbuilder/writer.h"

namespace statecut::builder {

namespace {

constexpr std::size_t none = 0;

// Where the control record names a table: its RBA and the words that hold its count.
struct DirectoryEntry {
  Table table;
  std::size_t rbaWord;
  std::size_t countWord;  // `none` for a table whose count stands elsewhere
};

constexpr DirectoryEntry directory[] = {
    {Table::CityData, 32, 188},
    {Table::CityZipLists, 36, 180},
    {Table::CityFinanceLists, 40, 184},
    {Table::CityNames, 44, 132},
    {Table::CityNamesByState, 48, none},
    {Table::CityPhonetics, 52, 136},
    {Table::ZipData, 56, 192},
    {Table::CityKeysOfZips, 60, 196},
    {Table::ZipIndex, 64, none},
    {Table::Counties, 68, 200},
    {Table::Urbanizations, 72, 204},
    {Table::UrbVariations, 76, 208},
    {Table::StreetNames, 80, 144},
    {Table::StreetRbos, 84, 140},
    {Table::StreetPhoneticLists, 88, 156},
    {Table::StreetPhonetics, 92, 152},
    {Table::StreetPhoneticRbos, 96, 148},
    {Table::StreetStandardLists, 100, 168},
    {Table::StreetStandards, 104, 164},
    {Table::StreetStandardRbos, 108, 160},
    {Table::FirmNames, 112, 176},
    {Table::FirmRbos, 116, 172},
    {Table::SfhPatterns, 120, 212},
    {Table::PobPatterns, 124, 216},
    {Table::RrPatterns, 128, 220},
    {Table::GeneralDelivery, 228, 224},
    {Table::UniqueZips, 232, 236},
    {Table::Scfs, 244, 240},
    {Table::MultiZipLists, 248, 252},
    {Table::CityMultiZip, 260, 256},
    {Table::FinMultiZip, 264, 268},
    {Table::UrbMultiZips, 276, 272},
    {Table::ZipBytes, 280, none},
    {Table::SfhMultiZipBytes, 284, 296},
    {Table::PobMultiZipBytes, 288, 300},
    {Table::RrMultiZipBytes, 292, 304},
    {Table::HashSlots, 308, 312},
    {Table::HashOverflow, 316, 320},
    {Table::Military, 324, none},
    {Table::PoBoxZones, 328, none},
};
static_assert(std::size(directory) == tableCount);

EncodedTables encodeTables(const Model& model) {
  const RangeLayout range(model.range);
  EncodedTables tables;
  encodeSmallTables(model, tables);
  encodeCityTables(model, range, tables);
  encodeZipTables(model, range, tables);
  encodeHashTables(model, encodeNameTables(model, tables), tables);
  for (const auto& [table, bytes] : model.raw) tables.of(table) = bytes;
  return tables;
}

bool absent(const Model& model, Table table) {
  if (model.raw.count(table) != 0) return false;
  return (table == Table::Military && !model.military) ||
         (table == Table::PoBoxZones && !model.poBoxZones);
}

}  // namespace

ReferenceFile referenceFile(const Model& model) {
  const EncodedTables tables = encodeTables(model);
  ReferenceFile file;
  file.bytes.resize(refControlSize);
  for (std::size_t i = 0; i < tableCount; ++i) {
    if (absent(model, static_cast<Table>(i))) continue;
    const Bytes& bytes = tables.bytes[i];
    file.places[i] = {static_cast<std::uint32_t>(file.bytes.size()), bytes.size()};
    file.bytes.insert(file.bytes.end(), bytes.begin(), bytes.end());
  }
  Byte* record = file.bytes.data();
  const Bytes header = headerBytes(model.header);
  std::copy(header.begin(), header.end(), record);
  for (const DirectoryEntry& entry : directory) {
    le::put<4>(record + entry.rbaWord, file.place(entry.table).rba);
    if (entry.countWord != none) le::put<4>(record + entry.countWord, tables.count(entry.table));
  }
  constexpr std::size_t trailingAt = 332;
  std::copy_n(model.trailing.begin(), std::min(model.trailing.size(), refControlSize - trailingAt),
              record + trailingAt);
  patchWords(std::span(file.bytes).first(refControlSize), model.words);
  return file;
}

}  // namespace statecut::builder
