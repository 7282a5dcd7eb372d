#include "processes/calls.h"

#include <algorithm>
#include <map>
#include <regex>
#include <sstream>

namespace statecut::bench {

namespace {

struct File {
  int descriptor;
  std::string path;
};

// Reads the lines that strace writes of one thread.
class Reader {
 public:
  explicit Reader(std::vector<Move>& moves) : moves_(moves) {}

  void read(const std::string& line) {
    static const std::regex call(R"(^([a-z_0-9]+)\((.*)\) += (0x[0-9a-f]+|[0-9]+)(<.*)?$)");
    std::smatch match;
    if (!std::regex_match(line, match, call)) return;
    const std::string name = match[1];
    const std::string arguments = match[2];
    const std::vector<File> files = filesIn(arguments);
    const std::uint64_t result = std::stoull(match[3], nullptr, 0);
    if (name == "openat") {
      positions_[static_cast<int>(result)] = 0;
    } else if (files.empty()) {
      return;
    } else if (name == "lseek") {
      positions_[files[0].descriptor] = result;
    } else if (name == "mmap") {
      addMapping(files[0], arguments);
    } else if (files.size() == 2) {  // copy_file_range, splice: from the first; sendfile: to it
      const bool first = name == "sendfile";
      add(files[first ? 1 : 0], false, result);
      add(files[first ? 0 : 1], true, result);
    } else if (name[0] == 'p') {
      addPositioned(files[0], name, arguments, result);
    } else {
      add(files[0], name[0] == 'w', result);
    }
  }

 private:
  // "3</a/b>" of the arguments.
  static std::vector<File> filesIn(const std::string& arguments) {
    static const std::regex descriptor("([0-9]+)<([^>]*)>");
    std::vector<File> files;
    for (std::sregex_iterator at(arguments.begin(), arguments.end(), descriptor), end; at != end;
         ++at)
      files.push_back({std::stoi((*at)[1]), (*at)[2]});
    return files;
  }

  void add(const File& file, bool write, std::uint64_t bytes) {
    std::uint64_t& position = positions_[file.descriptor];
    moves_.push_back({file.path, write, false, position, bytes});
    position += bytes;
  }

  // pread64, pwritev and so on: the offset is the last argument, but for the flags of ...v2.
  void addPositioned(const File& file, const std::string& name, const std::string& arguments,
                     std::uint64_t bytes) {
    static const std::regex last(", ([0-9]+)$");
    static const std::regex lastButOne(", ([0-9]+), [^,]*$");
    std::smatch match;
    if (!std::regex_search(arguments, match, name.back() == '2' ? lastButOne : last)) return;
    moves_.push_back({file.path, name[1] == 'w', false, std::stoull(match[1]), bytes});
  }

  // A mapping reads the pages that it covers.
  void addMapping(const File& file, const std::string& arguments) {
    static const std::regex range("^[^,]*, ([0-9]+), .*, (0x[0-9a-f]+|0)$");
    constexpr std::uint64_t page = 4096;
    std::smatch match;
    if (!std::regex_match(arguments, match, range)) return;
    const std::uint64_t pages = (std::stoull(match[1]) + page - 1) / page;
    moves_.push_back({file.path, false, true, std::stoull(match[2], nullptr, 0), pages * page});
  }

  std::vector<Move>& moves_;
  std::map<int, std::uint64_t> positions_;
};

}  // namespace

std::vector<Move> movesOf(const Setup& setup, const Command& command) {
  const Path folder = setup.work / "strace";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  // One file a thread; -y tells the path behind a descriptor.
  Command traced{
      .words = {"strace", "-ff", "-y", "-s", "0", "-o", folder / "calls", "-e",
                "trace=openat,lseek,read,pread64,readv,preadv,preadv2,write,pwrite64,writev,"
                "pwritev,pwritev2,copy_file_range,sendfile,splice,mmap"}};
  traced.words.insert(traced.words.end(), command.words.begin(), command.words.end());
  runWell(traced);
  Paths threads;
  for (const auto& file : std::filesystem::directory_iterator(folder))
    threads.push_back(file.path());
  std::sort(threads.begin(), threads.end());
  std::vector<Move> moves;
  for (const Path& thread : threads) {
    Reader reader(moves);
    std::istringstream lines(readFile(thread));
    for (std::string line; std::getline(lines, line);) reader.read(line);
  }
  std::filesystem::remove_all(folder);
  return moves;
}

}  // namespace statecut::bench
