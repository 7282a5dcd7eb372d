#include "draw/figures.h"

#include <algorithm>
#include <map>
#include <unordered_map>

#include "diff/diff.h"
#include "draw/files.h"
#include "draw/names.h"
#include "tables/rows.h"

namespace statecut::draw {

namespace {

using diff::Release;
using format::TableId;

// Names by their place, and their places by text ("TXAUSTIN").
class NameBook {
 public:
  explicit NameBook(std::vector<CityName>& names) : names_(names) {}

  // A text without a state has no place.
  std::optional<std::uint32_t> find(std::string_view text) const {
    const auto found = places_.find(text);
    if (found == places_.end()) return {};
    return found->second;
  }

  std::uint32_t add(std::string_view text) {
    const auto place = static_cast<std::uint32_t>(names_.size());
    names_.push_back({text.substr(0, 2), text.substr(2), place});
    return places_.emplace(text, place).first->second;
  }

  std::uint32_t findOrAdd(std::string_view text) {
    if (const auto found = find(text)) return *found;
    return add(text);
  }

 private:
  std::vector<CityName>& names_;
  std::unordered_map<std::string_view, std::uint32_t> places_;
};

class Collection {
 public:
  Collection(const Sources& sources, const Options& options)
      : sources_(sources), options_(options), book_(figures_.names) {}

  Figures take() {
    identify();
    addFiles();
    addNames();
    addZips();
    addShared();
    if (sources_.old) addChanges();
    settle();
    return std::move(figures_);
  }

 private:
  const Release& database() const { return sources_.database; }

  void identify() {
    const RefControlRec& record = database().ref();
    figures_.buildStamp = record.get(RefControlRec::buildTimeStamp);
    const auto version = record.get(RefControlRec::version);
    figures_.version.assign(version.begin(), version.end());
    figures_.isCut = database().isCut();
    figures_.bytesKnown = !database().isCut() || !options_.rng.empty();
    figures_.hasCut = sources_.cut.has_value();
    figures_.hasChanges = sources_.old.has_value();
  }

  void addFile(File file, const std::string& path, std::size_t cutFile) {
    file.name = baseName(path);
    if (figures_.hasCut) file.cutName = baseName(options_.cut[cutFile]);
    figures_.files.push_back(std::move(file));
  }

  void addFiles() {
    const Release* cut = sources_.cut ? &*sources_.cut : nullptr;
    addFile(referenceFile(database(), cut), options_.ref, 0);
    if (!options_.rng.empty()) addFile(rangeFile(database(), cut), options_.rng, 1);
  }

  // By abbreviation; the numbers of states change when all are known.
  State& state(std::string_view abbreviation) {
    State& found = states_[std::string(abbreviation)];
    return found;
  }

  void addNames() {
    const auto rows = database().records<CityNameRow>(TableId::CityNames);
    const auto table = database().table(TableId::CityNames);
    for (std::size_t i = 1; i < rows.size(); ++i) {
      const auto text = format::nameAt(format::kCityNameType, i, table);
      if (!text) continue;
      ++figures_.cityNames;
      ++state(text->substr(0, 2)).cityNames;
      cityKeys_.push_back(rows[i].get(CityNameRow::cityKey));
      book_.add(*text);
    }
    for (std::size_t i = 0; i < cityKeys_.size(); ++i)
      if (const auto known = book_.find(database().cityName(cityKeys_[i])))
        figures_.names[i].known = *known;
    if (sources_.cut)
      figures_.keptCityNames = less(sources_.cut->records<CityNameRow>(TableId::CityNames).size());
  }

  static std::uint64_t less(std::size_t withBlank) { return withBlank == 0 ? 0 : withBlank - 1; }

  void addZips() {
    const diff::Partitions partitions(database());
    for (std::uint32_t code = 0; code < format::kZipIndexEntries; ++code) {
      const std::uint32_t key = database().zipKey(code);
      if (key == 0) continue;
      Zip zip;
      zip.zip = code;
      State& of = enter(zip, database().stateOf(key, database().isCut()), database().citiesOf(key));
      ++of.zips;
      for (std::size_t i = 0; figures_.bytesKnown && i < kKindCount; ++i) {
        if (const auto partition = partitions.ofZip(key, kKinds[i]))
          zip.bytes[i] = partition->bytes;
        of.bytes[i] += zip.bytes[i];
      }
      zip.kept = sources_.cut && sources_.cut->zipKey(code) != 0;
      if (zip.kept) {
        ++of.kept;
        ++figures_.keptZips;
      }
      figures_.zips.push_back(std::move(zip));
    }
  }

  State& enter(Zip& zip, std::string_view abbreviation,
               const std::vector<std::string_view>& cities) {
    for (const std::string_view city : cities)
      if (!city.empty()) zip.names.push_back(book_.findOrAdd(city));
    zipStates_[zip.zip] = abbreviation;
    return state(abbreviation);
  }

  void addShared() {
    if (!figures_.bytesKnown) return;
    for (const SharedPartition& shared : sharedPartitions(database(), diff::Partitions(database())))
      state(shared.state).shared += shared.bytes;
  }

  void addChanges() {
    figures_.oldName = baseName(options_.old[0]);
    figures_.oldBuildStamp = sources_.old->ref().get(RefControlRec::buildTimeStamp);
    figures_.changes = diff::compare(*sources_.old, database(), {}, options_.old.size() > 1);
    std::map<std::uint32_t, Zip*> zips;
    for (Zip& zip : figures_.zips) zips.emplace(zip.zip, &zip);
    const auto mark = [&](std::uint32_t code, bool Zip::*flag, std::uint64_t State::*count) {
      const auto found = zips.find(code);
      if (found == zips.end() || found->second->*flag) return;
      found->second->*flag = true;
      ++(state(zipStates_[code]).*count);
    };
    for (const diff::Zip& zip : figures_.changes.zipsAdded)
      mark(zip.zip, &Zip::added, &State::added);
    for (const diff::MovedZip& zip : figures_.changes.zipsMoved)
      mark(zip.after.zip, &Zip::moved, &State::moved);
    for (const diff::PartitionChange& change : figures_.changes.partitions)
      for (const std::uint32_t code : change.zips) mark(code, &Zip::changed, &State::changed);
    for (const diff::Zip& gone : figures_.changes.zipsDropped) {
      Zip zip;
      zip.zip = gone.zip;
      zip.dropped = true;
      ++enter(zip, gone.state, gone.cities).dropped;
      figures_.zips.push_back(std::move(zip));
    }
    std::sort(figures_.zips.begin(), figures_.zips.end(),
              [](const Zip& a, const Zip& b) { return a.zip < b.zip; });
  }

  // Numbers the states.
  void settle() {
    std::map<std::string_view, std::uint32_t> numbers;
    for (auto& [abbreviation, state] : states_) {
      numbers.emplace(abbreviation, static_cast<std::uint32_t>(figures_.states.size()));
      state.abbreviation = abbreviation;
      state.name = stateName(abbreviation);
      figures_.states.push_back(std::move(state));
    }
    for (Zip& zip : figures_.zips) zip.state = numbers[zipStates_[zip.zip]];
  }

  const Sources& sources_;
  const Options& options_;
  Figures figures_;
  NameBook book_;
  std::map<std::string, State> states_;
  std::map<std::uint32_t, std::string_view> zipStates_;
  std::vector<std::uint32_t> cityKeys_;  // of the names
};

}  // namespace

std::uint64_t Figures::zipCount() const {
  std::uint64_t count = 0;
  for (const State& state : states) count += state.zips;
  return count;
}

Figures collect(const Sources& sources, const Options& options) {
  return Collection(sources, options).take();
}

}  // namespace statecut::draw
