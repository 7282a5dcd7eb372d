#include "run/statelist.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "base/cmdline.h"
#include "base/stream.h"
#include "run/process.h"
#include "run/statetable.h"

namespace statecut {
namespace {

constexpr std::size_t kLineSize = 82;  // 81 characters and the terminator

bool standardInputClosed = false;

// The next character of the file, or of standard input when it is null; EOF at its end.
int nextCharacter(Stream* file) {
  if (file == nullptr) return stdinClosed() ? EOF : std::getchar();
  unsigned char c = 0;
  return streamRead(file, &c, 1) == 1 ? c : EOF;
}

// Reads one line, keeps what fits and drops the rest. False at the end of input.
bool readLine(Stream* file, char (&line)[kLineSize]) {
  std::size_t length = 0;
  bool any = false;
  int c = 0;
  while (c != '\n' && (c = nextCharacter(file)) != EOF) {
    any = true;
    if (length < sizeof line - 1) line[length++] = static_cast<char>(c);
  }
  line[length] = '\0';
  return any;
}

void append(const char* abbreviation) {
  std::memcpy(cmdLine.states[cmdLine.stateCount++], abbreviation, 3);
}

// 0, or 1 when the line is no state or the list is full.
std::int32_t takeLine(char (&line)[kLineSize]) {
  line[2] = '\0';
  for (int i = 0; i < 2; ++i) {
    line[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(line[i])));
  }
  if (verifyState(line) != 0 || cmdLine.stateCount >= kMaxStates) {
    std::fprintf(stderr, "bad state: %s\n", line);
    return 1;
  }
  append(line);
  return 0;
}

std::int32_t readLines(Stream* file) {
  std::int32_t status = 0;
  char line[kLineSize];
  while (readLine(file, line) && line[0] != '\n') {
    if (takeLine(line) != 0) status = 1;
  }
  return status;
}

// An empty list is the list of all states. No row of the table of states is marked as selected
// then, as nobody named it.
void takeAllStates() {
  std::fputs("No input specified.\n  The entire database is being copied:\n\n", stderr);
  for (const auto& abbreviation : abvstates) {
    std::fprintf(stderr, " %s\n", abbreviation);
    append(abbreviation);
  }
}

// Closes standard input but keeps its descriptor taken.
void closeStandardInput() {
  if (standardInputClosed) return;
  standardInputClosed = true;
  std::fclose(stdin);
  guardStandardDescriptors();
}

std::int32_t stateFileFailure(const char* name) {
  std::fprintf(stderr, "Could not open state file: %s\n", name);
  return kNoStateFile;
}

}  // namespace

std::int32_t readStateList() {
  const char* name = cmdLine.stateFile;
  Stream* file = nullptr;
  if (name == nullptr) {
    std::fputs("State Abbreviations read from standard input.\n", stdout);
  } else {
    file = streamOpen(name, "rb");
    if (file == nullptr) return stateFileFailure(name);
    std::fprintf(stderr, "Opened state file: %s\n", name);
  }
  const std::int32_t status = readLines(file);
  // What opens and cannot be read (a folder), or loses its end, must not pass for a shorter list.
  if (file == nullptr && std::ferror(stdin) != 0) {
    std::fputs("Could not read states from standard input.\n", stderr);
    return kNoStateFile;
  }
  if (file != nullptr && (streamError(file) || streamShrank(file))) {
    streamClose(file);
    return stateFileFailure(name);
  }
  if (cmdLine.stateCount == 0) takeAllStates();
  sortStates();
  if (file == nullptr) {
    closeStandardInput();
  } else {
    streamClose(file);
  }
  return status;
}

void sortStates() {
  auto& list = cmdLine.states;
  const std::int32_t count = std::min(cmdLine.stateCount, kMaxStates);
  for (std::int32_t i = 1; i < count; ++i) {
    for (std::int32_t j = i; j > 0 && std::memcmp(list[j], list[j - 1], 2) < 0; --j) {
      std::swap_ranges(std::begin(list[j]), std::end(list[j]), std::begin(list[j - 1]));
    }
  }
}

bool stdinClosed() { return standardInputClosed; }

}  // namespace statecut
