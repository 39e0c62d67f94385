#include "network/neighbourhood.h"

#include <algorithm>
#include <string>

#include "network/node_marks.h"

namespace refgrove {
namespace {

void require_not_negative(std::int64_t value, const char* what) {
  if (value < 0) throw NetworkArgumentError(std::string(what) + " must not be negative, not " + std::to_string(value));
}

}  // namespace

// A breadth-first walk level by level. Nodes are ordered by hops first, so
// once the levels walked hold `limit` nodes, the walk stops: only the last
// level is cut, by citation count.
Neighbourhood neighbourhood(const RefgroveData& d, std::int32_t did, const NeighbourhoodOptions& options) {
  require_not_negative(options.hops, "the hop count");
  require_not_negative(options.limit, "the limit");
  const CitationGraph& g = CitationGraph::of(d);
  const std::int32_t centre = g.require_node(did);
  Neighbourhood result;
  if (options.limit == 0) return result;

  NodeMarks& marks = NodeMarks::fresh(static_cast<std::size_t>(g.size()));
  std::vector<std::int32_t> kept = {centre};  // nodes, in result order
  marks.mark(0, centre, 0);
  const auto limit = static_cast<std::size_t>(options.limit);
  std::size_t level_start = 0;
  for (std::int32_t hops = 1; hops <= options.hops && kept.size() < limit; ++hops) {
    const std::size_t level_end = kept.size();
    for (std::size_t i = level_start; i < level_end; ++i) {
      g.for_each_neighbour(kept[i], options.direction, [&](std::int32_t w) {
        if (marks.marked(0, w)) return;
        marks.mark(0, w, hops);
        kept.push_back(w);
      });
    }
    if (kept.size() == level_end) break;
    const auto level = kept.begin() + static_cast<std::ptrdiff_t>(level_end);
    std::sort(level, kept.end(), [&](std::int32_t a, std::int32_t b) {
      const std::int32_t ca = g.citation_count(a), cb = g.citation_count(b);
      return ca != cb ? ca > cb : a < b;
    });
    level_start = level_end;
  }
  if (kept.size() > limit) kept.resize(limit);

  for (const std::int32_t v : kept) {
    result.nodes.push_back({g.did(v), marks.value(0, v)});
    marks.mark(1, v, 0);
  }
  std::vector<std::int32_t> by_did = kept;
  std::sort(by_did.begin(), by_did.end());
  for (const std::int32_t v : by_did)
    for (const std::int32_t w : g.cited(v))
      if (marks.marked(1, w)) result.edges.push_back({g.did(v), g.did(w)});
  return result;
}

}  // namespace refgrove
