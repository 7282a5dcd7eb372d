#include "draw/sources.h"

#include "diff/partitions.h"
#include "draw/kinds.h"
#include "reader/database.h"

namespace statecut::draw {

namespace {

using diff::Release;

// A partition of a ZIP code or a city that leads out of the range file; empty: none does. Those of
// a cut were measured by their neighbours.
std::string strayPartition(const Release& release) {
  const diff::Partitions partitions(release);
  const std::uint64_t end = release.rangeBytes().size();
  const auto strays = [&](const std::optional<diff::Partition>& partition) {
    return partition && (partition->rba > end || partition->bytes > end - partition->rba);
  };
  for (std::uint32_t zip = 0; zip < format::kZipIndexEntries; ++zip) {
    const std::uint32_t key = release.zipKey(zip);
    if (key == 0) continue;
    for (const diff::Kind kind : kKinds)
      if (strays(partitions.ofZip(key, kind))) return "ZIP code " + diff::zipText(zip);
  }
  if (release.isCut()) return {};  // entries that a cut left alone lead into its source
  const std::size_t cities = release.records<CityDataRow>(format::TableId::CityData).size();
  for (std::uint32_t city = 1; city < cities; ++city)
    for (const diff::Kind kind : kKinds)
      if (strays(partitions.ofCity(city, kind))) return "city " + std::to_string(city);
  return {};
}

// Opens one pair; all that is drawn of it is checked here.
Release openPair(const std::string& ref, const std::string& rng, std::string& error) {
  Release release = Release::open(ref, rng, error);
  if (!error.empty()) return release;
  OpenOptions mapped;
  mapped.mapped = true;
  Error reason;
  if (Database::open(ref, mapped, reason) == nullptr) {
    error = reason.text;
    return release;
  }
  if (rng.empty()) return release;
  if (const std::string stray = strayPartition(release); !stray.empty())
    error = rng + ": a partition of " + stray + " lies outside the file";
  return release;
}

std::uint32_t buildStamp(const Release& release) {
  return release.ref().get(RefControlRec::buildTimeStamp);
}

}  // namespace

Sources openSources(const Options& options, std::string& error) {
  Sources sources;
  sources.database = openPair(options.ref, options.rng, error);
  if (error.empty() && !options.cut.empty()) {
    sources.cut = openPair(options.cut[0], options.cut[1], error);
    if (!error.empty()) return sources;
    if (!sources.cut->isCut())
      error = options.cut[0] + ": not a state cut";
    else if (sources.database.isCut() || buildStamp(*sources.cut) != buildStamp(sources.database))
      error = options.cut[0] + ": not a cut of " + options.ref;
  }
  if (error.empty() && !options.old.empty()) {
    const bool ranges = options.old.size() > 1;
    if (ranges && options.rng.empty()) {
      error =
          "the range file of " + options.ref + " is missing, to be compared with " + options.old[1];
      return sources;
    }
    sources.old = openPair(options.old[0], ranges ? options.old[1] : "", error);
  }
  return sources;
}

}  // namespace statecut::draw
