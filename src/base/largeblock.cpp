#include "base/largeblock.h"

#include "base/system.h"

namespace statecut {

LargeBlock::LargeBlock(std::size_t bytes)
    : data_(static_cast<unsigned char*>(sys::mapZeroed(bytes))) {
  if (data_ == nullptr) return;
  bytes_ = bytes;
  sys::adviseLargePages(data_, bytes);
}

LargeBlock::~LargeBlock() {
  if (data_ != nullptr) sys::unmapZeroed(data_, bytes_);
}

}  // namespace statecut
