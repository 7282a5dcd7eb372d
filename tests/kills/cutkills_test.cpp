// A cut that is killed at each of its writes: the inputs stay as they are, and verify reports every
// pair that is not complete.
//
// The program's writes are counted, and end it, inside of it: no privileges are needed.

#include "kills.h"
#include "support/childcut.h"
#include "support/faultysystem.h"

namespace statecut::test {
namespace {

struct Cut {
  const char* name;
  bool tiny;
  const char* states;  // as verify takes them
  bool overOlder;      // a complete cut of other states stands where the outputs go
  int level;
};

constexpr Cut kCuts[] = {{"MicroTwoStates", false, "TX,OK", false, 3},
                         {"MicroOverAnOlderCut", false, "TX", true, 3},
                         {"TinyTwoStates", true, "TX,OK", false, 4},
                         {"TinyOverAnOlderCut", true, "OK", true, 5}};

builder::Model modelOf(const Cut& cut) {
  if (cut.tiny) return builder::makeModel(builder::tinyPlaces(), builder::tinyOptions());
  builder::ProfileOptions options;
  options.rangeBytes = std::uint64_t{300} << 10;
  options.streets = 12;
  options.firms = 3;
  options.severalCitiesEvery = 2;
  return builder::makeModel({{10001, "NY", "NEW YORK", "NEW YORK"},
                             {73008, "OK", "BETHANY", "OKLAHOMA"},
                             {75201, "TX", "DALLAS", "DALLAS"},
                             {75203, "TX", "DALLAS", "DALLAS"},
                             {78701, "TX", "AUSTIN", "TRAVIS"}},
                            options);
}

class CutKills : public testing::TestWithParam<std::tuple<int, int>> {
 protected:
  CutKills() : cut_(kCuts[std::get<0>(GetParam())]), signal_(std::get<1>(GetParam())) {
    const builder::Model model = modelOf(cut_);
    ref_ = builder::referenceFile(model).bytes;
    rng_ = builder::rangeFile(model.range);
    writeWholeFile(folder_.file("city.dir"), ref_);
    writeWholeFile(folder_.file("zip4us.dir"), rng_);
    writeStates(cut_.states);
  }

  void writeStates(const std::string& list) const {
    std::string lines = list + ",";
    std::replace(lines.begin(), lines.end(), ',', '\n');
    writeWholeFile(folder_.file("states"), {lines.begin(), lines.end()});
  }

  // n = 0: to its end.
  [[nodiscard]] ChildCut run(std::uint32_t n, KillMoment moment) const {
    return runChildCut(folder_, cut_.level, [&] { armKill(n, moment, signal_); });
  }

  // What stands where the outputs go before a run.
  void prepare() {
    removeOutputs(folder_);
    if (!cut_.overOlder) return;
    writeWholeFile(folder_.file("city.sc"), olderRef_);
    writeWholeFile(folder_.file("zip4us.sc"), olderRng_);
  }

  void makeOlder() {
    if (!cut_.overOlder) return;
    writeStates("NY,OK,TX");
    removeOutputs(folder_);
    ASSERT_EQ(run(0, KillMoment::kBefore).status, 0);
    olderRef_ = *readWholeFile(folder_.file("city.sc"));
    olderRng_ = *readWholeFile(folder_.file("zip4us.sc"));
    writeStates(cut_.states);
  }

  // What verify says of the outputs by themselves.
  [[nodiscard]] verify::Options alone() const {
    verify::Options options;
    options.ref = folder_.file("city.sc");
    options.rng = folder_.file("zip4us.sc");
    return options;
  }

  [[nodiscard]] verify::Options withSource() const {
    verify::Options options = alone();
    options.sourceRef = folder_.file("city.dir");
    options.sourceRng = folder_.file("zip4us.dir");
    options.states = cut_.states;
    return options;
  }

  [[nodiscard]] bool isPair(const std::optional<FileBytes>& ref,
                            const std::optional<FileBytes>& rng) const {
    return readWholeFile(folder_.file("city.sc")) == ref &&
           readWholeFile(folder_.file("zip4us.sc")) == rng;
  }

  void expectReported() const {
    EXPECT_EQ(readWholeFile(folder_.file("city.dir")), ref_);
    EXPECT_EQ(readWholeFile(folder_.file("zip4us.dir")), rng_);
    const bool complete = isPair(rightRef_, rightRng_);
    // Untouched as yet: a sound pair, but of other states, which only the source can tell.
    const bool older = cut_.overOlder && isPair(olderRef_, olderRng_);
    expectVerdict(verdictOf(withSource()), complete, "with the source");
    expectVerdict(verdictOf(alone()), complete || older, "alone");
  }

  static void expectVerdict(const Verdict& told, bool sound, const char* how) {
    if (sound) {
      EXPECT_EQ(told.status, 0) << how << ": " << told.text;
    } else {
      EXPECT_NE(told.status, 0) << "verify is silent on an incomplete pair, " << how;
      EXPECT_NE(told.text, "") << how;
    }
  }

  TempDir folder_;
  const Cut& cut_;
  int signal_;
  FileBytes ref_, rng_, olderRef_, olderRng_;
  std::optional<FileBytes> rightRef_, rightRng_;
};

TEST_P(CutKills, LeaveTheInputsAndAPairThatVerifyReports) {
  if (!longRun() && (cut_.tiny || signal_ == SIGTERM)) return;
  makeOlder();
  prepare();
  ASSERT_EQ(run(0, KillMoment::kBefore).status, 0);
  const std::uint32_t writes = writesSeen();
  ASSERT_GE(writes, 10U);
  rightRef_ = readWholeFile(folder_.file("city.sc"));
  rightRng_ = readWholeFile(folder_.file("zip4us.sc"));
  for (const verify::Options& options : {withSource(), alone()})
    ASSERT_EQ(verdictOf(options).status, 0) << verdictOf(options).text;
  std::uint64_t kills = 0;
  for (std::uint32_t n = 1; n <= writes && !HasFailure(); n += longRun() ? 1 : 1 + n / 2) {
    for (const KillMoment moment :
         {KillMoment::kBefore, KillMoment::kHalfway, KillMoment::kAfter}) {
      SCOPED_TRACE("write " + std::to_string(n) + " of " + std::to_string(writes) + ", moment " +
                   std::to_string(static_cast<int>(moment)));
      prepare();
      EXPECT_EQ(run(n, moment).signal, signal_);
      expectReported();
      ++kills;
    }
  }
  addCount("kills", kills);
}

INSTANTIATE_TEST_SUITE_P(Each, CutKills,
                         testing::Combine(testing::Range(0, static_cast<int>(std::size(kCuts))),
                                          testing::Values(SIGKILL, SIGTERM)),
                         [](const auto& info) {
                           return std::string(kCuts[std::get<0>(info.param)].name) + "_" +
                                  signalName(std::get<1>(info.param));
                         });

}  // namespace
}  // namespace statecut::test
