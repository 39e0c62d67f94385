// How the C operations of refgrove/search.h and refgrove/network.h hand a
// list to their caller: the first items into the caller's arrays, as many
// as their capacity holds, and the total returned (see refgrove/refgrove.h).
#ifndef REFGROVE_CORE_C_RESULTS_H_
#define REFGROVE_CORE_C_RESULTS_H_

#include <algorithm>
#include <climits>
#include <cstddef>

namespace refgrove {

// The return of an operation that has no answer; nothing is written.
inline constexpr int kNoAnswer = -1;

// Writes items[0 .. min(capacity, size)) through put(i, item) and returns
// the number of items (saturated at INT_MAX), or kNoAnswer for a negative
// capacity.
template <class Items, class Put>
int give_list(const Items& items, int capacity, Put put) {
  if (capacity < 0) return kNoAnswer;
  const std::size_t written = std::min(items.size(), static_cast<std::size_t>(capacity));
  for (std::size_t i = 0; i < written; ++i) put(i, items[i]);
  return static_cast<int>(std::min<std::size_t>(items.size(), INT_MAX));
}

}  // namespace refgrove

#endif  // REFGROVE_CORE_C_RESULTS_H_
