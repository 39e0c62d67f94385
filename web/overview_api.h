// The JSON API's view of the whole data set at a glance, for the front page:
// its documents and citations per year, its most cited papers and its
// authors with the highest h-index.
#ifndef REFGROVE_WEB_OVERVIEW_API_H_
#define REFGROVE_WEB_OVERVIEW_API_H_

#include "web/paper_api.h"

namespace refgrove::web {

// /api/overview: {"years" [{"year", "documents", "citations"}] by ascending
// year (the documents with a citation record published that year, and the
// citations these make), "most_cited" {"papers" [paper_ref with
// "citation_count"], "total", "truncated"} and "top_authors" {"authors"
// [{"id", "name", "h_index", "documents", "citations"}], "total",
// "truncated"}, each list best first (ties by DID or id) and at most `limit`
// long. Documents without a year are left out of "years".
Json overview_json(const RefgroveData& d, int limit);

// What overview_json() reads, made once per set.
void prepare_overview(const RefgroveData& d);

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_OVERVIEW_API_H_
