// A cut whose Nth call of a kind fails, in a child process that ends as the program does.

#include <tuple>

#include "faults.h"
#include "support/childcut.h"
#include "verify/verify.h"

namespace statecut::test {
namespace {

constexpr char kStates[] = "TX\nOK\n";

struct CutRun : ChildCut {
  std::string out, err, log;
  std::optional<FileBytes> ref, rng;
};

struct Subject {
  const char* name;
  const SmallPair& (*pair)();
  int level;
  bool rangeCopies;
  bool quick;  // in the quick tier, too
};

constexpr Subject kSubjects[] = {{"MicroLevel3", microPair, 3, true, true},
                                 {"MicroLevel0BlockByBlock", microPair, 0, false, false},
                                 {"MicroLevel3BlockByBlock", microPair, 3, false, true},
                                 {"MicroLevel5", microPair, 5, true, false},
                                 {"WideLevel2", widePair, 2, true, false},
                                 {"TinyLevel2", tinyPair, 2, true, false},
                                 {"TinyLevel4BlockByBlock", tinyPair, 4, false, false}};

class CutFaults : public testing::TestWithParam<std::tuple<int, FaultKind>> {
 protected:
  CutFaults() : subject_(kSubjects[std::get<0>(GetParam())]), pair_(subject_.pair()) {
    writeWholeFile(folder_.file("city.dir"), pair_.ref);
    writeWholeFile(folder_.file("zip4us.dir"), pair_.rng);
    const std::string states = kStates;
    writeWholeFile(folder_.file("states"), {states.begin(), states.end()});
  }

  CutRun cut(const FaultPlan& plan) {
    removeOutputs(folder_);
    CutRun run;
    static_cast<ChildCut&>(run) = runChildCut(folder_, subject_.level, [&] {
      allowRangeCopies(subject_.rangeCopies);
      armFaults(plan);
    });
    run.out = readTextFile(folder_.file("out"));
    run.err = readTextFile(folder_.file("err"));
    run.log = readTextFile(folder_.file("log"));
    run.ref = readWholeFile(folder_.file("city.sc"));
    run.rng = readWholeFile(folder_.file("zip4us.sc"));
    return run;
  }

  void expectInputsUnchanged() const {
    EXPECT_EQ(readWholeFile(folder_.file("city.dir")), pair_.ref);
    EXPECT_EQ(readWholeFile(folder_.file("zip4us.dir")), pair_.rng);
    EXPECT_EQ(readTextFile(folder_.file("states")), kStates);
  }

  // A run that failed says why: on standard error, on standard output or in the log.
  void expectReason(const FaultPlan& plan, const CutRun& run) const {
    constexpr int kStatuses[] = {255, 248, 247, 245, 244};
    EXPECT_NE(std::find(std::begin(kStatuses), std::end(kStatuses), run.status),
              std::end(kStatuses))
        << run.status << '\n'
        << run.err;
    if (subject_.level == 0) return;  // no log
    // A range output that cannot be opened leaves no record, and a log on a device that takes
    // nothing more is silent; both are meant.
    if (!run.rng || run.rng->empty()) return;
    if (plan.kind == FaultKind::kFlush && plan.mode == FaultMode::kForGood) return;
    EXPECT_TRUE(run.log.find(";ERR;") != std::string::npos ||
                run.err.find("Could not open") != std::string::npos ||
                run.err.find("out of memory") != std::string::npos)
        << run.status << '\n'
        << run.out << run.err << run.log;
  }

  void expectSound(const FaultPlan& plan, const CutRun& right, const CutRun& run) const {
    EXPECT_EQ(run.signal, 0) << run.err;
    EXPECT_EQ(run.err.find("Sanitizer"), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find("runtime error"), std::string::npos) << run.err;
    expectInputsUnchanged();
    if (isHarmless(plan)) {
      EXPECT_EQ(run.status, 0) << run.err << run.log;
    }
    if (run.status == 0) {
      EXPECT_TRUE(run.ref == right.ref && run.rng == right.rng) << "a wrong cut with status 0";
    } else {
      expectReason(plan, run);
    }
  }

  void expectRight(const CutRun& right) const {
    ASSERT_EQ(right.signal, 0) << right.err;
    ASSERT_EQ(right.status, 0) << right.err << right.log;
    expectInputsUnchanged();
    verify::Options options;
    options.ref = folder_.file("city.sc");
    options.rng = folder_.file("zip4us.sc");
    options.sourceRef = folder_.file("city.dir");
    options.sourceRng = folder_.file("zip4us.dir");
    options.states = "TX,OK";
    std::ostringstream out, err;
    EXPECT_EQ(verify::run(options, out, err), 0) << out.str() << err.str();
  }

  TempDir folder_;
  const Subject& subject_;
  const SmallPair& pair_;
};

TEST_P(CutFaults, EndInTheRightCutOrInAStatusAndAReason) {
  const FaultKind kind = std::get<1>(GetParam());
  const bool quick = subject_.quick || (kind == FaultKind::kAppend && subject_.rangeCopies);
  if (!quick && !longRun() && std::getenv("STATECUT_FAULT") == nullptr) return;
  // Level 5 flushes a thousand records, a case of the logs alone.
  if (kind == FaultKind::kFlush && subject_.level == 5) return;
  const CutRun right = cut({});
  expectRight(right);
  if (HasFailure()) return;
  forEachFault(kind, [&](const FaultPlan& plan) { expectSound(plan, right, cut(plan)); });
}

INSTANTIATE_TEST_SUITE_P(Kinds, CutFaults,
                         testing::Combine(testing::Range(0, static_cast<int>(std::size(kSubjects))),
                                          testing::ValuesIn(kAllFaultKinds)),
                         [](const auto& info) {
                           return std::string(kSubjects[std::get<0>(info.param)].name) + "_" +
                                  kindName(std::get<1>(info.param));
                         });

}  // namespace
}  // namespace statecut::test
