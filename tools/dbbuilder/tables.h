#pragma once
// Encodes the tables of the reference file.

#include <array>
#include <cstdint>
#include <vector>

#include "dbbuilder/model.h"
#include "dbbuilder/rangefile.h"

namespace statecut::builder {

// The bytes of every table and the number that the control record gives for it: a count of
// records, or the byte length of the street, variation and firm names and ambiguous lists.
struct EncodedTables {
  std::array<Bytes, tableCount> bytes;
  std::array<std::uint32_t, tableCount> counts = {};

  Bytes& of(Table table) { return bytes[static_cast<std::size_t>(table)]; }
  std::uint32_t& count(Table table) { return counts[static_cast<std::size_t>(table)]; }
  [[nodiscard]] const Bytes& of(Table table) const {
    return bytes[static_cast<std::size_t>(table)];
  }
  [[nodiscard]] std::uint32_t count(Table table) const {
    return counts[static_cast<std::size_t>(table)];
  }
};

// Each fills in its tables. encodeNameTables collects the names for the hash index.
void encodeCityTables(const Model& model, const RangeLayout& range, EncodedTables& tables);
void encodeZipTables(const Model& model, const RangeLayout& range, EncodedTables& tables);
void encodeSmallTables(const Model& model, EncodedTables& tables);
std::vector<HashName> encodeNameTables(const Model& model, EncodedTables& tables);
void encodeHashTables(const Model& model, const std::vector<HashName>& names,
                      EncodedTables& tables);

}  // namespace statecut::builder
