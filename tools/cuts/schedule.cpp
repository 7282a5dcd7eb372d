#include "cuts/schedule.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "cuts/digest.h"
#include "cuts/names.h"
#include "cuts/partfolder.h"

namespace statecut::cuts {

namespace {

constexpr std::chrono::seconds kBetweenSaves{1};

std::uint64_t sizeOf(const std::string& path) {
  std::error_code code;
  const std::uint64_t bytes = std::filesystem::file_size(path, code);
  return code ? 0 : bytes;
}

bool regular(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// What the manifest says of the product is there, as far as sizes tell.
bool stands(const std::string& folder, const ProductRecord& record) {
  return regular(folder + "/" + kReferenceName) && regular(folder + "/" + kRangeName) &&
         regular(folder + "/" + kLogName) &&
         sizeOf(folder + "/" + kReferenceName) == record.reference.bytes &&
         sizeOf(folder + "/" + kRangeName) == record.range.bytes;
}

std::string lastLine(std::string text) {
  while (!text.empty() && text.back() == '\n') text.pop_back();
  const std::size_t at = text.rfind('\n');
  return at == std::string::npos ? text : text.substr(at + 1);
}

}  // namespace

Schedule::Schedule(const Options& options, Source& source, const std::string& statecut,
                   const std::vector<plan::Named>& plans)
    : options_(options), source_(source), statecut_(statecut), plans_(plans) {}

std::string Schedule::pathOf(const std::string& product) const {
  return options_.out + "/" + product;
}

std::string Schedule::partOf(const std::string& product) const {
  return options_.out + "/" + partName(product);
}

// Calls the functions in processes of their own, as many at once as there may be cuts. False when
// the run is asked to end.
bool Schedule::callAll(const std::vector<std::function<std::string()>>& functions,
                       std::vector<std::string>& results) {
  results.assign(functions.size(), "");
  std::map<std::size_t, Child> running;
  for (std::size_t next = 0; next < functions.size() || !running.empty();) {
    for (; next < functions.size() && running.size() < options_.jobs; ++next)
      running[next] = startFunction(functions[next]);
    signals_.wait(-1);
    for (auto one = running.begin(); one != running.end();) {
      if (signals_.asked() != 0) killChild(one->second);
      const Ended ended = signals_.asked() != 0 ? Ended{true, SIGKILL, 0} : poll(one->second);
      if (ended.ended && ended.signal == 0 && ended.status == 0)
        results[one->first] = one->second.written();
      one = ended.ended ? running.erase(one) : std::next(one);
    }
    if (signals_.asked() != 0) return false;
  }
  return true;
}

bool Schedule::describeSource(std::string& error) {
  const verify::Pair& pair = source_.database.pair;
  const auto named = [](const std::string& path, SourceRecord& record) {
    record.file.name = std::filesystem::path(path).filename().string();
  };
  named(source_.ref, manifest_.reference);
  named(source_.rng, manifest_.range);
  manifest_.reference.file.bytes = pair.refBytes().size();
  manifest_.range.file.bytes = pair.rngBytes().size();
  manifest_.reference.buildStamp = pair.ref().get(RefControlRec::buildTimeStamp);
  manifest_.range.buildStamp = pair.rng().get(RngControlRec::buildTimeStamp);
  manifest_.version = STATEDB_VERSION;
  std::vector<std::string> digests;
  const auto digest = [](const std::string& path) {
    return [path] {
      std::string ignored;
      return sha256OfFile(path, ignored);
    };
  };
  const auto sound = [this] { return std::string(isSound(source_) ? "sound" : ""); };
  if (!callAll({digest(source_.rng), digest(source_.ref), sound}, digests)) return true;
  manifest_.range.file.sha256 = digests[0];
  manifest_.reference.file.sha256 = digests[1];
  source_.database.sound = digests[2] == "sound";
  if (digests[0].empty() || digests[1].empty()) error = "the source can't be digested";
  return error.empty();
}

// Whether an earlier run left the product as this run would make it, as far as records tell.
bool Schedule::agrees(const Manifest& earlier, const plan::Named& named) const {
  const auto found = earlier.products.find(named.name);
  return found != earlier.products.end() && found->second.states == named.plan.states &&
         found->second.reference.bytes == named.plan.referenceBytes &&
         found->second.range.bytes == named.plan.rangeBytes() &&
         stands(pathOf(named.name), found->second);
}

bool Schedule::compare(std::string& error) {
  if (!describeSource(error)) return false;
  Manifest earlier = loadManifest(options_.out).value_or(Manifest{});
  saved_ = toText(earlier);
  if (earlier.version != manifest_.version || !(earlier.reference == manifest_.reference) ||
      !(earlier.range == manifest_.range))
    earlier.products.clear();
  for (const auto& [name, record] : earlier.products)
    if (stands(pathOf(name), record)) manifest_.products[name] = record;

  std::vector<const plan::Named*> candidates;
  std::vector<std::function<std::string()>> digests;
  for (const plan::Named& named : plans_) {
    if (options_.force || !agrees(earlier, named)) continue;
    candidates.push_back(&named);
    digests.emplace_back([folder = pathOf(named.name)] {
      std::string ignored;
      return sha256OfFile(folder + "/" + kReferenceName, ignored) + " " +
             sha256OfFile(folder + "/" + kRangeName, ignored);
    });
  }
  std::vector<std::string> found;
  if (signals_.asked() == 0) (void)callAll(digests, found);
  found.resize(candidates.size());
  std::map<std::string, bool> there;
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    const ProductRecord& record = earlier.products[candidates[i]->name];
    there[candidates[i]->name] = found[i] == record.reference.sha256 + " " + record.range.sha256;
  }
  for (const plan::Named& named : plans_) {
    (there[named.name] ? there_ : toMake_).push_back(&named);
    if (!there[named.name]) manifest_.products.erase(named.name);
  }
  return true;
}

bool Schedule::save(bool now) {
  const Clock::time_point at = Clock::now();
  const std::string text = toText(manifest_);
  if (text == saved_ || (!now && at - savedAt_ < kBetweenSaves)) return true;
  std::string error;
  if (!saveManifest(options_.out, manifest_, error)) {
    ++failures_;
    why_ = error;
    return false;
  }
  saved_ = text;
  savedAt_ = at;
  return true;
}

void Schedule::start(const plan::Named& named) {
  Job job;
  job.named = &named;
  job.begin = Clock::now();
  std::string error;
  if (!replaceable(pathOf(named.name), error) || !makePartFolder(options_.out, named.name, error))
    return fail(job, error);
  std::string states;
  for (const std::string& state : named.plan.states) states += state + '\n';
  job.child = startProgram(statecut_,
                           {"-f", source_.ref, "-g", source_.rng, "-o", kReferenceName, "-z",
                            kRangeName, "-l", kLogName},
                           partOf(named.name), states);
  running_.push_back(std::move(job));
}

// Why a step failed, in the program's own words where it left some.
std::string Schedule::reasonOf(const Job& job, const Ended& ended) const {
  const std::string program = job.step == Step::Cutting    ? "statecut "
                              : job.step == Step::Checking ? "the check "
                                                           : "the flush ";
  std::string text = program + describe(ended);
  const auto errors = logRecords(partOf(job.named->name) + "/" + kLogName, "ERR");
  const std::string said = !errors.empty() ? errors.back() : lastLine(job.child.written());
  if (!said.empty()) text += ": " + said;
  return text;
}

void Schedule::fail(const Job& job, const std::string& why) {
  Finished one;
  one.product = job.named->name;
  one.outcome = Outcome::Failed;
  one.seconds = std::chrono::duration<double>(Clock::now() - job.begin).count();
  one.error = why;
  std::string ignored;
  removeProductFolder(partOf(one.product), ignored);
  ++failures_;
  if (!options_.keepGoing && why_.empty())
    why_ = "stopped after a failure; --keep-going makes the others";
  progress_->finish(one);
}

void Schedule::check(Job& job) {
  job.step = Step::Checking;
  job.child = startFunction([this, &job] {
    return toText(checkProduct(source_, options_.out, job.named->name, job.named->plan.states));
  });
}

// False when the product gets no name.
bool Schedule::publishChecked(Job& job) {
  job.checked = parseChecked(job.child.written());
  if (job.checked.error.empty() && stateOf(source_) != source_.state) {
    why_ = "the source has changed";
    job.checked.error = "the source changed while it was cut";
  }
  if (!job.checked.error.empty()) {
    fail(job, job.checked.error);
    return false;
  }
  job.step = Step::Publishing;
  job.child = startFunction([this, &job] { return publish(options_.out, job.named->name); });
  return true;
}

void Schedule::finish(const Job& job) {
  if (const std::string error = job.child.written(); !error.empty()) return fail(job, error);
  const plan::Plan& plan = job.named->plan;
  ProductRecord record;
  record.states = plan.states;
  record.zips = plan.zips;
  record.cities = plan.cities;
  record.partitions = plan.single.all().partitions + plan.multi.all().partitions;
  record.reference = job.checked.reference;
  record.range = job.checked.range;
  record.time = job.checked.time;
  record.warnings = plan.warnings;
  for (const std::string& warning : job.checked.warnings)
    if (std::none_of(plan.warnings.begin(), plan.warnings.end(),
                     [&](const std::string& known) { return warning.ends_with(known); }))
      record.warnings.push_back(warning);
  Finished one;
  one.product = job.named->name;
  one.bytes = record.reference.bytes + record.range.bytes;
  one.seconds = std::chrono::duration<double>(Clock::now() - job.begin).count();
  one.warnings = plan.warnings;  // what the log says besides stands in the manifest
  manifest_.products[one.product] = std::move(record);
  progress_->finish(one);
  save(false);
}

bool Schedule::failedStep(const Job& job, const Ended& ended) {
  if (ended.signal == 0 && ended.status == 0) return false;
  fail(job, reasonOf(job, ended));
  return true;
}

bool Schedule::advance(Job& job) {
  const Ended ended = poll(job.child);
  if (!ended.ended) return true;
  if (failedStep(job, ended)) return false;
  if (job.step == Step::Checking) return publishChecked(job);
  if (job.step == Step::Publishing) {
    finish(job);
    return false;
  }
  check(job);
  return true;
}

bool Schedule::hasRoom() const {
  const auto busy = std::count_if(running_.begin(), running_.end(),
                                  [](const Job& job) { return job.step != Step::Publishing; });
  return static_cast<std::size_t>(busy) < options_.jobs &&
         running_.size() < mostAtOnce(options_.jobs);
}

// A product that has its name is done; of the others nothing stays.
void Schedule::stopAll() {
  for (Job& job : running_) {
    if (job.step == Step::Publishing) {
      const Ended ended = poll(job.child);
      if (ended.ended && ended.signal == 0 && ended.status == 0) {
        finish(job);
        continue;
      }
      if (ended.ended) job.child.pid = -1;
    }
    killChild(job.child);
    std::string ignored;
    removeProductFolder(partOf(job.named->name), ignored);
    unfinished_.push_back(job.named->name);
  }
  running_.clear();
}

void Schedule::draw() const {
  std::vector<Running> lines;
  for (const Job& job : running_) {
    const std::string folder = partOf(job.named->name) + "/";
    const char* const steps[] = {"cutting", "checking", "flushing"};
    lines.push_back({job.named->name, steps[static_cast<std::size_t>(job.step)],
                     sizeOf(folder + kReferenceName) + sizeOf(folder + kRangeName),
                     job.named->plan.bytes()});
  }
  progress_->draw(lines);
}

bool Schedule::run(Progress& progress) {
  progress_ = &progress;
  for (const plan::Named* named : there_)
    progress.finish({named->name, Outcome::There, named->plan.bytes(), 0, "", {}});
  save(true);
  for (;;) {
    while (signals_.asked() == 0 && why_.empty() && hasRoom() && next_ < toMake_.size())
      start(*toMake_[next_++]);
    if (running_.empty() || signals_.asked() != 0) break;
    if (progress.interval() > 0) draw();
    signals_.wait(progress.interval() > 0 ? progress.interval() : -1);
    if (signals_.asked() != 0) break;
    for (auto job = running_.begin(); job != running_.end();)
      job = advance(*job) ? std::next(job) : running_.erase(job);
  }
  if (signals_.asked() != 0) {
    why_ = std::string("stopped by a signal: ") + ::strsignal(signals_.asked());
    stopAll();
  }
  save(true);
  for (; next_ < toMake_.size(); ++next_) unfinished_.push_back(toMake_[next_]->name);
  progress.end(unfinished_, why_);
  return failures_ == 0 && unfinished_.empty();
}

}  // namespace statecut::cuts
