#include "fronts/cluster_graphs.h"

#include <algorithm>

namespace refgrove {
namespace {

std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }

// Counts, for one node at a time, how often each other node is reached.
class Counts {
 public:
  explicit Counts(std::int32_t nodes) : count_(at(nodes), 0) {}
  void add(std::int32_t v) {
    if (count_[at(v)]++ == 0) touched_.push_back(v);
  }
  // Appends node `items` (the node counted for) to g: its links to the nodes
  // counted at least `min_weight` times, with their counts; then resets.
  void add_node_to(WeightedGraph& g, std::int32_t min_weight) {
    std::sort(touched_.begin(), touched_.end());
    neighbours_.clear();
    weights_.clear();
    for (const std::int32_t v : touched_) {
      if (count_[at(v)] >= min_weight) {
        neighbours_.push_back(v);
        weights_.push_back(count_[at(v)]);
      }
      count_[at(v)] = 0;
    }
    touched_.clear();
    g.add_node(neighbours_, weights_);
  }

 private:
  std::vector<std::int32_t> count_;
  std::vector<std::int32_t> touched_;
  std::vector<std::int32_t> neighbours_;
  std::vector<double> weights_;
};

// The graph over the citation-graph nodes that pass `keep`, linking two of
// them by the number of nodes `shared(v)` lists for both (v's own included);
// `through(x)` lists, for a shared node x, the nodes sharing it.
template <class Keep, class Shared, class Through>
ClusterGraph shared_links(const CitationGraph& g, Keep keep, Shared shared, Through through, std::int32_t min_weight) {
  ClusterGraph c;
  std::vector<std::int32_t> local(at(g.size()), -1);
  for (std::int32_t v = 0; v < g.size(); ++v) {
    if (!keep(v)) continue;
    local[at(v)] = static_cast<std::int32_t>(c.items.size());
    c.items.push_back(v);
  }
  Counts counts(static_cast<std::int32_t>(c.items.size()));
  for (std::size_t i = 0; i < c.items.size(); ++i) {
    const std::int32_t v = c.items[i];
    for (const std::int32_t x : shared(v))
      for (const std::int32_t u : through(x))
        if (u != v && local[at(u)] >= 0) counts.add(local[at(u)]);
    counts.add_node_to(c.graph, std::max(min_weight, 1));
  }
  return c;
}

}  // namespace

const char* to_text(ClusterGraphKind kind) {
  switch (kind) {
    case ClusterGraphKind::citation:
      return "citation";
    case ClusterGraphKind::cocitation:
      return "cocitation";
    case ClusterGraphKind::coupling:
      return "coupling";
    case ClusterGraphKind::coauthor:
      return "coauthor";
  }
  return "";
}

ClusterGraphKind cluster_graph_from_text(const std::string& text) {
  for (const ClusterGraphKind kind : {ClusterGraphKind::citation, ClusterGraphKind::cocitation,
                                      ClusterGraphKind::coupling, ClusterGraphKind::coauthor})
    if (text == to_text(kind)) return kind;
  throw NetworkArgumentError("unknown graph \"" + text + "\" (citation, cocitation, coupling or coauthor)");
}

// Both lists of a node are ascending, so merging them finds the documents
// citing it and cited by it at once.
ClusterGraph citation_cluster_graph(const CitationGraph& g) {
  ClusterGraph c;
  c.items.resize(at(g.size()));
  Counts counts(g.size());
  for (std::int32_t v = 0; v < g.size(); ++v) {
    c.items[at(v)] = v;
    for (const std::int32_t u : g.cited(v))
      if (u != v) counts.add(u);
    for (const std::int32_t u : g.citing(v))
      if (u != v) counts.add(u);
    counts.add_node_to(c.graph, 1);
  }
  return c;
}

ClusterGraph cocitation_cluster_graph(const CitationGraph& g, std::int32_t min_citations, std::int32_t min_weight) {
  return shared_links(
      g, [&](std::int32_t v) { return g.citation_count(v) >= min_citations; },
      [&](std::int32_t v) { return g.citing(v); }, [&](std::int32_t x) { return g.cited(x); }, min_weight);
}

ClusterGraph coupling_cluster_graph(const CitationGraph& g, std::int32_t min_citations, std::int32_t min_weight) {
  return shared_links(
      g, [&](std::int32_t v) { return static_cast<std::int32_t>(g.cited(v).size()) >= min_citations; },
      [&](std::int32_t v) { return g.cited(v); }, [&](std::int32_t x) { return g.citing(x); }, min_weight);
}

ClusterGraph coauthor_cluster_graph(const CoauthorGraph& authors) {
  ClusterGraph c;
  Counts counts(authors.author_count());
  for (std::int32_t a = 0; a < authors.author_count(); ++a) {
    c.items.push_back(a);
    for (const std::int32_t v : authors.documents(a))
      for (const std::int32_t b : authors.authors(v))
        if (b != a) counts.add(b);
    counts.add_node_to(c.graph, 1);
  }
  return c;
}

}  // namespace refgrove
