// The C operations over the global data set: the same answers as the
// analyses they wrap, lists cut to the caller's capacity with their total
// returned, -1 for bad arguments, and the same answers from many threads at
// once.
#include "refgrove/network.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <thread>
#include <vector>

#include "network/distance.h"
#include "network/neighbourhood.h"
#include "network/ranking.h"
#include "network/similarity.h"
#include "testing/data_files.h"
#include "testing/test_documents.h"

namespace refgrove {

namespace {

class NetworkCInterfaceTest : public LoadedDataTest {
 protected:
  void SetUp() override {
    preprocess_sample(dir_.path());
    load_quietly(dir_.path());
    int last = 0;
    refgrove_last_did_1(&last);
    for (int did = 0; did < last; ++did)
      if (refgrove_has_graph_info_1(did)) dids_.push_back(did);
    ASSERT_GT(dids_.size(), 5u);
  }
  std::vector<int> dids_;
};

TEST_F(NetworkCInterfaceTest, AgreesWithTheAnalyses) {
  const RefgroveData& d = *refgrove_data;
  for (const int did : dids_) {
    int n = -1;
    double score = -1;
    ASSERT_EQ(refgrove_citation_count_1(did, &n), 1);
    EXPECT_EQ(n, citation_count(d, did));
    ASSERT_EQ(refgrove_pagerank_1(did, &score), 1);
    EXPECT_EQ(score, pagerank(d, did));
    for (const int direction : {REFGROVE_DIRECTION_OUT, REFGROVE_DIRECTION_BOTH}) {
      const auto expected =
          citation_distance(d, dids_[0], did, direction == REFGROVE_DIRECTION_OUT ? Direction::out : Direction::both);
      EXPECT_EQ(refgrove_citation_distance_1(dids_[0], did, direction), expected.value_or(-1)) << did;
    }
    const Neighbourhood hood = neighbourhood(d, did, {2, Direction::both, 100});
    std::vector<int> got(hood.nodes.size() + 1, -7), hops(hood.nodes.size() + 1, -7);
    ASSERT_EQ(refgrove_neighbourhood_1(did, 2, REFGROVE_DIRECTION_BOTH, 100, 1, got.data(), hops.data()),
              static_cast<int>(hood.nodes.size()));
    EXPECT_EQ(got[0], did);
    EXPECT_EQ(got[1], -7) << "written beyond the room";
    ASSERT_EQ(refgrove_neighbourhood_edges_1(did, 2, REFGROVE_DIRECTION_BOTH, 100, 0, nullptr, nullptr),
              static_cast<int>(hood.edges.size()));
    const auto all_similar = similar(d, did, SimilarBy::coupling, INT_MAX);
    std::vector<int> similar_dids(3), counts(3);
    ASSERT_EQ(refgrove_similar_1(did, REFGROVE_BY_COUPLING, 3, similar_dids.data(), counts.data()),
              static_cast<int>(all_similar.size()));
    for (std::size_t i = 0; i < std::min<std::size_t>(3, all_similar.size()); ++i)
      EXPECT_EQ(similar_dids[i], all_similar[i].did);
  }
  std::vector<int> dids(5);
  std::vector<double> scores(5);
  ASSERT_EQ(refgrove_ranked_1(REFGROVE_BY_PAGERANK, INT_MIN, INT_MAX, 5, dids.data(), scores.data()),
            static_cast<int>(dids_.size()));
  EXPECT_EQ(dids[0], ranked(d, RankBy::pagerank, 1)[0].did);
  int path[9] = {};
  const int length = refgrove_collaboration_path_1(0, 0, 9, path);
  EXPECT_EQ(length, 1);
  EXPECT_EQ(refgrove_collaboration_distance_1(0, 0), 0);
  EXPECT_EQ(refgrove_author_distance_1(0, 1), 0.0) << "the module's own placeholder keeps its answer";
  EXPECT_GT(refgrove_component_count_1(), 0);
  EXPECT_GT(refgrove_author_component_count_1(), 0);
}

TEST_F(NetworkCInterfaceTest, BadArgumentsAreRefused) {
  int n = 77, id = 77, size = 77;
  double score = 77;
  int items[4];
  double scores[4];
  for (const int did : {-1, INT_MAX, INT_MIN}) {
    EXPECT_EQ(refgrove_citation_count_1(did, &n), -1);
    EXPECT_EQ(refgrove_pagerank_1(did, &score), -1);
    EXPECT_EQ(refgrove_component_1(did, &id, &size), -1);
    EXPECT_EQ(refgrove_citation_distance_1(did, dids_[0], REFGROVE_DIRECTION_OUT), -1);
    EXPECT_EQ(refgrove_neighbourhood_1(did, 1, REFGROVE_DIRECTION_BOTH, 10, 4, items, items), -1);
    EXPECT_EQ(refgrove_similar_1(did, REFGROVE_BY_COCITATION, 4, items, items), -1);
  }
  EXPECT_EQ(n, 77);
  EXPECT_EQ(refgrove_author_component_1(-1, &id, &size), -1);
  EXPECT_EQ(refgrove_collaboration_distance_1(0, INT_MAX), -1);
  EXPECT_EQ(refgrove_ranked_1(2, INT_MIN, INT_MAX, 4, items, scores), -1);
  EXPECT_EQ(refgrove_ranked_1(REFGROVE_BY_CITATIONS, 2000, 1999, 4, items, scores), -1);
  EXPECT_EQ(refgrove_similar_1(dids_[0], 5, 4, items, items), -1);
  EXPECT_EQ(refgrove_neighbourhood_1(dids_[0], 1, 3, 10, 4, items, items), -1);
  EXPECT_EQ(refgrove_neighbourhood_1(dids_[0], -1, REFGROVE_DIRECTION_BOTH, 10, 4, items, items), -1);
  EXPECT_EQ(refgrove_neighbourhood_1(dids_[0], INT_MAX, REFGROVE_DIRECTION_BOTH, 0, 4, items, items), 0);
}

// Every list operation, with arrays of too small a capacity, none, or a
// negative one: the total comes back whatever the capacity, and nothing is
// written beyond it.
TEST_F(NetworkCInterfaceTest, ListsRespectTheCapacity) {
  constexpr int kUnwritten = -7;
  const int did = dids_[0];
  int first[3], second[3];
  double scores[3];
  const struct {
    const char* name;
    std::function<int(int capacity, int* first, int* second, double* scores)> call;
  } lists[] = {
      {"ranked", [](int c, int* f, int*,
                    double* s) { return refgrove_ranked_1(REFGROVE_BY_CITATIONS, INT_MIN, INT_MAX, c, f, s); }},
      {"collaboration_path", [](int c, int* f, int*, double*) { return refgrove_collaboration_path_1(3, 14, c, f); }},
      {"neighbourhood",
       [&](int c, int* f, int* s, double*) {
         return refgrove_neighbourhood_1(did, 2, REFGROVE_DIRECTION_BOTH, 100, c, f, s);
       }},
      {"neighbourhood_edges",
       [&](int c, int* f, int* s, double*) {
         return refgrove_neighbourhood_edges_1(did, 2, REFGROVE_DIRECTION_BOTH, 100, c, f, s);
       }},
      {"similar",
       [&](int c, int* f, int* s, double*) { return refgrove_similar_1(did, REFGROVE_BY_COCITATION, c, f, s); }},
  };
  for (const auto& list : lists) {
    const int total = list.call(0, nullptr, nullptr, nullptr);
    EXPECT_GE(total, 0) << list.name << " with capacity 0";
    for (const int capacity : {1, 3}) {
      std::fill(std::begin(first), std::end(first), kUnwritten);
      std::fill(std::begin(second), std::end(second), kUnwritten);
      EXPECT_EQ(list.call(capacity, first, second, scores), total) << list.name << " with capacity " << capacity;
      for (int i = std::min(capacity, total); i < 3; ++i) {
        EXPECT_EQ(first[i], kUnwritten) << list.name << " with capacity " << capacity << " wrote item " << i;
        EXPECT_EQ(second[i], kUnwritten) << list.name << " with capacity " << capacity << " wrote item " << i;
      }
    }
    EXPECT_EQ(list.call(-1, first, second, scores), -1) << list.name << " with capacity -1";
  }
}

// Before any load every DID and author names nothing, and nothing ranks.
TEST(NetworkCInterfaceUnloaded, AnswersNothing) {
  ASSERT_EQ(refgrove_data, nullptr);
  int n = 0, id = 0, size = 0, items[2];
  double score = 0;
  EXPECT_EQ(refgrove_citation_count_1(0, &n), -1);
  EXPECT_EQ(refgrove_pagerank_1(0, &score), -1);
  EXPECT_EQ(refgrove_component_1(0, &id, &size), -1);
  EXPECT_EQ(refgrove_author_component_1(0, &id, &size), -1);
  EXPECT_EQ(refgrove_similar_1(0, REFGROVE_BY_COUPLING, 2, items, items), -1);
  EXPECT_EQ(refgrove_collaboration_distance_1(0, 0), -1);
  EXPECT_EQ(refgrove_ranked_1(REFGROVE_BY_PAGERANK, INT_MIN, INT_MAX, 0, nullptr, nullptr), 0);
  EXPECT_EQ(refgrove_component_count_1(), 0);
}

TEST_F(NetworkCInterfaceTest, ThreadsShareTheBuiltGraphs) {
  // A fresh load: the threads race to build everything on first use.
  load_quietly(dir_.path());
  const auto answers = [&] {
    std::vector<int> all;
    for (const int did : dids_) {
      int items[64];
      all.push_back(refgrove_neighbourhood_1(did, 2, REFGROVE_DIRECTION_BOTH, 64, 64, items, items));
      all.insert(all.end(), items, items + std::min(all.back(), 64));
      all.push_back(refgrove_similar_1(did, REFGROVE_BY_COCITATION, 64, items, items));
      all.push_back(refgrove_collaboration_distance_1(0, did % refgrove_get_nb_authors_1()));
      double score = 0;
      refgrove_pagerank_1(did, &score);
      all.push_back(static_cast<int>(score * 1e9));
    }
    return all;
  };
  std::vector<std::vector<int>> seen(4);
  std::vector<std::thread> threads;
  for (auto& s : seen) threads.emplace_back([&] { s = answers(); });
  for (auto& t : threads) t.join();
  for (const auto& s : seen) EXPECT_EQ(s, answers());
}

}  // namespace

}  // namespace refgrove
