#include "laws/pair.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string_view>

#include "dbbuilder/random.h"
#include "dbbuilder/rangefile.h"
#include "dbbuilder/writer.h"
#include "lookup/databases.h"
#include "run/process.h"
#include "run/rundriver.h"
#include "support/paths.h"

namespace statecut::test {

using namespace builder;

namespace {

FileBytes part(const FileBytes& file, std::uint64_t at, std::uint64_t count) {
  const std::uint64_t begin = std::min<std::uint64_t>(at, file.size());
  const std::uint64_t end = std::min<std::uint64_t>(begin + count, file.size());
  return {file.begin() + static_cast<std::ptrdiff_t>(begin),
          file.begin() + static_cast<std::ptrdiff_t>(end)};
}

// "12/31/26 23:59.59;ERR;dbaccess:0056;4711;..." with time and process id masked.
std::string maskedRecord(const std::string& line) {
  constexpr std::string_view kTime = "00/00/00 00:00.00;";
  if (line.size() < kTime.size()) return line;
  for (std::size_t i = 0; i < kTime.size(); ++i) {
    const bool digit = std::isdigit(static_cast<unsigned char>(line[i])) != 0;
    if (kTime[i] == '0' ? !digit : line[i] != kTime[i]) return line;
  }
  const std::size_t site = line.find(';', kTime.size());
  const std::size_t id = site == std::string::npos ? site : line.find(';', site + 1);
  const std::size_t end = id == std::string::npos ? id : line.find(';', id + 1);
  if (end == std::string::npos) return line;
  return "<time>;" + line.substr(kTime.size(), id - kTime.size()) + ";<pid>" + line.substr(end);
}

// Times and process ids differ from run to run.
std::string masked(const std::string& log) {
  std::string text;
  for (std::size_t at = 0, end = 0; at < log.size(); at = end) {
    end = std::min(log.find('\n', at), log.size() - 1) + 1;
    std::string line = maskedRecord(log.substr(at, end - at));
    for (const std::string_view label : {"Start Time: ", "End Time: "}) {
      const std::size_t found = line.find(label);
      if (found == std::string::npos) continue;
      const std::size_t from = found + label.size();
      const std::size_t to = std::min(line.find_first_not_of("0123456789 :", from), line.size());
      line.replace(from, to - from, "<time>");
    }
    text += line;
  }
  return text;
}

void redirect(const std::string& path, int flags, int descriptor) {
  const int file = ::open(path.c_str(), flags, 0600);
  if (file < 0 || ::dup2(file, descriptor) < 0) _exit(126);
  ::close(file);
}

// The child of a run: the program from its first line to its status.
[[noreturn]] void become(const std::string& folder, const Manner& manner) {
  redirect(folder + "/stdin", O_RDONLY, STDIN_FILENO);
  redirect(folder + "/stdout", O_WRONLY | O_CREAT, STDOUT_FILENO);
  redirect(folder + "/stderr", O_WRONLY | O_CREAT, STDERR_FILENO);
  if (::chdir((folder + "/" + manner.folder).c_str()) != 0) _exit(126);
  ::setenv("SOURCE_DATE_EPOCH", std::to_string(manner.stamp).c_str(), 1);
  ::setenv("TZ", "UTC0", 1);
  std::vector<std::string> words = {"statecut",
                                    "-f",
                                    manner.ref,
                                    "-g",
                                    manner.rng,
                                    "-o",
                                    manner.refOut,
                                    "-z",
                                    manner.rngOut,
                                    "-l",
                                    manner.log,
                                    "-v",
                                    std::to_string(manner.logLevel)};
  if (manner.listInFile) words.insert(words.end(), {"-s", "states.txt"});
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  if (manner.loaded) ::execv(kStatecut, arguments.data());
  if (manner.loaded) _exit(127);
  prepareProcess();
  const std::int32_t status = runMain(static_cast<int>(words.size()), arguments.data());
  std::exit(status & 0xFF);  // what a failed cut left open is written, as the program does
}

int statusOf(pid_t child) {
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? 1000 + WTERMSIG(status) : WEXITSTATUS(status);
}

// What tells an input that was written to from one that was not.
struct Seen {
  FileBytes bytes;
  ino_t inode = 0;
  std::int64_t changed = 0;
  std::int64_t changedNanoseconds = 0;
  bool operator==(const Seen&) const = default;
};

Seen look(const std::string& path) {
  struct stat file {};
  if (::stat(path.c_str(), &file) != 0) return {};
  return {readWholeFile(path).value_or(FileBytes()), file.st_ino, file.st_mtim.tv_sec,
          file.st_mtim.tv_nsec};
}

// ZIP codes that no list reaches, once in a while.
void addUnreachableZips(Model& model, Random& random) {
  for (std::size_t i = 1; i < model.zips.size(); ++i)
    if (random.percent(4)) model.zipBytes[i].state = "ZZ";
  if (!model.zips.empty() && random.percent(10)) {
    model.zips[0].zip = 54321;
    model.zipBytes[0].state = "TX";
  }
}

}  // namespace

FileBytes Pair::refBytes(std::uint64_t rba, std::uint64_t count) const {
  return part(ref, rba, count);
}

FileBytes Pair::rngBytes(std::uint64_t rba, std::uint64_t count) const {
  return part(rng, rba, count);
}

std::uint32_t Pair::zipKey(std::uint32_t zip) const {
  return le::get<2>(ref.data() + word(RefControlRec::zipIndexRba) + std::size_t{2} * zip);
}

std::vector<std::string> inOwnProcess(const std::function<std::vector<std::string>()>& task) {
  int ends[2];
  std::fflush(nullptr);
  if (::pipe(ends) != 0) throw std::runtime_error("pipe");
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("fork");
  if (child == 0) {
    ::close(ends[0]);
    std::FILE* out = ::fdopen(ends[1], "w");
    // What a lookup says there of too many keys is no news.
    if (out == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr) _exit(1);
    for (const std::string& text : task()) std::fwrite(text.c_str(), 1, text.size() + 1, out);
    std::fflush(nullptr);
    _exit(0);
  }
  ::close(ends[1]);
  std::string all;
  char bytes[65536];
  for (ssize_t got = 0; (got = ::read(ends[0], bytes, sizeof bytes)) > 0;)
    all.append(bytes, static_cast<std::size_t>(got));
  ::close(ends[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  std::vector<std::string> texts;
  for (std::size_t at = 0; at < all.size(); at += texts.back().size() + 1)
    texts.emplace_back(all.c_str() + at);
  if (status != 0) texts.push_back("ended with " + std::to_string(status));
  return texts;
}

Pair pairOf(const Model& model) { return {referenceFile(model).bytes, rangeFile(model.range)}; }

Source randomSource(std::uint64_t seed) {
  Source source;
  source.model = randomLookupModel(seed);
  Random random(seed ^ mixStep);
  addUnreachableZips(source.model, random);
  source.pair = pairOf(source.model);
  std::set<std::string> found;
  for (const builder::CityName& name : source.model.cityNames) found.insert(name.state);
  for (const ZipBytes& zip : source.model.zipBytes) found.insert(zip.state);
  found.erase("");
  found.erase("ZZ");
  source.states.assign(found.begin(), found.end());
  return source;
}

std::string linesOf(const States& states) {
  std::string text;
  for (const std::string& state : states) text += state + "\n";
  return text;
}

CutRun cut(const Pair& source, const Manner& manner) {
  const TempDir folder;
  const std::string names = folder.file(manner.folder);
  std::filesystem::create_directories(names);
  const auto in = [&names](const std::string& name) {
    return name.front() == '/' ? name : names + "/" + name;
  };
  for (const std::string* made : {&manner.ref, &manner.rng, &manner.refOut, &manner.log})
    std::filesystem::create_directories(std::filesystem::path(in(*made)).parent_path());
  writeWholeFile(in(manner.ref), source.ref);
  writeWholeFile(in(manner.rng), source.rng);
  const FileBytes list(manner.list.begin(), manner.list.end());
  writeWholeFile(in("states.txt"), manner.listInFile ? list : FileBytes());
  writeWholeFile(folder.file("stdin"), manner.listInFile ? FileBytes() : list);
  const std::vector<std::string> inputs = {in(manner.ref), in(manner.rng), in("states.txt")};
  std::vector<Seen> before;
  for (const std::string& input : inputs) before.push_back(look(input));

  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("fork");
  if (child == 0) become(folder.path(), manner);
  CutRun run;
  run.status = statusOf(child);
  for (std::size_t i = 0; i < inputs.size(); ++i)
    if (before[i] != look(inputs[i])) run.harm += inputs[i] + " was changed\n";
  run.made.ref = readWholeFile(in(manner.refOut)).value_or(FileBytes());
  run.made.rng = readWholeFile(in(manner.rngOut)).value_or(FileBytes());
  run.log = masked(readTextFile(in(manner.log)));
  run.out = readTextFile(folder.file("stdout"));
  run.err = readTextFile(folder.file("stderr"));
  return run;
}

CutRun cut(const Pair& source, const States& states) {
  Manner manner;
  manner.list = linesOf(states);
  return cut(source, manner);
}

}  // namespace statecut::test
