// The law of the partitions that several ZIP codes share.

#include <map>
#include <set>

#include "laws/comparing.h"
#include "laws/laws.h"
#include "tables/rows.h"

namespace statecut::test {

namespace {

using namespace builder;
using Ref = RefControlRec;

constexpr std::uint16_t kShared = 2;  // ZIP codes that make a partition a shared one

// A reference to a shared partition: by which records the cut reaches it, and its size.
using Sizes = std::map<std::pair<Section, std::uint32_t>, std::uint32_t>;

Sizes sizesOf(const RangeModel& range) {
  Sizes sizes;
  for (const Partition& partition : range.partitions)
    sizes[{partition.section, partition.key}] = partition.bytes;
  // The sizes table of the SFH partitions pads with entries of key 0, which are found first.
  sizes.erase({Section::SfhMulti, 0});
  return sizes;
}

struct Reached {
  std::set<std::size_t> sfh, pob, rr;  // city records
  std::set<std::size_t> finance;
};

const CityMultiZip* recordOf(const Model& model, const CityData& city) {
  const std::size_t key = city.multiZipRbaKey;
  return key == 0 || key >= model.cityMultiZip.size() ? nullptr : &model.cityMultiZip[key];
}

// The exceptions stand here: a city of several ZIP codes leads to a finance entry only when its
// own SFH partition is shared, one of one ZIP code to nothing.
Reached reachedBy(const Selection& chosen) {
  const Model& model = chosen.source.model;
  Reached reached;
  const auto finance = [&](std::size_t key) {
    if (key != 0 && key < model.finMultiZip.size() && model.finMultiZip[key].zipCount >= kShared)
      reached.finance.insert(key);
  };
  for (std::size_t c = 0; c < model.cityData.size(); ++c) {
    const CityData& city = model.cityData[c];
    if (!chosen.cityKept(c) || city.zipCount == 1) continue;
    const CityMultiZip* record = recordOf(model, city);
    if (city.zipCount >= kShared) {
      if (record == nullptr) continue;
      if (record->pob.zipCount >= kShared) reached.pob.insert(city.multiZipRbaKey);
      if (record->rr.zipCount >= kShared) reached.rr.insert(city.multiZipRbaKey);
      if (record->sfh.zipCount < kShared) continue;
      reached.sfh.insert(city.multiZipRbaKey);
    }
    if (city.finFlag == 1) finance(city.finKey);
  }
  for (std::size_t key = 0; key < model.zips.size(); ++key)
    if (chosen.zipKept(key)) finance(model.zips[key].finKey);
  return reached;
}

// Reached and not empty: a copy. Else the source's RBA stands as it was: the exception.
template <typename RowType, std::size_t At>
void checkShared(const Selection& chosen, const Pair& made, const RowType& from,
                 const RowType& copy, Num<At, 4> rba, bool reached,
                 std::pair<Section, std::uint32_t> partition, const Sizes& sizes,
                 const std::string& what, Breaches& breaches) {
  const auto size = sizes.find(partition);
  if (!reached || size == sizes.end() || size->second == 0) {
    if (from.get(rba) != 0)
      occurred(reached ? Exception::kPartitionWithoutSize : Exception::kUnreachedPartition);
    breaches.unless(copy.get(rba) == from.get(rba), what + ": not copied, but moved");
    return;
  }
  comparePartition(chosen.source.pair, made, from, copy, rba, size->second, what, breaches);
}

}  // namespace

std::string sharedPartitionsAreKept(const Selection& chosen, const Pair& made) {
  Breaches breaches;
  const Pair& from = chosen.source.pair;
  const Model& model = chosen.source.model;
  const Sizes sizes = sizesOf(model.range);
  const Reached reached = reachedBy(chosen);
  for (std::size_t i = 1; i < model.cityMultiZip.size(); ++i) {
    const auto source = from.row<CityMultiZipRow>(from.word(Ref::cityMultiZipRbasRba), i);
    const auto copy = made.row<CityMultiZipRow>(made.word(Ref::cityMultiZipRbasRba), i);
    const CityMultiZip& record = model.cityMultiZip[i];
    const std::string what = numbered("city multi-ZIP record", i);
    using Row = CityMultiZipRow;
    checkShared(chosen, made, source, copy, Row::sfhRba, reached.sfh.count(i) != 0,
                {Section::SfhMulti, record.sfh.key}, sizes, what + " SFH", breaches);
    checkShared(chosen, made, source, copy, Row::pobRba, reached.pob.count(i) != 0,
                {Section::PobMulti, record.pob.key}, sizes, what + " POB", breaches);
    checkShared(chosen, made, source, copy, Row::rrRba, reached.rr.count(i) != 0,
                {Section::RrMulti, record.rr.key}, sizes, what + " RR", breaches);
  }
  for (std::size_t i = 1; i < model.finMultiZip.size(); ++i) {
    const auto source = from.row<FinMultiZipRow>(from.word(Ref::finMultiZipRbasRba), i);
    const auto copy = made.row<FinMultiZipRow>(made.word(Ref::finMultiZipRbasRba), i);
    checkShared(chosen, made, source, copy, FinMultiZipRow::rba, reached.finance.count(i) != 0,
                {Section::SfhMulti, model.finMultiZip[i].key}, sizes, numbered("finance entry", i),
                breaches);
  }
  return breaches.text();
}

}  // namespace statecut::test
