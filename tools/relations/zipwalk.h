#pragma once
// A walk over ZIP codes: all, a range of codes, or the one of a key. And what the files of the
// relations share.

#include <cstdint>
#include <memory>
#include <optional>

#include "relations/relation.h"
#include "relations/source.h"

namespace statecut::relations {

extern const Relation kZip, kCity, kCityZip, kCityPhonetic, kStreet, kFirm, kStreetVariation,
    kCounty, kUrbanization, kPartition, kTables, kHeader;

template <typename Rows>
std::unique_ptr<Cursor> openRows(Source& source) {
  return std::make_unique<Rows>(source);
}

class ZipWalk {
 public:
  static constexpr std::uint64_t kFirstCode = 1, kLastCode = 99999;

  explicit ZipWalk(const Database& database) : database_(&database) {}

  void startAll() { startZips(kFirstCode, kLastCode); }
  void startNone() { startZips(1, 0); }
  void startZips(std::uint64_t low, std::uint64_t high) {
    key_.reset();
    code_ = low < kFirstCode ? kFirstCode : low;
    last_ = high > kLastCode ? kLastCode : high;
  }
  void startKey(std::uint64_t key) {
    startNone();
    key_ = key;
  }

  bool next() {
    if (key_) return nextOfKey();
    while (code_ <= last_) {
      zip_ = database_->zip(static_cast<std::uint32_t>(code_++));
      if (zip_) return true;
    }
    return false;
  }
  [[nodiscard]] const Zip& zip() const { return zip_; }

 private:
  // A record that no ZIP code leads to is none.
  bool nextOfKey() {
    const std::uint64_t key = *key_;
    key_.reset();
    if (key > UINT32_MAX) return false;
    const Zip found = database_->zipOfKey(static_cast<std::uint32_t>(key));
    if (!found) return false;
    zip_ = database_->zip(found->get(ZipDataRow::zip));
    return zip_ && zip_.key == key;
  }

  const Database* database_;
  std::uint64_t code_ = 1;
  std::uint64_t last_ = 0;
  std::optional<std::uint64_t> key_;
  Zip zip_;
};

}  // namespace statecut::relations
