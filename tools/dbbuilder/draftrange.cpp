#include <algorithm>
#include <set>

#include "dbbuilder/draft.h"

namespace statecut::builder {

namespace {

// A partition before the sizes are scaled to the bytes asked for.
struct Weighed {
  Section section;
  std::uint32_t key;
  std::uint32_t weight;  // 0 = stays empty
};

// Most partitions are of like size; every 13th is large. Of those of a ZIP code
// some are empty: enough for a small database to have them, few in a large one.
std::uint32_t weightOf(std::size_t turn, std::uint32_t usual, bool mayBeEmpty, Random& random) {
  const std::size_t emptyEvery = turn < 200 ? 41 : 1009;
  if (mayBeEmpty && turn % emptyEvery == 9) return 0;
  const std::uint32_t weight = usual / 2 + random.below(usual);
  return turn % 13 == 4 ? weight * 6 : weight;
}

void weighZips(const Draft& draft, Section section, std::uint32_t chance, std::uint32_t usual,
               std::vector<Weighed>& out) {
  Random random = draft.random(50 + static_cast<std::uint64_t>(section));
  std::size_t turn = 0;
  for (std::uint32_t zip = 1; zip < draft.places.size(); ++zip) {
    constexpr std::uint32_t bareEvery = 31;  // ZIP codes without any partition
    if (!random.percent(chance) || zip % bareEvery == 17) continue;
    out.push_back({section, zip, weightOf(turn++, usual, true, random)});
  }
}

void weighMultiZips(const Draft& draft, Section section, const std::set<std::uint32_t>& keys,
                    std::vector<Weighed>& out) {
  Random random = draft.random(50 + static_cast<std::uint64_t>(section));
  std::size_t turn = 0;
  for (const std::uint32_t key : keys)
    out.push_back({section, key, weightOf(turn++, 300, false, random)});
}

// In each section the keys ascend, and with them the RBAs.
std::vector<Weighed> weighAll(const Draft& draft) {
  std::set<std::uint32_t> sfh, pob, rr;
  for (const CityMultiZip& city : draft.model.cityMultiZip) {
    if (city.sfh.zipCount > 1) sfh.insert(city.sfh.key);
    if (city.pob.zipCount > 1) pob.insert(city.pob.key);
    if (city.rr.zipCount > 1) rr.insert(city.rr.key);
  }
  for (const FinMultiZip& area : draft.model.finMultiZip)
    if (area.zipCount > 1) sfh.insert(area.key);
  // Databases of one-ZIP cities have no list; each table keeps one entry all the same.
  const auto first = static_cast<std::uint32_t>(draft.model.multiZipLists.size() / 2);
  for (std::set<std::uint32_t>* keys : {&sfh, &pob, &rr})
    if (keys->empty()) keys->insert(first);

  std::vector<Weighed> all;
  weighZips(draft, Section::SfhZip, 96, 300, all);
  weighMultiZips(draft, Section::SfhMulti, sfh, all);
  weighZips(draft, Section::PobZip, 85, 90, all);
  weighMultiZips(draft, Section::PobMulti, pob, all);
  weighZips(draft, Section::RrZip, 40, 150, all);
  weighMultiZips(draft, Section::RrMulti, rr, all);
  return all;
}

std::vector<Partition> scale(const std::vector<Weighed>& weighed, const Draft& draft) {
  constexpr std::uint64_t mostPobBytes = 65535;
  std::uint64_t sum = 1;
  for (const Weighed& each : weighed) sum += each.weight;
  Random random = draft.random(60);
  std::vector<Partition> partitions;
  for (const Weighed& each : weighed) {
    std::uint64_t bytes = each.weight * draft.options.rangeBytes / sum;
    if (each.weight != 0) bytes = std::max<std::uint64_t>(bytes, 1);
    if (each.section == Section::PobZip) bytes = std::min(bytes, mostPobBytes);
    partitions.push_back(
        {each.section, each.key, static_cast<std::uint32_t>(bytes), random.next()});
  }
  return partitions;
}

Bytes trailingBytes(std::size_t size, Random random) {
  Bytes bytes(size);
  for (Byte& byte : bytes) byte = static_cast<Byte>(random.between(1, 255));
  return bytes;
}

}  // namespace

void addRange(Draft& draft) {
  constexpr std::uint32_t stampBase = 1735689600;  // 1 January 2025
  constexpr std::uint32_t yearSeconds = 31536000;
  Model& model = draft.model;
  Random random = draft.random(70);
  model.header.typeFlags = 1;
  model.header.buildStamp = stampBase + random.below(yearSeconds);
  model.range.header = model.header;
  model.range.header.typeFlags = 2;
  model.trailing = trailingBytes(512, draft.random(71));
  model.range.trailing = trailingBytes(516, draft.random(72));
  model.range.partitions = scale(weighAll(draft), draft);
  model.range.word40 = random.between(1, 1000);
  model.range.word84 = random.between(1, 1000);
  model.range.maxOverhead = random.between(64, 512);
  for (std::uint32_t& count : model.range.maxStreets) count = random.between(100, 5000);
}

}  // namespace statecut::builder
