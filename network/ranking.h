// Ranking papers: by citation count and by PageRank.
//
// PageRank here has damping 0.85 (another can be asked for) and a uniform
// teleport; the rank of nodes without out-edges is spread uniformly over all
// nodes, so the scores sum to 1. It is iterated until every score is within
// 1e-9 of the fixed point.
#ifndef REFGROVE_NETWORK_RANKING_H_
#define REFGROVE_NETWORK_RANKING_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "graph/year_range.h"

namespace refgrove {

enum class RankBy { citations, pagerank };

// The text of a ranking ("citations", "pagerank") and back; from_text throws
// NetworkArgumentError for any other text.
const char* to_text(RankBy by);
RankBy rank_by_from_text(const std::string& text);

struct RankedDocument {
  std::int32_t did;
  double score;  // the citation count or the PageRank score
};

// The citation count (in-degree) and the PageRank score of a document.
// Throw NetworkArgumentError for a DID without a graph record.
std::int32_t citation_count(const RefgroveData& d, std::int32_t did);
double pagerank(const RefgroveData& d, std::int32_t did);

// The first k documents by score descending, then by ascending DID, among
// those whose year lies in `years` when given. Throws NetworkArgumentError
// for a reversed year range.
std::vector<RankedDocument> ranked(const RefgroveData& d, RankBy by, std::int64_t k,
                                   std::optional<YearRange> years = std::nullopt);

inline constexpr double kPageRankDamping = 0.85;
// The largest damping taken: the sweeps needed grow like 1 / (1 - damping).
inline constexpr double kMaxPageRankDamping = 0.99;

// The PageRank scores (damping 0.85) of all documents of `d`, by
// citation-graph node; computed on first use and kept with the set.
const std::vector<double>& pagerank_scores(const RefgroveData& d);

// The PageRank scores of all nodes of a citation graph (by node number), and
// the iterations that took. Throws NetworkArgumentError for a damping
// outside 0 .. kMaxPageRankDamping.
struct PageRankScores {
  std::vector<double> scores;
  int iterations = 0;
};
class CitationGraph;
PageRankScores compute_pagerank(const CitationGraph& g, double damping = kPageRankDamping);

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_RANKING_H_
