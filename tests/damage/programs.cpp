#include "programs.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <sstream>

#include "base/procobj.h"
#include "cut/workstate.h"
#include "diff/diff.h"
#include "info/info.h"
#include "lookup/session.h"
#include "query/run.h"
#include "run/rundriver.h"
#include "tables/refpointers.h"
#include "verify/verify.h"

namespace statecut::test {

namespace {

double processorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

void readInto(const std::string& path, std::string& bytes) {
  const int fd = ::open(path.c_str(), O_RDONLY);
  struct stat status {};
  if (fd < 0 || ::fstat(fd, &status) != 0) {
    bytes = "(no file)";
    if (fd >= 0) ::close(fd);
    return;
  }
  // Of a large output its size and its beginning.
  constexpr off_t kMost = 16 << 20;
  bytes.resize(static_cast<std::size_t>(std::min(status.st_size, kMost)));
  const ssize_t got = ::read(fd, bytes.data(), bytes.size());
  bytes.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
  if (status.st_size > kMost) bytes += std::to_string(status.st_size);
  ::close(fd);
}

// A cut that fails leaves what it holds to the end of the process; the next one is in the same.
// The reference input, which may be closed by then, is left.
void releaseCut(int status) {
  if (status != 0) closeDbs();
  refPointers.fill(RefSlot{});
  pProcObj = nullptr;
}

}  // namespace

const char* nameOf(Program program) {
  static constexpr const char* kNames[] = {"statecut",
                                           "statedb verify",
                                           "statedb info",
                                           "statedb query in",
                                           "statedb query first",
                                           "statedb query off",
                                           "statedb query cached",
                                           "a Database",
                                           "statedb diff"};
  return kNames[static_cast<std::size_t>(program)];
}

std::string Behaviour::difference(const Behaviour& other, std::uint16_t which) const {
  if ((which & bitOf(Program::kCut)) != 0) {
    if (cutStatus != other.cutStatus)
      return "the cut's status is " + std::to_string(other.cutStatus);
    if (cutDiffers(other))
      return cutRef != other.cutRef ? "the cut's reference file differs"
                                    : "the cut's range file differs";
  }
  for (std::size_t i = 0; i < answers.size(); ++i) {
    if ((which & bitOf(static_cast<Program>(3 + i))) == 0 || answers[i] == other.answers[i])
      continue;
    std::istringstream now(other.answers[i]);
    std::istringstream before(answers[i]);
    std::string a;
    std::string b;
    while (std::getline(before, a) && std::getline(now, b) && a == b) {
    }
    return std::string(nameOf(static_cast<Program>(3 + i))) + " answers " + b + ", not " + a;
  }
  return "";
}

Programs::Programs(PairFiles files, PairFiles source, std::vector<Query> queries,
                   ReaderProgram reader)
    : files_(std::move(files)),
      source_(std::move(source)),
      queries_(std::move(queries)),
      reader_(std::move(reader)) {}

void Programs::runOne(Program program, double mostSeconds) {
  const double start = processorSeconds();
  switch (program) {
    case Program::kCut:
      cut();
      break;
    case Program::kVerify:
      verify();
      break;
    case Program::kInfo:
      info();
      break;
    case Program::kReader:
      wrong = reader_.run(files_.ref(), files_.rng(), behaviour.answers[4]);
      break;
    case Program::kDiff:
      difference();
      break;
    default:
      query(program);
  }
  const double seconds = processorSeconds() - start;
  if (seconds > mostSeconds)
    tooLong += std::string(nameOf(program)) + " took " + std::to_string(seconds) + " s; ";
}

void Programs::cut() {
  const std::string out = files_.folder + "/out";
  std::vector<std::string> words = {"statecut",
                                    "-s",
                                    files_.folder + "/states",
                                    "-l",
                                    files_.folder + "/log",
                                    "-f",
                                    files_.ref(),
                                    "-g",
                                    files_.rng(),
                                    "-o",
                                    out + ".ref",
                                    "-z",
                                    out + ".rng"};
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  ::unlink((files_.folder + "/log").c_str());
  behaviour.cutStatus = runMain(static_cast<int>(words.size()), arguments.data());
  releaseCut(behaviour.cutStatus);
  readInto(out + ".ref", behaviour.cutRef);
  readInto(out + ".rng", behaviour.cutRng);
}

void Programs::verify() {
  const auto check = [&](const verify::Options& options, Verdict& verdict) {
    std::ostringstream out;
    std::ostringstream err;
    verdict.status = verify::run(options, out, err);
    verdict.text = out.str() + err.str();
  };
  verify::Options options;
  options.ref = files_.ref();
  options.rng = files_.rng();
  check(options, alone);
  if (source_.folder.empty()) return;
  options.sourceRef = source_.ref();
  options.sourceRng = source_.rng();
  options.states = "TX,VT";
  check(options, withSource);
}

void Programs::info() {
  std::ostringstream out;
  std::ostringstream err;
  json_ = !json_;
  static_cast<void>(info::run({files_.ref(), files_.rng()},
                              {.json = json_, .tsv = info::Tsv::None, .key = ""}, out, err));
}

void Programs::difference() {
  const PairFiles sound{files_.folder, "sound"};
  std::ostringstream out;
  std::ostringstream err;
  json_ = !json_;
  diff::Options options{sound.ref(), files_.ref(), {sound.rng(), files_.rng()}, "", json_, false};
  diff.status = diff::run(options, out, err);
  diff.text = err.str();
  if (diff.status == 2 && !out.str().empty()) diff.text = "wrote a difference";
}

void Programs::query(Program program) {
  const std::size_t variant = static_cast<std::size_t>(program) - 3;
  SessionSettings settings;
  settings.ref = files_.ref();
  settings.rng = files_.rng();
  settings.mode = program == Program::kIn      ? LookupMode::kIn
                  : program == Program::kFirst ? LookupMode::kFirst
                                               : LookupMode::kOff;
  settings.cached = program == Program::kCached;
  settings.cacheBlock = 512;
  settings.cacheEntries = 16;
  settings.sets = 0;
  std::string& answers = behaviour.answers[variant];
  answers.clear();
  Session session;
  std::string error;
  if (!session.open(settings, error)) {
    answers = "cannot open\n";
    return;
  }
  if (!session.pairMatches()) answers = "not a pair\n";
  for (const Query& query : queries_)
    if (query::answerWords(session, false, query, answers) != query::Outcome::kAnswered)
      answers += "refused\n";
}

}  // namespace statecut::test
