#include "network/node_marks.h"

#include <algorithm>

namespace refgrove {

NodeMarks& NodeMarks::fresh(std::size_t n) {
  thread_local NodeMarks marks;
  for (int side = 0; side < 2; ++side) {
    if (marks.stamp_[side].size() < n) {
      marks.stamp_[side].resize(n, 0);
      marks.value_[side].resize(n);
    }
  }
  if (++marks.epoch_ == 0) {  // wrapped: stamps of old epochs could match again
    for (auto& stamps : marks.stamp_) std::fill(stamps.begin(), stamps.end(), 0);
    marks.epoch_ = 1;
  }
  return marks;
}

NodeBits& NodeBits::take(std::size_t n) {
  thread_local NodeBits bits;
  if (bits.words_.size() < (n + 63) / 64) bits.words_.resize((n + 63) / 64, 0);
  return bits;
}

}  // namespace refgrove
