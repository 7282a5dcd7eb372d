#include "draw/bars.h"

#include <algorithm>
#include <iterator>

namespace statecut::draw {

namespace {

constexpr struct {
  const char* id;
  const char* label;
} kFamilies[] = {{"streets", "Streets"},
                 {"firms", "Firms"},
                 {"cities", "Cities"},
                 {"zips", "ZIP codes"},
                 {"names", "Index of names"},
                 {"sizes", "Sizes of partitions"},
                 {"rest", "Patterns, counties and others"},
                 {"sfh", "Streets of a ZIP code"},
                 {"sfh-shared", "Streets, shared by ZIP codes"},
                 {"pob", "PO Boxes of a ZIP code"},
                 {"pob-shared", "PO Boxes, shared by ZIP codes"},
                 {"rr", "Rural routes of a ZIP code"},
                 {"rr-shared", "Rural routes, shared by ZIP codes"},
                 {"other", "Control record and others"}};

constexpr std::uint64_t kSeen = 1000;  // a piece of less than this part of a bar can't be seen

}  // namespace

std::vector<Slice> slicesOf(const File& file) {
  std::uint64_t all = 0;
  for (const Piece& piece : file.pieces) all += piece.bytes;
  const auto scale = static_cast<double>(std::max({all, file.bytes, std::uint64_t{1}}));
  std::vector<Slice> slices;
  std::uint64_t at = 0;
  for (const Piece& piece : file.pieces) {
    if (piece.bytes == 0) continue;
    const auto kept = static_cast<double>(std::min(piece.kept, piece.bytes));
    slices.push_back({&piece, static_cast<double>(at) / scale,
                      static_cast<double>(piece.bytes) / scale,
                      kept / static_cast<double>(piece.bytes)});
    at += piece.bytes;
  }
  return slices;
}

const char* familyId(Family family) { return kFamilies[static_cast<std::size_t>(family)].id; }

const char* familyLabel(Family family) { return kFamilies[static_cast<std::size_t>(family)].label; }

std::vector<Family> familiesOf(const File& file) {
  std::vector<Family> families;
  for (const Piece& piece : file.pieces)
    if (piece.bytes * kSeen >= file.bytes && piece.bytes != 0 &&
        std::find(families.begin(), families.end(), piece.family) == families.end())
      families.push_back(piece.family);
  return families;
}

double textWidth(std::size_t characters, double size) {
  constexpr double kLetter = 0.58;  // of its size, on the average of a text
  return static_cast<double>(characters) * size * kLetter;
}

}  // namespace statecut::draw
