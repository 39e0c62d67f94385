// The JSON API's answers about the clusters (research fronts) of the
// citation graph (fronts/clusters.h): the map of all of them and the page of
// one.
#ifndef REFGROVE_WEB_CLUSTER_API_H_
#define REFGROVE_WEB_CLUSTER_API_H_

#include "web/paper_api.h"

namespace refgrove {
struct ClusterOptions;
}  // namespace refgrove

namespace refgrove::web {

// The clustering the explorer shows: the default options, but two
// iterations (igraph's default) instead of iterating until one moves
// nothing, which on a large set takes hundreds of iterations for a last
// percent of modularity, and would hold up every start and reload.
ClusterOptions explorer_cluster_options();

// /api/clusters: {"modularity", "clusters" [{"id", "size", "label" [words,
// best first], "years" ({"from", "to"} or null)}] (the first `limit` by
// size, largest first), "links" [{"source", "target", "weight"}] (the
// citations either way between two listed clusters, source < target),
// "total", "truncated"}.
Json clusters_json(const RefgroveData& d, int limit);

// /api/cluster/{id}: {"id", "size", "label", "years", "top" [paper_ref with
// "citation_count", most cited first], "timeline" [{"year", "documents"}],
// "main_path" [the DIDs of the main path that are in the cluster, in the
// path's order], "members" [paper_ref with "citation_count"], "links"
// [{"source": citing DID, "target": cited DID}] among the members listed,
// "total", "truncated"}. "members" holds at most `limit` documents: those on
// the main path, then the most cited, ties by DID. An unknown id is a 404.
Json cluster_json(const RefgroveData& d, int id, int limit);

// What both read, made once per set: the clustering and the links between
// its clusters.
void prepare_clusters(const RefgroveData& d);

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_CLUSTER_API_H_
