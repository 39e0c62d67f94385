// /api/search: what the search box finds for a text, read three ways: as
// words (the ranked word search), as a document key and as (the start of
// the words of) an author's name.
#ifndef REFGROVE_WEB_SEARCH_API_H_
#define REFGROVE_WEB_SEARCH_API_H_

#include <string_view>

#include "search/word_search.h"
#include "web/paper_api.h"

namespace refgrove::web {

// {"query", "mode", "exact", "hits" [paper_summary with "score"], best
// first, at most request.limit; "total" (the documents matching) and
// "truncated" (whether the limit cut "hits"); "keys" [paper_summary of the
// documents with that key]; "authors" [author_ref of the authors each of
// whose query terms starts a word of their name, at most request.limit, by
// id]}. A query that cannot be run (no words, a lone "*", an open quote) is
// an ApiError 400.
Json search_json(const RefgroveData& d, std::string_view query, const SearchRequest& request);

// Builds what search_json reads (the word index, the authors' folded names)
// ahead of the first search.
void prepare_search(const RefgroveData& d);

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_SEARCH_API_H_
