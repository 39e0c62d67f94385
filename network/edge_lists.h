// The two graphs of a data set as lists of edges, for the faces that hand a
// whole graph to another program: the tool's export, the Python package's
// arrays.
#ifndef REFGROVE_NETWORK_EDGE_LISTS_H_
#define REFGROVE_NETWORK_EDGE_LISTS_H_

#include <cstdint>
#include <vector>

#include "core/data_set.h"
#include "network/citation_graph.h"

namespace refgrove {

// Every edge of the citation graph, by citing DID, then cited DID. Built on
// first use and kept with the set (8 bytes an edge), so that faces may hand
// out views of it.
const std::vector<CitationEdge>& citation_edges(const RefgroveData& d);

// Two authors who share a graph record, by id, first < second.
struct CoauthorLink {
  std::int32_t first;
  std::int32_t second;
  friend bool operator==(const CoauthorLink&, const CoauthorLink&) = default;
};

// Every link of the co-author graph once, by first, then second author.
// Built anew by each call: the graph itself keeps authorship, not links.
std::vector<CoauthorLink> coauthor_links(const RefgroveData& d);

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_EDGE_LISTS_H_
