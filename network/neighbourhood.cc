#include "network/neighbourhood.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string>

#include "network/node_marks.h"

namespace refgrove {
namespace {

void require_not_negative(std::int64_t value, const char* what) {
  if (value < 0) throw NetworkArgumentError(std::string(what) + " must not be negative, not " + std::to_string(value));
}

// Sorts nodes by citation count descending, then by node (DID order), on
// keys that hold both.
void sort_by_citations(const CitationGraph& g, std::vector<std::int32_t>::iterator first,
                       std::vector<std::int32_t>::iterator last) {
  std::vector<std::uint64_t> keys;
  keys.reserve(static_cast<std::size_t>(last - first));
  for (auto it = first; it != last; ++it) g.prefetch_node(*it);
  for (auto it = first; it != last; ++it) {
    const auto fewer = static_cast<std::uint64_t>(INT32_MAX - g.citation_count(*it));
    keys.push_back(fewer << 32 | static_cast<std::uint32_t>(*it));
  }
  std::sort(keys.begin(), keys.end());
  for (const std::uint64_t key : keys) *first++ = static_cast<std::int32_t>(key & 0xffffffffu);
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
// level is cut, by citation count. Membership is kept in NodeBits, which
// stay in the cache while the citations among the kept nodes are looked up.
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
  seen.insert(centre);
  const auto limit = static_cast<std::size_t>(options.limit);
  for (std::int64_t hops = 1; hops <= options.hops && kept.size() < limit; ++hops) {
    const std::size_t level_start = level_starts[level_starts.size() - 2], level_end = kept.size();
    // The level's lists are asked for all at once, so that their misses
    // overlap; sort_by_citations has asked for the nodes already.
    for (std::size_t i = level_start; i < level_end; ++i) g.prefetch_neighbours(kept[i], options.direction);
    for (std::size_t i = level_start; i < level_end; ++i) {
      g.for_each_neighbour(kept[i], options.direction, [&](std::int32_t w) {
        if (seen.contains(w)) return;
        seen.insert(w);
        kept.push_back(w);
      });
    }
    if (kept.size() == level_end) break;
    sort_by_citations(g, kept.begin() + static_cast<std::ptrdiff_t>(level_end), kept.end());
    level_starts.push_back(kept.size());
  }
  for (std::size_t i = std::min(limit, kept.size()); i < kept.size(); ++i) seen.remove(kept[i]);
  if (kept.size() > limit) kept.resize(limit);

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
