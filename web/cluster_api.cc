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

// What a cluster's page lists, in its order.
struct ClusterPage {
  std::vector<std::int32_t> main_path;  // its DIDs on the main path, in the path's order
  std::vector<std::int32_t> listed;     // the first nodes of its members (see cluster_json)
  Timeline documents_by_year;
};

// The explorer's clustering of the citation graph, the citations between
// its clusters and what each cluster's page lists, kept with the set: they
// take passes over every citation and every member, too slow for a request.
struct ClusterMap {
  std::shared_ptr<const Clustering> clustering;
  std::vector<ClusterLink> links;  // by target, then source: those among the first n clusters come first
  std::vector<ClusterPage> pages;  // by cluster id
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
    return std::tie(a.target, a.source) < std::tie(b.target, b.source);
  });
  return links;
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

// The pages of all clusters. A page lists the cluster's nodes on the main
// path, then the most cited, ties by node (DID order); at most as many as a
// request may ask for.
std::vector<ClusterPage> cluster_pages(const RefgroveData& d, const CitationGraph& g, const Clustering& c) {
  std::vector<ClusterPage> pages(c.clusters().size());
  std::vector<bool> on_path(static_cast<std::size_t>(g.size()));
  for (const std::int32_t did : main_path_dids(d)) {
    pages[static_cast<std::size_t>(c.cluster_of(did))].main_path.push_back(did);
    on_path[static_cast<std::size_t>(g.node(did))] = true;
  }
  const auto first = [&](std::int32_t a, std::int32_t b) {
    const auto key = [&](std::int32_t v) {
      return std::tuple(!on_path[static_cast<std::size_t>(v)], -g.citation_count(v), v);
    };
    return key(a) < key(b);
  };
  for (std::size_t id = 0; id < pages.size(); ++id) {
    const auto cluster = static_cast<std::int32_t>(id);
    const std::span<const std::int32_t> nodes = c.document_nodes(cluster);
    std::vector<std::int32_t>& listed = pages[id].listed;
    listed.assign(nodes.begin(), nodes.end());
    const auto end = listed.begin() + std::min<std::ptrdiff_t>(kMaxLimit, std::ssize(listed));
    std::partial_sort(listed.begin(), end, listed.end(), first);
    listed.erase(end, listed.end());
    pages[id].documents_by_year = cluster_documents_by_year(d, c, cluster);
  }
  return pages;
}

const ClusterMap& cluster_map(const RefgroveData& d) {
  return d.derived().get<ClusterMap>([&] {
    const CitationGraph& g = CitationGraph::of(d);
    std::shared_ptr<const Clustering> c = Clustering::of(d, explorer_cluster_options());
    std::vector<ClusterLink> links = cluster_links(g, *c);
    std::vector<ClusterPage> pages = cluster_pages(d, g, *c);
    return ClusterMap{std::move(c), std::move(links), std::move(pages)};
  });
}

}  // namespace

ClusterOptions explorer_cluster_options() {
  ClusterOptions options;
  options.iterations = 2;
  return options;
}

void prepare_clusters(const RefgroveData& d) { cluster_map(d); }

Json clusters_json(const RefgroveData& d, int limit) {
  const ClusterMap& map = cluster_map(d);
  const std::vector<Cluster>& all = map.clustering->clusters();
  const auto shown = static_cast<std::int32_t>(std::min<std::size_t>(all.size(), static_cast<std::size_t>(limit)));
  Json clusters = Json::array();
  for (std::int32_t id = 0; id < shown; ++id) clusters.push_back(cluster_ref(id, all[static_cast<std::size_t>(id)]));
  Json links = Json::array();
  for (const ClusterLink& l : map.links) {
    if (l.target >= shown) break;
    links.push_back({{"source", l.source}, {"target", l.target}, {"weight", l.weight}});
  }
  return {{"modularity", map.clustering->modularity()},
          {"clusters", std::move(clusters)},
          {"links", std::move(links)},
          {"total", all.size()},
          {"truncated", static_cast<std::size_t>(shown) < all.size()}};
}

Json cluster_json(const RefgroveData& d, int id, int limit) {
  const ClusterMap& map = cluster_map(d);
  const Clustering& c = *map.clustering;
  if (static_cast<std::size_t>(id) >= c.clusters().size())
    throw ApiError(
        404, "no cluster has id " + std::to_string(id) + " (there are " + std::to_string(c.clusters().size()) + ")");
  const Cluster& cluster = c.clusters()[static_cast<std::size_t>(id)];
  const ClusterPage& page = map.pages[static_cast<std::size_t>(id)];
  const CitationGraph& g = CitationGraph::of(d);

  Json answer = cluster_ref(id, cluster);
  Json top = Json::array();
  for (const std::int32_t did : cluster.top) top.push_back(cited_paper(d, g, g.node(did)));
  answer["top"] = std::move(top);
  Json timeline = Json::array();
  for (const auto& [year, count] : page.documents_by_year) timeline.push_back({{"year", year}, {"documents", count}});
  answer["timeline"] = std::move(timeline);
  answer["main_path"] = page.main_path;

  std::vector<std::int32_t> listed(page.listed.begin(),
                                   page.listed.begin() + std::min<std::ptrdiff_t>(limit, std::ssize(page.listed)));
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
  answer["total"] = cluster.size;
  answer["truncated"] = limit < cluster.size;
  return answer;
}

}  // namespace refgrove::web
