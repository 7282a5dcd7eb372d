#pragma once
// A Database opened on bytes, and its answers to calls.

#include <memory>
#include <string>

#include "call.h"
#include "reader/database.h"

namespace statecut::test {

// Through which of its ways a Database is asked.
enum class ReaderWay : std::uint8_t { kSingle, kIndexed, kBatches, kIndexedBatches };

class ReaderSession {
 public:
  // The bytes stay the caller's.
  ReaderSession(ReaderWay way, const Bytes& file);

  // Null when the file was refused.
  [[nodiscard]] const v1::Database* database() const { return database_.get(); }
  [[nodiscard]] const Error& error() const { return error_; }
  std::string answer(const Call& call);

 private:
  [[nodiscard]] bool inBatches() const {
    return way_ == ReaderWay::kBatches || way_ == ReaderWay::kIndexedBatches;
  }
  [[nodiscard]] CityName findCity(std::string_view state, std::string_view name) const;
  std::string zips(const Call& call);
  std::string cities(const Call& call);
  std::string cityData(const Call& call);
  std::string streets(const Call& call);
  std::string search(const Call& call);

  ReaderWay way_;
  Error error_;
  std::shared_ptr<const v1::Database> database_;
};

}  // namespace statecut::test
