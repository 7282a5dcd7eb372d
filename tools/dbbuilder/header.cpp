#include "dbbuilder/header.h"

#include "dbbuilder/bytes.h"

namespace statecut::builder {

Bytes headerBytes(const Header& header) {
  ByteWriter out;
  out.text(header.version, 8);
  out.u8(header.byte8);
  out.text(header.copyright, 4);
  out.raw(header.bytes13);
  out.u8(header.charType);
  out.u8(header.endianType);
  out.u32(header.buildStamp);
  out.u32(header.typeFlags);
  out.u32(header.cutStamp);
  return out.take();
}

void patchWords(std::span<Byte> record, const std::vector<WordPatch>& words) {
  for (const WordPatch& word : words)
    if (std::size_t{word.offset} + 4 <= record.size())
      le::put<4>(record.data() + word.offset, word.value);
}

}  // namespace statecut::builder
