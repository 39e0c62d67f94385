// /api/search: what the search box finds for a text, read three ways: as
// words (the ranked word search), as a document key and as (the start of
// the words of) an author's name.
#ifndef REFGROVE_WEB_SEARCH_API_H_
#define REFGROVE_WEB_SEARCH_API_H_

#include <string_view>

#include "search/word_search.h"
#include "web/paper_api.h"

namespace refgrove::web {

// {"query", "mode", "hits" [paper_summary with "score"], best first, at most
// `limit`; "keys" [paper_summary of the documents with that key]; "authors"
// [author_ref of the authors each of whose query terms starts a word of
// their name, at most `limit`, by id]}. A query without words, or a lone
// "*", is an ApiError 400.
Json search_json(const RefgroveData& d, std::string_view query, SearchMode mode, int limit);

// Builds what search_json reads (the word index, the authors' folded names)
// ahead of the first search.
void prepare_search(const RefgroveData& d);

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_SEARCH_API_H_
