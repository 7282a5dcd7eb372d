#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

#include "plan/plan.h"

namespace statecut::plan {

namespace {

using nlohmann::ordered_json;

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : ",") + word;
  return text;
}

void printGroup(std::ostream& out, const char* name, const Group& group) {
  out << "  " << std::left << std::setw(16) << name << std::right << std::setw(10)
      << group.partitions << std::setw(14) << group.bytes << '\n';
}

void printOne(std::ostream& out, const Named& named) {
  const Plan& plan = named.plan;
  if (!named.name.empty()) out << named.name << ": ";
  out << joined(plan.states) << '\n'
      << "  ZIP codes       " << std::setw(10) << plan.zips << '\n'
      << "  cities          " << std::setw(10) << plan.cities << "\n\n"
      << "                  partitions         bytes\n";
  printGroup(out, "SFH", plan.single.sfh);
  printGroup(out, "POB", plan.single.pob);
  printGroup(out, "RR", plan.single.rr);
  printGroup(out, "SFH multi-ZIP", plan.multi.sfh);
  printGroup(out, "POB multi-ZIP", plan.multi.pob);
  printGroup(out, "RR multi-ZIP", plan.multi.rr);
  out << '\n'
      << "  reference file  " << std::setw(24) << plan.referenceBytes << '\n'
      << "  range file      " << std::setw(24) << plan.rangeBytes() << '\n'
      << "  free space      " << std::setw(24) << plan.spaceBytes() << '\n';
  for (const std::string& warning : plan.warnings) out << "  warning: " << warning << '\n';
}

struct Total {
  std::uint64_t zips = 0, cities = 0, reference = 0, range = 0, space = 0;

  explicit Total(const std::vector<Named>& plans) {
    for (const Named& named : plans) {
      zips += named.plan.zips;
      cities += named.plan.cities;
      reference += named.plan.referenceBytes;
      range += named.plan.rangeBytes();
      space += named.plan.spaceBytes();
    }
  }
};

void printTable(std::ostream& out, const std::vector<Named>& plans) {
  std::size_t width = 7;
  for (const Named& named : plans) width = std::max(width, named.name.size());
  const auto cells = [&](const std::string& name, const auto&... values) {
    out << std::left << std::setw(static_cast<int>(width)) << name << std::right;
    (..., (out << std::setw(13) << values));
    out << '\n';
  };
  cells("product", "ZIP codes", "cities", "reference", "range", "free space");
  for (const auto& [name, plan] : plans)
    cells(name, plan.zips, plan.cities, plan.referenceBytes, plan.rangeBytes(), plan.spaceBytes());
  const Total total(plans);
  cells("all", total.zips, total.cities, total.reference, total.range, total.space);
  for (const auto& [name, plan] : plans)
    for (const std::string& warning : plan.warnings)
      out << name << ": warning: " << warning << '\n';
}

ordered_json groupJson(const Group& group) {
  return {{"partitions", group.partitions}, {"bytes", group.bytes}};
}

void addKinds(ordered_json& json, const Kinds& kinds) {
  json["sfh"] = groupJson(kinds.sfh);
  json["pob"] = groupJson(kinds.pob);
  json["rr"] = groupJson(kinds.rr);
}

ordered_json toJson(const Named& named) {
  const Plan& plan = named.plan;
  ordered_json json = ordered_json::object();
  if (!named.name.empty()) json["name"] = named.name;
  json["states"] = plan.states;
  json["zips"] = plan.zips;
  json["cities"] = plan.cities;
  json["reference"] = {{"bytes", plan.referenceBytes}};
  const Group single = plan.single.all(), multi = plan.multi.all();
  ordered_json multiZip = groupJson(multi);
  addKinds(multiZip, plan.multi);
  json["range"] = {{"bytes", plan.rangeBytes()},
                   {"partitions", single.partitions + multi.partitions}};
  addKinds(json["range"], plan.single);
  json["range"]["multiZip"] = std::move(multiZip);
  json["space"] = {{"bytes", plan.spaceBytes()}};
  json["warnings"] = plan.warnings;
  return json;
}

}  // namespace

void printText(std::ostream& out, const std::vector<Named>& plans) {
  if (plans.size() == 1)
    printOne(out, plans.front());
  else
    printTable(out, plans);
}

void printJson(std::ostream& out, const std::vector<Named>& plans) {
  if (plans.size() == 1 && plans.front().name.empty()) {
    out << toJson(plans.front()).dump(2) << '\n';
    return;
  }
  const Total total(plans);
  ordered_json document = {{"products", ordered_json::array()}};
  for (const Named& named : plans) document["products"].push_back(toJson(named));
  document["total"] = {{"reference", {{"bytes", total.reference}}},
                       {"range", {{"bytes", total.range}}},
                       {"space", {{"bytes", total.space}}}};
  out << document.dump(2) << '\n';
}

}  // namespace statecut::plan
