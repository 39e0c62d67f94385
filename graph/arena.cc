#include "graph/arena.h"

#include <cstdint>
#include <utility>

namespace refgrove {

void* Arena::allocate(std::size_t n, std::size_t align) {
  const std::size_t pad = (0 - reinterpret_cast<std::uintptr_t>(next_)) & (align - 1);
  if (pad + n > left_) {
    // A request larger than a quarter block gets a block of its own, so that
    // the current block's remainder is not wasted.
    if (n > kBlockSize / 4) {
      blocks_.emplace_back(new char[n]);
      return blocks_.back().get();
    }
    blocks_.emplace_back(new char[kBlockSize]);
    next_ = blocks_.back().get();
    left_ = kBlockSize;
    return allocate(n, align);
  }
  void* p = next_ + pad;
  next_ += pad + n;
  left_ -= pad + n;
  return p;
}

void Arena::absorb(Arena& other) {
  for (std::unique_ptr<char[]>& block : other.blocks_) blocks_.push_back(std::move(block));
  other.blocks_.clear();
  other.next_ = nullptr;
  other.left_ = 0;
}

}  // namespace refgrove
