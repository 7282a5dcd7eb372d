#include "batch.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

namespace statecut::test {

namespace {

const std::size_t kBatch = 500;

// Files in memory are damaged faster.
std::string baseFolder() { return ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : temporaryBase(); }

Progress* sharedProgress() {
  void* at =
      ::mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (at == MAP_FAILED) std::abort();
  return static_cast<Progress*>(at);
}

// The files of a pair, held open for damages.
class OpenPair {
 public:
  OpenPair(const PairImage& pair, const PairFiles& files)
      : pair_(pair),
        fds_{::open(files.ref().c_str(), O_RDWR), ::open(files.rng().c_str(), O_RDWR)} {}
  ~OpenPair() {
    for (const int fd : fds_) ::close(fd);
  }
  OpenPair(const OpenPair&) = delete;
  OpenPair& operator=(const OpenPair&) = delete;

  void damage(const Damage& damage) {
    if (damage.how == How::kShorten) {
      if (damage.at > lengths_[damage.range]) whole(damage.range);
      lengths_[damage.range] = damage.at;
      whole(!damage.range);
      check(::ftruncate(fds_[damage.range], static_cast<off_t>(damage.at)) == 0);
      return;
    }
    whole(false);
    whole(true);
    const Bytes bytes = damagedBytes(damage, pair_.file(damage.range).data() + damage.at);
    put(damage.range, damage.at, bytes.data(), bytes.size());
  }

  // Shorter files stay so: the next damage is shorter still, or makes them whole again.
  void undo(const Damage& damage) {
    if (damage.how != How::kShorten)
      put(damage.range, damage.at, pair_.file(damage.range).data() + damage.at,
          std::max<std::size_t>(1, damage.width));
  }

  // The bytes that a file has left are still those that it had.
  [[nodiscard]] bool unharmed() {
    for (const bool range : {false, true}) {
      const Bytes& sound = pair_.file(range);
      Bytes now(sound.size() + 1);
      const ssize_t got = ::pread(fds_[range], now.data(), now.size(), 0);
      const std::uint64_t length = std::min<std::uint64_t>(sound.size(), lengths_[range]);
      if (got != static_cast<ssize_t>(length) ||
          !std::equal(sound.begin(), sound.begin() + got, now.begin()))
        return false;
    }
    return true;
  }

 private:
  static void check(bool good) {
    if (!good) std::abort();
  }
  void put(bool range, std::uint64_t at, const unsigned char* from, std::size_t count) {
    check(::pwrite(fds_[range], from, count, static_cast<off_t>(at)) ==
          static_cast<ssize_t>(count));
  }
  void whole(bool range) {
    const Bytes& sound = pair_.file(range);
    const std::uint64_t length = std::min<std::uint64_t>(sound.size(), lengths_[range]);
    put(range, length, sound.data() + length, sound.size() - length);
    lengths_[range] = sound.size();
  }

  const PairImage& pair_;
  int fds_[2];
  std::uint64_t lengths_[2] = {~0ULL, ~0ULL};
};

// Peak resident bytes count from here on; false when the system does not tell them.
[[nodiscard]] bool resetPeak() {
  const int fd = ::open("/proc/self/clear_refs", O_WRONLY);
  if (fd < 0) return false;
  const bool good = ::write(fd, "5", 1) == 1;
  ::close(fd);
  return good;
}

std::uint64_t peakBytes() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.starts_with("VmHWM:")) return std::strtoull(line.c_str() + 6, nullptr, 10) * 1024;
  return 0;
}

void setTimer(double seconds) {
  itimerval timer{};
  timer.it_value.tv_sec = static_cast<time_t>(seconds) + 1;
  ::setitimer(ITIMER_PROF, &timer, nullptr);
}

std::string tailOf(const std::string& path) {
  const std::string all = readTextFile(path);
  return all.size() <= 3000 ? all : all.substr(all.size() - 3000);
}

void readLines(const std::string& path, Outcome& outcome) {
  std::ifstream in(path);
  std::string line;
  std::set<std::string> notes(outcome.notes.begin(), outcome.notes.end());
  while (std::getline(in, line)) {
    if (line.starts_with("F "))
      outcome.failures.push_back(line.substr(2));
    else if (line.starts_with("N "))
      notes.insert(line.substr(2));
    else if (line == "cut reported")
      ++outcome.silentCuts;
    else if (line == "cut excepted")
      ++outcome.exceptedCuts;
  }
  outcome.notes.assign(notes.begin(), notes.end());
}

void redirect(int fd, const std::string& path) {
  const int to = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
  ::dup2(to, fd);
  ::close(to);
}

}  // namespace

Damager::Damager(PairImage pair, const PairImage* source, Queries which)
    : pair_(std::move(pair)),
      folder_(baseFolder()),
      files_{folder_.path(), "pair"},
      programs_(files_, source == nullptr ? PairFiles{} : PairFiles{files_.folder, "source"},
                queriesOf(pair_, which), ReaderProgram(pair_.ref, which == Queries::kAll)) {
  ::setenv("SOURCE_DATE_EPOCH", "1767225601", 1);
  writeWholeFile(files_.folder + "/states",
                 FileBytes(kMicroStates, kMicroStates + std::strlen(kMicroStates)));
  writeWholeFile(files_.folder + "/sound.ref", pair_.ref);
  writeWholeFile(files_.folder + "/sound.rng", pair_.rng);
  if (source != nullptr) {
    writeWholeFile(files_.folder + "/source.ref", source->ref);
    writeWholeFile(files_.folder + "/source.rng", source->rng);
  }
  restore();
}

void Damager::restore() const {
  writeWholeFile(files_.ref(), pair_.ref);
  writeWholeFile(files_.rng(), pair_.rng);
}

// In a process of its own, too: a cut leaves its tables to the end of the process.
PairImage Damager::cutOf() {
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    redirect(STDOUT_FILENO, files_.folder + "/out.txt");
    programs_.run(bitOf(Program::kCut), 1e9, [](Program) {});
    ::_exit(programs_.behaviour.cutStatus);
  }
  int status = 0;
  if (::waitpid(child, &status, 0) != child || status != 0) std::abort();
  return {readWholeFile(files_.folder + "/out.ref").value_or(Bytes{}),
          readWholeFile(files_.folder + "/out.rng").value_or(Bytes{})};
}

std::string Damager::tryOne(const Damages& damages, const Damage& damage, const Limits& limits,
                            const Judge& judge, const Behaviour& sound, std::ostream& report,
                            Progress& progress) {
  if (!resetPeak()) return "/proc/self/clear_refs can't be written: no peak of memory is known";
  const std::uint64_t before = peakBytes();
  setTimer(limits.seconds * 4);
  programs_.run(damage.programs, limits.seconds,
                [&](Program program) { progress.program = program; });
  setTimer(1e6);
  // A machine that does not run for a while charges it to whoever was running.
  if (!programs_.tooLong.empty()) programs_.run(damage.programs, limits.seconds, [](Program) {});
  std::string wrong = programs_.tooLong + programs_.wrong;
  const std::uint64_t memory =
      limits.memory +
      (limits.timesTables == 0 ? 0 : limits.timesTables * tableBytes(pair_, damages, damage));
  if (const std::uint64_t most = peakBytes(); most > before + memory)
    wrong += std::to_string((most - before) >> 20) + " MiB in memory, " +
             std::to_string(memory >> 20) + " are the most; ";
  std::string judged = judge(damage, programs_, sound);
  bool excepted = false;
  if (const std::size_t note = judged.find('\n'); note != std::string::npos) {
    report << "N " << judged.substr(note + 1) << '\n';
    judged.erase(note);
    excepted = true;
  }
  if ((damage.programs & bitOf(Program::kCut)) != 0 && programs_.behaviour.cutStatus == 0 &&
      sound.cutStatus == 0 && sound.cutDiffers(programs_.behaviour)) {
    if (excepted)
      report << "cut excepted\n";
    else if (programs_.alone.status == 1 || programs_.withSource.status == 1)
      report << "cut reported\n";
    else if (judged.empty())
      judged = "a cut with status 0 that differs, and verify reports nothing";
  }
  return wrong + judged;
}

void Damager::serve(const Damages& damages, std::span<const std::size_t> chosen,
                    const Limits& limits, const Judge& judge, Progress& progress) {
  std::ofstream report(files_.folder + "/report");
  OpenPair files(pair_, files_);
  programs_.run(kAllPrograms, 1e9, [](Program) {});
  const Behaviour sound = programs_.behaviour;
  if (programs_.alone.status != 0) report << "F the sound pair: " << programs_.alone.text;
  for (const std::size_t i : chosen) {
    const Damage& damage = damages.list[i];
    files.damage(damage);
    const std::string wrong = tryOne(damages, damage, limits, judge, sound, report, progress);
    files.undo(damage);
    if (!wrong.empty()) report << "F " << nameOf(damages, damage) << ": " << wrong << std::endl;
    ++progress.next;
  }
  if (!files.unharmed())
    report << "F from " << nameOf(damages, damages.list[chosen[0]]) << " on: an input changed\n";
}

Outcome Damager::run(const Damages& damages, std::vector<std::size_t> chosen, const Limits& limits,
                     const Judge& judge) {
  if (const char* named = std::getenv("STATECUT_DAMAGE"); named != nullptr)
    chosen.erase(
        std::remove_if(chosen.begin(), chosen.end(),
                       [&](std::size_t i) { return nameOf(damages, damages.list[i]) != named; }),
        chosen.end());
  Outcome outcome;
  outcome.damages = chosen.size();
  Progress* progress = sharedProgress();
  bool again = false;
  for (std::size_t from = 0; from < chosen.size() && outcome.failures.size() < 5000;) {
    const std::size_t end = std::min(from + kBatch, chosen.size());
    progress->next = from;
    ::unlink((files_.folder + "/report").c_str());
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
      redirect(STDOUT_FILENO, files_.folder + "/out.txt");
      redirect(STDERR_FILENO, files_.folder + "/err.txt");
      serve(damages, std::span(chosen).subspan(from, end - from), limits, judge, *progress);
      ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    restore();
    // Once more, from the same state, before it counts as a hang: see tryOne.
    again = !again && WIFSIGNALED(status) && WTERMSIG(status) == SIGPROF;
    if (again) continue;
    readLines(files_.folder + "/report", outcome);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
      from = end;
      continue;
    }
    outcome.failures.push_back(
        nameOf(damages, damages.list[chosen[progress->next]]) + ": " + nameOf(progress->program) +
        (WIFSIGNALED(status) ? " ended by signal " + std::to_string(WTERMSIG(status))
                             : " ended the process with " + std::to_string(WEXITSTATUS(status))) +
        "\n" + tailOf(files_.folder + "/err.txt"));
    from = progress->next + 1;
  }
  ::munmap(progress, sizeof(Progress));
  return outcome;
}

}  // namespace statecut::test
