// Bytes that a cut reads and writes, by its system calls.

#include <map>
#include <regex>
#include <sstream>

#include "info/info.h"
#include "processes/cuts.h"

namespace statecut::bench {

namespace {

struct Traffic {
  std::map<std::string, std::uint64_t> read;  // by path
  std::map<std::string, std::uint64_t> written;
};

// The paths in "read(3</a/b>, ..., 4</c>, ...".
std::vector<std::string> pathsIn(const std::string& arguments) {
  static const std::regex descriptor("[0-9]+<([^>]*)>");
  std::vector<std::string> paths;
  for (std::sregex_iterator at(arguments.begin(), arguments.end(), descriptor), end; at != end;
       ++at)
    paths.push_back((*at)[1]);
  return paths;
}

void count(const std::string& line, Traffic& traffic) {
  static const std::regex call(R"(^([a-z_0-9]+)\((.*)\) += ([0-9]+)$)");
  std::smatch match;
  if (!std::regex_match(line, match, call)) return;
  const std::string name = match[1];
  const std::vector<std::string> paths = pathsIn(match[2]);
  const std::uint64_t moved = std::stoull(match[3]);
  if (paths.empty()) return;
  if (name.find("write") != std::string::npos) {
    traffic.written[paths[0]] += moved;
  } else if (name == "sendfile" && paths.size() == 2) {
    traffic.written[paths[0]] += moved;
    traffic.read[paths[1]] += moved;
  } else {
    traffic.read[paths[0]] += moved;
    if (paths.size() == 2) traffic.written[paths[1]] += moved;  // copy_file_range, splice
  }
}

// A mapping reads the pages that it covers, all of them.
void countMapping(const std::string& line, Traffic& traffic) {
  static const std::regex call(R"(^mmap\([^,]*, ([0-9]+), (.*)\) += 0x.*$)");
  constexpr std::uint64_t page = 4096;
  std::smatch match;
  if (!std::regex_match(line, match, call)) return;
  const std::vector<std::string> paths = pathsIn(match[2]);
  if (paths.size() == 1) traffic.read[paths[0]] += (std::stoull(match[1]) + page - 1) / page * page;
}

Traffic trace(const Setup& setup, const Cut& cut) {
  const Path folder = setup.work / "strace";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  // One file a thread; -y tells the path behind a descriptor.
  Command command{.words = {"strace", "-ff", "-y", "-s", "0", "-o", folder / "calls", "-e",
                            "trace=read,pread64,readv,preadv,preadv2,write,pwrite64,writev,pwritev,"
                            "pwritev2,copy_file_range,sendfile,splice,mmap"}};
  command.words.insert(command.words.end(), cut.command.words.begin(), cut.command.words.end());
  runWell(command);
  Traffic traffic;
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    std::istringstream lines(readFile(file.path()));
    for (std::string line; std::getline(lines, line);) {
      if (line.rfind("mmap", 0) == 0) {
        countMapping(line, traffic);
      } else {
        count(line, traffic);
      }
    }
  }
  return traffic;
}

// Control records, tables of the reference file that a cut uses, partitions that it keeps.
std::uint64_t neededBytes(const Setup& setup, const Cut& cut) {
  constexpr std::uint64_t refRecord = 844;
  const std::string bytes = readFile(setup.ref());
  const info::FileInfo file = info::describe(
      setup.ref(), {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
  std::uint64_t sum = refRecord;
  for (const info::TableInfo& table : file.tables)
    if (table.name != "Street RBOs" && table.name != "Firm RBOs" && table.name != "SCFs")
      sum += table.bytes;
  return sum + bytesOf({cut.outputs[1]});  // which begins with the range control record
}

std::uint64_t sumOf(const std::map<std::string, std::uint64_t>& counts, const Paths& paths) {
  std::uint64_t sum = 0;
  for (const Path& path : paths) {
    const auto found = counts.find(path);
    if (found != counts.end()) sum += found->second;
  }
  return sum;
}

RowSamples compare(std::uint64_t ours, std::uint64_t peer) {
  return {{{"", "bytes", {static_cast<double>(ours)}, {static_cast<double>(peer)}}}, {}};
}

}  // namespace

RowSamples bytesRead(const Setup& setup) {
  const Cut cut = prepareCut(setup, setup.work / "traced", {"TX", "OK"});
  cut.remove();
  const Traffic traffic = trace(setup, cut);
  RowSamples samples =
      compare(sumOf(traffic.read, {setup.ref(), setup.rng()}), neededBytes(setup, cut));
  cut.remove();
  return samples;
}

RowSamples bytesWritten(const Setup& setup) {
  const Cut cut = prepareCut(setup, setup.work / "traced", {"TX", "OK"});
  cut.remove();
  const Traffic traffic = trace(setup, cut);
  const Paths written = {cut.outputs[0], cut.outputs[1], cut.log};
  RowSamples samples = compare(sumOf(traffic.written, written), bytesOf(written));
  cut.remove();
  return samples;
}

}  // namespace statecut::bench
