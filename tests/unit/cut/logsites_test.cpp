#include "cut/logsites.h"

#include <gtest/gtest.h>

namespace {

using namespace statecut;

TEST(LogSites, LinesArePartOfTheLogFormat) {
  const struct {
    LogSite site;
    const char* source;
    std::int32_t line;
  } pinned[] = {{logsite::kNewCityNames, "dbaccess", 100},
                {logsite::kNewCityNamesFailed, "dbaccess", 106},
                {logsite::kNewCityNamesByState, "dbaccess", 115},
                {logsite::kNewCityNamesByStateFailed, "dbaccess", 121},
                {logsite::kNewCityPhonetics, "dbaccess", 130},
                {logsite::kNewCityPhoneticsFailed, "dbaccess", 136},
                {logsite::kZipCodeIndex, "dbaccess", 225},
                {logsite::kZipCodeData, "dbaccess", 254},
                {logsite::kCityData, "dbaccess", 284},
                {logsite::kCityMultiZipRbas, "dbaccess", 316},
                {logsite::kFinMultiZipRbas, "dbaccess", 337},
                {logsite::kNewZipIndex, "dbaccess", 814},
                {logsite::kNewZipIndexFailed, "dbaccess", 819},
                {logsite::kShortSizeBadKind, "cutstate", 125},
                {logsite::kShortSizeNotFound, "cutstate", 136},
                {logsite::kLongSizeBadKind, "cutstate", 179},
                {logsite::kLongSizeNotFound, "cutstate", 191},
                {logsite::kMultiZipKeysFailed, "cutstate", 571},
                {logsite::kBuildMultiZipBadKey, "cutstate", 668},
                {logsite::kUpdateMultiZipBadKey, "cutstate", 809},
                {logsite::kCityKeysFailed, "cutstate", 871},
                {logsite::kCityNameMapFailed, "cutstate", 1150},
                {logsite::kCityPhNameMapFailed, "cutstate", 1165},
                {logsite::kCitiesMissing, "cutstate", 1288},
                {logsite::kNoPartitionBytes, "cutstate", 1531},
                {logsite::kSfhBadKey, "cutstate", 1581},
                {logsite::kPobBadKey, "cutstate", 1611},
                {logsite::kRrBadKey, "cutstate", 1642},
                {logsite::kNoZips, "cutstate", 1758},
                {logsite::kOpenOutput, "cutstate", 1877},
                {logsite::kTimeStamps, "cutstate", 1907}};
  for (const auto& pin : pinned) {
    EXPECT_STREQ(pin.site.source, pin.source) << pin.line;
    EXPECT_EQ(pin.site.line, pin.line);
  }
}

}  // namespace
