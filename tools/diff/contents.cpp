// Partitions of two releases beside each other.

#include <algorithm>
#include <cstring>
#include <map>
#include <tuple>

#include "diff/partitions.h"
#include "tables/rows.h"

namespace statecut::diff {

namespace {

using MaybePartition = std::optional<Partition>;

// The bytes of a partition that the range file has.
std::span<const unsigned char> contentOf(const Release& release, const Partition& partition) {
  const auto file = release.rangeBytes();
  if (partition.rba >= file.size()) return {};
  return file.subspan(partition.rba,
                      std::min<std::uint64_t>(partition.bytes, file.size() - partition.rba));
}

class Contents {
 public:
  Contents(const Comparison& comparison, Changes& changes)
      : comparison_(comparison),
        changes_(changes),
        before_(comparison.before),
        after_(comparison.after) {}

  void compareZips() {
    for (std::uint32_t zip = 0; zip < format::kZipIndexEntries; ++zip) {
      const std::uint32_t was = comparison_.before.zipKey(zip);
      const std::uint32_t is = comparison_.after.zipKey(zip);
      if (was == 0 || is == 0) continue;
      const std::string_view state = comparison_.after.stateOf(is, comparison_.byCity);
      if (!comparison_.wantsZip(comparison_.before, was) &&
          !comparison_.wantsZip(comparison_.after, is))
        continue;
      const auto addZip = [&](PartitionChange& change) { change.zips.push_back(zip); };
      for (const Kind kind : {Kind::Sfh, Kind::Pob, Kind::Rr})
        compare(kind, false, state, before_.ofZip(was, kind), after_.ofZip(is, kind), addZip);
      compare(Kind::Sfh, true, state, before_.ofZipArea(was), after_.ofZipArea(is), addZip);
    }
  }

  void compareCities() {
    const auto keys = keysByName(comparison_.after, false);
    for (const auto& [name, was] : keysByName(comparison_.before, true)) {
      const auto found = keys.find(name);
      if (found == keys.end()) continue;
      // Cities of one name and state stand in the order of their keys.
      for (std::size_t i = 0; i < std::min(was.size(), found->second.size()); ++i)
        compareCity(name, was[i], found->second[i]);
    }
  }

 private:
  using Keys = std::map<std::string_view, std::vector<std::uint32_t>>;
  using Place = std::tuple<Kind, bool, std::int64_t, std::int64_t>;  // RBAs, -1 = no partition

  Keys keysByName(const Release& release, bool isBefore) const {
    Keys keys;
    const std::size_t count = release.records<CityDataRow>(TableId::CityData).size();
    for (std::uint32_t key = 1; key < count; ++key) {
      const std::string_view name = release.cityName(key);
      if (!name.empty() && comparison_.wants(name.substr(0, 2)))
        keys[isBefore ? comparison_.nameAfter(name) : name].push_back(key);
    }
    return keys;
  }

  void compareCity(std::string_view name, std::uint32_t was, std::uint32_t is) {
    // The finance area may share the city's own partition.
    const auto addCity = [&](PartitionChange& change) {
      if (change.cities.empty() || change.cities.back() != name) change.cities.push_back(name);
    };
    const std::string_view state = name.substr(0, 2);
    for (const Kind kind : {Kind::Sfh, Kind::Pob, Kind::Rr})
      compare(kind, true, state, before_.ofCity(was, kind), after_.ofCity(is, kind), addCity);
    compare(Kind::Sfh, true, state, before_.ofCityArea(was), after_.ofCityArea(is), addCity);
  }

  bool same(const Partition& was, const Partition& is) {
    const auto before = contentOf(comparison_.before, was);
    const auto after = contentOf(comparison_.after, is);
    // What was compared does not pile up in memory: a range file is passed over once.
    held_ += before.size() + after.size();
    if (held_ > kMostHeld) {
      comparison_.before.forgetRangePages();
      comparison_.after.forgetRangePages();
      held_ = 0;
    }
    return was.bytes == is.bytes && before.size() == after.size() &&
           (before.empty() || std::memcmp(before.data(), after.data(), before.size()) == 0);
  }

  // A shared partition is compared once, and its change told once, with all who share it.
  template <typename AddUser>
  void compare(Kind kind, bool shared, std::string_view state, const MaybePartition& was,
               const MaybePartition& is, const AddUser& addUser) {
    if (!was && !is) return;
    if (!shared) {
      if (was && is && same(*was, *is)) return;
      addUser(changes_.partitions.emplace_back(changeOf(kind, shared, state, was, is)));
      return;
    }
    const Place place{kind, shared, was ? std::int64_t{was->rba} : -1,
                      is ? std::int64_t{is->rba} : -1};
    auto [known, isNew] = known_.try_emplace(place, kSame);
    if (isNew && !(was && is && same(*was, *is))) {
      known->second = changes_.partitions.size();
      changes_.partitions.push_back(changeOf(kind, shared, state, was, is));
    }
    if (known->second != kSame) addUser(changes_.partitions[known->second]);
  }

  static PartitionChange changeOf(Kind kind, bool shared, std::string_view state,
                                  const MaybePartition& was, const MaybePartition& is) {
    PartitionChange change;
    change.change = !was ? Change::Added : !is ? Change::Dropped : Change::Changed;
    change.kind = kind;
    change.shared = shared;
    change.state = state;
    change.bytesBefore = was ? was->bytes : 0;
    change.bytesAfter = is ? is->bytes : 0;
    return change;
  }

  static constexpr std::size_t kSame = SIZE_MAX;
  static constexpr std::size_t kMostHeld = 8 << 20;

  const Comparison& comparison_;
  Changes& changes_;
  Partitions before_;
  Partitions after_;
  std::map<Place, std::size_t> known_;  // position among the changes
  std::size_t held_ = 0;                // bytes of range files that were read lately
};

}  // namespace

void comparePartitions(const Comparison& comparison, Changes& changes) {
  changes.partitionsCompared = true;
  Contents contents(comparison, changes);
  contents.compareZips();
  contents.compareCities();
}

}  // namespace statecut::diff
