#include "reader/block.h"

#include "base/system.h"

namespace statecut {

Block Block::allocated(std::size_t bytes) {
  Block block;
  block.data_ = static_cast<unsigned char*>(sys::allocateLarge(bytes));
  block.bytes_ = block.data_ == nullptr ? 0 : bytes;
  return block;
}

Block Block::mapped(int fd, std::size_t bytes) {
  Block block;
  block.isMapped_ = true;
  block.data_ = static_cast<unsigned char*>(sys::mapFile(fd, bytes));
  block.bytes_ = block.data_ == nullptr ? 0 : bytes;
  return block;
}

void Block::reset() {
  if (data_ == nullptr) return;
  if (isMapped_)
    sys::unmapFile(data_, bytes_);
  else
    sys::releaseLarge(data_, bytes_);
  data_ = nullptr;
}

}  // namespace statecut
