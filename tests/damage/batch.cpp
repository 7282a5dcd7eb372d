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

std::string makeFolder() {
  const bool memory = ::access("/dev/shm", W_OK) == 0;
  const char* chosen = std::getenv("TMPDIR");
  std::string name = memory ? "/dev/shm" : chosen != nullptr ? chosen : "/tmp";
  name += "/statecut-XXXXXX";
  if (::mkdtemp(name.data()) == nullptr) std::abort();
  return name;
}

// What the parent knows of a child that died.
struct Progress {
  std::size_t next;  // position in the chosen damages
  Program program;
};

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

// Peak resident bytes since the last reset.
void resetPeak() {
  const int fd = ::open("/proc/self/clear_refs", O_WRONLY);
  if (fd < 0) return;
  static_cast<void>(!::write(fd, "5", 1));
  ::close(fd);
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
      files_{makeFolder(), "pair"},
      programs_(files_, source == nullptr ? PairFiles{} : PairFiles{files_.folder, "source"},
                queriesOf(pair_, which)) {
  ::setenv("SOURCE_DATE_EPOCH", "1767225601", 1);
  writeWholeFile(files_.folder + "/states",
                 FileBytes(kMicroStates, kMicroStates + std::strlen(kMicroStates)));
  if (source != nullptr) {
    writeWholeFile(files_.folder + "/source.ref", source->ref);
    writeWholeFile(files_.folder + "/source.rng", source->rng);
  }
  restore();
}

Damager::~Damager() {
  std::error_code ignored;
  std::filesystem::remove_all(files_.folder, ignored);
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
  for (std::size_t from = 0; from < chosen.size() && outcome.failures.size() < 5000;) {
    const std::size_t end = std::min(from + kBatch, chosen.size());
    progress->next = from;
    ::unlink((files_.folder + "/report").c_str());
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
      redirect(STDOUT_FILENO, files_.folder + "/out.txt");
      redirect(STDERR_FILENO, files_.folder + "/err.txt");
      Damager* const self = this;
      std::ofstream report(files_.folder + "/report");
      OpenPair files(pair_, files_);
      programs_.run(kAllPrograms, 1e9, [](Program) {});
      const Behaviour sound = programs_.behaviour;
      if (programs_.alone.status != 0) report << "F the sound pair: " << programs_.alone.text;
      for (std::size_t i = from; i < end; ++i) {
        const Damage& damage = damages.list[chosen[i]];
        progress->next = i;
        files.damage(damage);
        resetPeak();
        const std::uint64_t before = peakBytes();
        setTimer(limits.seconds * 4);
        programs_.run(damage.programs, limits.seconds,
                      [&](Program program) { progress->program = program; });
        setTimer(1e6);
        std::string wrong = programs_.tooLong;
        if (const std::uint64_t most = peakBytes(); most > before + limits.memory)
          wrong += std::to_string((most - before) >> 20) + " MiB in memory; ";
        std::string judged = judge(damage, self->programs_, sound);
        if (const std::size_t note = judged.find('\n'); note != std::string::npos) {
          report << "N " << judged.substr(note + 1) << '\n';
          judged.erase(note);
        }
        wrong += judged;
        files.undo(damage);
        if (!wrong.empty()) report << "F " << nameOf(damages, damage) << ": " << wrong << std::endl;
      }
      if (!files.unharmed())
        report << "F from " << nameOf(damages, damages.list[chosen[from]])
               << " on: an input changed\n";
      report.close();
      ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    readLines(files_.folder + "/report", outcome);
    restore();
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
