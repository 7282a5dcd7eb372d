#include "reader/block.h"

#include "base/system.h"

namespace statecut {

Block Block::allocated(std::size_t bytes) {
  Block block;
  block.large_ = LargeBlock(bytes);
  block.data_ = block.large_.data();
  if (block.data_ == nullptr) {
    block.kind_ = Kind::kHeap;
    block.data_ = static_cast<unsigned char*>(sys::allocateZeroed(bytes));
  }
  block.bytes_ = block.data_ == nullptr ? 0 : bytes;
  return block;
}

Block Block::mapped(int fd, std::size_t bytes) {
  Block block;
  block.kind_ = Kind::kFile;
  block.data_ = static_cast<unsigned char*>(sys::mapFile(fd, bytes));
  block.bytes_ = block.data_ == nullptr ? 0 : bytes;
  return block;
}

void Block::reset() {
  if (data_ != nullptr && kind_ == Kind::kFile) sys::unmapFile(data_, bytes_);
  if (data_ != nullptr && kind_ == Kind::kHeap) sys::release(data_);
  data_ = nullptr;
}

}  // namespace statecut
