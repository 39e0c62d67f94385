// The C search operations of refgrove_search.h over the global data set.
#include <cstddef>
#include <vector>

#include "core/data_set.h"
#include "core/refgrove.h"
#include "search/refgrove_search.h"
#include "search/word_search.h"

namespace {

const RefgroveData& loaded() { return refgrove_data == nullptr ? RefgroveData::empty() : *refgrove_data; }

refgrove::SearchMode mode_of(int any) { return any ? refgrove::SearchMode::kOr : refgrove::SearchMode::kAnd; }

}  // namespace

int refgrove_search_count_1(const char* query, int any, int* out) {
  *out = 0;
  if (query == nullptr) return 0;
  try {
    *out = static_cast<int>(refgrove::search(loaded(), query, mode_of(any), 0).size());
    return 1;
  } catch (const refgrove::SearchUsageError&) {
    return 0;
  }
}

int refgrove_search_1(const char* query, int any, int n, int* dids, double* scores) {
  if (query == nullptr) return -1;
  try {
    const std::vector<refgrove::QueryTerm> terms = refgrove::parse_query(query);
    if (n <= 0) return 0;
    const auto hits = refgrove::search(loaded(), terms, mode_of(any), static_cast<std::size_t>(n));
    for (std::size_t k = 0; k < hits.size(); ++k) {
      dids[k] = hits[k].did;
      scores[k] = hits[k].score;
    }
    return static_cast<int>(hits.size());
  } catch (const refgrove::SearchUsageError&) {
    return -1;
  }
}
