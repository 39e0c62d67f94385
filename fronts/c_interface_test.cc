// The C operations of refgrove/fronts.h over the global data set: the same
// answers as the analyses they wrap, lists cut to the caller's capacity
// with their total returned, -1 for bad arguments.
#include "refgrove/fronts.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <vector>

#include "fronts/author_impact.h"
#include "fronts/clusters.h"
#include "fronts/main_path.h"
#include "refgrove/query.h"
#include "testing/data_files.h"
#include "testing/test_documents.h"

namespace refgrove {
namespace {

class FrontsCInterfaceTest : public LoadedDataTest {
 protected:
  void SetUp() override {
    preprocess_sample(dir_.path());
    load_quietly(dir_.path());
  }
};

TEST_F(FrontsCInterfaceTest, AgreesWithTheAnalyses) {
  const RefgroveData& d = *refgrove_data;
  refgrove_cluster_options options;
  refgrove_cluster_defaults_1(&options);
  for (const int graph :
       {REFGROVE_GRAPH_CITATION, REFGROVE_GRAPH_COCITATION, REFGROVE_GRAPH_COUPLING, REFGROVE_GRAPH_COAUTHOR}) {
    options.graph = graph;
    options.seed = 3;
    ClusterOptions expected_options;
    expected_options.graph = static_cast<ClusterGraphKind>(graph);
    expected_options.seed = 3;
    const auto expected = Clustering::of(d, expected_options);
    const int n = refgrove_clusters_1(&options, 0, nullptr, nullptr);
    ASSERT_EQ(n, static_cast<int>(expected->members().size())) << "graph " << graph;
    std::vector<int> members(n), clusters(n);
    ASSERT_EQ(refgrove_clusters_1(&options, n, members.data(), clusters.data()), n);
    for (int i = 0; i < n; ++i) {
      EXPECT_EQ(members[i], expected->members()[i]);
      EXPECT_EQ(clusters[i], expected->cluster_of_members()[i]);
    }
    std::vector<int> sizes(expected->clusters().size());
    ASSERT_EQ(refgrove_cluster_sizes_1(&options, static_cast<int>(sizes.size()), sizes.data()),
              static_cast<int>(sizes.size()));
    for (std::size_t c = 0; c < sizes.size(); ++c) EXPECT_EQ(sizes[c], expected->clusters()[c].size);
  }
  EXPECT_EQ(refgrove_clusters_1(nullptr, 0, nullptr, nullptr),
            static_cast<int>(Clustering::of(d, {})->members().size()));

  const std::vector<std::int32_t> path = main_path_dids(d);
  std::vector<int> got(path.size());
  ASSERT_EQ(refgrove_main_path_1(static_cast<int>(got.size()), got.data()), static_cast<int>(path.size()));
  EXPECT_EQ(std::vector<std::int32_t>(got.begin(), got.end()), path);

  const auto& impacts = author_impacts(d);
  for (std::size_t a = 0; a < impacts.size(); ++a)
    EXPECT_EQ(refgrove_h_index_1(static_cast<int>(a)), impacts[a].h_index);
  int ids[3];
  long long values[3];
  ASSERT_EQ(refgrove_author_ranked_1(REFGROVE_BY_AUTHOR_CITATIONS, 3, ids, values), static_cast<int>(impacts.size()));
  const auto best = ranked_authors(d, AuthorRankBy::citations, 3);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ids[i], best[i].author);

  const Timeline timeline = document_citations_by_year(d, 110);
  std::vector<int> years(timeline.size());
  std::vector<long long> counts(timeline.size());
  ASSERT_EQ(refgrove_citations_by_year_1(110, static_cast<int>(years.size()), years.data(), counts.data()),
            static_cast<int>(timeline.size()));
  for (std::size_t i = 0; i < timeline.size(); ++i) {
    EXPECT_EQ(years[i], timeline[i].first);
    EXPECT_EQ(counts[i], timeline[i].second);
  }
  EXPECT_EQ(refgrove_author_citations_by_year_1(3, 0, nullptr, nullptr),
            static_cast<int>(author_citations_by_year(d, 3).size()));
}

TEST_F(FrontsCInterfaceTest, BadArgumentsAreRefused) {
  refgrove_cluster_options defaults;
  refgrove_cluster_defaults_1(&defaults);
  const std::function<void(refgrove_cluster_options&)> bad_options[] = {
      [](refgrove_cluster_options& o) { o.graph = 4; },          [](refgrove_cluster_options& o) { o.graph = -1; },
      [](refgrove_cluster_options& o) { o.quality = 2; },        [](refgrove_cluster_options& o) { o.resolution = -1; },
      [](refgrove_cluster_options& o) { o.seed = -1; },          [](refgrove_cluster_options& o) { o.min_weight = 0; },
      [](refgrove_cluster_options& o) { o.min_citations = -1; }, [](refgrove_cluster_options& o) { o.iterations = -1; },
  };
  int items[4] = {77, 77, 77, 77};
  long long values[4];
  for (std::size_t i = 0; i < std::size(bad_options); ++i) {
    refgrove_cluster_options o = defaults;
    bad_options[i](o);
    EXPECT_EQ(refgrove_clusters_1(&o, 4, items, items), -1) << "bad option " << i;
    EXPECT_EQ(refgrove_cluster_sizes_1(&o, 4, items), -1) << "bad option " << i;
  }
  EXPECT_EQ(items[0], 77) << "nothing written";
  EXPECT_EQ(refgrove_clusters_1(&defaults, -1, items, items), -1);
  EXPECT_EQ(refgrove_main_path_1(-1, items), -1);
  for (const int author : {-1, INT_MAX}) {
    EXPECT_EQ(refgrove_h_index_1(author), -1);
    EXPECT_EQ(refgrove_author_citations_by_year_1(author, 4, items, values), -1);
  }
  for (const int did : {-1, 103, INT_MIN}) EXPECT_EQ(refgrove_citations_by_year_1(did, 4, items, values), -1);
  EXPECT_EQ(refgrove_author_ranked_1(3, 4, items, values), -1);
  EXPECT_EQ(items[0], 77);
}

// Capacity 1 writes one item and returns the whole total.
TEST_F(FrontsCInterfaceTest, ListsRespectTheCapacity) {
  int first[2] = {-7, -7}, second[2] = {-7, -7};
  long long values[2] = {-7, -7};
  const struct {
    const char* name;
    std::function<int(int capacity)> call;
  } lists[] = {
      {"clusters", [&](int c) { return refgrove_clusters_1(nullptr, c, first, second); }},
      {"cluster_sizes", [&](int c) { return refgrove_cluster_sizes_1(nullptr, c, first); }},
      {"main_path", [&](int c) { return refgrove_main_path_1(c, first); }},
      {"author_ranked", [&](int c) { return refgrove_author_ranked_1(REFGROVE_BY_H_INDEX, c, first, values); }},
      {"citations_by_year", [&](int c) { return refgrove_citations_by_year_1(110, c, first, values); }},
  };
  for (const auto& list : lists) {
    first[1] = -7;
    const int total = list.call(1);
    EXPECT_GT(total, 1) << list.name;
    EXPECT_NE(first[0], -7) << list.name;
    EXPECT_EQ(first[1], -7) << list.name << " wrote beyond its capacity";
  }
}

}  // namespace
}  // namespace refgrove
