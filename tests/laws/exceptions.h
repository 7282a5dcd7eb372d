#pragma once
// What the format or the cut prescribes against a law. Each of them must occur.

#include <array>
#include <cstddef>
#include <cstdint>

namespace statecut::test {

enum class Exception : std::uint8_t {
  kUnreachableZip,
  kRecordZero,
  kBlankRecord,
  kDroppedByKey,
  kCityWithoutNames,
  kNameOfDroppedState,
  kUnreachedPartition,
  kPartitionWithoutSize,
  kRepeatedState,
  kBehindTheCarried,
  kSharedBeginning,
  kCutAgain,
  kCount_
};
inline constexpr std::size_t kExceptions = static_cast<std::size_t>(Exception::kCount_);

inline constexpr std::array<const char*, kExceptions> kExceptionReasons = {
    "all states drop a ZIP code of an area that no list can name",
    "record 0 is never in a cut: its key means that there is no such ZIP code",
    "record 0 of the names and of the phonetic keys is blank in a cut, whatever the source has",
    "the record of a dropped ZIP code is carried, and found by its key",
    "a city that no name leads to loses its names, with all states too",
    "a kept city loses a name of a state that is dropped",
    "a shared partition that the cut does not reach is not copied, and its RBA stays",
    "a shared partition without a size is not copied, and its RBA stays; so is SFH key 0, which "
    "the "
    "padding of the sizes table stands for",
    "a state that is given again has its names by state again, and the last ones fall off",
    "a record, name or list that runs on behind what a cut carries of its table",
    "a beginning that several names share: which one is met first depends on their number",
    "a database without ZIP codes has no Zip Bytes table to miss, and is cut again, without the "
    "shared partitions, whose sizes a cut does not carry either",
};

// How often each occurred in this process.
std::array<std::size_t, kExceptions>& exceptionTally();

inline void occurred(Exception exception) {
  ++exceptionTally()[static_cast<std::size_t>(exception)];
}

}  // namespace statecut::test
