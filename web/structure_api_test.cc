// The explorer's answers about the structure of the field (the overview,
// the clusters, one cluster, an author's impact) on the served sample,
// checked against counts made here from the C operations.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <set>

#include "core/data_view.h"
#include "fronts/author_impact.h"
#include "fronts/clusters.h"
#include "fronts/main_path.h"
#include "web/cluster_api.h"
#include "web/served_sample_test.h"

namespace refgrove::web {
namespace {

using JsonValue = nlohmann::json;

// The status and the JSON body of a GET.
std::pair<int, JsonValue> fetch(const std::string& path) {
  const Reply reply = get(path);
  return {reply.status, reply.status ? reply.json() : JsonValue()};
}

JsonValue fetch_ok(const std::string& path) {
  auto [status, body] = fetch(path);
  EXPECT_EQ(status, 200) << path << ": " << body;
  return body;
}

int year_of(int did) {
  int year = -1;
  get_year(sample().data(), did, &year);
  return year;
}

// The distinct documents `did` cites that have a graph record.
std::set<int> cited_dids(int did) {
  const RefgroveData& d = sample().data();
  std::set<int> cited;
  int n = 0;
  cite_count(d, did, &n);
  for (int i = 0, to = 0, gid = 0; i < n; ++i) {
    if (get_cite(d, did, i, &to, &gid) && has_graph_info(d, to)) cited.insert(to);
  }
  return cited;
}

// The distinct documents citing `did`.
int citing_count(int did) {
  int n = 0;
  cited_by_count(sample().data(), did, &n);
  std::set<int> citing;
  for (int i = 0, from = 0; i < n; ++i) citing.insert((get_cited_by(sample().data(), did, i, &from), from));
  return static_cast<int>(citing.size());
}

std::vector<int> graph_dids() {
  int end = 0;
  last_did(sample().data(), &end);
  std::vector<int> dids;
  for (int did = 0; did < end; ++did)
    if (has_graph_info(sample().data(), did)) dids.push_back(did);
  return dids;
}

std::shared_ptr<const Clustering> clustering() { return Clustering::of(sample().data(), explorer_cluster_options()); }

TEST(StructureApi, OverviewCountsEveryDatedDocumentAndCitationOnce) {
  std::map<int, std::pair<int, int>> expected;  // year -> documents, citations made
  for (const int did : graph_dids()) {
    if (year_of(did) < 0) continue;
    ++expected[year_of(did)].first;
    expected[year_of(did)].second += static_cast<int>(cited_dids(did).size());
  }
  std::map<int, std::pair<int, int>> answered;
  const JsonValue overview = fetch_ok("/api/overview");
  for (const JsonValue& row : overview.at("years"))
    answered[row.at("year")] = {row.at("documents"), row.at("citations")};
  EXPECT_EQ(answered, expected);
}

TEST(StructureApi, OverviewListsAreBestFirstAndSayWhenCut) {
  const RefgroveData& d = sample().data();
  const auto authors = static_cast<int>(author_impacts(d).size());
  const auto documents = static_cast<int>(graph_dids().size());
  for (const int limit : {1, 10, 1000}) {
    SCOPED_TRACE("limit " + std::to_string(limit));
    const JsonValue o = fetch_ok("/api/overview?limit=" + std::to_string(limit));
    const JsonValue& papers = o.at("most_cited").at("papers");
    EXPECT_EQ(papers.size(), std::min(limit, documents));
    EXPECT_EQ(o.at("most_cited").at("total"), documents);
    EXPECT_EQ(o.at("most_cited").at("truncated"), limit < documents);
    for (std::size_t i = 0; i < papers.size(); ++i) {
      const int did = papers[i].at("did");
      EXPECT_EQ(papers[i].at("citation_count"), citing_count(did)) << "DID " << did;
      if (i > 0) {
        EXPECT_GE(papers[i - 1].at("citation_count"), papers[i].at("citation_count"));
      }
    }
    const JsonValue& top = o.at("top_authors").at("authors");
    EXPECT_EQ(top.size(), std::min(limit, authors));
    EXPECT_EQ(o.at("top_authors").at("truncated"), limit < authors);
    for (std::size_t i = 1; i < top.size(); ++i) {
      const auto key = [](const JsonValue& a) { return std::pair(-a.at("h_index").get<int>(), a.at("id").get<int>()); };
      EXPECT_LT(key(top[i - 1]), key(top[i])) << "best first, ties by id";
    }
  }
}

TEST(StructureApi, ClusterMapLinksWeighTheCitationsBetweenClusters) {
  const std::shared_ptr<const Clustering> c = clustering();
  std::map<std::pair<int, int>, int> expected;
  for (const int did : graph_dids()) {
    for (const int cited : cited_dids(did)) {
      const int a = c->cluster_of(did), b = c->cluster_of(cited);
      if (a != b) ++expected[std::minmax(a, b)];
    }
  }
  const JsonValue map = fetch_ok("/api/clusters?limit=1000");
  ASSERT_EQ(map.at("clusters").size(), c->clusters().size());
  EXPECT_FALSE(map.at("truncated"));
  for (std::size_t id = 0; id < c->clusters().size(); ++id) {
    EXPECT_EQ(map["clusters"][id].at("id"), id);
    EXPECT_EQ(map["clusters"][id].at("size"), c->clusters()[id].size);
    EXPECT_EQ(map["clusters"][id].at("label"), c->clusters()[id].label);
  }
  std::map<std::pair<int, int>, int> answered;
  for (const JsonValue& l : map.at("links")) answered[{l.at("source"), l.at("target")}] = l.at("weight");
  EXPECT_EQ(answered, expected);
  ASSERT_GT(c->clusters().size(), 1u) << "the sample has several fronts";

  for (std::size_t limit = 1; limit < c->clusters().size(); ++limit) {
    const JsonValue cut = fetch_ok("/api/clusters?limit=" + std::to_string(limit));
    EXPECT_EQ(cut.at("clusters").size(), limit);
    std::map<std::pair<int, int>, int> among_listed;  // no link to a cluster not listed
    for (const auto& [pair, weight] : expected)
      if (pair.second < static_cast<int>(limit)) among_listed[pair] = weight;
    answered.clear();
    for (const JsonValue& l : cut.at("links")) answered[{l.at("source"), l.at("target")}] = l.at("weight");
    EXPECT_EQ(answered, among_listed) << "limit " << limit;
    EXPECT_EQ(cut.at("total"), c->clusters().size());
    EXPECT_TRUE(cut.at("truncated"));
  }
}

TEST(StructureApi, EveryClusterPageHoldsItsMembersTheirCitationsAndItsPartOfTheMainPath) {
  const std::shared_ptr<const Clustering> c = clustering();
  const std::vector<std::int32_t> path = main_path_dids(sample().data());
  std::set<int> seen;
  for (std::size_t id = 0; id < c->clusters().size(); ++id) {
    SCOPED_TRACE("cluster " + std::to_string(id));
    const JsonValue page = fetch_ok("/api/cluster/" + std::to_string(id) + "?limit=1000");
    std::set<int> members;
    std::map<int, int> per_year;
    for (const JsonValue& m : page.at("members")) {
      const int did = m.at("did");
      EXPECT_EQ(c->cluster_of(did), static_cast<int>(id)) << "DID " << did;
      EXPECT_EQ(m.at("citation_count"), citing_count(did)) << "DID " << did;
      EXPECT_TRUE(seen.insert(did).second) << "DID " << did << " in two clusters";
      members.insert(did);
      if (year_of(did) >= 0) ++per_year[year_of(did)];
    }
    EXPECT_EQ(page.at("total"), c->clusters()[id].size);
    EXPECT_EQ(members.size(), c->clusters()[id].size);
    std::map<int, int> timeline;
    for (const JsonValue& row : page.at("timeline")) timeline[row.at("year")] = row.at("documents");
    EXPECT_EQ(timeline, per_year);
    std::set<std::pair<int, int>> links, citations;
    for (const JsonValue& l : page.at("links")) links.emplace(l.at("source").get<int>(), l.at("target").get<int>());
    for (const int did : members)
      for (const int cited : cited_dids(did))
        if (cited != did && members.count(cited)) citations.emplace(did, cited);
    EXPECT_EQ(links, citations);
    std::vector<int> on_path;
    for (const int did : path)
      if (members.count(did)) on_path.push_back(did);
    EXPECT_EQ(page.at("main_path").get<std::vector<int>>(), on_path);
    std::vector<int> top;
    for (const JsonValue& p : page.at("top")) top.push_back(p.at("did"));
    EXPECT_EQ(top, std::vector<int>(c->clusters()[id].top.begin(), c->clusters()[id].top.end()));
  }
  EXPECT_EQ(seen.size(), graph_dids().size());
}

// A cut page keeps the main path's documents first, then the most cited.
TEST(StructureApi, ACutClusterPageKeepsTheMainPathFirst) {
  const std::shared_ptr<const Clustering> c = clustering();
  for (std::size_t id = 0; id < c->clusters().size(); ++id) {
    const JsonValue page = fetch_ok("/api/cluster/" + std::to_string(id) + "?limit=2");
    const JsonValue& members = page.at("members");
    EXPECT_EQ(members.size(), std::min(2, c->clusters()[id].size));
    EXPECT_EQ(page.at("truncated"), c->clusters()[id].size > 2);
    const std::vector<int> on_path = page.at("main_path");
    for (std::size_t i = 0; i < members.size() && i < on_path.size(); ++i)
      EXPECT_NE(std::find(on_path.begin(), on_path.end(), members[i].at("did").get<int>()), on_path.end())
          << "cluster " << id << " member " << i;
    if (on_path.empty() && members.size() == 2) {
      EXPECT_GE(members[0].at("citation_count"), members[1].at("citation_count")) << "cluster " << id;
    }
  }
}

TEST(StructureApi, EveryAuthorsImpactIsCountedFromTheirPapers) {
  const RefgroveData& d = sample().data();
  for (int id = 0; id < get_nb_authors(d); ++id) {
    SCOPED_TRACE("author " + std::to_string(id));
    std::set<int> papers;
    int n = 0;
    author_doc_count(d, id, &n);
    for (int i = 0, did = 0; i < n; ++i)
      if (get_author_doc(d, id, i, &did) && has_graph_info(d, did)) papers.insert(did);
    std::vector<int> counts;
    std::map<int, int> by_year;
    int citations = 0;
    for (const int did : papers) {
      counts.push_back(citing_count(did));
      citations += counts.back();
      cited_by_count(d, did, &n);
      std::set<int> citing;
      for (int i = 0, from = 0; i < n; ++i) citing.insert((get_cited_by(d, did, i, &from), from));
      for (const int from : citing)
        if (year_of(from) >= 0) ++by_year[year_of(from)];
    }
    std::sort(counts.rbegin(), counts.rend());
    int h = 0;
    while (h < static_cast<int>(counts.size()) && counts[static_cast<std::size_t>(h)] > h) ++h;
    const JsonValue a = fetch_ok("/api/author/" + std::to_string(id) + "/impact");
    EXPECT_EQ(a.at("h_index"), h);
    EXPECT_EQ(a.at("documents"), papers.size());
    EXPECT_EQ(a.at("citations"), citations);
    std::map<int, int> answered;
    for (const JsonValue& row : a.at("citations_by_year")) answered[row.at("year")] = row.at("citations");
    EXPECT_EQ(answered, by_year);
  }
}

TEST(StructureApi, BadParametersAndUnknownIdsAreOneLineErrors) {
  const struct {
    std::string path;
    int status;
  } cases[] = {
      {"/api/overview?limit=0", 400},     {"/api/overview?limit=1001", 400},
      {"/api/clusters?limit=x", 400},     {"/api/cluster/x", 400},
      {"/api/cluster/-1", 400},           {"/api/cluster/2147483648", 400},
      {"/api/cluster/1000000", 404},      {"/api/cluster/0?limit=0", 400},
      {"/api/author/x/impact", 400},      {"/api/author/1000000/impact", 404},
      {"/api/author/0/impact/more", 404}, {"/api/cluster/0/", 404},
  };
  for (const auto& c : cases) {
    const auto [status, body] = fetch(c.path);
    EXPECT_EQ(status, c.status) << c.path;
    EXPECT_TRUE(body.is_object() && body.size() == 1 && body.contains("error")) << c.path << ": " << body;
  }
}

}  // namespace
}  // namespace refgrove::web
