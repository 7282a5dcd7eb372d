#pragma once
// The areas of a range file, as its control record places them. Those of a cut are of its source.

#include <array>
#include <cstdint>

#include "dbfiles/controlrec.h"

namespace statecut::format {

struct Area {
  const char* name;
  std::uint32_t rba;
  std::uint32_t bytes;
};

inline std::array<Area, 6> areasOf(const RngControlRec& record) {
  using G = RngControlRec;
  const auto area = [&](const char* name, auto start, auto bytes) {
    return Area{name, record.get(start), record.get(bytes)};
  };
  return {area("SFH ZIP partitions", G::sfhZipStart, G::sfhZipBytes),
          area("SFH multi-ZIP partitions", G::sfhMultiZipStart, G::sfhMultiZipBytes),
          area("POB ZIP partitions", G::pobZipStart, G::pobZipBytes),
          area("POB multi-ZIP partitions", G::pobMultiZipStart, G::pobMultiZipBytes),
          area("RR ZIP partitions", G::rrZipStart, G::rrZipBytes),
          area("RR multi-ZIP partitions", G::rrMultiZipStart, G::rrMultiZipBytes)};
}

}  // namespace statecut::format
