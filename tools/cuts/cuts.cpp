#include "cuts/cuts.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <ostream>

#include "cuts/children.h"
#include "cuts/digest.h"
#include "cuts/lock.h"
#include "cuts/names.h"
#include "cuts/partfolder.h"
#include "cuts/progress.h"
#include "cuts/schedule.h"
#include "cuts/space.h"
#include "verify/cutchecks.h"

namespace statecut::cuts {

namespace {

constexpr int kAll = 0, kSome = 1, kCannotRun = 2;
constexpr std::size_t kLongestInput = 1024;  // of statecut's options

// What can be said before anything is written.
class Preparation {
 public:
  Preparation(const Options& options, std::ostream& err) : options_(options), err_(err) {}

  bool source(const Choice& choice) {
    std::string error;
    if (!paths()) return false;
    inputs.state = stateOf(inputs);
    verify::Source& database = inputs.database;
    if (!openSource(options_.ref, options_.rng, database.pair, error)) return fail(error);
    std::vector<std::string> problems;
    plans = planProducts(choice, database.pair, problems);
    for (const std::string& problem : problems) fail(problem);
    if (!problems.empty()) return false;
    if (plans.empty()) return fail("there is no product to make");
    std::stable_sort(plans.begin(), plans.end(), [](const plan::Named& a, const plan::Named& b) {
      return a.plan.bytes() > b.plan.bytes();
    });
    if (!program()) return false;
    database.hash = verify::findHashPlaces(database.pair);
    (void)sha256OfBytes({}, error);  // the library makes its tables once, not in each child
    return true;
  }

  bool folder() {
    std::error_code code;
    std::filesystem::create_directories(options_.out, code);
    if (code) return fail("cannot create " + options_.out + ": " + code.message());
    std::string error;
    // The lock of an earlier run may be there to be opened where nothing else can be made.
    if (::access(options_.out.c_str(), W_OK | X_OK) != 0)
      return fail(options_.out + ": " + std::strerror(errno));
    if (!lock_.take(options_.out, error) || !removeAllParts(options_.out, error))
      return fail(error);
    return true;
  }

  bool space(const std::vector<Room>& rooms) {
    std::string error;
    const std::uint64_t needed = spaceNeeded(rooms, mostAtOnce(options_.jobs));
    const std::uint64_t free = spaceFree(options_.out, error);
    if (!error.empty()) return fail(error);
    if (needed <= free) return true;
    return fail(options_.out + ": the products need " + std::to_string(needed) +
                " bytes, the disk has " + std::to_string(free));
  }

  bool fail(const std::string& reason) {
    err_ << "statedb cuts: " << reason << '\n';
    return false;
  }

  std::vector<plan::Named> plans;  // the largest first
  std::string statecut;
  Source inputs;

 private:
  bool paths() {
    std::error_code code;
    inputs.ref = std::filesystem::absolute(options_.ref, code).string();
    if (!code) inputs.rng = std::filesystem::absolute(options_.rng, code).string();
    if (code) return fail("the current folder can't be told: " + code.message());
    for (const std::string& path : {inputs.ref, inputs.rng})
      if (path.size() > kLongestInput) return fail("too long a path for statecut: " + path);
    return true;
  }

  bool program() {
    statecut = findProgram("statecut");
    return !statecut.empty() || fail("no program statecut, neither beside statedb nor in PATH");
  }

  const Options& options_;
  std::ostream& err_;
  FolderLock lock_;
};

std::uint64_t bytesThere(const std::string& folder) {
  std::uint64_t bytes = 0;
  for (const char* name : {kReferenceName, kRangeName}) {
    struct stat status {};
    if (::stat((folder + "/" + name).c_str(), &status) == 0)
      bytes += static_cast<std::uint64_t>(status.st_blocks) * 512;
  }
  return bytes;
}

Progress::Form formOf(const Options& options) {
  if (options.json) return Progress::Form::Json;
  return ::isatty(STDOUT_FILENO) != 0 ? Progress::Form::Terminal : Progress::Form::Lines;
}

}  // namespace

bool openSource(const std::string& ref, const std::string& rng, verify::Pair& source,
                std::string& error) {
  source = verify::Pair::open(ref, rng, error);
  if (!error.empty()) return false;
  const auto problem = [&](const std::string& what) {
    error = ref + ", " + rng + ": " + what;
    return false;
  };
  if (const std::string what = verify::sourceProblem(source); !what.empty()) return problem(what);
  if (source.ref().get(RefControlRec::buildTimeStamp) !=
      source.rng().get(RngControlRec::buildTimeStamp))
    return problem("of two builds");
  return true;
}

std::vector<plan::Named> planProducts(const Choice& choice, const verify::Pair& source,
                                      std::vector<std::string>& problems) {
  ProductList list = choice.each            ? everyState()
                     : !choice.file.empty() ? readProducts(choice.file)
                                            : parseProducts(choice.words);
  problems = std::move(list.problems);
  std::vector<plan::Named> plans;
  if (!problems.empty()) return plans;
  for (Product& product : list.products) {
    plan::Named named{std::move(product.name), plan::make(source, product.states)};
    if (!choice.each || named.plan.zips > 0) plans.push_back(std::move(named));
  }
  return plans;
}

int run(const Options& options, const Choice& choice, std::ostream& out, std::ostream& err) {
  Preparation ready(options, err);
  if (!ready.source(choice) || !ready.folder()) return kCannotRun;
  Schedule schedule(options, ready.inputs, ready.statecut, ready.plans);
  std::string error;
  if (!schedule.compare(error)) return ready.fail(error), kCannotRun;
  std::vector<Room> rooms;
  Totals totals;
  totals.products = ready.plans.size();
  for (const plan::Named* one : schedule.toMake()) {
    rooms.push_back({one->plan.spaceBytes(), bytesThere(options.out + "/" + one->name)});
    totals.plannedBytes += one->plan.bytes();
  }
  if (!ready.space(rooms)) return kCannotRun;
  Progress progress(formOf(options), totals, out, err);
  return schedule.run(progress) ? kAll : kSome;
}

}  // namespace statecut::cuts
