#include "verify/pair.h"

namespace statecut::verify {

Pair Pair::open(const std::string& refPath, const std::string& rngPath, std::string& error) {
  Pair pair;
  pair.ref_ = MappedFile::open(refPath, error);
  if (!error.empty()) return pair;
  pair.rng_ = MappedFile::open(rngPath, error);
  if (!error.empty() || !pair.holdsControlRecords()) return pair;
  for (std::size_t i = 0; i < kTables; ++i)
    pair.places_[i] = placeTable(static_cast<TableId>(i), pair.refBytes());
  return pair;
}

bool Pair::holdsControlRecords() const {
  return refBytes().size() >= RefControlRec::size && rngBytes().size() >= RngControlRec::size;
}

const RefControlRec& Pair::ref() const {
  return *reinterpret_cast<const RefControlRec*>(refBytes().data());
}

const RngControlRec& Pair::rng() const {
  return *reinterpret_cast<const RngControlRec*>(rngBytes().data());
}

std::span<const unsigned char> Pair::table(TableId id) const {
  if (!usable(id) || place(id).bytes == 0) return {};
  return refBytes().subspan(place(id).rba, place(id).bytes);
}

NameTables nameTables(const Pair& pair) {
  NameTables tables;
  for (unsigned type = 0; type < kNameTypes; ++type) tables[type] = pair.table(tableOfType(type));
  return tables;
}

}  // namespace statecut::verify
