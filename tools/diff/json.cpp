#include <nlohmann/json.hpp>
#include <ostream>

#include "diff/diff.h"
#include "diff/texts.h"
#include "format/latin1.h"

namespace statecut::diff {

namespace {

using nlohmann::ordered_json;

using format::utf8Of;

ordered_json cityJson(std::string_view city) {
  if (city.empty()) return nullptr;
  return {{"state", utf8Of(city.substr(0, 2))}, {"name", utf8Of(city.substr(2))}};
}

template <typename List, typename Make>
ordered_json listJson(const List& list, const Make& make) {
  ordered_json json = ordered_json::array();
  for (const auto& one : list) json.push_back(make(one));
  return json;
}

ordered_json placeJson(const Zip& zip) {
  return {{"state", utf8Of(zip.state)}, {"cities", listJson(zip.cities, cityJson)}};
}

ordered_json zipJson(const Zip& zip) {
  ordered_json json = {{"zip", zipText(zip.zip)}};
  json.update(placeJson(zip));
  return json;
}

ordered_json otherNameJson(const OtherName& name) {
  ordered_json json = cityJson(name.name);
  json["city"] = cityJson(name.city);
  return json;
}

ordered_json partitionJson(const PartitionChange& change) {
  ordered_json json = {{"change", changeText(change.change)},
                       {"kind", kindText(change.kind)},
                       {"shared", change.shared},
                       {"state", utf8Of(change.state)},
                       {"zips", listJson(change.zips, zipText)},
                       {"cities", listJson(change.cities, cityJson)}};
  json["old"] = change.change == Change::Added ? ordered_json() : ordered_json(change.bytesBefore);
  json["new"] = change.change == Change::Dropped ? ordered_json() : ordered_json(change.bytesAfter);
  return json;
}

ordered_json tableJson(const TableChange& table) {
  return {{"name", table.name},
          {"old", {{"count", table.countBefore}, {"bytes", table.bytesBefore}}},
          {"new", {{"count", table.countAfter}, {"bytes", table.bytesAfter}}}};
}

ordered_json releaseJson(const Release& release) {
  return {{"path", release.path()},
          {"buildStamp", release.ref().get(RefControlRec::buildTimeStamp)},
          {"stateCut", release.isCut()}};
}

// A group of changes: the number of each sort, and with `lists` the changes themselves.
class Group {
 public:
  explicit Group(bool lists) : lists_(lists) {}

  template <typename List, typename Make>
  Group& add(const char* sort, const List& list, const Make& make) {
    json_["counts"][sort] = list.size();
    if (lists_) json_[sort] = listJson(list, make);
    return *this;
  }

  ordered_json take() { return std::move(json_); }

 private:
  bool lists_;
  ordered_json json_ = {{"counts", ordered_json::object()}};
};

template <typename Make>
ordered_json namesJson(const Names& names, bool lists, const Make& make) {
  return Group(lists).add("added", names.added, make).add("dropped", names.dropped, make).take();
}

ordered_json zipsJson(const Changes& changes, bool lists) {
  const auto movedJson = [](const MovedZip& moved) {
    return ordered_json{{"zip", zipText(moved.after.zip)},
                        {"old", placeJson(moved.before)},
                        {"new", placeJson(moved.after)}};
  };
  return Group(lists)
      .add("added", changes.zipsAdded, zipJson)
      .add("dropped", changes.zipsDropped, zipJson)
      .add("moved", changes.zipsMoved, movedJson)
      .take();
}

ordered_json citiesJson(const Changes& changes, bool lists) {
  const auto renamedJson = [](const RenamedCity& renamed) {
    return ordered_json{{"old", cityJson(renamed.before)}, {"new", cityJson(renamed.after)}};
  };
  return Group(lists)
      .add("added", changes.cities.added, cityJson)
      .add("dropped", changes.cities.dropped, cityJson)
      .add("renamed", changes.citiesRenamed, renamedJson)
      .take();
}

ordered_json partitionsJson(const Changes& changes, bool lists) {
  ordered_json states = ordered_json::array();
  for (const auto& [state, counts] : changes.partitionsByState())
    states.push_back({{"state", utf8Of(state)},
                      {"added", counts.added},
                      {"dropped", counts.dropped},
                      {"changed", counts.changed}});
  ordered_json json = {{"count", changes.partitions.size()}, {"states", std::move(states)}};
  if (lists) json["changes"] = listJson(changes.partitions, partitionJson);
  return json;
}

}  // namespace

void printJson(std::ostream& out, const Release& before, const Release& after,
               const Changes& changes, bool summary) {
  const bool lists = !summary;
  ordered_json json = {{"old", releaseJson(before)},
                       {"new", releaseJson(after)},
                       {"equal", changes.none()},
                       {"notes", changes.notes}};
  json["zips"] = zipsJson(changes, lists);
  json["cities"] = citiesJson(changes, lists);
  json["otherCityNames"] = Group(lists)
                               .add("added", changes.otherNamesAdded, otherNameJson)
                               .add("dropped", changes.otherNamesDropped, otherNameJson)
                               .take();
  json["cityPhonetics"] = namesJson(changes.cityPhonetics, lists, cityJson);
  const auto textsJson = [&](const Names& names) {
    return changes.statelessCompared ? namesJson(names, lists, utf8Of) : ordered_json();
  };
  json["streets"] = textsJson(changes.streets);
  json["streetStandards"] = textsJson(changes.streetStandards);
  json["streetPhonetics"] = textsJson(changes.streetPhonetics);
  json["firms"] = textsJson(changes.firms);
  json["partitions"] = changes.partitionsCompared ? partitionsJson(changes, lists) : ordered_json();
  json["tables"] =
      changes.statelessCompared ? ordered_json{{"count", changes.tables.size()}} : ordered_json();
  if (lists && changes.statelessCompared)
    json["tables"]["changes"] = listJson(changes.tables, tableJson);
  // Paths may hold any bytes.
  out << json.dump(2, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

}  // namespace statecut::diff
