#include "tools/network_formats.h"

#include <nlohmann/json.hpp>

#include "core/document_text.h"
#include "core/json_fields.h"
#include "network/citation_graph.h"

namespace refgrove {

namespace {

NetworkNode node_of(const RefgroveData& d, const refgrove::CitationGraph& g, int did) {
  NetworkNode n;
  n.did = did;
  n.year = year_of(d, did);
  n.citations = g.citation_count(g.node(did));
  return n;
}

}  // namespace

NetworkFile whole_citation_graph(const RefgroveData& d) {
  const refgrove::CitationGraph& g = refgrove::CitationGraph::of(d);
  NetworkFile f;
  for (std::int32_t v = 0; v < g.size(); ++v) {
    f.nodes.push_back(node_of(d, g, g.did(v)));
    for (const std::int32_t w : g.cited(v)) f.edges.push_back({g.did(v), g.did(w)});
  }
  f.total = static_cast<std::int64_t>(f.nodes.size());
  return f;
}

NetworkFile neighbourhood_file(const RefgroveData& d, const refgrove::Neighbourhood& n, std::int64_t total) {
  const refgrove::CitationGraph& g = refgrove::CitationGraph::of(d);
  NetworkFile f;
  f.total = total;
  for (const refgrove::NeighbourNode& v : n.nodes) {
    f.nodes.push_back(node_of(d, g, v.did));
    f.nodes.back().hops = v.hops;
  }
  f.edges = n.edges;
  return f;
}

void write_graphml(const NetworkFile& f, std::ostream& out) {
  const bool hops = !f.nodes.empty() && f.nodes.front().hops;
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<graphml xmlns=\"http://graphml.graphdrawing.org/xmlns\">\n"
         "  <key id=\"year\" for=\"node\" attr.name=\"year\" attr.type=\"int\"/>\n"
         "  <key id=\"citations\" for=\"node\" attr.name=\"citations\" attr.type=\"int\"/>\n";
  if (hops) out << "  <key id=\"hops\" for=\"node\" attr.name=\"hops\" attr.type=\"int\"/>\n";
  out << "  <graph id=\"citations\" edgedefault=\"directed\">\n";
  for (const NetworkNode& n : f.nodes) {
    out << "    <node id=\"" << n.did << "\">";
    if (n.year) out << "<data key=\"year\">" << *n.year << "</data>";
    out << "<data key=\"citations\">" << n.citations << "</data>";
    if (n.hops) out << "<data key=\"hops\">" << *n.hops << "</data>";
    out << "</node>\n";
  }
  for (const refgrove::CitationEdge& e : f.edges)
    out << "    <edge source=\"" << e.citing << "\" target=\"" << e.cited << "\"/>\n";
  out << "  </graph>\n</graphml>\n";
}

void write_edge_list(const NetworkFile& f, std::ostream& out) {
  for (const refgrove::CitationEdge& e : f.edges) out << e.citing << "\t" << e.cited << "\n";
}

void write_dot(const NetworkFile& f, std::ostream& out) {
  out << "digraph citations {\n";
  for (const NetworkNode& n : f.nodes) {
    out << "  " << n.did << " [label=\"" << n.did;
    if (n.year) out << "\\n" << *n.year;
    out << "\"";
    if (n.hops == 0) out << ", style=bold";
    out << "];\n";
  }
  for (const refgrove::CitationEdge& e : f.edges) out << "  " << e.citing << " -> " << e.cited << ";\n";
  out << "}\n";
}

void write_json(const RefgroveData& d, const NetworkFile& f, std::ostream& out) {
  nlohmann::ordered_json nodes = nlohmann::ordered_json::array();
  for (const NetworkNode& n : f.nodes) {
    nodes.push_back({{field::did, n.did},
                     {field::hops, n.hops ? nlohmann::ordered_json(*n.hops) : nullptr},
                     {field::citation_count, n.citations},
                     {field::year, n.year ? nlohmann::ordered_json(*n.year) : nullptr},
                     {field::title, title_text(d, n.did)}});
  }
  nlohmann::ordered_json edges = nlohmann::ordered_json::array();
  for (const refgrove::CitationEdge& e : f.edges) edges.push_back({e.citing, e.cited});
  const nlohmann::ordered_json j = {{field::nodes, nodes},
                                    {field::edges, edges},
                                    {field::total, f.total},
                                    {field::truncated, f.total > static_cast<std::int64_t>(f.nodes.size())}};
  out << j.dump() << "\n";
}

}  // namespace refgrove
