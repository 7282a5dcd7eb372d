#include "cut/progress.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace statecut {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kInterval{100};

const char* stepName = nullptr;  // null = no line is wanted
std::uint64_t stepBytes = 0;
std::uint64_t doneBytes = 0;
Clock::time_point lastDrawn;
bool drawn = false;

void draw() {
  const std::uint64_t percent =
      stepBytes == 0 ? 100 : std::min<std::uint64_t>(doneBytes * 100 / stepBytes, 100);
  std::fprintf(stderr, "\r%s: %llu%%, %llu of %llu bytes\033[K", stepName,
               static_cast<unsigned long long>(percent), static_cast<unsigned long long>(doneBytes),
               static_cast<unsigned long long>(stepBytes));
  std::fflush(stderr);
  drawn = true;
}

}  // namespace

bool progressWanted() {
  static const bool terminal = ::isatty(STDERR_FILENO) == 1;
  return terminal;
}

void progressStep(const char* name, std::uint64_t total) {
  stepName = name;
  stepBytes = total;
  doneBytes = 0;
}

void progressAdd(std::uint64_t bytes) {
  if (stepName == nullptr) return;
  doneBytes += bytes;
  const Clock::time_point now = Clock::now();
  if (drawn && now - lastDrawn < kInterval) return;
  lastDrawn = now;
  draw();
}

void progressClear() {
  stepName = nullptr;
  if (!drawn) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  drawn = false;
}

}  // namespace statecut
