#include "dbbuilder/multizipbytes.h"

#include <algorithm>

#include "dbbuilder/bytes.h"

namespace statecut::builder {

namespace {

void putShort(Bytes& table, std::size_t entry, const MultiZipSize& size) {
  le::put<2>(table.data() + 6 * entry, size.key);
  le::put<4>(table.data() + 6 * entry + 2, size.bytes);
}

}  // namespace

MultiZipTable shortTable(const std::vector<MultiZipSize>& sizes) {
  MultiZipTable table{Bytes(8 * sizes.size()), static_cast<std::uint32_t>(sizes.size())};
  for (std::size_t i = 0; i < sizes.size(); ++i) putShort(table.bytes, i, sizes[i]);
  return table;
}

MultiZipTable sfhTable(const std::vector<MultiZipSize>& sizes) {
  if (sizes.empty()) return {};
  // A third of the 6-byte entries, less two, and a quarter of the 8-byte ones, less one, hold keys.
  const std::size_t keys = sizes.size();
  const std::size_t least = std::max(3 * (keys + 2), 4 * (keys + 1));
  const std::size_t count = (least + 11) / 12 * 12;
  MultiZipTable table{Bytes(8 * count), static_cast<std::uint32_t>(count)};
  for (std::size_t i = 0; i < keys; ++i) {
    putShort(table.bytes, count - keys + i, sizes[i]);
    Byte* at = table.bytes.data() + 8 * (count - keys + i);
    le::put<4>(at, sizes[i].key);
    le::put<4>(at + 4, sizes[i].bytes);
  }
  return table;
}

}  // namespace statecut::builder
