// Clusters of a small set: the four graphs worked out by hand, what
// describes each cluster, timelines, and one clustering shared by threads.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <thread>
#include <vector>

#include "core/data_view.h"
#include "fronts/clusters.h"
#include "testing/test_documents.h"

namespace {

using namespace refgrove;

TestDocument doc(int did, int year, std::vector<int> cited, std::vector<std::string> title,
                 std::vector<std::string> authors) {
  TestDocument t;
  t.did = did;
  t.year = year;
  for (const int c : cited) t.citations.push_back(CitationInfo{0, c});
  t.title = std::move(title);
  t.authors = std::move(authors);
  return t;
}

// Two groups citing within themselves: DIDs 10-15 on graphs (1990-1995,
// authors A and B), DIDs 20-25 on indexes (2000-2004 and one without a
// year, authors C and D); DID 15 cites 20 as the one link between them.
// "of" is in every title, "the" in more than half.
DataDirBuilder two_fronts() {
  DataDirBuilder b;
  b.add(doc(10, 1990, {}, {"graph", "of", "the", "walks"}, {"A"}));
  b.add(doc(11, 1991, {10}, {"graph", "of", "the", "cuts"}, {"A", "B"}));
  b.add(doc(12, 1992, {10, 11}, {"graph", "of", "the", "colouring"}, {"B"}));
  b.add(doc(13, 1993, {10, 11, 12}, {"spectral", "graph", "of", "the", "partitioning"}, {"A"}));
  b.add(doc(14, 1994, {10, 12, 13}, {"graph", "of", "the", "walks"}, {"B", "A"}));
  b.add(doc(15, 1995, {11, 13, 14, 20}, {"graph", "of", "the", "flows"}, {"A"}));
  b.add(doc(20, 2000, {}, {"inverted", "index", "of", "the", "text"}, {"C"}));
  b.add(doc(21, 2001, {20}, {"index", "of", "compression"}, {"C", "D"}));
  b.add(doc(22, 2002, {20, 21}, {"suffix", "index", "of", "text"}, {"D"}));
  b.add(doc(23, 2003, {20, 21, 22}, {"index", "of", "merging"}, {"C"}));
  b.add(doc(24, 2004, {20, 22, 23}, {"index", "of", "text", "search"}, {"D", "C"}));
  b.add(doc(25, -1, {21, 23, 24}, {"index", "of", "caching"}, {"C"}));
  return b;
}

class ClustersTest : public ::testing::Test {
 protected:
  void SetUp() override {
    two_fronts().write(dir_.path());
    StreamCapture capture;
    data_ = std::make_unique<RefgroveData>(dir_.path());
  }
  std::shared_ptr<const Clustering> of(ClusterGraphKind graph) const {
    ClusterOptions o;
    o.graph = graph;
    return Clustering::of(*data_, o);
  }
  TempDir dir_;
  std::unique_ptr<RefgroveData> data_;
};

// The links of a cluster graph as (item, item, weight) triples, each once.
std::set<std::tuple<int, int, double>> links(const ClusterGraph& c) {
  std::set<std::tuple<int, int, double>> all;
  for (std::int32_t v = 0; v < c.graph.size(); ++v)
    for (auto e = c.graph.offsets[static_cast<std::size_t>(v)]; e < c.graph.offsets[static_cast<std::size_t>(v) + 1];
         ++e) {
      const std::int32_t u = c.graph.targets[static_cast<std::size_t>(e)];
      if (v < u)
        all.insert({c.items[static_cast<std::size_t>(v)], c.items[static_cast<std::size_t>(u)],
                    c.graph.weights[static_cast<std::size_t>(e)]});
    }
  return all;
}

TEST(ClusterGraphs, WorkedOutByHand) {
  // Nodes 0..4. 0 and 1 cite each other; 2 cites 0, 1 and itself; 3 cites
  // 0 and 1; 4 cites nothing and is cited by no one.
  DataDirBuilder b;
  b.add(doc(0, 1990, {1}, {}, {"A", "B"}));
  b.add(doc(1, 1990, {0}, {}, {"B"}));
  b.add(doc(2, 1991, {0, 1, 2}, {}, {"A", "B", "C"}));
  b.add(doc(3, 1992, {0, 1}, {}, {"C"}));
  b.add(doc(4, 1993, {}, {}, {}));
  TempDir dir;
  b.write(dir.path());
  StreamCapture capture;
  const RefgroveData d(dir.path());
  const CitationGraph& g = CitationGraph::of(d);

  const ClusterGraph citation = citation_cluster_graph(g);
  EXPECT_EQ(citation.items, (std::vector<std::int32_t>{0, 1, 2, 3, 4}));
  EXPECT_EQ(links(citation),
            (std::set<std::tuple<int, int, double>>{{0, 1, 2}, {0, 2, 1}, {0, 3, 1}, {1, 2, 1}, {1, 3, 1}}));

  // Co-cited: 0 and 1 by 2 and 3 (2); 2, citing itself, with 0 and with 1
  // by 2 (1).
  const struct {
    std::int32_t min_citations, min_weight;
    std::vector<std::int32_t> items;
    std::set<std::tuple<int, int, double>> links;
  } cocitation[] = {
      {1, 1, {0, 1, 2}, {{0, 1, 2}, {0, 2, 1}, {1, 2, 1}}},
      {1, 2, {0, 1, 2}, {{0, 1, 2}}},
      {2, 1, {0, 1}, {{0, 1, 2}}},
      {0, 1, {0, 1, 2, 3, 4}, {{0, 1, 2}, {0, 2, 1}, {1, 2, 1}}},
      {4, 1, {}, {}},
  };
  for (const auto& c : cocitation) {
    SCOPED_TRACE("cocitation " + std::to_string(c.min_citations) + " " + std::to_string(c.min_weight));
    const ClusterGraph got = cocitation_cluster_graph(g, c.min_citations, c.min_weight);
    EXPECT_EQ(got.items, c.items);
    EXPECT_EQ(links(got), c.links);
  }
  // Coupled: 2 and 3 share 0 and 1 (2); 0 and 2 share 1; 1 and 2 share 0;
  // 0 and 3 share 1; 1 and 3 share 0; 2 alone cites 2.
  const ClusterGraph coupling = coupling_cluster_graph(g, 1, 1);
  EXPECT_EQ(coupling.items, (std::vector<std::int32_t>{0, 1, 2, 3}));
  EXPECT_EQ(links(coupling),
            (std::set<std::tuple<int, int, double>>{{0, 2, 1}, {0, 3, 1}, {1, 2, 1}, {1, 3, 1}, {2, 3, 2}}));
  EXPECT_EQ(links(coupling_cluster_graph(g, 3, 1)), (std::set<std::tuple<int, int, double>>{}));

  // Authors by id in order of first appearance: A 0, B 1, C 2.
  const ClusterGraph coauthor = coauthor_cluster_graph(CoauthorGraph::of(d));
  EXPECT_EQ(coauthor.items, (std::vector<std::int32_t>{0, 1, 2}));
  EXPECT_EQ(links(coauthor), (std::set<std::tuple<int, int, double>>{{0, 1, 2}, {0, 2, 1}, {1, 2, 1}}));
}

TEST_F(ClustersTest, TwoFrontsDescribed) {
  const auto c = of(ClusterGraphKind::citation);
  ASSERT_EQ(c->clusters().size(), 2u);
  EXPECT_EQ(std::vector<std::int32_t>(c->members().begin(), c->members().end()),
            (std::vector<std::int32_t>{10, 11, 12, 13, 14, 15, 20, 21, 22, 23, 24, 25}));
  // Equal sizes: the cluster with the smallest member first.
  for (const std::int32_t did : {10, 11, 12, 13, 14, 15}) EXPECT_EQ(c->cluster_of(did), 0) << did;
  for (const std::int32_t did : {20, 21, 22, 23, 24, 25}) EXPECT_EQ(c->cluster_of(did), 1) << did;
  EXPECT_EQ(c->cluster_of(16), -1);
  const Cluster& graphs = c->clusters()[0];
  const Cluster& indexes = c->clusters()[1];
  EXPECT_EQ(graphs.size, 6);
  EXPECT_EQ(graphs.documents, 6);
  EXPECT_EQ(graphs.first_year, 1990);
  EXPECT_EQ(graphs.last_year, 1995);
  EXPECT_EQ(indexes.first_year, 2000);
  EXPECT_EQ(indexes.last_year, 2004);
  // Citation counts 10: 4, 11: 3, 12: 2, 13: 2, 14: 1; 20: 5, 21: 3, ...
  EXPECT_EQ(graphs.top, (std::vector<std::int32_t>{10, 11, 12, 13, 14}));
  EXPECT_EQ(indexes.top.front(), 20);
  // "graph" is in every title of the first, "index" of the second; "of"
  // and "the" are in more than half of all titles; then "walks" (twice)
  // and "text" (three times) before the words of one title.
  EXPECT_EQ(graphs.label, (std::vector<std::string>{"graph", "walks", "colouring"}));
  EXPECT_EQ(indexes.label, (std::vector<std::string>{"index", "text", "caching"}));
  EXPECT_NEAR(graphs.modularity + indexes.modularity, c->modularity(), 1e-12);
  EXPECT_NEAR(c->modularity(), c->quality(), 1e-12);
  EXPECT_GT(c->modularity(), 0.4);
}

TEST_F(ClustersTest, TimelinesOfACluster) {
  const auto c = of(ClusterGraphKind::citation);
  EXPECT_EQ(cluster_documents_by_year(*data_, *c, 1),
            (Timeline{{2000, 1}, {2001, 1}, {2002, 1}, {2003, 1}, {2004, 1}}));
  // Citations of the first cluster's documents by year of the citing one,
  // 15's citation of 20 counting for the second.
  EXPECT_EQ(cluster_citations_by_year(*data_, *c, 0),
            (Timeline{{1991, 1}, {1992, 2}, {1993, 3}, {1994, 3}, {1995, 3}}));
  EXPECT_EQ(cluster_citations_by_year(*data_, *c, 1),
            (Timeline{{1995, 1}, {2001, 1}, {2002, 2}, {2003, 3}, {2004, 3}}));
  EXPECT_THROW(cluster_citations_by_year(*data_, *c, 2), NetworkArgumentError);
  EXPECT_THROW(cluster_documents_by_year(*data_, *c, -1), NetworkArgumentError);
}

TEST_F(ClustersTest, OtherGraphs) {
  const auto authors = of(ClusterGraphKind::coauthor);
  ASSERT_EQ(authors->clusters().size(), 2u);
  EXPECT_EQ(authors->members().size(), 4u);
  // A and B wrote the graph papers, C and D the index papers.
  EXPECT_EQ(authors->clusters()[0].label.front(), "graph");
  EXPECT_EQ(authors->clusters()[0].documents, 6);
  for (const ClusterGraphKind kind : {ClusterGraphKind::cocitation, ClusterGraphKind::coupling}) {
    const auto c = of(kind);
    EXPECT_NE(c->cluster_of(22), -1) << to_text(kind);
    EXPECT_EQ(c->cluster_of(22), c->cluster_of(23)) << to_text(kind);
    EXPECT_NE(c->cluster_of(22), c->cluster_of(13)) << to_text(kind);
  }
}

TEST_F(ClustersTest, OptionsAndSharing) {
  ClusterOptions bad;
  bad.resolution = -1;
  EXPECT_THROW(Clustering::of(*data_, bad), NetworkArgumentError);
  bad.resolution = 1;
  bad.min_weight = 0;
  EXPECT_THROW(Clustering::of(*data_, bad), NetworkArgumentError);
  EXPECT_THROW(cluster_graph_from_text("cites"), NetworkArgumentError);
  EXPECT_THROW(cluster_quality_from_text("potts"), NetworkArgumentError);
  for (const char* text : {"citation", "cocitation", "coupling", "coauthor"})
    EXPECT_STREQ(to_text(cluster_graph_from_text(text)), text);

  // CPM at a resolution above every weight leaves every document alone.
  ClusterOptions cpm;
  cpm.quality = ClusterQuality::cpm;
  cpm.resolution = 3;
  EXPECT_EQ(Clustering::of(*data_, cpm)->clusters().size(), 12u);

  // Threads asking at once get the one clustering.
  std::vector<std::shared_ptr<const Clustering>> got(8);
  std::vector<std::thread> threads;
  for (auto& slot : got) threads.emplace_back([&] { slot = of(ClusterGraphKind::cocitation); });
  for (std::thread& t : threads) t.join();
  for (const auto& c : got) EXPECT_EQ(c.get(), got.front().get());
}

}  // namespace
