// The citation network as files that graph tools read unchanged: GraphML
// (networkx, igraph, Gephi), a tab-separated edge list, Graphviz DOT and
// JSON. Nodes are named by their DID.
#ifndef REFGROVE_TOOLS_NETWORK_FORMATS_H_
#define REFGROVE_TOOLS_NETWORK_FORMATS_H_

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "network/neighbourhood.h"

namespace refgrove {

// A node as written: its DID, and what is known of it.
struct NetworkNode {
  int did = 0;
  std::optional<int> year;  // none when unknown
  int citations = 0;        // its citation count
  std::optional<int> hops;  // in a neighbourhood: the distance from its centre
};

struct NetworkFile {
  std::vector<NetworkNode> nodes;
  std::vector<refgrove::CitationEdge> edges;
  std::int64_t total = 0;  // the nodes there are, of which a limit may have kept fewer
};

// The whole citation graph of `d`, nodes by ascending DID, edges by citing
// then cited DID.
NetworkFile whole_citation_graph(const RefgroveData& d);
// A neighbourhood of `total` nodes, its nodes in its own order.
NetworkFile neighbourhood_file(const RefgroveData& d, const refgrove::Neighbourhood& n, std::int64_t total);

void write_graphml(const NetworkFile& f, std::ostream& out);
// One "CITING<TAB>CITED" line per edge (nodes without edges are not seen).
void write_edge_list(const NetworkFile& f, std::ostream& out);
void write_dot(const NetworkFile& f, std::ostream& out);
// {"nodes": [{"did", "hops", "citation_count", "year", "title"}...], "edges": [[citing, cited]...],
//  "total": nodes there are, "truncated": whether a limit kept fewer}
void write_json(const RefgroveData& d, const NetworkFile& f, std::ostream& out);

}  // namespace refgrove

#endif  // REFGROVE_TOOLS_NETWORK_FORMATS_H_
