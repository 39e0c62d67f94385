// The JSON API's answers from the analyses of the citation network
// (network/). Papers in lists are paper_refs (paper_api.h) with the figures
// the answer is about.
#ifndef REFGROVE_WEB_NETWORK_API_H_
#define REFGROVE_WEB_NETWORK_API_H_

#include <cstdint>
#include <optional>

#include "network/neighbourhood.h"
#include "network/ranking.h"
#include "web/paper_api.h"

namespace refgrove::web {

// What /api/paper adds from the network: "citation_count" (distinct citing
// papers), "pagerank" (null without a citation record), "cited_by" (the
// citing papers by DID) and "similar" {"cocitation", "coupling"}, the
// papers most alike by each measure, each with its "score".
void add_network_figures(const RefgroveData& d, int did, Json& paper);

// /api/neighbourhood/{did}: {"center", "nodes" [paper_ref with "citation_count"
// and "hops"], "links" [{"source": citing DID, "target": cited DID}]}.
Json neighbourhood_json(const RefgroveData& d, int did, const NeighbourhoodOptions& options);

// /api/path: {"from", "to", "distance" (null when unconnected), "path" [the
// authors, "from" first], "papers" [paper i written by authors i and i + 1]}.
Json path_json(const RefgroveData& d, int from, int to);

// /api/rank: {"by", "years" ({"from", "to"} or null), "papers" [paper_ref
// with "citation_count" and "pagerank"]}, best first.
Json rank_json(const RefgroveData& d, RankBy by, int limit, std::optional<YearRange> years);

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_NETWORK_API_H_
