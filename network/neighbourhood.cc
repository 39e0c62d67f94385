#include "network/neighbourhood.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "network/node_marks.h"

namespace refgrove {
namespace {

void require_not_negative(std::int64_t value, const char* what) {
  if (value < 0) throw NetworkArgumentError(std::string(what) + " must not be negative, not " + std::to_string(value));
}

// Orders a ring's keys (CitationGraph::ring_key). When only the first
// `wanted` of them are kept, sorts those alone and takes the others out of
// `seen`.
void order_ring(std::vector<std::uint64_t>& keys, std::size_t wanted, NodeBits& seen) {
  if (keys.size() > wanted) {
    const auto cut = keys.begin() + static_cast<std::ptrdiff_t>(wanted);
    std::nth_element(keys.begin(), cut, keys.end());
    for (auto it = cut; it != keys.end(); ++it) seen.remove(CitationGraph::node_of_ring_key(*it));
    keys.erase(cut, keys.end());
  }
  std::sort(keys.begin(), keys.end());
}

// The citations from `nodes` (ascending, already asked for with
// prefetch_node) to members of `kept`, by citing then cited node.
std::vector<CitationEdge> citations_among(const CitationGraph& g, const std::vector<std::int32_t>& nodes,
                                          const NodeBits& kept) {
  for (const std::int32_t v : nodes) g.prefetch_cited(v);
  std::vector<CitationEdge> edges;
  for (const std::int32_t v : nodes)
    for (const std::int32_t w : g.cited(v))
      if (kept.contains(w)) edges.push_back({g.did(v), g.did(w)});
  return edges;
}

}  // namespace

// A breadth-first walk level by level. Nodes are ordered by hops first, so
// once the levels walked hold `limit` nodes, the walk stops: only the last
// level is cut, by citation count. A ring is ordered on the keys that the
// lists of the ring before hold, without visiting its nodes. Membership is
// kept in NodeBits, which stay in the cache while the citations among the
// kept nodes are looked up.
Neighbourhood neighbourhood(const RefgroveData& d, std::int32_t did, const NeighbourhoodOptions& options) {
  require_not_negative(options.hops, "the hop count");
  require_not_negative(options.limit, "the limit");
  const CitationGraph& g = CitationGraph::of(d);
  const std::int32_t centre = g.require_node(did);
  Neighbourhood result;
  if (options.limit == 0) return result;

  NodeBits& seen = NodeBits::take(static_cast<std::size_t>(g.size()));
  std::vector<std::int32_t> kept = {centre};  // nodes, in result order
  std::vector<std::size_t> level_starts = {0, 1};
  std::vector<std::uint64_t> ring;
  seen.insert(centre);
  const auto limit = static_cast<std::size_t>(options.limit);
  for (std::int64_t hops = 1; hops <= options.hops && kept.size() < limit; ++hops) {
    const std::size_t level_start = level_starts[level_starts.size() - 2], level_end = kept.size();
    // The level's lists are asked for all at once, so that their misses
    // overlap.
    for (std::size_t i = level_start; i < level_end; ++i) g.prefetch_node(kept[i]);
    for (std::size_t i = level_start; i < level_end; ++i) g.prefetch_neighbours(kept[i], options.direction);
    ring.clear();
    for (std::size_t i = level_start; i < level_end; ++i) {
      g.for_each_neighbour_key(kept[i], options.direction, [&](std::uint64_t key) {
        const std::int32_t w = CitationGraph::node_of_ring_key(key);
        if (seen.contains(w)) return;
        seen.insert(w);
        ring.push_back(key);
      });
    }
    if (ring.empty()) break;
    order_ring(ring, limit - kept.size(), seen);
    for (const std::uint64_t key : ring) kept.push_back(CitationGraph::node_of_ring_key(key));
    level_starts.push_back(kept.size());
  }

  for (const std::int32_t v : kept) g.prefetch_did(v);
  std::int32_t hops = 0;
  for (std::size_t i = 0; i < kept.size(); ++i) {
    while (i >= level_starts[static_cast<std::size_t>(hops) + 1]) ++hops;
    result.nodes.push_back({g.did(kept[i]), hops});
  }
  if (options.edges) {
    std::vector<std::int32_t> by_did = kept;
    std::sort(by_did.begin(), by_did.end());
    result.edges = citations_among(g, by_did, seen);
  }
  for (const std::int32_t v : kept) seen.remove(v);
  return result;
}

}  // namespace refgrove
