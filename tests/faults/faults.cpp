#include "faults.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "dbbuilder/profiles.h"
#include "dbbuilder/writer.h"

namespace statecut::test {
namespace {

SmallPair made(std::vector<builder::Place> places, const builder::ProfileOptions& options) {
  SmallPair pair;
  pair.model = builder::makeModel(std::move(places), options);
  pair.ref = builder::referenceFile(pair.model).bytes;
  pair.rng = builder::rangeFile(pair.model.range);
  return pair;
}

SmallPair madeOfFiveZips(std::uint64_t rangeBytes, std::uint32_t streets) {
  builder::ProfileOptions options;
  options.rangeBytes = rangeBytes;
  options.streets = streets;
  options.firms = 3;
  options.severalCitiesEvery = 2;
  return made({{10001, "NY", "NEW YORK", "NEW YORK"},
               {73008, "OK", "BETHANY", "OKLAHOMA"},
               {75201, "TX", "DALLAS", "DALLAS"},
               {75203, "TX", "DALLAS", "DALLAS"},
               {78701, "TX", "AUSTIN", "TRAVIS"}},
              options);
}

using Mode = FaultMode;

void add(std::vector<FaultPlan>& to, FaultKind kind, Mode mode, int error) {
  to.push_back({kind, 1, mode, error});
}

void addWrites(std::vector<FaultPlan>& to, FaultKind kind) {
  add(to, kind, Mode::kOnce, ENOSPC);
  add(to, kind, Mode::kForGood, EIO);
  add(to, kind, Mode::kShort, 0);
  add(to, kind, Mode::kNothing, 0);
  if (!longRun()) return;
  add(to, kind, Mode::kNothingForGood, 0);
  add(to, kind, Mode::kOnce, EIO);
  add(to, kind, Mode::kOnce, EFBIG);
  add(to, kind, Mode::kForGood, ENOSPC);
  add(to, kind, Mode::kForGood, EFBIG);
  add(to, kind, Mode::kShortForGood, 0);
  add(to, kind, Mode::kOnce, EINTR);
}

void addReads(std::vector<FaultPlan>& to) {
  add(to, FaultKind::kRead, Mode::kOnce, EIO);
  add(to, FaultKind::kRead, Mode::kShort, 0);
  add(to, FaultKind::kRead, Mode::kNothing, 0);
  if (!longRun()) return;
  add(to, FaultKind::kRead, Mode::kNothingForGood, 0);
  add(to, FaultKind::kRead, Mode::kForGood, EIO);
  add(to, FaultKind::kRead, Mode::kShortForGood, 0);
  add(to, FaultKind::kRead, Mode::kOnce, EINTR);
}

}  // namespace

const SmallPair& tinyPair() {
  static const SmallPair pair = made(builder::tinyPlaces(), builder::tinyOptions());
  return pair;
}

const SmallPair& microPair() {
  static const SmallPair pair = madeOfFiveZips(std::uint64_t{48} << 10, 12);
  return pair;
}

const SmallPair& widePair() {
  static const SmallPair pair = madeOfFiveZips(std::uint64_t{1200} << 10, 5000);
  return pair;
}

std::vector<FaultPlan> faultsOf(FaultKind kind) {
  std::vector<FaultPlan> plans;
  switch (kind) {
    case FaultKind::kOpen:
      add(plans, kind, Mode::kOnce, EACCES);
      if (longRun()) {
        for (const int error : {ENOENT, EMFILE}) add(plans, kind, Mode::kOnce, error);
        for (const int error : {ENOENT, EACCES, EMFILE}) add(plans, kind, Mode::kForGood, error);
      }
      break;
    case FaultKind::kSeek:
      add(plans, kind, Mode::kOnce, EIO);
      add(plans, kind, Mode::kForGood, EIO);
      break;
    case FaultKind::kRead:
      addReads(plans);
      break;
    case FaultKind::kWrite:
    case FaultKind::kFlush:
      addWrites(plans, kind);
      break;
    case FaultKind::kPresent:
      for (const Mode mode : {Mode::kShort, Mode::kShortForGood, Mode::kNothing})
        add(plans, kind, mode, 0);
      for (const int error : {EAGAIN, EOPNOTSUPP}) add(plans, kind, Mode::kOnce, error);
      add(plans, kind, Mode::kForGood, EAGAIN);
      break;
    case FaultKind::kReserve:
      for (const int error : {ENOSPC, EOPNOTSUPP}) add(plans, kind, Mode::kOnce, error);
      add(plans, kind, Mode::kForGood, ENOSPC);
      break;
    case FaultKind::kTruncate:
      add(plans, kind, Mode::kForGood, EIO);
      break;
    case FaultKind::kMap:
    case FaultKind::kAdvise:
      add(plans, kind, Mode::kOnce, ENOMEM);
      add(plans, kind, Mode::kForGood, ENOMEM);
      break;
    case FaultKind::kClose:
      add(plans, kind, Mode::kOnce, ENOSPC);
      if (longRun()) {
        add(plans, kind, Mode::kForGood, EIO);
        add(plans, kind, Mode::kOnce, EINTR);
      }
      break;
    case FaultKind::kAllocate:
    case FaultKind::kNew:
      add(plans, kind, Mode::kOnce, ENOMEM);
      if (longRun()) add(plans, kind, Mode::kForGood, ENOMEM);
      break;
  }
  return plans;
}

bool isHint(FaultKind kind) {
  constexpr FaultKind kHints[] = {FaultKind::kPresent, FaultKind::kReserve, FaultKind::kTruncate,
                                  FaultKind::kMap, FaultKind::kAdvise};
  return std::find(std::begin(kHints), std::end(kHints), kind) != std::end(kHints);
}

bool isHarmless(const FaultPlan& plan) {
  return plan.mode == Mode::kShort || plan.mode == Mode::kShortForGood || plan.error == EINTR ||
         isHint(plan.kind);
}

std::string kindName(FaultKind kind) {
  const std::string text = described({kind, 1, Mode::kOnce, 0});
  return text.substr(0, text.find(':'));
}

}  // namespace statecut::test
