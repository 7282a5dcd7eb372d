#pragma once
// A reference file opened for one variant of the lookups, and the library's answers to calls.

#include <cstdint>
#include <string>

#include "base/procobj.h"
#include "call.h"
#include "dbfiles/controlrec.h"
#include "lookup/cache.h"
#include "lookup/dispatch.h"
#include "lookup/street.h"

namespace statecut::test {

enum class Mode : std::uint8_t { kMemory, kDisk, kFirst };

struct Variant {
  Mode mode = Mode::kMemory;
  std::uint32_t blockBytes = 0;  // 0: without a cache
  std::int32_t entries = 0;
};

// The processing object of a session is the process's: one session at a time.
class Session {
 public:
  Session(const Variant& variant, const std::string& path, const Bytes& file);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // As if nothing had been called yet: for first calls, no table of a First family is loaded.
  void fresh();
  std::string answer(const Call& call);
  void reopen(const std::string& path);  // the file alone: tables and cache stay
  [[nodiscard]] const CacheControlBlock& cacheBlock() const { return block_; }

 private:
  void load();
  void loadForFirst();
  std::string zips(const Call& call);
  std::string cities(const Call& call);
  std::string cityData(const Call& call);
  std::string streets(const Call& call);
  std::string variation(const Call& call);
  [[nodiscard]] std::string clipped(const void* list, std::size_t slot, std::size_t tableBytes,
                                    std::size_t shown) const;

  Variant variant_;
  ProcObj proc_{};
  OptionsRecord options_{};
  CacheControlBlock block_{};
  RefControlRec record_{};
};

}  // namespace statecut::test
