#include <algorithm>

#include "support/randomdb_oddity.h"

namespace statecut::test {

using namespace builder;

std::string makeOdd(Model& model, const States& states, Random& random) {
  std::vector<Oddity> chosen;
  const std::uint32_t count = random.between(1, 4);
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t family = random.below(100);
    chosen.push_back(pick(family < 22   ? zipOddities()
                          : family < 46 ? cityOddities()
                          : family < 72 ? multiZipOddities()
                          : family < 88 ? indexOddities()
                                        : recordOddities(),
                          random));
  }
  std::stable_sort(chosen.begin(), chosen.end(),
                   [](const Oddity& a, const Oddity& b) { return !a.clears && b.clears; });
  std::string names;
  for (const Oddity& oddity : chosen) {
    oddity.apply(model, states, random);
    names += (names.empty() ? "" : ", ") + std::string(oddity.name);
  }
  return names;
}

std::string damageFiles(RandomCase& made, Random& random) {
  const auto cutShort = [&random](std::vector<unsigned char>& bytes, std::uint32_t record) {
    const std::uint32_t kind = random.below(10);
    const std::uint32_t size = sizeOf(bytes.size());
    if (kind == 0) {
      bytes.resize(random.below(record));
    } else if (kind == 1) {
      bytes.resize(record);
    } else {
      bytes.resize(std::max(record, size - random.below(size / 2 + 1)));
    }
  };
  std::string done;
  const std::uint32_t what = random.below(100);
  if (what < 6) {
    cutShort(*made.rng, 624);
    done = ", range file cut to " + std::to_string(made.rng->size());
  } else if (what < 10) {
    cutShort(*made.ref, 844);
    done = ", reference file cut to " + std::to_string(made.ref->size());
  } else if (what == 10) {
    made.ref.reset();
    done = ", no reference file";
  } else if (what == 11) {
    made.rng.reset();
    done = ", no range file";
  }
  return done;
}

}  // namespace statecut::test
