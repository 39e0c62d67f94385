// The C search operation of refgrove/search.h over the global data set.
#include <vector>

#include "core/c_results.h"
#include "core/data_set.h"
#include "refgrove/search.h"
#include "search/word_search.h"

int refgrove_search_1(const char* query, int any, int capacity, int* dids, double* scores) {
  using namespace refgrove;
  if (query == nullptr || capacity < 0) return kNoAnswer;
  try {
    // Every hit, for the total; the index makes the ranking of them all cheap
    // next to the matching.
    const std::vector<SearchHit> hits = search(loaded_data(), query, any ? SearchMode::kOr : SearchMode::kAnd, 0);
    return give_list(hits, capacity, [&](std::size_t i, const SearchHit& hit) {
      dids[i] = hit.did;
      scores[i] = hit.score;
    });
  } catch (const SearchUsageError&) {
    return kNoAnswer;
  }
}
