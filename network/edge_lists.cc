#include "network/edge_lists.h"

#include <algorithm>

#include "network/coauthor_graph.h"
#include "network/node_marks.h"

namespace refgrove {
namespace {

struct CitationEdgeList {
  std::vector<CitationEdge> edges;
};

}  // namespace

const std::vector<CitationEdge>& citation_edges(const RefgroveData& d) {
  const CitationGraph& g = CitationGraph::of(d);
  return d.derived()
      .get<CitationEdgeList>([&] {
        CitationEdgeList list;
        list.edges.reserve(static_cast<std::size_t>(g.edge_count()));
        for (std::int32_t v = 0; v < g.size(); ++v)
          for (const std::int32_t w : g.cited(v)) list.edges.push_back({g.did(v), g.did(w)});
        return list;
      })
      .edges;
}

// Each author's co-authors are collected through the documents they share,
// marked once each, and sorted.
std::vector<CoauthorLink> coauthor_links(const RefgroveData& d) {
  const CoauthorGraph& coauthors = CoauthorGraph::of(d);
  std::vector<CoauthorLink> links;
  std::vector<std::int32_t> others;
  for (std::int32_t a = 0; a < coauthors.author_count(); ++a) {
    NodeMarks& seen = NodeMarks::fresh(static_cast<std::size_t>(coauthors.author_count()));
    others.clear();
    for (const std::int32_t v : coauthors.documents(a)) {
      for (const std::int32_t b : coauthors.authors(v)) {
        if (b <= a || seen.marked(0, b)) continue;
        seen.mark(0, b, 0);
        others.push_back(b);
      }
    }
    std::sort(others.begin(), others.end());
    for (const std::int32_t b : others) links.push_back({a, b});
  }
  return links;
}

}  // namespace refgrove
