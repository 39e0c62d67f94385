// The surroundings of a paper: the documents within K hops of it along
// citations, with the citations among them, as a drawing of the paper's
// neighbourhood needs them.
#ifndef REFGROVE_NETWORK_NEIGHBOURHOOD_H_
#define REFGROVE_NETWORK_NEIGHBOURHOOD_H_

#include <cstdint>
#include <vector>

#include "core/data_set.h"
#include "network/citation_graph.h"

namespace refgrove {

struct NeighbourhoodOptions {
  std::int64_t hops = 1;
  Direction direction = Direction::both;
  std::int64_t limit = 100;
  bool edges = true;  // false: the nodes only
};

struct NeighbourNode {
  std::int32_t did;
  std::int32_t hops;
};

struct Neighbourhood {
  // The centre first, then the closest first, then by citation count
  // descending, then by ascending DID; at most `limit` of them.
  std::vector<NeighbourNode> nodes;
  // The citations among those nodes, by citing DID, then cited DID (none
  // when not asked for).
  std::vector<CitationEdge> edges;
};

// Throws NetworkArgumentError for a DID without a graph record or a
// negative hop count or limit.
Neighbourhood neighbourhood(const RefgroveData& d, std::int32_t did, const NeighbourhoodOptions& options);

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_NEIGHBOURHOOD_H_
