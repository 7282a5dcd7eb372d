#pragma once
// A system that can be told to fail. A test program that uses it gets it in place of the core's own
// file and memory calls: its definitions are linked first, so those of the core are not pulled in.

#include <cstddef>
#include <cstdint>
#include <string>

namespace statecut::test {

enum class FaultKind : std::uint8_t {
  kOpen,
  kSeek,      // asking whether a file can seek, too
  kRead,      // both kinds of read
  kPresent,   // of what is in memory
  kWrite,     // of the caller's bytes
  kFlush,     // of what a buffer held
  kReserve,   // room on the disk; what there was to take is taken all the same
  kTruncate,  // giving it back
  kClose,     // closes all the same
  kAllocate,  // a table, a cache: null
  kMap,       // pages for many tables or for the window of a copy: null
  kAdvise,    // large pages
  kNew,       // operator new: std::bad_alloc
};
inline constexpr std::size_t kFaultKinds = 13;

enum class FaultMode : std::uint8_t {
  kOnce,          // the Nth call fails
  kForGood,       // and every call behind it
  kShort,         // the Nth read or write moves fewer bytes than it was asked to, without an error
  kShortForGood,  // and every one behind it
  kNothing,       // the Nth read tells the end of the file, the Nth write that no byte was taken
  kNothingForGood,  // and every one behind it
};

struct FaultPlan {
  FaultKind kind = FaultKind::kOpen;
  std::uint32_t n = 0;  // from 1; 0: no fault at all
  FaultMode mode = FaultMode::kOnce;
  int error = 0;  // errno; unused for short ones, for those of nothing and for kNew
};

// "read:3:once:EIO", as STATECUT_FAULT takes it. Modes: once, good, short, shortgood,
// nothing, nothinggood.
std::string described(const FaultPlan& plan);
bool parseFault(const std::string& text, FaultPlan& plan);

// From armFaults to disarmFaults calls are counted and the plan holds. What happened stays
// readable until the next armFaults; it is kept in memory that forked children share.
void armFaults(const FaultPlan& plan);
void disarmFaults();
void allowMaps(bool allowed);  // true at first; false: kMap fails, and is not counted
std::uint32_t callsOf(FaultKind kind);
std::uint32_t faultsFired();
std::size_t bytesOfBlock(const void* block);  // as asked for, of a block that was not released

// Ends the process by a signal at the Nth write of any kind.
enum class KillMoment : std::uint8_t { kBefore, kHalfway, kAfter };
void armKill(std::uint32_t n, KillMoment moment, int signal);
std::uint32_t writesSeen();  // since the last armKill

}  // namespace statecut::test
