#pragma once
// Turns a model into a database pair.

#include <array>
#include <cstdint>
#include <string>

#include "dbbuilder/model.h"
#include "dbbuilder/rangefile.h"

namespace statecut::builder {

inline constexpr std::size_t refControlSize = 844;

// A table of the reference file. An absent table (military, PO Box zones) has RBA 0, no bytes.
struct TablePlace {
  std::uint32_t rba = 0;
  std::uint64_t bytes = 0;
};

struct ReferenceFile {
  Bytes bytes;
  std::array<TablePlace, tableCount> places;

  [[nodiscard]] const TablePlace& place(Table table) const {
    return places[static_cast<std::size_t>(table)];
  }
};

// The whole reference file: control record, then the tables back to back.
//
// The list of multi-ZIP lists is read two ways: entry i of a loaded table stands 2 * i bytes from
// its start, and a list that begins at entry s is read from the file 4 * s bytes from it. The
// table has room for 4 bytes an entry; a model whose lists all begin in the second half of the
// entries can give each list again at entry 2 * s (Model::multiZipListsTail), and both agree.
ReferenceFile referenceFile(const Model& model);

struct WrittenFile {
  std::string path;
  std::uint64_t bytes = 0;
};

// Write a file, whole, replacing what stood there. False with the reason in `error` when an open,
// a write or the close fails; what was written until then stays.
bool writeReferenceFile(const Model& model, const std::string& path, WrittenFile& written,
                        std::string& error);
bool writeRangeFile(const Model& model, const std::string& path, WrittenFile& written,
                    std::string& error);

}  // namespace statecut::builder
