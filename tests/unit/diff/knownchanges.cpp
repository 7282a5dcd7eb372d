#include "knownchanges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <set>

#include "dbbuilder/profiles.h"
#include "dbbuilder/writer.h"

namespace statecut::test {

namespace {

using namespace builder;

std::string zipText(std::uint32_t zip) {
  const std::string digits = std::to_string(zip);
  return std::string(5 - digits.size(), '0') + digits;
}

// Sorts the city names again and leads the cities to their new positions. Position 0 stays.
void sortNames(Model& model) {
  std::vector<std::uint32_t> order(model.cityNames.size());
  std::iota(order.begin(), order.end(), 0U);
  std::stable_sort(order.begin() + 1, order.end(), [&](std::uint32_t a, std::uint32_t b) {
    return std::tie(model.cityNames[a].state, model.cityNames[a].name) <
           std::tie(model.cityNames[b].state, model.cityNames[b].name);
  });
  std::vector<std::uint32_t> place(order.size());
  std::vector<CityName> sorted;
  for (std::uint32_t i = 0; i < order.size(); ++i) {
    place[order[i]] = i;
    sorted.push_back(model.cityNames[order[i]]);
  }
  model.cityNames = std::move(sorted);
  for (CityData& city : model.cityData) {
    city.nameUsps = place[city.nameUsps];
    city.nameStandard = place[city.nameStandard];
  }
}

// Takes a name away. A city that it stood for has no name left, or, for its other name, the USPS
// one.
void dropName(Model& model, std::uint32_t position) {
  model.cityNames.erase(model.cityNames.begin() + position);
  for (CityData& city : model.cityData) {
    if (city.nameStandard == position) city.nameStandard = city.nameUsps;
    for (std::uint32_t* name : {&city.nameUsps, &city.nameStandard})
      *name = *name == position ? 0 : *name > position ? *name - 1 : *name;
  }
}

class Changer {
 public:
  explicit Changer(std::uint64_t seed) : random_(seed) {
    ProfileOptions options = smallOptions();
    options.seed = seed;
    options.rangeBytes = 300000;
    auto places = smallPlaces();
    // Not all ZIP codes, so that cities of many and of few are there.
    std::erase_if(places, [&](const Place&) { return random_.percent(60); });
    pair_.before = pair_.after = makeModel(std::move(places), options);
    for (std::uint32_t key = 1; key < pair_.before.zips.size(); ++key) free_.push_back(key);
  }

  KnownPair take() {
    changeNames(&Model::streetNames, "street");
    changeNames(&Model::firmNames, "firm");
    times([&] { changeIndex(); });
    times([&] { moveZip(); });
    times([&] { changeZipPartition(); });
    times([&] { changeSharedPartition(); });
    times([&] { renameCity(); });
    times([&] { dropCity(); });
    times([&] { dropOtherName(); });
    if (random_.percent(50)) turnRound();
    std::sort(pair_.changes.begin(), pair_.changes.end());
    return std::move(pair_);
  }

 private:
  template <typename Make>
  void times(const Make& make) {
    for (std::uint32_t i = random_.below(4); i > 0; --i) make();
  }

  void tell(const std::string& line) { pair_.changes.push_back(line); }

  // A ZIP code that nothing else changes; 0: none is left.
  std::uint32_t takeZip() {
    if (free_.empty()) return 0;
    const std::size_t at = random_.below(static_cast<std::uint32_t>(free_.size()));
    const std::uint32_t key = free_[at];
    free_.erase(free_.begin() + static_cast<std::ptrdiff_t>(at));
    return key;
  }

  std::string cityName(std::uint32_t city) const {
    return pair_.before.cityNames[pair_.before.cityData[city].nameUsps].name;
  }

  std::vector<std::uint32_t> citiesOf(std::uint32_t zipKey) const {
    const ZipRecord& zip = pair_.before.zips[zipKey];
    if (zip.cityKeysCount == 1) return {zip.cityKey};
    std::vector<std::uint32_t> cities;
    for (std::uint32_t i = 0; i < zip.cityKeysCount; ++i)
      cities.push_back(pair_.before.cityKeysOfZips[zip.cityKeysIndex + i]);
    return cities;
  }

  std::string placeText(std::uint32_t zipKey) const {
    std::string text = pair_.before.zipBytes[zipKey].state;
    const char* between = " ";
    for (const std::uint32_t city : citiesOf(zipKey)) {
      text += between + cityName(city);
      between = ", ";
    }
    return text;
  }

  void changeNames(std::vector<std::string> Model::*names, const std::string& what) {
    times([&] {
      const std::string name = "ZZ NEW " + std::to_string(++number_);
      (pair_.after.*names).push_back(name);
      tell("+ " + what + " " + name);
    });
    times([&] {
      const std::string name = "ZZ OLD " + std::to_string(++number_);
      (pair_.before.*names).push_back(name);
      tell("- " + what + " " + name);
    });
  }

  static std::vector<std::uint16_t>& indexOf(Model& model) {
    if (!model.zipIndex) {
      model.zipIndex.emplace(100000);
      for (std::size_t key = 1; key < model.zips.size(); ++key)
        (*model.zipIndex)[model.zips[key].zip] = static_cast<std::uint16_t>(key);
    }
    return *model.zipIndex;
  }

  void changeIndex() {
    const std::uint32_t key = takeZip();
    if (key == 0) return;
    const std::uint32_t zip = pair_.before.zips[key].zip;
    const bool added = random_.percent(50);
    tell((added ? "+ ZIP code " : "- ZIP code ") + zipText(zip) + " " + placeText(key));
    Model& without = added ? pair_.before : pair_.after;
    indexOf(without)[zip] = 0;
    without.zipBytes[key].state = "--";  // no cut finds it either
    notRenamed(key);
  }

  // The cities of a ZIP code that is added, dropped or moved keep their names: too few ZIP codes
  // might be left to know them by.
  void notRenamed(std::uint32_t zipKey) {
    for (const std::uint32_t city : citiesOf(zipKey)) keptNames_.insert(city);
  }

  void moveZip() {
    const std::uint32_t key = takeZip();
    if (key == 0 || pair_.before.zips[key].cityKeysCount != 1) return;
    const std::uint32_t from = pair_.before.zips[key].cityKey;
    const std::string state = pair_.before.zipBytes[key].state;
    const std::uint32_t to =
        1 + random_.below(static_cast<std::uint32_t>(pair_.before.cityData.size() - 1));
    if (to == from) return;
    const std::string toState = pair_.before.cityNames[pair_.before.cityData[to].nameUsps].state;
    notRenamed(key);
    keptNames_.insert(to);
    pair_.after.zips[key].cityKey = static_cast<std::uint16_t>(to);
    pair_.after.zipBytes[key].state = toState;
    tell("~ ZIP code " + zipText(pair_.before.zips[key].zip) + " " + placeText(key) + " -> " +
         toState + " " + cityName(to));
  }

  static std::vector<Partition>::iterator find(Model& model, Section section, std::uint32_t key) {
    auto& all = model.range.partitions;
    return std::find_if(all.begin(), all.end(), [&](const Partition& partition) {
      return partition.section == section && partition.key == key;
    });
  }

  // Changes, adds or drops a partition, and tells the end of the line.
  void changePartition(Section section, std::uint32_t key, const std::string& whose, bool sole) {
    const auto was = find(pair_.before, section, key);
    const auto is = find(pair_.after, section, key);
    const std::string bytes = std::to_string(was->bytes) + " bytes";
    const std::uint32_t way = random_.below(sole ? 4 : 2);
    if (way == 0 && was->bytes > 0) {
      is->seed ^= 1;
      tell("~ " + whose + ": " + bytes + ", other content");
    } else if (way < 2) {
      is->bytes += 3;
      tell("~ " + whose + ": " + std::to_string(was->bytes) + " -> " + std::to_string(is->bytes) +
           " bytes");
    } else if (way == 2) {
      pair_.after.range.partitions.erase(is);
      tell("- " + whose + ": " + bytes);
    } else {
      pair_.before.range.partitions.erase(was);
      tell("+ " + whose + ": " + bytes);
    }
  }

  void changeZipPartition() {
    const std::uint32_t key = takeZip();
    const Section section =
        std::vector{Section::SfhZip, Section::PobZip, Section::RrZip}[random_.below(3)];
    if (key == 0 || find(pair_.before, section, key) == pair_.before.range.partitions.end()) return;
    const char* kind = section == Section::SfhZip   ? "SFH "
                       : section == Section::PobZip ? "POB "
                                                    : "RR ";
    changePartition(section, key,
                    std::string("partition ") + kind + zipText(pair_.before.zips[key].zip) + " " +
                        pair_.before.zipBytes[key].state,
                    true);
  }

  // Who shares a partition: ZIP codes by their finance areas, and cities.
  struct Sharers {
    std::set<std::uint32_t> zips, cities;  // keys
  };
  using SharersOfKey = std::map<std::uint32_t, Sharers>;

  // A city of several ZIP codes has no area unless it shares a street partition itself.
  SharersOfKey sharersOf(MultiZipRef CityMultiZip::*kind, bool areas) const {
    SharersOfKey users;
    const Model& model = pair_.before;
    const auto areaOf = [&](std::uint32_t index) {
      return areas && index != 0 && model.finMultiZip[index].zipCount > 1
                 ? &users[model.finMultiZip[index].key]
                 : nullptr;
    };
    for (std::uint32_t i = 1; i < model.zips.size(); ++i)
      if (Sharers* area = areaOf(model.zips[i].finKey)) area->zips.insert(i);
    for (std::uint32_t i = 1; i < model.cityData.size(); ++i) {
      const CityData& city = model.cityData[i];
      if (city.zipCount == 1) continue;
      const MultiZipRef& ref = model.cityMultiZip[city.multiZipRbaKey].*kind;
      const bool shares = city.zipCount > 1 && city.multiZipRbaKey != 0 && ref.zipCount > 1;
      if (shares) users[ref.key].cities.insert(i);
      if (city.zipCount > 1 && !shares) continue;
      if (Sharers* area = areaOf(city.finFlag == 1 ? city.finKey : 0)) area->cities.insert(i);
    }
    return users;
  }

  void changeSharedPartition() {
    const std::uint32_t kind = random_.below(3);
    MultiZipRef CityMultiZip::*const kinds[] = {&CityMultiZip::sfh, &CityMultiZip::pob,
                                                &CityMultiZip::rr};
    const Section section =
        std::vector{Section::SfhMulti, Section::PobMulti, Section::RrMulti}[kind];
    const SharersOfKey users = sharersOf(kinds[kind], section == Section::SfhMulti);
    if (users.empty()) return;
    auto chosen = users.begin();
    std::advance(chosen, random_.below(static_cast<std::uint32_t>(users.size())));
    const auto& [key, sharers] = *chosen;
    const auto isFree = [&](std::uint32_t zip) {
      return std::find(free_.begin(), free_.end(), zip) != free_.end();
    };
    if (find(pair_.before, section, key) == pair_.before.range.partitions.end() ||
        !std::all_of(sharers.zips.begin(), sharers.zips.end(), isFree) ||
        !changedShared_.emplace(key, section).second)
      return;
    std::string whose = "partition ";
    whose += std::vector{"SFH", "POB", "RR"}[kind];
    whose += " shared by";
    const char* between = " ";
    const auto add = [&](const std::string& user) {
      whose += between + user;
      between = ", ";
    };
    for (const std::uint32_t zip : sharers.zips) {
      add(zipText(pair_.before.zips[zip].zip));
      free_.erase(std::find(free_.begin(), free_.end(), zip));
    }
    std::set<std::string> names;
    for (const std::uint32_t city : sharers.cities) {
      names.insert(pair_.before.cityNames[pair_.before.cityData[city].nameUsps].state + " " +
                   cityName(city));
      keptNames_.insert(city);
    }
    for (const std::string& name : names) add(name);
    changePartition(section, key, whose, false);
  }

  bool hasZips(std::uint32_t city) const {
    for (std::uint32_t key = 1; key < pair_.before.zips.size(); ++key)
      for (const std::uint32_t its : citiesOf(key))
        if (its == city) return true;
    return false;
  }

  // A city that no other change names.
  std::uint32_t takeCity(bool withZips) {
    for (int tries = 0; tries < 20; ++tries) {
      const std::uint32_t city =
          1 + random_.below(static_cast<std::uint32_t>(pair_.before.cityData.size() - 1));
      if (hasZips(city) == withZips && pair_.before.cityData[city].nameUsps != 0 &&
          keptNames_.insert(city).second)
        return city;
    }
    return 0;
  }

  void renameCity() {
    const std::uint32_t city = takeCity(true);
    if (city == 0) return;
    CityName& name = pair_.after.cityNames[pair_.after.cityData[city].nameUsps];
    name.name = "AA RENAMED " + std::to_string(++number_);
    tell("~ city " + name.state + " " + cityName(city) + " -> " + name.state + " " + name.name);
    // Other names tell the city that they are of by its new name, on both sides.
    sortNames(pair_.after);
  }

  void dropCity() {
    const std::uint32_t city = takeCity(false);
    if (city == 0) return;
    const std::uint32_t usps = pair_.after.cityData[city].nameUsps;
    const std::string state = pair_.after.cityNames[usps].state;
    for (std::uint32_t i = static_cast<std::uint32_t>(pair_.after.cityNames.size()); --i > 0;)
      if (i != usps && pair_.after.cityNames[i].cityKey == city) return;  // has other names
    tell("- city " + state + " " + cityName(city));
    dropName(pair_.after, usps);
  }

  void dropOtherName() {
    for (std::uint32_t i = 1; i < pair_.after.cityNames.size(); ++i) {
      const CityName name = pair_.after.cityNames[i];
      if (name.cityKey == 0 || pair_.after.cityData[name.cityKey].nameUsps == i) continue;
      if (!keptNames_.insert(name.cityKey).second || random_.percent(50)) continue;
      tell("- city name " + name.state + " " + name.name + " of " + name.state + " " +
           cityName(name.cityKey));
      dropName(pair_.after, i);
      return;
    }
  }

  // What is dropped the one way is added the other way.
  void turnRound() {
    std::swap(pair_.before, pair_.after);
    for (std::string& line : pair_.changes) {
      if (line[0] != '~') {
        line[0] = line[0] == '+' ? '-' : '+';
        continue;
      }
      const std::size_t arrow = line.find(" -> ");
      if (arrow == std::string::npos) continue;
      std::size_t from = std::string("~ city ").size(), tail = line.size();
      if (line.starts_with("~ ZIP code ")) from = std::string("~ ZIP code 12345 ").size();
      if (line.starts_with("~ partition ")) {
        from = line.rfind(": ") + 2;
        tail = line.size() - std::string(" bytes").size();
      }
      line = line.substr(0, from) + line.substr(arrow + 4, tail - arrow - 4) + " -> " +
             line.substr(from, arrow - from) + line.substr(tail);
    }
  }

  Random random_;
  KnownPair pair_;
  int number_ = 0;
  std::vector<std::uint32_t> free_;    // keys of ZIP codes
  std::set<std::uint32_t> keptNames_;  // cities
  std::set<std::pair<std::uint32_t, Section>> changedShared_;
};

}  // namespace

KnownPair makeKnownPair(std::uint64_t seed) { return Changer(seed).take(); }

Model inAnotherOrder(Model model, std::uint64_t seed) {
  Random random(seed);
  auto& partitions = model.range.partitions;
  for (std::size_t i = partitions.size(); i > 1; --i)
    std::swap(partitions[i - 1], partitions[random.below(static_cast<std::uint32_t>(i))]);
  return model;
}

void writeRelease(const TempDir& folder, const std::string& name, const Model& model) {
  WrittenFile written;
  std::string error;
  ASSERT_TRUE(writeReferenceFile(model, folder.file(name + ".ref"), written, error)) << error;
  ASSERT_TRUE(writeRangeFile(model, folder.file(name + ".rng"), written, error)) << error;
}

}  // namespace statecut::test
