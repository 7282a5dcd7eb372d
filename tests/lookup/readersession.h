#pragma once
// A Database opened on bytes, and its answers to calls; itself, or through another face.

#include <memory>
#include <string>

#include "call.h"
#include "reader/database.h"

namespace statecut::test {

// Through which of its ways a Database is asked.
enum class ReaderWay : std::uint8_t { kSingle, kIndexed, kBatches, kIndexedBatches, kC, kCBatches };

class ReaderFace {
 public:
  virtual ~ReaderFace() = default;
  [[nodiscard]] virtual bool opened() const = 0;
  [[nodiscard]] virtual const Error& error() const = 0;
  virtual std::string answer(const Call& call) = 0;
};

// The bytes stay the caller's.
[[nodiscard]] std::unique_ptr<ReaderFace> openFace(ReaderWay way, const Bytes& file);

// The pattern of a search that tells a match by a word.
[[nodiscard]] std::string patternOf(const Call& call);

class ReaderSession : public ReaderFace {
 public:
  ReaderSession(ReaderWay way, const Bytes& file);

  [[nodiscard]] bool opened() const override { return database_ != nullptr; }
  [[nodiscard]] const Error& error() const override { return error_; }
  std::string answer(const Call& call) override;

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
