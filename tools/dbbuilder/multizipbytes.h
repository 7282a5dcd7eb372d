#pragma once
// The three tables that give the sizes of the multi-ZIP partitions.

#include <cstdint>
#include <vector>

#include "dbbuilder/model.h"

namespace statecut::builder {

struct MultiZipSize {
  std::uint32_t key = 0;
  std::uint32_t bytes = 0;
};

struct MultiZipTable {
  Bytes bytes;  // 8 * count
  std::uint32_t count = 0;
};

// POB and RR: entries of 6 bytes (key, size) sorted by key in the first 6 * count bytes of the
// 8 * count that the table takes; the rest is zero.
MultiZipTable shortTable(const std::vector<MultiZipSize>& sizes);

// SFH: one table that is searched over `count` entries of 6 bytes (16-bit key, size) and over
// `count` entries of 8 bytes (32-bit key, size). Both searches halve [0, count):
//   - seen as 6-byte entries the first 6 * count bytes are padding of key 0, then all keys,
//     ascending;
//   - seen as 8-byte entries the last quarter, entries from 3/4 count on, is one or more entries
//     of key 0, then all keys, ascending. It lies behind the 6-byte entries.
// An 8-byte search for a key above 0 probes count/2, which lies in the padding (key 0), then
// 3/4 count (key 0), so that it never meets a byte of a real 6-byte entry. Every key is found in
// both forms with its own size, every other key in neither. count is a multiple of 12 for the
// halving to hit those positions.
MultiZipTable sfhTable(const std::vector<MultiZipSize>& sizes);

}  // namespace statecut::builder
