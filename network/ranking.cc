#include "network/ranking.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <sstream>

#include "network/citation_graph.h"

namespace refgrove {
namespace {

// The bound on the L1 distance of the scores to the exact ones, below the
// promised 1e-9 per score, with room for rounding.
constexpr double kMaxError = 1e-10;

struct PageRankOfSet {
  std::vector<double> scores;
};

}  // namespace

const std::vector<double>& pagerank_scores(const RefgroveData& d) {
  const CitationGraph& g = CitationGraph::of(d);
  return d.derived().get<PageRankOfSet>([&] { return PageRankOfSet{compute_pagerank(g).scores}; }).scores;
}

namespace {

double score_of(const RefgroveData& d, RankBy by, std::int32_t v) {
  if (by == RankBy::citations) return CitationGraph::of(d).citation_count(v);
  return pagerank_scores(d)[static_cast<std::size_t>(v)];
}

// All nodes, best first: by score descending, then by node (which is DID
// order).
template <RankBy By>
struct RankOrder {
  std::vector<std::int32_t> nodes;
};

template <RankBy By>
const std::vector<std::int32_t>& rank_order(const RefgroveData& d) {
  const CitationGraph& g = CitationGraph::of(d);
  return d.derived()
      .get<RankOrder<By>>([&] {
        RankOrder<By> order;
        order.nodes.resize(static_cast<std::size_t>(g.size()));
        std::iota(order.nodes.begin(), order.nodes.end(), 0);
        std::vector<double> score(order.nodes.size());
        for (const std::int32_t v : order.nodes) score[static_cast<std::size_t>(v)] = score_of(d, By, v);
        std::stable_sort(order.nodes.begin(), order.nodes.end(), [&](std::int32_t a, std::int32_t b) {
          return score[static_cast<std::size_t>(a)] > score[static_cast<std::size_t>(b)];
        });
        return order;
      })
      .nodes;
}

}  // namespace

const char* to_text(RankBy by) { return by == RankBy::citations ? "citations" : "pagerank"; }

RankBy rank_by_from_text(const std::string& text) {
  for (const RankBy by : {RankBy::citations, RankBy::pagerank})
    if (text == to_text(by)) return by;
  throw NetworkArgumentError("unknown ranking \"" + text + "\" (citations or pagerank)");
}

// PageRank x is y / sum(y) for the solution y of y = 1 + a A y, where A
// spreads each node's value over the nodes it cites: summing the PageRank
// equation shows that its teleport and dangling terms together are one
// scalar per node, the same for all, which the normalisation fixes. The
// system is solved by Gauss-Seidel sweeps in descending DID order: papers
// mostly cite older papers, which have smaller DIDs, so a sweep mostly
// reads values already updated in it, and on an acyclic network one sweep
// solves it. Each sweep is followed by the residual r = 1 + a A y - y,
// which bounds the error: |y* - y|_1 <= |r|_1 / (1 - a).
PageRankScores compute_pagerank(const CitationGraph& g, double damping) {
  if (!(damping >= 0.0 && damping <= kMaxPageRankDamping)) {
    std::ostringstream message;
    message << "damping " << damping << " is outside 0 to " << kMaxPageRankDamping;
    throw NetworkArgumentError(message.str());
  }
  const auto n = static_cast<std::size_t>(g.size());
  PageRankScores result;
  if (n == 0) return result;
  std::vector<double> y(n, 1.0);
  std::vector<double> share(n);  // y[u] / out-degree of u, 0 for a node citing nothing
  std::vector<double> inverse_degree(n);
  for (std::size_t u = 0; u < n; ++u) {
    const auto degree = g.cited(static_cast<std::int32_t>(u)).size();
    inverse_degree[u] = degree == 0 ? 0.0 : 1.0 / static_cast<double>(degree);
    share[u] = inverse_degree[u];
  }
  const auto incoming = [&](std::size_t v) {
    double sum = 0.0;
    for (const std::int32_t u : g.citing(static_cast<std::int32_t>(v))) sum += share[static_cast<std::size_t>(u)];
    return 1.0 + damping * sum;
  };
  for (;;) {
    for (std::size_t v = n; v-- > 0;) {
      y[v] = incoming(v);
      share[v] = y[v] * inverse_degree[v];
    }
    ++result.iterations;
    double residual = 0.0, total = 0.0;
    for (std::size_t v = 0; v < n; ++v) {
      residual += std::fabs(incoming(v) - y[v]);
      total += y[v];
    }
    // x = y / total moves by at most twice y's error over total.
    if (2.0 * residual / (1.0 - damping) / total <= kMaxError) {
      for (double& value : y) value /= total;
      break;
    }
  }
  result.scores = std::move(y);
  return result;
}

std::int32_t citation_count(const RefgroveData& d, std::int32_t did) {
  const CitationGraph& g = CitationGraph::of(d);
  return g.citation_count(g.require_node(did));
}

double pagerank(const RefgroveData& d, std::int32_t did) {
  return score_of(d, RankBy::pagerank, CitationGraph::of(d).require_node(did));
}

std::vector<RankedDocument> ranked(const RefgroveData& d, RankBy by, std::int64_t k, std::optional<YearRange> years) {
  if (years && years->from > years->to)
    throw NetworkArgumentError("reversed year range " + std::to_string(years->from) + "-" + std::to_string(years->to));
  const CitationGraph& g = CitationGraph::of(d);
  const std::vector<std::int32_t>& order =
      by == RankBy::citations ? rank_order<RankBy::citations>(d) : rank_order<RankBy::pagerank>(d);
  std::vector<RankedDocument> top;
  for (const std::int32_t v : order) {
    if (static_cast<std::int64_t>(top.size()) >= k) break;
    if (years && (g.year(v) < years->from || g.year(v) > years->to)) continue;
    top.push_back({g.did(v), score_of(d, by, v)});
  }
  return top;
}

}  // namespace refgrove
