#include "draw/tones.h"

#include <algorithm>
#include <string>
#include <utility>

#include "draw/names.h"

namespace statecut::draw {

namespace {

constexpr std::size_t kLevels = 5;

// To two digits, upwards.
std::uint64_t rounded(std::uint64_t bytes) {
  std::uint64_t unit = 1;
  while (bytes / unit >= 100) unit *= 10;
  return (bytes + unit - 1) / unit * unit;
}

// The most bytes of each level but the last: about a fifth of the ZIP codes that have any is in
// each.
std::vector<std::uint64_t> levelBounds(const Figures& figures) {
  std::vector<std::uint64_t> sizes;
  for (const Zip& zip : figures.zips)
    if (zip.allBytes() != 0) sizes.push_back(zip.allBytes());
  std::sort(sizes.begin(), sizes.end());
  std::vector<std::uint64_t> bounds;
  for (std::size_t level = 1; level < kLevels && !sizes.empty(); ++level) {
    const std::uint64_t bound = rounded(sizes[level * (sizes.size() - 1) / kLevels]);
    if (bounds.empty() || bound > bounds.back()) bounds.push_back(bound);
  }
  // A last level of no ZIP code tells nothing.
  while (!bounds.empty() && bounds.back() >= sizes.back()) bounds.pop_back();
  return bounds;
}

void setTone(Mode& mode, std::size_t tone) {
  mode.ofZip.push_back(static_cast<std::uint8_t>(tone));
  ++mode.tones[tone].zips;
}

Mode byBytes(const Figures& figures) {
  Mode mode{"bytes", "Bytes of each ZIP code", {{"none", "no partition"}}, {}};
  const std::vector<std::uint64_t> bounds = levelBounds(figures);
  const auto addLevel = [&mode](std::size_t colour, std::string text) {
    mode.tones.push_back({"level" + std::to_string(colour), std::move(text)});
  };
  // Few levels are spread over the colours.
  for (std::size_t i = 0; i < bounds.size(); ++i)
    addLevel(i * (kLevels - 1) / bounds.size(), "up to " + bytesText(bounds[i]));
  addLevel(kLevels - 1, bounds.empty() ? "any bytes" : "more");
  for (const Zip& zip : figures.zips) {
    const std::uint64_t bytes = zip.allBytes();
    if (zip.dropped)
      mode.ofZip.push_back(kNoTone);
    else if (bytes == 0)
      setTone(mode, 0);
    else
      setTone(mode,
              1 + static_cast<std::size_t>(std::lower_bound(bounds.begin(), bounds.end(), bytes) -
                                           bounds.begin()));
  }
  return mode;
}

Mode byCut(const Figures& figures) {
  Mode mode{"cut", "Kept in the cut", {{"left", "not in the cut"}, {"kept", "in the cut"}}, {}};
  for (const Zip& zip : figures.zips) {
    if (zip.dropped)
      mode.ofZip.push_back(kNoTone);
    else
      setTone(mode, zip.kept ? 1 : 0);
  }
  return mode;
}

Mode byChanges(const Figures& figures) {
  Mode mode{"changes",
            "Changes since the older release",
            {{"same", "as before"},
             {"changed", "another partition"},
             {"moved", "moved to another city or state"},
             {"added", "added"},
             {"dropped", "dropped"}},
            {}};
  for (const Zip& zip : figures.zips)
    setTone(mode, zip.dropped ? 4 : zip.added ? 3 : zip.moved ? 2 : zip.changed ? 1 : 0);
  return mode;
}

Mode plain(const Figures& figures) {
  Mode mode{"plain", "ZIP codes", {{"level3", "a ZIP code"}}, {}};
  for (const Zip& zip : figures.zips) {
    if (zip.dropped)
      mode.ofZip.push_back(kNoTone);
    else
      setTone(mode, 0);
  }
  return mode;
}

}  // namespace

std::vector<Mode> modesOf(const Figures& figures) {
  std::vector<Mode> modes;
  if (figures.hasCut) modes.push_back(byCut(figures));
  if (figures.hasChanges) modes.push_back(byChanges(figures));
  modes.push_back(figures.bytesKnown ? byBytes(figures) : plain(figures));
  return modes;
}

}  // namespace statecut::draw
