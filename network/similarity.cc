#include "network/similarity.h"

#include <algorithm>
#include <cmath>

#include "network/citation_graph.h"
#include "network/node_marks.h"

namespace refgrove {

const char* to_text(SimilarBy by) { return by == SimilarBy::cocitation ? "cocitation" : "coupling"; }

SimilarBy similar_by_from_text(const std::string& text) {
  for (const SimilarBy by : {SimilarBy::cocitation, SimilarBy::coupling})
    if (text == to_text(by)) return by;
  throw NetworkArgumentError("unknown similarity \"" + text + "\" (cocitation or coupling)");
}

const char* to_text(SimilarMeasure measure) {
  switch (measure) {
    case SimilarMeasure::count:
      return "count";
    case SimilarMeasure::cosine:
      return "cosine";
    case SimilarMeasure::jaccard:
      return "jaccard";
  }
  return "";
}

SimilarMeasure similar_measure_from_text(const std::string& text) {
  for (const SimilarMeasure m : {SimilarMeasure::count, SimilarMeasure::cosine, SimilarMeasure::jaccard})
    if (text == to_text(m)) return m;
  throw NetworkArgumentError("unknown measure \"" + text + "\" (count, cosine or jaccard)");
}

// Two steps from X: to the documents citing it and on to what they cite
// (co-citation), or to what it cites and on to the documents citing that
// (coupling). Adjacency lists hold no duplicates, so each step counts one
// distinct shared document.
std::vector<SimilarDocument> similar(const RefgroveData& d, std::int32_t did, SimilarBy by, std::int64_t k,
                                     SimilarMeasure measure) {
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
  // The size of a document's list that the measure normalises by.
  const auto listed = [&](std::int32_t v) {
    return static_cast<double>(cocitation ? g.citing(v).size() : g.cited(v).size());
  };
  const double own = listed(x);
  std::vector<SimilarDocument> all;
  all.reserve(found.size());
  for (const std::int32_t y : found) {
    const std::int32_t count = counts.value(0, y);
    const double score = measure == SimilarMeasure::count    ? count
                         : measure == SimilarMeasure::cosine ? count / std::sqrt(own * listed(y))
                                                             : count / (own + listed(y) - count);
    all.push_back({g.did(y), count, score});
  }
  const auto better = [](const SimilarDocument& a, const SimilarDocument& b) {
    return a.score != b.score ? a.score > b.score : a.did < b.did;
  };
  const auto n = static_cast<std::size_t>(std::clamp<std::int64_t>(k, 0, static_cast<std::int64_t>(all.size())));
  std::partial_sort(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(n), all.end(), better);
  all.resize(n);
  return all;
}

}  // namespace refgrove
