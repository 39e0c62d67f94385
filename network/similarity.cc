#include "network/similarity.h"

#include <algorithm>

#include "network/citation_graph.h"
#include "network/node_marks.h"

namespace refgrove {

const char* to_text(SimilarBy by) { return by == SimilarBy::cocitation ? "cocitation" : "coupling"; }

SimilarBy similar_by_from_text(const std::string& text) {
  for (const SimilarBy by : {SimilarBy::cocitation, SimilarBy::coupling})
    if (text == to_text(by)) return by;
  throw NetworkArgumentError("unknown similarity \"" + text + "\" (cocitation or coupling)");
}

// Two steps from X: to the documents citing it and on to what they cite
// (co-citation), or to what it cites and on to the documents citing that
// (coupling). Adjacency lists hold no duplicates, so each step counts one
// distinct shared document.
std::vector<SimilarDocument> similar(const RefgroveData& d, std::int32_t did, SimilarBy by, std::int64_t k) {
  const CitationGraph& g = CitationGraph::of(d);
  const std::int32_t x = g.require_node(did);
  const bool cocitation = by == SimilarBy::cocitation;
  NodeMarks& counts = NodeMarks::fresh(static_cast<std::size_t>(g.size()));
  std::vector<std::int32_t> found;
  for (const std::int32_t shared : cocitation ? g.citing(x) : g.cited(x)) {
    for (const std::int32_t y : cocitation ? g.cited(shared) : g.citing(shared)) {
      if (y == x) continue;
      if (counts.marked(0, y)) {
        ++counts.value_ref(0, y);
      } else {
        counts.mark(0, y, 1);
        found.push_back(y);
      }
    }
  }
  const auto better = [&](std::int32_t a, std::int32_t b) {
    const std::int32_t ca = counts.value(0, a), cb = counts.value(0, b);
    return ca != cb ? ca > cb : a < b;
  };
  const auto n = static_cast<std::size_t>(std::clamp<std::int64_t>(k, 0, static_cast<std::int64_t>(found.size())));
  std::partial_sort(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(n), found.end(), better);
  std::vector<SimilarDocument> top;
  for (std::size_t i = 0; i < n; ++i) top.push_back({g.did(found[i]), counts.value(0, found[i])});
  return top;
}

}  // namespace refgrove
