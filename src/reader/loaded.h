#pragma once
// Inside of a Database: its tables, where they lie, and the indexes that are made on request.

#include <array>
#include <atomic>
#include <memory>
#include <string>

#include "base/system.h"
#include "hash/nameindex.h"
#include "reader/block.h"
#include "reader/database.h"
#include "tables/tableview.h"

namespace statecut {

inline constexpr std::uint32_t kNameTypes = 6;

// An open file.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) sys::closeFile(fd_);
  }
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  [[nodiscard]] int get() const { return fd_; }
  [[nodiscard]] explicit operator bool() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

// By city key, the ZIP keys that have the city. Key 0 is no city.
class CityZips {
 public:
  // Null without memory.
  [[nodiscard]] static std::unique_ptr<CityZips> make(const Database& database,
                                                      const TableView& view);
  [[nodiscard]] std::span<const std::uint16_t> of(std::uint32_t cityKey) const;

 private:
  [[nodiscard]] std::uint32_t* starts() const {
    return reinterpret_cast<std::uint32_t*>(starts_.data());
  }
  [[nodiscard]] std::uint16_t* zips() const {
    return reinterpret_cast<std::uint16_t*>(zips_.data());
  }

  Block starts_;  // by city key; one more at the end
  Block zips_;
  std::uint32_t cities_ = 0;
};

using NameIndexes = std::array<NameIndex, kNameTypes>;

// Made once by whichever thread comes first and never changed again.
template <typename Value>
class Once {
 public:
  Once() = default;
  ~Once() { delete value_.load(std::memory_order_relaxed); }
  Once(const Once&) = delete;
  Once& operator=(const Once&) = delete;

  [[nodiscard]] const Value* get() const { return value_.load(std::memory_order_acquire); }
  // Of two that come at the same time one is kept.
  const Value* set(std::unique_ptr<Value> made) const {
    const Value* held = nullptr;
    if (value_.compare_exchange_strong(held, made.get(), std::memory_order_acq_rel,
                                       std::memory_order_acquire))
      held = made.release();
    return held;
  }

 private:
  mutable std::atomic<const Value*> value_{nullptr};
};

struct Database::Loaded {
  Block block;                           // of a file; empty for the caller's bytes
  std::span<const unsigned char> bytes;  // the file
  std::size_t zerosTo = 0;               // the block has zeros behind them up to here
  std::array<Block, 2> copies;           // of tables that end with the bytes
  std::array<RefSlot, kSlotCount> slots{};
  TableView view{};
  std::string file;   // for errors
  std::string range;  // the range file, empty: none
  Descriptor rangeFile;
  RngControlRec rangeRecord{};
  std::uint64_t rangeBytes = 0;
  Once<NameIndexes> names;
  Once<CityZips> cityZips;

  // The number of a name, or -1, through whichever index is there.
  [[nodiscard]] std::int32_t find(std::uint32_t type, const void* name, std::int32_t length,
                                  std::int32_t longest) const;
};

}  // namespace statecut
