// The JSON API's answer about an author's impact (fronts/author_impact.h).
#ifndef REFGROVE_WEB_AUTHOR_IMPACT_API_H_
#define REFGROVE_WEB_AUTHOR_IMPACT_API_H_

#include "web/paper_api.h"

namespace refgrove::web {

// /api/author/{id}/impact: {"id", "name", "h_index", "documents",
// "citations" (received within the set), "years" ({"from", "to"} of their
// documents, or null), "citations_by_year" [{"year", "citations"}] by
// ascending year of the citing document}. An unknown id is a 404.
Json author_impact_json(const RefgroveData& d, int author_id);

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_AUTHOR_IMPACT_API_H_
