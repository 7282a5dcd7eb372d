#include "plan/plan.h"

#include <algorithm>

#include "run/statetable.h"
#include "tables/rows.h"
#include "verify/cutchecks.h"
#include "verify/multizipuse.h"

namespace statecut::plan {

namespace {

constexpr std::uint64_t kDiskBlock = 4096;

std::uint64_t onDisk(std::uint64_t bytes) {
  return (bytes + kDiskBlock - 1) / kDiskBlock * kDiskBlock;
}

// A size that is negative as a signed number copies nothing.
void count(Group& group, std::uint32_t bytes) {
  if (static_cast<std::int32_t>(bytes) <= 0) return;
  ++group.partitions;
  group.bytes += bytes;
}

void countZips(const verify::DerivedCut& cut, Plan& plan) {
  const auto zips = cut.source.records<ZipDataRow>(verify::TableId::ZipData);
  const auto sizes = cut.source.records<ZipBytesRow>(verify::TableId::ZipBytes);
  plan.zips = cut.zipKeys.size();
  for (const std::uint32_t key : cut.zipKeys) {
    const ZipDataRow& zip = zips[key];
    const ZipBytesRow& bytes = sizes[key];
    if (zip.get(ZipDataRow::sfhRba) != 0) count(plan.single.sfh, bytes.get(ZipBytesRow::sfhBytes));
    if (zip.get(ZipDataRow::pobRba) != 0) count(plan.single.pob, bytes.get(ZipBytesRow::pobBytes));
    if (zip.get(ZipDataRow::rrRba) != 0) count(plan.single.rr, bytes.get(ZipBytesRow::rrBytes));
  }
}

Group multiZips(const verify::DerivedCut& cut, verify::MultiZipKind kind) {
  Group group;
  const verify::MultiZipUse use = verify::deriveMultiZipUse(cut, kind);
  for (const std::uint32_t key : use.usedKeys)
    count(group, static_cast<std::uint32_t>(use.keys[key].bytes));
  return group;
}

// Sorts the states and leaves each once; a warning for each that stood there more often.
void settleStates(Plan& plan) {
  std::sort(plan.states.begin(), plan.states.end());
  const std::vector<std::string> named = plan.states;
  plan.states.erase(std::unique(plan.states.begin(), plan.states.end()), plan.states.end());
  for (const std::string& state : plan.states)
    if (const auto times = std::count(named.begin(), named.end(), state); times > 1)
      plan.warnings.push_back(state + " is named " + std::to_string(times) + " times");
}

}  // namespace

Group Kinds::all() const {
  return {sfh.partitions + pob.partitions + rr.partitions, sfh.bytes + pob.bytes + rr.bytes};
}

std::uint64_t Plan::rangeBytes() const {
  return RngControlRec::size + single.all().bytes + multi.all().bytes;
}

std::uint64_t Plan::spaceBytes() const { return onDisk(referenceBytes) + onDisk(rangeBytes()); }

Plan make(const verify::Pair& source, const std::vector<std::string>& states) {
  Plan plan;
  plan.states = states;
  settleStates(plan);
  const verify::DerivedCut cut = verify::deriveCut(source, plan.states, verify::CityScan::Sorted);
  plan.cities = verify::keptCount(cut.nameMap) - 1;
  plan.referenceBytes = verify::cutReferenceBytes(cut);
  countZips(cut, plan);
  plan.multi.sfh = multiZips(cut, verify::MultiZipKind::Sfh);
  plan.multi.pob = multiZips(cut, verify::MultiZipKind::Pob);
  plan.multi.rr = multiZips(cut, verify::MultiZipKind::Rr);
  // As statecut puts it.
  if (plan.zips == 0) plan.warnings.emplace_back("No zip entries found for selected states.");
  return plan;
}

bool isState(const std::string& abbreviation) {
  return std::find(abvstates.begin(), abvstates.end(), abbreviation) != abvstates.end();
}

}  // namespace statecut::plan
