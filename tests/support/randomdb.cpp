#include "support/randomdb.h"

#include <algorithm>
#include <set>

#include "dbbuilder/rangefile.h"
#include "dbbuilder/writer.h"

namespace statecut::test {
namespace {

using namespace builder;

const std::vector<std::string> kStates = {"AA", "AE", "AK", "AP", "CA", "GU",
                                          "NY", "OK", "PR", "TX", "VT", "WY"};

std::string randomText(Random& random, std::uint32_t low, std::uint32_t high) {
  // A small alphabet, so that names repeat and share their beginnings.
  std::string text(random.between(low, high), ' ');
  for (char& c : text) c = static_cast<char>('A' + random.below(random.percent(80) ? 4 : 26));
  return text;
}

// Most partitions are small; some are empty, some lie at the edges of the copy's blocks.
std::uint32_t partitionSize(Random& random) {
  const std::uint32_t kind = random.below(100);
  if (kind < 8) return 0;
  if (kind < 15) return random.between(4080, 4096);
  if (kind < 22) return random.between(8170, 8184);
  if (kind < 25) return random.between(8185, 20000);
  return random.between(1, 300);
}

template <std::size_t N>
void fillRandom(std::array<Byte, N>& bytes, Random& random) {
  for (Byte& byte : bytes) byte = static_cast<Byte>(random.below(256));
}

Bytes randomBytes(Random& random, std::size_t count) {
  Bytes bytes(count);
  for (Byte& byte : bytes) byte = static_cast<Byte>(random.below(256));
  return bytes;
}

std::uint16_t small16(Random& random, std::size_t bound) {
  return static_cast<std::uint16_t>(random.below(static_cast<std::uint32_t>(bound)));
}

Header randomHeader(Random& random, std::uint32_t flags) {
  Header header;
  if (random.percent(50)) header.version = "10000OF1";
  if (random.percent(30)) header.copyright = "9915";
  header.byte8 = static_cast<Byte>(random.below(256));
  fillRandom(header.bytes13, random);
  header.charType = static_cast<Byte>(random.percent(80) ? 1 : random.below(3));
  header.endianType = static_cast<Byte>(random.percent(80) ? 1 : random.below(3));
  header.typeFlags = flags;
  return header;
}

void addCities(Model& model, const std::vector<std::string>& states, Random& random) {
  const std::uint32_t cities = random.between(1, 12);
  model.cityData.resize(cities + 1);
  model.cityNames.push_back({0, 0, "", "", std::nullopt});
  for (std::uint32_t city = 1; city <= cities; ++city) {
    const std::string& state = pick(states, random);
    const std::uint32_t names = random.between(1, 3);
    for (std::uint32_t i = 0; i < names; ++i) {
      const auto key = static_cast<std::uint16_t>(random.percent(95) ? city : 0);
      const auto value = static_cast<Byte>(random.below(4));
      const std::uint32_t most = random.percent(10) ? 28 : 8;
      const std::uint32_t least = random.percent(10) ? 0 : 2;
      model.cityNames.push_back({key, value, state, randomText(random, least, most), std::nullopt});
    }
  }
  std::sort(model.cityNames.begin() + 1, model.cityNames.end(),
            [](const CityName& a, const CityName& b) {
              return std::tie(a.state, a.name) < std::tie(b.state, b.name);
            });
  const auto nameCount = static_cast<std::uint32_t>(model.cityNames.size());
  for (CityData& city : model.cityData) {
    city.nameUsps = random.below(nameCount);
    city.nameStandard = random.below(nameCount);
    fillRandom(city.other8, random);
    fillRandom(city.other12, random);
    fillRandom(city.other20, random);
    fillRandom(city.other34, random);
  }
  model.cityPhonetics.push_back({0, "", "", 0, std::nullopt});
  const std::uint32_t keys = random.below(10);
  for (std::uint32_t i = 0; i < keys; ++i)
    model.cityPhonetics.push_back({small16(random, 500), pick(states, random),
                                   randomText(random, 1, 8), static_cast<Byte>(random.below(5)),
                                   std::nullopt});
  std::sort(model.cityPhonetics.begin() + 1, model.cityPhonetics.end(),
            [](const CityPhonetic& a, const CityPhonetic& b) {
              return std::tie(a.state, a.key) < std::tie(b.state, b.key);
            });
}

void addZips(Model& model, const std::vector<std::string>& states, Random& random) {
  const std::uint32_t count = random.below(15);
  std::set<std::uint32_t> codes;
  while (codes.size() < count) codes.insert(random.below(100000));
  std::vector<std::uint32_t> order(codes.begin(), codes.end());
  if (random.percent(20)) std::reverse(order.begin(), order.end());
  model.zips.resize(1);
  model.zipBytes.resize(1);
  for (const std::uint32_t zip : order) {
    ZipRecord record;
    record.zip = zip;
    record.other4 = random.below(1000);
    fillRandom(record.other20, random);
    fillRandom(record.other40, random);
    record.cityKey = small16(random, model.cityData.size());
    record.cityKeysCount = static_cast<Byte>(random.below(4));
    const auto key = static_cast<std::uint32_t>(model.zips.size());
    for (const Section section : {Section::SfhZip, Section::PobZip, Section::RrZip})
      if (random.percent(70))
        model.range.partitions.push_back({section, key, partitionSize(random), random.next()});
    model.zips.push_back(record);
    ZipBytes bytes;
    bytes.state = pick(states, random);
    model.zipBytes.push_back(bytes);
  }
}

MultiZipRef randomRef(Random& random, std::uint32_t keys) {
  MultiZipRef ref;
  ref.zipCount = static_cast<std::uint16_t>(random.percent(60) ? 2 : random.below(4));
  ref.key = random.below(keys);
  return ref;
}

// Few keys and many records that use them: most partitions are shared.
void addMultiZips(Model& model, Random& random) {
  const std::uint32_t keys = random.between(1, 12);
  for (std::uint32_t i = 0; i < keys; ++i) model.multiZipLists.push_back(small16(random, 20));
  model.cityMultiZip.resize(1 + random.below(8));
  for (std::size_t i = 1; i < model.cityMultiZip.size(); ++i)
    model.cityMultiZip[i] = {randomRef(random, keys), small16(random, 9), randomRef(random, keys),
                             randomRef(random, keys)};
  model.finMultiZip.resize(1 + random.below(6));
  for (std::size_t i = 1; i < model.finMultiZip.size(); ++i)
    model.finMultiZip[i] = randomRef(random, keys);
  for (const Section section : {Section::SfhMulti, Section::PobMulti, Section::RrMulti})
    for (std::uint32_t key = 0; key < keys; ++key)
      if (random.percent(80))
        model.range.partitions.push_back({section, key, partitionSize(random), random.next()});
  if (random.percent(20))
    for (std::size_t i = model.range.partitions.size(); i > 1; --i)
      std::swap(model.range.partitions[i - 1],
                model.range.partitions[random.below(static_cast<std::uint32_t>(i))]);
  for (CityData& city : model.cityData) {
    city.finFlag = static_cast<std::uint16_t>(random.below(3));
    city.finKey = small16(random, model.finMultiZip.size() + 1);
    city.zipCount = static_cast<std::uint16_t>(random.percent(60) ? 2 : random.below(5));
    city.multiZipRbaKey = small16(random, model.cityMultiZip.size() + 1);
  }
  for (ZipRecord& zip : model.zips) zip.finKey = small16(random, model.finMultiZip.size() + 1);
}

template <typename T, typename Make>
void addSome(std::vector<T>& to, Random& random, Make make) {
  const std::uint32_t count = random.below(5);
  for (std::uint32_t i = 0; i < count; ++i) to.push_back(make());
}

void addVariations(std::vector<Variation>& to, const Model& model, Random& random) {
  addSome(to, random, [&] {
    Variation variation;
    variation.name = randomText(random, 1, 10);
    const std::uint32_t candidates = model.streetNames.empty() ? 0 : random.below(3);
    for (std::uint32_t i = 0; i < candidates; ++i)
      variation.candidates.push_back(
          {random.below(static_cast<std::uint32_t>(model.streetNames.size())),
           {small16(random, 9)},
           std::nullopt});
    return variation;
  });
}

// Tables that the cut carries without looking into them.
void addCarriedTables(Model& model, Random& random) {
  const auto pattern = [&random] {
    Pattern made{};
    for (std::uint16_t& word : made) word = small16(random, 65536);
    return made;
  };
  addSome(model.sfhPatterns, random, pattern);
  addSome(model.pobPatterns, random, pattern);
  addSome(model.rrPatterns, random, pattern);
  addSome(model.streetNames, random, [&] { return randomText(random, 1, 20); });
  addSome(model.firmNames, random, [&] { return randomText(random, 1, 30); });
  addSome(model.cityZipLists, random, [&] {
    return CityZipEntry{small16(random, 20), random.below(100000)};
  });
  addSome(model.cityFinanceLists, random, [&] { return small16(random, 20); });
  addSome(model.cityKeysOfZips, random, [&] { return small16(random, 20); });
  addSome(model.uniqueZips, random, [&] {
    return UniqueZip{random.below(100000), random.below(9), 1, 2};
  });
  addSome(model.counties, random, [&] {
    return County{"TX", small16(random, 999), randomText(random, 1, 20)};
  });
  addSome(model.urbanizations, random, [&] {
    return Urbanization{1, 1, randomText(random, 1, 20)};
  });
  addSome(model.urbMultiZips, random, [&] { return small16(random, 20); });
  addSome(model.urbVariations, random, [&] {
    return Urbanization{1, 1, randomText(random, 1, 20)};
  });
  addVariations(model.streetPhonetics, model, random);
  addVariations(model.streetStandards, model, random);
  addSome(model.generalDelivery, random, [&] { return random.below(100000); });
  addSome(model.scfs, random, [&] { return Scf{small16(random, 999), "TX"}; });
}

void addOptionalTables(Model& model, Random& random) {
  if (random.percent(60)) {
    model.military.emplace();
    model.military->first.resize(random.below(4));
    model.military->second.resize(random.below(4));
    for (auto& record : model.military->first) fillRandom(record, random);
    for (auto& record : model.military->second) fillRandom(record, random);
  }
  if (random.percent(60)) {
    model.poBoxZones.emplace();
    addSome(*model.poBoxZones, random, [&] { return small16(random, 65536); });
  }
}

}  // namespace

Model randomModel(Random& random, std::vector<std::string>& states) {
  Model model;
  std::set<std::string> chosen;
  const std::uint32_t count = random.between(1, 5);
  for (std::uint32_t i = 0; i < count; ++i) chosen.insert(pick(kStates, random));
  states.assign(chosen.begin(), chosen.end());
  model.header = randomHeader(random, 1);
  model.range.header = randomHeader(random, 2);
  model.header.buildStamp = random.percent(5) ? 0 : static_cast<std::uint32_t>(random.next());
  model.range.header.buildStamp = model.header.buildStamp;
  model.trailing = randomBytes(random, random.percent(50) ? 512 : random.below(512));
  model.range.trailing = randomBytes(random, random.percent(50) ? 516 : random.below(516));
  model.range.firstRba = random.percent(50) ? 4088 : random.between(624, 5000);
  model.range.word40 = random.below(1000);
  model.range.word84 = random.below(1000);
  addCities(model, states, random);
  addZips(model, states, random);
  addMultiZips(model, random);
  addCarriedTables(model, random);
  addOptionalTables(model, random);
  return model;
}

RandomCase makeRandomCase(std::uint64_t seed) {
  RandomCase made;
  made.seed = seed;
  Random random(seed);
  std::vector<std::string> states;
  Model model = randomModel(random, states);
  made.shape = random.percent(30) ? "a valid pair" : makeOdd(model, states, random);
  made.ref = referenceFile(model).bytes;
  made.rng = rangeFile(model.range);
  made.shape += damageFiles(made, random);
  made.shape += "; " + chooseStates(made, states, random);
  made.logLevel = static_cast<int>(random.percent(50) ? 5 : random.below(6));
  made.stamp = static_cast<std::uint32_t>(random.next());
  made.shape += "; level " + std::to_string(made.logLevel);
  return made;
}

}  // namespace statecut::test
