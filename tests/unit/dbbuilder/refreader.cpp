#include "unit/dbbuilder/refreader.h"

namespace statecut::test {

namespace {

// Where a name type keeps its table: RBA word, and the word of its bytes or records.
struct TypeTable {
  std::size_t rba, extent;
};
constexpr TypeTable typeTables[] = {{112, 176}, {80, 144}, {44, 132},
                                    {104, 164}, {92, 152}, {52, 136}};

std::uint32_t hashOf(const std::string& name, unsigned type) {
  std::uint32_t hash = 0x811C9DC5U + type;
  for (auto at = name.rbegin(); at != name.rend(); ++at) {
    hash += (hash << 1) + (hash << 4) + (hash << 7) + (hash << 8) + (hash << 24);
    hash ^= static_cast<std::uint32_t>(static_cast<unsigned char>(*at)) - 32U;
  }
  return hash;
}

}  // namespace

std::string RefReader::text(std::size_t at, std::size_t length) const {
  std::string out;
  for (std::size_t i = 0; i < length; ++i) out += static_cast<char>(file_.at(at + i));
  return out;
}

std::string RefReader::nameAt(std::uint32_t number, unsigned type) const {
  const std::size_t table = word(typeTables[type].rba);
  if (type == 2) return text(table + 34 * number + 4, 2 + this->number(table + 34 * number + 3, 1));
  if (type == 5)
    return text(table + 26 * number + 2, 2 + this->number(table + 26 * number + 25, 1));
  const std::size_t lengthAt = table + number + (type >= 3 ? 4 : 0);
  return text(lengthAt + 1, this->number(lengthAt, 1) & 0x7F);
}

std::vector<RefReader::Named> RefReader::names(unsigned type) const {
  std::vector<Named> found;
  const std::uint32_t extent = word(typeTables[type].extent);
  if (type == 2 || type == 5) {
    for (std::uint32_t i = 1; i < extent; ++i) found.push_back({nameAt(i, type), i});
    return found;
  }
  for (std::uint32_t at = 0; at < extent;) {
    found.push_back({nameAt(at, type), at});
    at += static_cast<std::uint32_t>(found.back().name.size()) + (type >= 3 ? 5 : 1);
  }
  return found;
}

std::optional<std::uint32_t> RefReader::find(const std::string& name, unsigned type) const {
  const std::uint32_t mask = word(312) - 1;
  const std::uint32_t hash = hashOf(name, type);
  const std::uint32_t check = type | ((hash & ~mask) >> 16);
  const std::size_t slot = word(308) + std::size_t{7} * (hash & mask);
  const std::uint32_t count = number(slot, 1);
  if (count == 1) {
    if (number(slot + 1, 2) == check && nameAt(number(slot + 3, 4), type) == name)
      return number(slot + 3, 4);
    return {};
  }
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::size_t entry = word(316) + std::size_t{6} * (number(slot + 3, 4) + i);
    if (number(entry, 2) == check && nameAt(number(entry + 2, 4), type) == name)
      return number(entry + 2, 4);
  }
  return {};
}

}  // namespace statecut::test
