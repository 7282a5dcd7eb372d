#include "log/firsterror.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "log/utllgmsg.h"

namespace statecut {
namespace {

constexpr std::size_t kHead = 61;
constexpr std::size_t kTail = 63;
static_assert(kHead + 3 + kTail + 1 == sizeof ProcObj::firstErrorText);

// A text that does not fit keeps its two ends around "...".
void storeText(char (&to)[sizeof ProcObj::firstErrorText], const char* text) {
  const std::size_t length = std::strlen(text);
  if (length < sizeof to) {
    std::memcpy(to, text, length + 1);
    return;
  }
  std::memcpy(to, text, kHead);
  std::memcpy(to + kHead, "...", 3);
  std::memcpy(to + kHead + 3, text + length - kTail, kTail + 1);
}

void copyToCaller(const ProcObj& proc, CallerErrorRecord* to) {
  const std::int32_t pad = proc.padFlag;
  UtlLogCopyPad(to->text, proc.firstErrorText, sizeof to->text, pad, ' ');
  UtlLogCopyPad(to->severity, proc.firstErrorSeverity, sizeof to->severity, pad, ' ');
  UtlLogCopyPad(to->source, proc.firstErrorSource, sizeof to->source, pad, ' ');
  if (pad != 0) to->spare = ' ';
  to->messageNumber = proc.firstErrorMessage;
  to->reasonCode = proc.firstErrorReason;
}

}  // namespace

void rememberFirstError(ProcObj* proc, const char* source, std::int32_t severity,
                        std::uint32_t reason, std::int32_t number, const char* text) {
  if (proc->firstErrorMessage != 0 || severity > kError) return;
  storeText(proc->firstErrorText, text);
  const char first = proc->firstErrorSeverity[0];
  // Deliberate: the severity stays when a later error takes the place of one with message number 0;
  // applications have always got the first.
  if (first != '1' && first != '2') {
    char decimal[12];
    std::snprintf(decimal, sizeof decimal, "%d", severity);
    UtlLogCopyPad(proc->firstErrorSeverity, decimal, sizeof proc->firstErrorSeverity, 0, '\0');
  }
  UtlLogCopyPad(proc->firstErrorSource, source, sizeof proc->firstErrorSource, 0, '\0');
  proc->firstErrorMessage = static_cast<std::uint16_t>(number);
  proc->firstErrorReason = reason;
  if (proc->callerError != nullptr) copyToCaller(*proc, proc->callerError);
}

void UtlLogCopyPad(char* to, const char* from, std::int32_t width, std::int32_t padSwitch,
                   char padCharacter) {
  if (to == nullptr || from == nullptr || width < 1 || width > 255) return;
  const auto size = static_cast<std::size_t>(width);
  const std::size_t copied = ::strnlen(from, size);
  std::memcpy(to, from, copied);
  if (padSwitch != 0) {
    std::memset(to + copied, padCharacter, size - copied);
  } else {
    to[std::min(copied, size - 1)] = '\0';
  }
}

}  // namespace statecut
