#include "databases.h"

#include "base/le.h"
#include "dbbuilder/profiles.h"
#include "dbbuilder/random.h"
#include "dbbuilder/rangefile.h"
#include "dbbuilder/writer.h"
#include "support/randomdb.h"
#include "support/secondcut.h"

namespace statecut::test {

namespace {

using namespace builder;

std::uint16_t upTo(std::size_t bound, Random& random) {
  return static_cast<std::uint16_t>(random.below(static_cast<std::uint32_t>(bound + 1)));
}

template <typename T>
void atLeast(std::vector<T>& table, std::size_t count, const T& filler) {
  while (table.size() < count) table.push_back(filler);
}

std::string randomName(Random& random, std::uint32_t most) {
  std::string name(random.between(1, most), 'A');
  for (char& c : name) c = static_cast<char>('A' + random.below(5));
  return name;
}

// Ambiguous lists of any length, streets with and without SCF keys.
void addLists(std::vector<Variation>& to, const Model& model, Random& random) {
  for (std::uint32_t left = random.below(6); left > 0; --left) {
    Variation variation;
    variation.name = randomName(random, 28);
    for (std::uint32_t streets = random.below(8); streets > 0; --streets) {
      Candidate candidate;
      candidate.street = random.below(static_cast<std::uint32_t>(model.streetNames.size()));
      for (std::uint32_t scfs = random.below(4); scfs > 0; --scfs)
        candidate.scfs.push_back(upTo(8, random));
      variation.candidates.push_back(candidate);
    }
    if (variation.candidates.size() != 1 && random.percent(30)) variation.ambiguous = true;
    to.push_back(variation);
  }
}

// What the lookups read and a cut only carries.
void addLookupTables(Model& model, Random& random) {
  for (std::uint32_t left = random.below(12); left > 0; --left)
    model.streetNames.push_back(randomName(random, 28));
  atLeast(model.streetNames, 1, std::string("A"));
  for (std::uint32_t left = random.below(12); left > 0; --left)
    model.firmNames.push_back(randomName(random, 40));
  addLists(model.streetPhonetics, model, random);
  addLists(model.streetStandards, model, random);
  const std::uint32_t lists = random.below(40);
  for (std::uint32_t i = 0; i < lists; ++i) {
    model.cityZipLists.push_back({upTo(65535, random), random.below(100000)});
    model.cityFinanceLists.push_back(upTo(65535, random));
    model.cityKeysOfZips.push_back(upTo(65535, random));
    model.multiZipLists.push_back(upTo(65535, random));
    model.multiZipListsTail.push_back(upTo(65535, random));
    model.generalDelivery.push_back(random.below(1000000));
  }
  for (ZipRecord& zip : model.zips) {
    zip.cityKeysIndex = upTo(model.cityKeysOfZips.size() + 1, random);
    zip.cityKeysCount = static_cast<Byte>(random.below(random.percent(10) ? 256 : 5));
  }
  for (CityPhonetic& phonetic : model.cityPhonetics)
    if (random.percent(30)) phonetic.count = static_cast<Byte>(random.below(256));
}

}  // namespace

Database tinyDatabase() {
  return {"tiny", referenceFile(makeModel(tinyPlaces(), tinyOptions())).bytes};
}

Database smallDatabase() {
  return {"small", referenceFile(makeModel(smallPlaces(), smallOptions())).bytes};
}

Model randomLookupModel(std::uint64_t seed) {
  Random random(seed);
  std::vector<std::string> states;
  Model model = randomModel(random, states);
  addLookupTables(model, random);
  return model;
}

namespace {

// The lists of ZIP codes and cities become as long as their records say, and every ambiguous
// variation has a list.
Model randomReaderModel(std::uint64_t seed) {
  Model model = randomLookupModel(seed);
  for (ZipRecord& zip : model.zips) {
    const std::size_t room = model.cityKeysOfZips.size();
    if (zip.cityKeysCount > 1 && zip.cityKeysIndex + std::size_t{zip.cityKeysCount} > room)
      model.cityKeysOfZips.resize(zip.cityKeysIndex + std::size_t{zip.cityKeysCount}, 1);
  }
  const auto hold = [&](const MultiZipRef& ref) {
    if (ref.zipCount > 1) atLeast(model.multiZipLists, ref.key + ref.zipCount, std::uint16_t{1});
  };
  for (const CityMultiZip& city : model.cityMultiZip) {
    hold(city.sfh);
    hold(city.pob);
    hold(city.rr);
  }
  for (const FinMultiZip& fin : model.finMultiZip) hold(fin);
  for (std::vector<Variation>* set : {&model.streetPhonetics, &model.streetStandards})
    for (Variation& variation : *set)
      if (variation.candidates.empty()) variation.ambiguous.reset();
  return model;
}

// The cut to states, each with a new line.
Bytes cutOf(const Model& model, const std::string& states) {
  secondcut::Inputs inputs;
  inputs.ref = referenceFile(model).bytes;
  inputs.rng = rangeFile(model.range);
  inputs.stateFileName = "states";
  inputs.stateText = states;
  inputs.stamp = 1767225600;
  return secondcut::deriveCut(inputs).ref.bytes;
}

}  // namespace

Database randomReaderDatabase(std::uint64_t seed) {
  return {"random reader database " + std::to_string(seed),
          referenceFile(randomReaderModel(seed)).bytes};
}

Database tinyCutDatabase() {
  return {"tiny cut", cutOf(makeModel(tinyPlaces(), tinyOptions()), "TX\nOK\n")};
}

Database randomCutDatabase(std::uint64_t seed) {
  const Model model = randomReaderModel(seed);
  std::string states;
  for (const std::size_t name : {model.cityNames.size() - 1, model.cityNames.size() / 2})
    if (const std::string& state = model.cityNames[name].state;
        state.size() == 2 && states.find(state) == std::string::npos)
      states += state + "\n";
  return {"random cut " + std::to_string(seed), cutOf(model, states)};
}

Database randomLookupDatabase(std::uint64_t seed) {
  return {"random database " + std::to_string(seed), referenceFile(randomLookupModel(seed)).bytes};
}

}  // namespace statecut::test
