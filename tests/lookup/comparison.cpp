#include "comparison.h"

#include <stdlib.h>

#include <optional>

#include "base/le.h"
#include "dbfiles/controlrec.h"
#include "oracle.h"
#include "support/files.h"

namespace statecut::test {

namespace {

constexpr int kShown = 5;
constexpr int kEndlessSearches = 1;

class Run {
 public:
  Run(const Variant& variant, const Database& database, Soundness soundness, Tally& tally)
      : variant_(variant),
        database_(database),
        soundness_(soundness),
        tally_(tally),
        memory_(database.file, Oracle::kMemory) {
    if (variant.blockBytes != 0)
      cache_.emplace(database.file, variant.blockBytes, static_cast<std::size_t>(variant.entries));
    disk_.emplace(database.file, Oracle::kDisk, cache_ ? &*cache_ : nullptr);
    const std::string file = folder_.file("city.dir");
    writeWholeFile(file, database.file);
    session_.emplace(variant, file, database.file);
  }

  std::string all(const std::vector<Call>& calls) {
    Op last = Op::kCount_;
    int endless = 0;
    for (const Call& call : calls) {
      if (endlessSearch(call) && ++endless > kEndlessSearches) continue;
      if (call.op != last) session_->fresh();
      last = call.op;
      ++tally_.calls[static_cast<std::size_t>(call.op)];
      one(call);
      if (failures_ == kShown) break;
    }
    counters();
    return text_;
  }

 private:
  void fail(const Call& call, const std::string& what) {
    text_ += database_.name + ": " + described(call) + "\n" + what;
    ++failures_;
  }

  // A sequential search of far more names than the file has takes its time.
  [[nodiscard]] bool endlessSearch(const Call& call) const {
    const bool search =
        call.op == Op::kSequential || call.op == Op::kNearest || call.op == Op::kNext;
    return search && le::get<4>(database_.file.data() + RefControlRec::cityNamesCount.at) >
                         database_.file.size();
  }

  // First calls decide by family: one whose table cannot be loaded answers from the file. Some
  // operations use two families, and a buffer may hold what an earlier database left.
  [[nodiscard]] bool mixed(const Call& call) const {
    if (variant_.mode != Mode::kFirst || soundness_ != Soundness::kDamaged) return false;
    const Differences seen = memory_.differences() | disk_->differences();
    const auto has = [&](Difference one) { return seen.test(static_cast<std::size_t>(one)); };
    const bool families = call.op == Op::kCityDataByName || call.op == Op::kCityDataByTrunc ||
                          call.op == Op::kFinOfZip || call.op == Op::kVariation;
    return has(Difference::kTableTooLarge) && (families || has(Difference::kBehindTheFile));
  }

  void one(const Call& call) {
    const std::string memory = memory_.answer(call);
    const std::string disk = disk_->answer(call);
    const Differences meant = memory_.differences() | disk_->differences();
    const std::string got = session_->answer(call);
    const bool right =
        variant_.mode == Mode::kMemory ? got == memory
        : variant_.mode == Mode::kDisk
            ? got == disk
            : got == memory || mixed(call) || (soundness_ == Soundness::kDamaged && got == disk);
    if (!right)
      fail(call, "  got    " + got + "\n  memory " + memory + "\n  file   " + disk + "\n");
    if (memory != disk) {
      if (meant.none())
        fail(call, "  outside the table of differences:\n  memory " + memory + "\n  file   " +
                       disk + "\n");
      for (std::size_t i = 0; i < kDifferences; ++i)
        if (meant[i]) ++tally_.occurred[i];
    }
    if (soundness_ != Soundness::kSound) return;
    const std::string contradiction = memory_.contradiction(call, memory);
    if (!contradiction.empty()) fail(call, "  answer " + memory + ": " + contradiction + "\n");
  }

  // Every piece that the model finds in its blocks, the cache found too.
  void counters() {
    if (!cache_ || failures_ > 0) return;
    const CacheControlBlock& block = session_->cacheBlock();
    if (block.found == cache_->found && block.wholeHits == cache_->whole &&
        block.partialHits == cache_->partial)
      return;
    text_ += database_.name + ": cache counters " + std::to_string(block.found) + " " +
             std::to_string(block.wholeHits) + " " + std::to_string(block.partialHits) + ", not " +
             std::to_string(cache_->found) + " " + std::to_string(cache_->whole) + " " +
             std::to_string(cache_->partial) + "\n";
  }

  Variant variant_;
  const Database& database_;
  Soundness soundness_;
  Tally& tally_;
  TempDir folder_;
  Oracle memory_;
  std::optional<BlockModel> cache_;
  std::optional<Oracle> disk_;
  std::optional<Session> session_;
  std::string text_;
  int failures_ = 0;
};

}  // namespace

std::string compareAnswers(const Variant& variant, const Database& database,
                           const std::vector<Call>& calls, Soundness soundness, Tally& tally) {
  return Run(variant, database, soundness, tally).all(calls);
}

}  // namespace statecut::test
