// Main path analysis of the citation graph: search path count (SPC) weights
// and the global main path.
//
// The citations are read as edges from citing to cited document. A source is
// a document no one cites, a sink one citing nothing. The SPC weight of an
// edge is the number of paths from any source to any sink that pass through
// it; the global main path is the source-to-sink path with the largest sum of
// SPC weights (ties go to the path whose next step has the smallest node).
//
// Real data has citation cycles (a paper and its reply citing each other,
// self-citations), and path counts are only finite on an acyclic graph. So
// the graph is first condensed: every strongly connected component becomes
// one node, edges inside a component are dropped and parallel edges between
// two components become one. Counts, weights and paths are those of this
// condensed graph; a citation inside a component has weight 0, and a
// component on a path stands for all its documents, listed in ascending node
// (DID) order. Counts are kept as doubles: path counts grow exponentially
// with the depth of the graph, so on large sets they are approximate.
#ifndef REFGROVE_FRONTS_MAIN_PATH_H_
#define REFGROVE_FRONTS_MAIN_PATH_H_

#include <cstdint>
#include <span>
#include <vector>

#include "core/data_set.h"
#include "network/citation_graph.h"

namespace refgrove {

// The citation graph with its strongly connected components condensed, and
// the SPC weights of its edges.
class SearchPathCounts {
 public:
  // `cited` lists, for each node, the nodes it cites.
  explicit SearchPathCounts(const Adjacency& cited);
  explicit SearchPathCounts(const CitationGraph& g);

  // Built on first use for the set's citation graph.
  static const SearchPathCounts& of(const RefgroveData& d);

  std::int32_t component(std::int32_t node) const { return component_[static_cast<std::size_t>(node)]; }
  std::int32_t component_count() const { return dag_.size(); }
  // The SPC weight of the condensed edge from the component of `citing` to
  // that of `cited`: 0 when both are in one component or no citation links
  // the two components.
  double weight(std::int32_t citing, std::int32_t cited) const;
  // The number of source-to-sink paths of the condensed graph.
  double total_paths() const { return total_paths_; }

  // The global main path, as nodes from its source to its sink (each
  // component's nodes in ascending order), and its sum of weights.
  std::vector<std::int32_t> main_path() const;
  double main_path_weight() const { return main_path_weight_; }

  // The longest path (in citations between components) from `from` to `to`
  // following citations, as nodes as for main_path(); empty when `to` cannot
  // be reached from `from`.
  std::vector<std::int32_t> longest_path(std::int32_t from, std::int32_t to) const;

 private:
  template <class Cited>
  void build(std::int32_t nodes, Cited cited);
  void append_members(std::int32_t c, std::vector<std::int32_t>& out) const;
  std::vector<std::int32_t> expand(const std::vector<std::int32_t>& components) const;

  std::vector<std::int32_t> component_;  // node -> component
  Adjacency members_;                    // component -> its nodes, ascending
  // The condensed graph. Components are numbered so that every edge goes
  // from a higher to a lower number (the order in which Tarjan's algorithm
  // closes them), which is a topological order read backwards.
  Adjacency dag_;
  std::vector<double> edge_weight_;  // by position in dag_.items
  std::vector<double> best_;         // component -> best weight sum from it to a sink
  double total_paths_ = 0;
  double main_path_weight_ = 0;
};

// The global main path of the set as DIDs, source first.
std::vector<std::int32_t> main_path_dids(const RefgroveData& d);
// The longest citation path from `from` to `to` as DIDs; empty when there is
// none. Throws NetworkArgumentError for a DID without a graph record.
std::vector<std::int32_t> longest_path_dids(const RefgroveData& d, std::int32_t from, std::int32_t to);

}  // namespace refgrove

#endif  // REFGROVE_FRONTS_MAIN_PATH_H_
