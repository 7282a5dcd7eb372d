// replay PLAN FILE...: moves the bytes that a plan lists, by plain pread and pwrite, and does
// nothing else: what a program that reads and writes the same bytes costs at least. Files that the
// plan writes are made anew.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "programs/plan.h"

namespace {

using statecut::bench::PlannedMove;

constexpr std::size_t kBuffer = std::size_t{1} << 20;  // larger moves go in pieces

bool move(int file, const PlannedMove& move, char* buffer) {
  for (std::uint64_t done = 0; done < move.bytes;) {
    const std::size_t bytes = std::min<std::uint64_t>(kBuffer, move.bytes - done);
    const auto at = static_cast<off_t>(move.at + done);
    const ssize_t moved =
        move.write != 0 ? pwrite(file, buffer, bytes, at) : pread(file, buffer, bytes, at);
    if (moved <= 0) return false;
    done += static_cast<std::uint64_t>(moved);
  }
  return true;
}

std::vector<PlannedMove> readPlan(const char* path) {
  std::vector<PlannedMove> plan;
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  struct stat status {};
  if (file < 0 || fstat(file, &status) != 0) return plan;
  plan.resize(static_cast<std::size_t>(status.st_size) / sizeof(PlannedMove));
  const std::size_t bytes = plan.size() * sizeof(PlannedMove);
  if (read(file, plan.data(), bytes) != static_cast<ssize_t>(bytes)) plan.clear();
  close(file);
  return plan;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const std::vector<PlannedMove> plan = readPlan(argv[1]);
  std::vector<int> flags(static_cast<std::size_t>(argc - 2), O_RDONLY);
  for (const PlannedMove& step : plan) {
    if (step.file >= flags.size()) return 2;
    if (step.write != 0) flags[step.file] = O_WRONLY | O_CREAT | O_TRUNC;
  }
  std::vector<int> files;
  for (std::size_t i = 0; i < flags.size(); ++i)
    files.push_back(open(argv[i + 2], flags[i] | O_CLOEXEC, 0666));
  std::vector<char> buffer(kBuffer);
  for (const PlannedMove& step : plan)
    if (!move(files[step.file], step, buffer.data())) return 1;
  for (const int file : files)
    if (close(file) != 0) return 1;
  return plan.empty() ? 1 : 0;
}
