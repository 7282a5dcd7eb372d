#include "dbbuilder/bytes.h"
#include "dbbuilder/tables.h"

namespace statecut::builder {

namespace {

template <typename Records, typename Put>
void store(EncodedTables& tables, Table table, const Records& records, Put put) {
  ByteWriter out;
  for (const auto& record : records) put(out, record);
  tables.of(table) = out.take();
  tables.count(table) = static_cast<std::uint32_t>(records.size());
}

void putPattern(ByteWriter& out, const Pattern& pattern) {
  for (const std::uint16_t word : pattern) out.u16(word);
}

// 32 bytes: link, count, length byte, name.
void putUrbanization(ByteWriter& out, const Urbanization& urbanization) {
  out.u16(urbanization.link);
  out.u8(urbanization.count);
  out.u8(static_cast<std::uint32_t>(urbanization.name.size()));
  out.text(urbanization.name, 28);
}

void encodeMilitary(const MilitaryTable& military, EncodedTables& tables) {
  ByteWriter out;
  out.u16(static_cast<std::uint32_t>(military.first.size()));
  out.u16(static_cast<std::uint32_t>(military.second.size()));
  for (const auto& record : military.first) out.raw(record);
  for (const auto& record : military.second) out.raw(record);
  tables.of(Table::Military) = out.take();
}

void encodePlaces(const Model& model, EncodedTables& tables) {
  store(tables, Table::Counties, model.counties, [](ByteWriter& out, const County& county) {
    out.u16(county.number);
    out.text(county.state, 2);
    out.u8(static_cast<std::uint32_t>(county.name.size()));
    out.text(county.name, 27);
  });
  store(tables, Table::Urbanizations, model.urbanizations, putUrbanization);
  store(tables, Table::UrbMultiZips, model.urbMultiZips,
        [](ByteWriter& out, std::uint16_t key) { out.u16(key); });
  store(tables, Table::UrbVariations, model.urbVariations, putUrbanization);
}

}  // namespace

void encodeSmallTables(const Model& model, EncodedTables& tables) {
  store(tables, Table::SfhPatterns, model.sfhPatterns, putPattern);
  store(tables, Table::PobPatterns, model.pobPatterns, putPattern);
  store(tables, Table::RrPatterns, model.rrPatterns, putPattern);
  store(tables, Table::UniqueZips, model.uniqueZips, [](ByteWriter& out, const UniqueZip& zip) {
    out.u32(zip.zip);
    out.u32(zip.firm);
    out.u16(zip.plus4);
    out.u16(zip.flags);
  });
  encodePlaces(model, tables);
  store(tables, Table::GeneralDelivery, model.generalDelivery,
        [](ByteWriter& out, std::uint32_t entry) { out.u32(entry); });
  store(tables, Table::Scfs, model.scfs, [](ByteWriter& out, const Scf& scf) {
    out.u16(scf.prefix);
    out.text(scf.state, 2);
  });
  if (model.military) encodeMilitary(*model.military, tables);
  if (model.poBoxZones) {
    ByteWriter out;
    out.u16(static_cast<std::uint32_t>(model.poBoxZones->size()));
    for (const std::uint16_t zone : *model.poBoxZones) out.u16(zone);
    tables.of(Table::PoBoxZones) = out.take();
  }
}

}  // namespace statecut::builder
