#pragma once
// Pieces of a table or file that should lie next to each other, without overlap and without gaps.

#include <algorithm>
#include <cstdint>
#include <vector>

namespace statecut::verify {

class Tiling {
 public:
  struct Piece {
    std::uint64_t begin;
    std::uint64_t end;
    std::uint64_t owner;  // what leads to it, for the caller
  };

  void add(std::uint64_t begin, std::uint64_t end, std::uint64_t owner) {
    if (begin < end) pieces_.push_back({begin, end, owner});
  }

  // Calls overlap(piece) for each piece that begins inside another one, and gap(begin, end) for
  // the stretches of `from` to `to` that no piece covers. Equal pieces are one.
  template <typename Overlap, typename Gap>
  void check(std::uint64_t from, std::uint64_t to, Overlap&& overlap, Gap&& gap) {
    std::sort(pieces_.begin(), pieces_.end(), [](const Piece& a, const Piece& b) {
      return a.begin != b.begin ? a.begin < b.begin : a.end < b.end;
    });
    const Piece* last = nullptr;
    std::uint64_t at = from;
    for (const Piece& piece : pieces_) {
      if (last != nullptr && piece.begin == last->begin && piece.end == last->end) continue;
      if (piece.begin < at) overlap(piece);
      if (piece.begin > at) gap(at, std::min(piece.begin, to));
      at = std::max(at, piece.end);
      last = &piece;
    }
    if (at < to) gap(at, to);
  }

 private:
  std::vector<Piece> pieces_;
};

}  // namespace statecut::verify
