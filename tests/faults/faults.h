#pragma once
// What the fault suites share: small pairs, and every fault of a kind in turn.
//
// A failure prints its plan; STATECUT_FAULT=PLAN runs that one alone, for instance
//   STATECUT_FAULT=read:3:once:EIO test_faults --gtest_filter=Kinds/CutFaults.*read*

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "dbbuilder/model.h"
#include "support/counts.h"
#include "support/faultysystem.h"
#include "support/process.h"

namespace statecut::test {

struct SmallPair {
  builder::Model model;
  FileBytes ref;
  FileBytes rng;
};

const SmallPair& tinyPair();
const SmallPair& microPair();  // five ZIP codes, so that a run makes few calls
const SmallPair& widePair();   // the same five, with partitions and tables that are appended whole

// How calls of a kind can fail: all of it in the long tier, else the most telling ones.
std::vector<FaultPlan> faultsOf(FaultKind kind);

// True for a fault that changes nothing: a short transfer goes on, an interrupted call is repeated,
// and what only makes a run faster is done without.
[[nodiscard]] bool isHarmless(const FaultPlan& plan);

// True for calls that only make a run faster.
[[nodiscard]] bool isHint(FaultKind kind);

// The next N after `n`: each in the long tier, else ever fewer.
[[nodiscard]] inline std::uint32_t nextCall(std::uint32_t n) {
  return n + (longRun() ? 1 : 1 + n / 3);
}

// Calls run(plan), which arms and disarms, for N = 1, 2, 3 ... until a run makes fewer calls.
template <typename Run>
void forEachFault(FaultKind kind, Run&& run) {
  std::uint64_t fired = 0;
  const auto once = [&](const FaultPlan& plan) {
    SCOPED_TRACE("STATECUT_FAULT=" + described(plan));
    run(plan);
    if (faultsFired() != 0) ++fired;
  };
  if (const char* text = std::getenv("STATECUT_FAULT"); text != nullptr) {
    FaultPlan plan;
    ASSERT_TRUE(parseFault(text, plan)) << text;
    if (plan.kind == kind) once(plan);
  } else {
    for (FaultPlan plan : faultsOf(kind)) {
      for (plan.n = 1; !::testing::Test::HasFailure(); plan.n = nextCall(plan.n)) {
        once(plan);
        if (callsOf(kind) < plan.n) break;
      }
    }
  }
  addCount("injected faults", fired);
}

inline constexpr FaultKind kAllFaultKinds[] = {
    FaultKind::kOpen,  FaultKind::kSeek,  FaultKind::kRead,     FaultKind::kPresent,
    FaultKind::kWrite, FaultKind::kFlush, FaultKind::kReserve,  FaultKind::kTruncate,
    FaultKind::kClose, FaultKind::kMap,   FaultKind::kAllocate, FaultKind::kAdvise,
    FaultKind::kNew};

// "read", for the names of tests.
std::string kindName(FaultKind kind);

}  // namespace statecut::test
