// The four graphs clusters are found in, as weighted undirected graphs
// (leiden.h) over some of the set's documents or authors.
//
// - citation: every document with a graph record; two documents are linked
//   when one cites the other, with weight 2 when both cite each other.
//   Self-citations are left out.
// - cocitation: the documents cited at least `min_citations` times; two are
//   linked with the number of documents citing both, when that is at least
//   `min_weight`.
// - coupling: the documents citing at least `min_citations` documents of the
//   set; two are linked with the number of documents both cite, when that is
//   at least `min_weight`.
// - coauthor: every author of the author table; two are linked with the
//   number of graph records listing both.
#ifndef REFGROVE_FRONTS_CLUSTER_GRAPHS_H_
#define REFGROVE_FRONTS_CLUSTER_GRAPHS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "fronts/leiden.h"
#include "network/citation_graph.h"
#include "network/coauthor_graph.h"

namespace refgrove {

enum class ClusterGraphKind { citation, cocitation, coupling, coauthor };

// The text of a graph ("citation", "cocitation", "coupling", "coauthor") and
// back; from_text throws NetworkArgumentError for any other text.
const char* to_text(ClusterGraphKind kind);
ClusterGraphKind cluster_graph_from_text(const std::string& text);

struct ClusterGraph {
  WeightedGraph graph;
  // What each node stands for: a citation-graph node (document graphs,
  // ascending) or an author id (coauthor, all of them in order).
  std::vector<std::int32_t> items;
};

ClusterGraph citation_cluster_graph(const CitationGraph& g);
ClusterGraph cocitation_cluster_graph(const CitationGraph& g, std::int32_t min_citations, std::int32_t min_weight);
ClusterGraph coupling_cluster_graph(const CitationGraph& g, std::int32_t min_citations, std::int32_t min_weight);
ClusterGraph coauthor_cluster_graph(const CoauthorGraph& authors);

}  // namespace refgrove

#endif  // REFGROVE_FRONTS_CLUSTER_GRAPHS_H_
