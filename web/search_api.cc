#include "web/search_api.h"

#include <vector>

#include "core/data_view.h"
#include "core/json_fields.h"
#include "core/text_folding.h"
#include "core/utf8_text.h"
#include "web/api_params.h"

namespace refgrove::web {
namespace {

// The authors whose name holds the words of the query at word starts,
// spellings of one person together, the first `limit` of them.
Json matching_authors(const RefgroveData& d, std::string_view query, int limit) {
  Json authors = Json::array();
  for (const std::int32_t id : authors_with_words(d, query)) {
    if (authors.size() == static_cast<std::size_t>(limit)) break;
    authors.push_back(author_ref(d, id));
  }
  return authors;
}

Json key_matches(const RefgroveData& d, std::string_view query) {
  const std::vector<std::string_view> terms = split_terms(query);
  Json papers = Json::array();
  if (terms.size() != 1) return papers;
  const std::string key(terms[0]);
  int n = 0;
  key_doc_count(d, key.c_str(), &n);
  for (int i = 0; i < n; ++i) {
    int did = 0;
    if (get_key_doc(d, key.c_str(), i, &did)) papers.push_back(paper_summary(d, did));
  }
  return papers;
}

}  // namespace

Json search_json(const RefgroveData& d, std::string_view query, const SearchRequest& request) {
  SearchAnswer answer;
  try {
    answer = search(d, query, request);
  } catch (const SearchUsageError& e) {
    throw ApiError(400, e.what());
  }
  Json found = Json::array();
  for (const SearchHit& hit : answer.hits) {
    Json paper = paper_summary(d, hit.did);
    paper[field::score] = hit.score;
    found.push_back(std::move(paper));
  }
  return {{field::query, as_utf8(query)},
          {field::mode, to_text(request.mode)},
          {field::exact, request.exact},
          {field::hits, std::move(found)},
          {field::total, answer.total},
          {field::truncated, answer.hits.size() < answer.total},
          {field::keys, key_matches(d, query)},
          {field::authors, matching_authors(d, query, static_cast<int>(request.limit))}};
}

void prepare_search(const RefgroveData& d) {
  stem_index(d);
  authors_with_words(d, "");  // builds the index of author names
}

}  // namespace refgrove::web
