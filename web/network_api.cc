#include "web/network_api.h"

#include <limits>
#include <vector>

#include "core/json_fields.h"
#include "network/citation_graph.h"
#include "network/distance.h"
#include "network/similarity.h"
#include "web/api_params.h"

namespace refgrove::web {
namespace {

constexpr int kSimilarShown = 10;

// The node of a document that must have a citation record.
std::int32_t require_node(const RefgroveData& d, int did) {
  require_document(d, did);
  const std::int32_t node = CitationGraph::of(d).node(did);
  if (node < 0) throw ApiError(404, "DID " + std::to_string(did) + " has no citation record");
  return node;
}

Json with_figures(const RefgroveData& d, int did) {
  Json paper = paper_ref(d, did);
  paper[field::citation_count] = citation_count(d, did);
  paper[field::pagerank] = pagerank(d, did);
  return paper;
}

Json similar_list(const RefgroveData& d, int did, SimilarBy by) {
  Json list = Json::array();
  for (const SimilarDocument& s : similar(d, did, by, kSimilarShown)) {
    Json paper = paper_ref(d, s.did);
    paper[field::score] = s.count;
    list.push_back(std::move(paper));
  }
  return list;
}

}  // namespace

void add_network_figures(const RefgroveData& d, int did, Json& paper) {
  const CitationGraph& graph = CitationGraph::of(d);
  const std::int32_t node = graph.node(did);
  Json cited_by = Json::array();
  Json similar = {{field::cocitation, Json::array()}, {field::coupling, Json::array()}};
  paper[field::citation_count] = 0;
  paper[field::pagerank] = nullptr;
  if (node >= 0) {
    for (const std::int32_t citing : graph.citing(node)) cited_by.push_back(paper_ref(d, graph.did(citing)));
    paper[field::citation_count] = graph.citation_count(node);
    paper[field::pagerank] = pagerank(d, did);
    similar = {{field::cocitation, similar_list(d, did, SimilarBy::cocitation)},
               {field::coupling, similar_list(d, did, SimilarBy::coupling)}};
  }
  paper[field::cited_by] = std::move(cited_by);
  paper[field::similar] = std::move(similar);
}

Json neighbourhood_json(const RefgroveData& d, int did, const NeighbourhoodOptions& options) {
  require_node(d, did);
  const Neighbourhood n = neighbourhood(d, did, options);
  // The walk stops at the limit: only a full answer may have been cut.
  auto total = static_cast<std::int64_t>(n.nodes.size());
  if (total == options.limit) {
    NeighbourhoodOptions all = options;
    all.limit = std::numeric_limits<std::int64_t>::max();
    all.edges = false;
    total = static_cast<std::int64_t>(neighbourhood(d, did, all).nodes.size());
  }
  Json nodes = Json::array();
  for (const NeighbourNode& node : n.nodes) {
    Json paper = paper_ref(d, node.did);
    paper[field::citation_count] = citation_count(d, node.did);
    paper[field::hops] = node.hops;
    nodes.push_back(std::move(paper));
  }
  Json links = Json::array();
  for (const CitationEdge& e : n.edges) links.push_back({{field::source, e.citing}, {field::target, e.cited}});
  const bool truncated = total > static_cast<std::int64_t>(n.nodes.size());
  return {{field::center, did},
          {field::nodes, std::move(nodes)},
          {field::links, std::move(links)},
          {field::total, total},
          {field::truncated, truncated}};
}

Json path_json(const RefgroveData& d, int from, int to) {
  require_author(d, from);
  require_author(d, to);
  Json answer = {{field::from, from},
                 {field::to, to},
                 {field::distance, nullptr},
                 {field::path, Json::array()},
                 {field::papers, Json::array()}};
  const std::optional<CollaborationPath> path = collaboration_path(d, from, to);
  if (!path) return answer;
  answer[field::distance] = path->documents.size();
  for (const std::int32_t author : path->authors) answer[field::path].push_back(author_ref(d, author));
  for (const std::int32_t did : path->documents) answer[field::papers].push_back(paper_ref(d, did));
  return answer;
}

Json rank_json(const RefgroveData& d, RankBy by, int limit, std::optional<YearRange> years) {
  Json papers = Json::array();
  const std::vector<RankedDocument> all = ranked(d, by, std::numeric_limits<std::int64_t>::max(), years);
  for (std::size_t i = 0; i < all.size() && i < static_cast<std::size_t>(limit); ++i) {
    papers.push_back(with_figures(d, all[i].did));
  }
  Json range = years ? Json{{field::from, years->from}, {field::to, years->to}} : Json();
  const bool truncated = all.size() > papers.size();
  return {{field::by, to_text(by)},
          {field::years, std::move(range)},
          {field::papers, std::move(papers)},
          {field::total, all.size()},
          {field::truncated, truncated}};
}

}  // namespace refgrove::web
