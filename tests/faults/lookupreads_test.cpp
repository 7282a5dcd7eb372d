// Every read of every lookup on disk fails once. The buffers of the lookup hold the answer for
// another key: what comes back is "not found", from then on too, and the right answer once the file
// is opened again, with the cache as it is.

#include <cerrno>

#include "faults.h"
#include "lookup/calls.h"
#include "lookup/databases.h"
#include "lookup/variantsession.h"

namespace statecut::test {
namespace {

constexpr Variant kVariants[] = {
    {Mode::kDisk, 0, 0}, {Mode::kDisk, 64, 1}, {Mode::kDisk, 64, 8}, {Mode::kDisk, 4096, 8}};
constexpr std::size_t kQuickSample = 3;
constexpr std::size_t kLongSample = 40;
constexpr std::uint64_t kLeastFaults = 2000;

bool saysNotFound(const std::string& answer) {
  return answer == "-1" || answer.compare(0, std::string(kNull).size(), kNull) == 0;
}

class LookupReads : public testing::Test {
 protected:
  LookupReads() : database_(tinyDatabase()) {
    writeWholeFile(path(), database_.file);
    calls_ = callsOn(database_.file, 1, longRun() ? kLongSample : kQuickSample);
  }

  [[nodiscard]] std::string path() const { return folder_.file("city.dir"); }

  // A call of the same lookup that finds something else.
  [[nodiscard]] const Call* another(const Variant& variant, const Call& call,
                                    const std::string& right) const {
    Session session(variant, path(), database_.file);
    for (const Call& other : calls_) {
      if (other.op != call.op) continue;
      const std::string answer = session.answer(other);
      if (!saysNotFound(answer) && answer != right) return &other;
    }
    return nullptr;
  }

  // Fails the Nth read of the call. False when it makes fewer reads.
  bool failRead(const Variant& variant, const Call& call, const Call* other, std::uint32_t n,
                const std::string& right) {
    Session session(variant, path(), database_.file);
    if (other != nullptr) session.answer(*other);
    armFaults({FaultKind::kRead, n, FaultMode::kOnce, EIO});
    const std::string answer = session.answer(call);
    const bool fired = faultsFired() != 0;
    disarmFaults();
    if (!fired) {
      EXPECT_EQ(answer, right);
      EXPECT_FALSE(lookupsFailed());
      return false;
    }
    ++faults_;
    EXPECT_TRUE(saysNotFound(answer)) << answer << " instead of " << right;
    int error = 0;
    EXPECT_TRUE(lookupsFailed(&error));
    EXPECT_EQ(error, EIO);
    const std::string later = session.answer(call);
    EXPECT_TRUE(saysNotFound(later)) << later << " behind a read error";
    session.reopen(path());
    EXPECT_FALSE(lookupsFailed());
    EXPECT_EQ(session.answer(call), right) << "after opening again";
    return true;
  }

  void failEveryRead(const Variant& variant) {
    for (const Call& call : calls_) {
      const std::string alone = Session(variant, path(), database_.file).answer(call);
      const Call* other = another(variant, call, alone);
      Session session(variant, path(), database_.file);
      if (other != nullptr) session.answer(*other);
      const std::string right = session.answer(call);
      SCOPED_TRACE(described(call) + (other == nullptr ? "" : " after " + described(*other)));
      for (std::uint32_t n = 1; failRead(variant, call, other, n, right); ++n) {
        if (HasFailure()) return;
      }
    }
  }

  TempDir folder_;
  Database database_;
  std::vector<Call> calls_;
  std::uint64_t faults_ = 0;
};

TEST_F(LookupReads, ThatFailGiveNoAnswerOfAnotherKey) {
  for (const Variant& variant : kVariants) {
    SCOPED_TRACE("blocks of " + std::to_string(variant.blockBytes));
    failEveryRead(variant);
    if (HasFailure()) return;
  }
  EXPECT_GE(faults_, kLeastFaults);
  RecordProperty("faults", std::to_string(faults_));
  addCount("failed reads of lookups", faults_);
}

}  // namespace
}  // namespace statecut::test
