#include "support/faultysystem.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sstream>
#include <utility>

#include "base/system.h"

namespace statecut::test {
namespace {

struct Shared {
  std::array<std::uint32_t, kFaultKinds> calls;
  std::uint32_t fired;
  std::uint32_t writes;
};

struct KillPlan {
  std::uint32_t n = 0;  // 0: none
  KillMoment moment = KillMoment::kBefore;
  int signal = 0;
};

constexpr std::size_t kBlockHeader = alignof(std::max_align_t);  // holds the size

bool armed = false;
bool maps = true;
FaultPlan plan;
KillPlan kill;

Shared& mappedShared() {
  void* const memory =
      ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) std::abort();
  return *static_cast<Shared*>(memory);
}

Shared& shared() {
  static Shared& memory = mappedShared();
  return memory;
}

// Before any child is forked.
[[maybe_unused]] const Shared& mappedEarly = shared();

bool isShort() { return plan.mode == FaultMode::kShort || plan.mode == FaultMode::kShortForGood; }
bool isNothing() {
  return plan.mode == FaultMode::kNothing || plan.mode == FaultMode::kNothingForGood;
}

// Counts a call; true when the plan is for it.
bool hit(FaultKind kind) {
  if (!armed) return false;
  const std::uint32_t call = ++shared().calls[static_cast<std::size_t>(kind)];
  if (plan.n == 0 || plan.kind != kind || call < plan.n) return false;
  const bool once = plan.mode == FaultMode::kOnce || plan.mode == FaultMode::kShort ||
                    plan.mode == FaultMode::kNothing;
  return !once || call == plan.n;
}

bool fails(FaultKind kind) {
  if (!hit(kind)) return false;
  ++shared().fired;
  errno = plan.error;
  return true;
}

// Calls `move(count)` or lets it fail, move half of the bytes or none.
template <typename Move>
std::int64_t moved(FaultKind kind, std::size_t count, Move&& move) {
  if (!hit(kind)) return move(count);
  if (!isShort()) {
    ++shared().fired;
    errno = plan.error;
    return isNothing() ? 0 : -1;
  }
  if (count < 2) return move(count);
  ++shared().fired;
  return move(count / 2);
}

[[noreturn]] void die() {
  ::raise(kill.signal);
  std::abort();
}

std::int64_t written(FaultKind kind, int fd, const void* from, std::size_t count) {
  const bool last = ++shared().writes == kill.n;
  if (last && kill.moment == KillMoment::kBefore) die();
  const std::size_t part = last && kill.moment == KillMoment::kHalfway ? count / 2 : count;
  const std::int64_t put =
      moved(kind, part, [&](std::size_t bytes) { return ::write(fd, from, bytes); });
  if (last) die();
  return put;
}

constexpr std::array<const char*, kFaultKinds> kKindNames = {
    "open",     "seek",  "read",     "present", "write",  "flush", "reserve",
    "truncate", "close", "allocate", "map",     "advise", "new"};
constexpr std::array<const char*, 6> kModeNames = {"once",      "good",    "short",
                                                   "shortgood", "nothing", "nothinggood"};
constexpr std::array<std::pair<const char*, int>, 11> kErrors = {{{"0", 0},
                                                                  {"EAGAIN", EAGAIN},
                                                                  {"EOPNOTSUPP", EOPNOTSUPP},
                                                                  {"EIO", EIO},
                                                                  {"ENOSPC", ENOSPC},
                                                                  {"EFBIG", EFBIG},
                                                                  {"ENOMEM", ENOMEM},
                                                                  {"ENOENT", ENOENT},
                                                                  {"EACCES", EACCES},
                                                                  {"EMFILE", EMFILE},
                                                                  {"EINTR", EINTR}}};

}  // namespace

std::string described(const FaultPlan& of) {
  if (of.n == 0) return "none";
  const auto* const error = std::find_if(
      kErrors.begin(), kErrors.end(), [&](const auto& entry) { return entry.second == of.error; });
  return std::string(kKindNames[static_cast<std::size_t>(of.kind)]) + ":" + std::to_string(of.n) +
         ":" + kModeNames[static_cast<std::size_t>(of.mode)] + ":" +
         (error == kErrors.end() ? std::to_string(of.error) : error->first);
}

bool parseFault(const std::string& text, FaultPlan& to) {
  std::istringstream in(text);
  std::string kind, number, mode, error;
  if (!std::getline(in, kind, ':') || !std::getline(in, number, ':') ||
      !std::getline(in, mode, ':') || !std::getline(in, error))
    return false;
  const auto* const kindAt = std::find(kKindNames.begin(), kKindNames.end(), kind);
  const auto* const modeAt = std::find(kModeNames.begin(), kModeNames.end(), mode);
  const auto* const errorAt = std::find_if(kErrors.begin(), kErrors.end(),
                                           [&](const auto& entry) { return error == entry.first; });
  if (kindAt == kKindNames.end() || modeAt == kModeNames.end() || errorAt == kErrors.end())
    return false;
  to = {static_cast<FaultKind>(kindAt - kKindNames.begin()),
        static_cast<std::uint32_t>(std::strtoul(number.c_str(), nullptr, 10)),
        static_cast<FaultMode>(modeAt - kModeNames.begin()), errorAt->second};
  return to.n != 0;
}

void armFaults(const FaultPlan& with) {
  plan = with;
  shared().calls = {};
  shared().fired = 0;
  armed = true;
}

void allowMaps(bool allowed) { maps = allowed; }
void disarmFaults() { armed = false; }
std::uint32_t callsOf(FaultKind kind) { return shared().calls[static_cast<std::size_t>(kind)]; }
std::uint32_t faultsFired() { return shared().fired; }

void armKill(std::uint32_t n, KillMoment moment, int signal) {
  kill = {n, moment, signal};
  shared().writes = 0;
}

std::size_t bytesOfBlock(const void* block) {
  std::size_t bytes = 0;
  std::memcpy(&bytes, static_cast<const unsigned char*>(block) - kBlockHeader, sizeof bytes);
  return bytes;
}

std::uint32_t writesSeen() { return shared().writes; }

}  // namespace statecut::test

namespace statecut::sys {

using test::FaultKind;

int openFile(const char* path, int flags) {
  return test::fails(FaultKind::kOpen) ? -1 : ::open(path, flags, 0666);
}

int seekFile(int fd, std::uint64_t offset) {
  if (test::fails(FaultKind::kSeek)) return -1;
  return ::lseek(fd, static_cast<off_t>(offset), SEEK_SET) < 0 ? -1 : 0;
}

bool isSeekable(int fd) { return !test::fails(FaultKind::kSeek) && ::lseek(fd, 0, SEEK_CUR) >= 0; }

std::int64_t readNext(int fd, void* to, std::size_t count) {
  return test::moved(FaultKind::kRead, count,
                     [&](std::size_t bytes) { return ::read(fd, to, bytes); });
}

std::int64_t readAt(int fd, void* to, std::size_t count, std::uint64_t offset) {
  return test::moved(FaultKind::kRead, count, [&](std::size_t bytes) {
    return ::pread(fd, to, bytes, static_cast<off_t>(offset));
  });
}

// All is present.
std::int64_t readPresent(int fd, void* to, std::size_t count, std::uint64_t offset) {
  return test::moved(FaultKind::kPresent, count, [&](std::size_t bytes) {
    return ::pread(fd, to, bytes, static_cast<off_t>(offset));
  });
}

std::int64_t writeNext(int fd, const void* from, std::size_t count) {
  return test::written(FaultKind::kWrite, fd, from, count);
}

std::int64_t writeFlushed(int fd, const void* from, std::size_t count) {
  return test::written(FaultKind::kFlush, fd, from, count);
}

void willNeed(int, std::uint64_t, std::uint64_t) {}

std::uint64_t fileBytes(int fd) {
  struct stat status {};
  if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  return static_cast<std::uint64_t>(status.st_size);
}

int reserveBytes(int fd, std::uint64_t offset, std::uint64_t count) {
  const bool failed = test::fails(FaultKind::kReserve);
  const int error = errno;
  const int result =
      ::fallocate(fd, FALLOC_FL_KEEP_SIZE, static_cast<off_t>(offset), static_cast<off_t>(count));
  if (!failed) return result;
  errno = error;
  return -1;
}

int truncateFile(int fd, std::uint64_t bytes) {
  return test::fails(FaultKind::kTruncate) ? -1 : ::ftruncate(fd, static_cast<off_t>(bytes));
}

int closeFile(int fd) {
  const bool failed = test::fails(FaultKind::kClose);
  const int error = errno;
  const int result = ::close(fd);
  if (!failed) return result;
  errno = error;
  return -1;
}

void* allocateZeroed(std::size_t bytes) {
  if (test::fails(FaultKind::kAllocate)) return nullptr;
  auto* const block = static_cast<unsigned char*>(std::calloc(bytes + test::kBlockHeader, 1));
  if (block == nullptr) return nullptr;
  std::memcpy(block, &bytes, sizeof bytes);
  return block + test::kBlockHeader;
}

void release(void* block) {
  if (block != nullptr) std::free(static_cast<unsigned char*>(block) - test::kBlockHeader);
}

void* mapZeroed(std::size_t bytes) {
  return !test::maps || test::fails(FaultKind::kMap) ? nullptr : std::calloc(bytes, 1);
}

void unmapZeroed(void* block, std::size_t) { std::free(block); }

int adviseLargePages(void*, std::size_t) { return test::fails(FaultKind::kAdvise) ? -1 : 0; }

// The file's bytes as they are now.
void* mapFile(int fd, std::size_t bytes) {
  void* const block = allocateZeroed(bytes);
  if (block != nullptr) static_cast<void>(::pread(fd, block, bytes, 0));
  return block;
}

void unmapFile(void* block, std::size_t) { release(block); }

}  // namespace statecut::sys

// The memory of the standard library's own objects.

namespace {

void* allocated(std::size_t bytes) {
  if (statecut::test::fails(statecut::test::FaultKind::kNew)) return nullptr;
  return std::malloc(bytes == 0 ? 1 : bytes);
}

void* allocatedOrThrown(std::size_t bytes) {
  void* const block = allocated(bytes);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

void* operator new(std::size_t bytes) { return allocatedOrThrown(bytes); }
void* operator new[](std::size_t bytes) { return allocatedOrThrown(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return allocated(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return allocated(bytes); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }
