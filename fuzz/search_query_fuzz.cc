// Word search queries over a fixed data set (the sample), in both modes,
// through the search itself and through the explorer's /api/search answer.
//
// Input: a byte whose bit 0 picks the mode (and, or) and whose other bits
// are the limit (1 to 128), then the query text.
// Checked: a query either cannot be run (SearchUsageError) or gives at most
// `limit` distinct documents that have words, with finite scores, best
// first and equal scores by ascending DID, that are the first hits of the
// same query without a limit; the documents that hold every term are among
// those that hold one. The API (stems and phrases) answers 400 exactly when
// the search by stems refuses the query, and otherwise valid JSON with that
// search's hits and total.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "core/data_view.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/sample_set.h"
#include "search/word_search.h"
#include "web/api_params.h"
#include "web/search_api.h"

namespace {

using refgrove::SearchHit;
using refgrove::SearchMode;

bool has_words(const RefgroveData& d, int did) {
  int title = 0, words = 0;
  refgrove::title_length(d, did, &title);
  refgrove::word_count(d, did, &words);
  return title > 0 || words > 0;
}

std::set<int> dids_of(const std::vector<SearchHit>& hits) {
  std::set<int> dids;
  for (const SearchHit& hit : hits) dids.insert(hit.did);
  return dids;
}

void check_answer(const RefgroveData& d, std::string_view query, SearchMode mode, int limit) {
  const refgrove::SearchRequest request{mode, false, static_cast<std::size_t>(limit)};
  refgrove::SearchAnswer expected;
  try {
    expected = refgrove::search(d, query, request);
  } catch (const refgrove::SearchUsageError&) {
    try {
      refgrove::web::search_json(d, query, request);
      FUZZ_CHECK(!"the API runs a query that the search refuses");
    } catch (const refgrove::web::ApiError& e) {
      FUZZ_CHECK(e.status() == 400);
    }
    return;
  }
  const std::string text =
      refgrove::web::search_json(d, query, request).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  FUZZ_CHECK(nlohmann::json::accept(text));
  const nlohmann::json answer = nlohmann::json::parse(text);
  FUZZ_CHECK(answer.at("hits").size() == expected.hits.size() && answer.at("total") == expected.total);
  for (std::size_t i = 0; i < expected.hits.size(); ++i) {
    FUZZ_CHECK(answer["hits"][i].at("did") == expected.hits[i].did);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const SearchMode mode = (data[0] & 1) != 0 ? SearchMode::kOr : SearchMode::kAnd;
  const int limit = (data[0] >> 1) + 1;
  const std::string_view query(reinterpret_cast<const char*>(data) + 1, size - 1);
  const RefgroveData& d = *refgrove::fuzz::sample_set();

  std::vector<SearchHit> hits, all;
  try {
    hits = refgrove::search(d, query, mode, static_cast<std::size_t>(limit));
    all = refgrove::search(d, query, mode, 0);
  } catch (const refgrove::SearchUsageError&) {
    check_answer(d, query, mode, limit);
    return 0;
  }
  FUZZ_CHECK(hits.size() <= static_cast<std::size_t>(limit) && hits.size() <= all.size());
  FUZZ_CHECK(dids_of(all).size() == all.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    FUZZ_CHECK(has_words(d, all[i].did) && std::isfinite(all[i].score) && all[i].score >= 0);
    if (i > 0) {
      FUZZ_CHECK(all[i - 1].score > all[i].score || (all[i - 1].score == all[i].score && all[i - 1].did < all[i].did));
    }
    if (i < hits.size()) FUZZ_CHECK(hits[i].did == all[i].did && hits[i].score == all[i].score);
  }
  if (hits.size() < static_cast<std::size_t>(limit)) FUZZ_CHECK(hits.size() == all.size());
  if (mode == SearchMode::kAnd) {
    const std::set<int> any = dids_of(refgrove::search(d, query, SearchMode::kOr, 0));
    for (const SearchHit& hit : all) FUZZ_CHECK(any.contains(hit.did));
  }
  check_answer(d, query, mode, limit);
  return 0;
}
