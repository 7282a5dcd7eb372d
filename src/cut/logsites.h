#pragma once
// The places of the cut's log records, and the forms of record that it writes there.

#include <cstdint>

#include "dbfiles/dbaccess.h"
#include "log/utllgmsg.h"

namespace statecut {

inline constexpr char kCutstate[] = "cutstate";  // source name in log records

// Deliberate: these lines stay as they are wherever the code stands, and some name dbaccess though
// the step is the cut's; operators' filters match on them.
namespace logsite {

inline constexpr LogSite kNewCityNames{kDbaccess, 100};
inline constexpr LogSite kNewCityNamesFailed{kDbaccess, 106};
inline constexpr LogSite kNewCityNamesByState{kDbaccess, 115};
inline constexpr LogSite kNewCityNamesByStateFailed{kDbaccess, 121};
inline constexpr LogSite kNewCityPhonetics{kDbaccess, 130};
inline constexpr LogSite kNewCityPhoneticsFailed{kDbaccess, 136};
inline constexpr LogSite kZipCodeIndex{kDbaccess, 225};
inline constexpr LogSite kZipCodeData{kDbaccess, 254};
inline constexpr LogSite kCityData{kDbaccess, 284};
inline constexpr LogSite kCityMultiZipRbas{kDbaccess, 316};
inline constexpr LogSite kFinMultiZipRbas{kDbaccess, 337};
inline constexpr LogSite kNewZipIndex{kDbaccess, 814};
inline constexpr LogSite kNewZipIndexFailed{kDbaccess, 819};

inline constexpr LogSite kShortSizeBadKind{kCutstate, 125};
inline constexpr LogSite kShortSizeNotFound{kCutstate, 136};
inline constexpr LogSite kLongSizeBadKind{kCutstate, 179};
inline constexpr LogSite kLongSizeNotFound{kCutstate, 191};
inline constexpr LogSite kMultiZipKeysFailed{kCutstate, 571};
inline constexpr LogSite kBuildMultiZipBadKey{kCutstate, 668};
inline constexpr LogSite kUpdateMultiZipBadKey{kCutstate, 809};
inline constexpr LogSite kCityKeysFailed{kCutstate, 871};
inline constexpr LogSite kCityNameMapFailed{kCutstate, 1150};
inline constexpr LogSite kCityPhNameMapFailed{kCutstate, 1165};
inline constexpr LogSite kCitiesMissing{kCutstate, 1288};
inline constexpr LogSite kNoPartitionBytes{kCutstate, 1531};
inline constexpr LogSite kSfhBadKey{kCutstate, 1581};
inline constexpr LogSite kPobBadKey{kCutstate, 1611};
inline constexpr LogSite kRrBadKey{kCutstate, 1642};
inline constexpr LogSite kNoZips{kCutstate, 1758};
inline constexpr LogSite kOpenOutput{kCutstate, 1877};
inline constexpr LogSite kTimeStamps{kCutstate, 1907};

}  // namespace logsite

// "<name> - required - <size> bytes"; the size is shown as a signed number of its low 32 bits.
void logRequired(LogSite site, const char* title, const char* name, std::uint64_t bytes);
void logNoMemory(LogSite site, const char* name);
void logText(LogSite site, std::int32_t severity, const char* title, const char* text);
void logNumber(LogSite site, const char* title, const char* text, std::uint32_t number);

// An ERR record "path;text".
void logPathError(LogSite site, const char* title, std::uint32_t reason, const char* path,
                  const char* text);

}  // namespace statecut
