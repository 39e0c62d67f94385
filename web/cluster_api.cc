#include "web/cluster_api.h"

#include <algorithm>
#include <memory>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "fronts/clusters.h"
#include "fronts/main_path.h"
#include "network/citation_graph.h"
#include "web/api_params.h"

namespace refgrove::web {
namespace {

struct ClusterLink {
  std::int32_t source;  // the smaller cluster id
  std::int32_t target;
  std::int64_t weight;  // citations either way
};

// The default clustering of the citation graph and the citations between
// its clusters, kept with the set: the links take a pass over every citation.
struct ClusterMap {
  std::shared_ptr<const Clustering> clustering;
  std::vector<ClusterLink> links;  // by source, then target
};

// The clustering of the citation graph has every node as a member, in node
// order, so a node's cluster is read by its number.
std::vector<ClusterLink> cluster_links(const CitationGraph& g, const Clustering& c) {
  const std::span<const std::int32_t> cluster_of_node = c.cluster_of_members();
  std::unordered_map<std::uint64_t, std::int64_t> weights;  // (source << 32 | target) -> citations
  for (std::int32_t v = 0; v < g.size(); ++v) {
    const std::int32_t from = cluster_of_node[static_cast<std::size_t>(v)];
    for (const std::int32_t w : g.cited(v)) {
      const std::int32_t to = cluster_of_node[static_cast<std::size_t>(w)];
      if (from == to) continue;
      const auto [source, target] = std::minmax(from, to);
      ++weights[static_cast<std::uint64_t>(source) << 32 | static_cast<std::uint32_t>(target)];
    }
  }
  std::vector<ClusterLink> links;
  for (const auto& [key, weight] : weights)
    links.push_back({static_cast<std::int32_t>(key >> 32), static_cast<std::int32_t>(key & 0xffffffffu), weight});
  std::sort(links.begin(), links.end(), [](const ClusterLink& a, const ClusterLink& b) {
    return std::tie(a.source, a.target) < std::tie(b.source, b.target);
  });
  return links;
}

const ClusterMap& cluster_map(const RefgroveData& d) {
  return d.derived().get<ClusterMap>([&] {
    std::shared_ptr<const Clustering> c = Clustering::of(d, explorer_cluster_options());
    std::vector<ClusterLink> links = cluster_links(CitationGraph::of(d), *c);
    return ClusterMap{std::move(c), std::move(links)};
  });
}

Json years_json(const Cluster& c) {
  return c.first_year < 0 ? Json() : Json{{"from", c.first_year}, {"to", c.last_year}};
}

Json cluster_ref(std::int32_t id, const Cluster& c) {
  return {{"id", id}, {"size", c.size}, {"label", c.label}, {"years", years_json(c)}};
}

Json cited_paper(const RefgroveData& d, const CitationGraph& g, std::int32_t node) {
  Json paper = paper_ref(d, g.did(node));
  paper["citation_count"] = g.citation_count(node);
  return paper;
}

// The nodes of a cluster's page: those on the main path, then the most
// cited, ties by node (DID order); at most `limit`.
std::vector<std::int32_t> listed_members(const CitationGraph& g, std::span<const std::int32_t> nodes,
                                         const std::vector<std::int32_t>& on_path, int limit) {
  std::vector<std::int32_t> listed(nodes.begin(), nodes.end());
  const auto first = [&](std::int32_t a, std::int32_t b) {
    const bool a_on = std::binary_search(on_path.begin(), on_path.end(), a);
    const bool b_on = std::binary_search(on_path.begin(), on_path.end(), b);
    if (a_on != b_on) return a_on;
    if (g.citation_count(a) != g.citation_count(b)) return g.citation_count(a) > g.citation_count(b);
    return a < b;
  };
  const auto end = listed.begin() + std::min<std::ptrdiff_t>(limit, static_cast<std::ptrdiff_t>(listed.size()));
  std::partial_sort(listed.begin(), end, listed.end(), first);
  listed.erase(end, listed.end());
  return listed;
}

}  // namespace

ClusterOptions explorer_cluster_options() {
  ClusterOptions options;
  options.iterations = 2;
  return options;
}

void prepare_clusters(const RefgroveData& d) {
  cluster_map(d);
  SearchPathCounts::of(d);
}

Json clusters_json(const RefgroveData& d, int limit) {
  const ClusterMap& map = cluster_map(d);
  const std::vector<Cluster>& all = map.clustering->clusters();
  const auto shown = static_cast<std::int32_t>(std::min<std::size_t>(all.size(), static_cast<std::size_t>(limit)));
  Json clusters = Json::array();
  for (std::int32_t id = 0; id < shown; ++id) clusters.push_back(cluster_ref(id, all[static_cast<std::size_t>(id)]));
  Json links = Json::array();
  for (const ClusterLink& l : map.links) {
    if (l.target < shown) links.push_back({{"source", l.source}, {"target", l.target}, {"weight", l.weight}});
  }
  return {{"modularity", map.clustering->modularity()},
          {"clusters", std::move(clusters)},
          {"links", std::move(links)},
          {"total", all.size()},
          {"truncated", static_cast<std::size_t>(shown) < all.size()}};
}

Json cluster_json(const RefgroveData& d, int id, int limit) {
  const Clustering& c = *cluster_map(d).clustering;
  if (static_cast<std::size_t>(id) >= c.clusters().size())
    throw ApiError(
        404, "no cluster has id " + std::to_string(id) + " (there are " + std::to_string(c.clusters().size()) + ")");
  const Cluster& cluster = c.clusters()[static_cast<std::size_t>(id)];
  const CitationGraph& g = CitationGraph::of(d);
  const std::span<const std::int32_t> nodes = c.document_nodes(id);

  Json answer = cluster_ref(id, cluster);
  Json top = Json::array();
  for (const std::int32_t did : cluster.top) top.push_back(cited_paper(d, g, g.node(did)));
  answer["top"] = std::move(top);
  Json timeline = Json::array();
  for (const auto& [year, count] : cluster_documents_by_year(d, c, id))
    timeline.push_back({{"year", year}, {"documents", count}});
  answer["timeline"] = std::move(timeline);

  Json path = Json::array();
  std::vector<std::int32_t> on_path;
  for (const std::int32_t did : main_path_dids(d)) {
    if (c.cluster_of(did) != id) continue;
    path.push_back(did);
    on_path.push_back(g.node(did));
  }
  std::sort(on_path.begin(), on_path.end());
  answer["main_path"] = std::move(path);

  std::vector<std::int32_t> listed = listed_members(g, nodes, on_path, limit);
  Json members = Json::array();
  for (const std::int32_t v : listed) members.push_back(cited_paper(d, g, v));
  std::sort(listed.begin(), listed.end());
  Json links = Json::array();
  for (const std::int32_t v : listed) {
    for (const std::int32_t w : g.cited(v)) {
      if (w != v && std::binary_search(listed.begin(), listed.end(), w))
        links.push_back({{"source", g.did(v)}, {"target", g.did(w)}});
    }
  }
  answer["members"] = std::move(members);
  answer["links"] = std::move(links);
  answer["total"] = nodes.size();
  answer["truncated"] = static_cast<std::size_t>(limit) < nodes.size();
  return answer;
}

}  // namespace refgrove::web
