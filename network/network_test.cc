// The analyses against brute-force answers worked out in the test, from
// what the forward queries say about the loaded set, on a table of small
// graphs.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "core/data_view.h"
#include "network/components.h"
#include "network/distance.h"
#include "network/edge_lists.h"
#include "network/neighbourhood.h"
#include "network/ranking.h"
#include "network/similarity.h"
#include "testing/test_documents.h"

namespace refgrove {

namespace {

constexpr int kNone = INT_MAX / 4;  // "unreachable" in the distance tables

TestDocument doc(int did, std::vector<int> cited, std::vector<std::string> authors, int year = 2000) {
  TestDocument t;
  t.did = did;
  t.year = year;
  for (const int c : cited) t.citations.push_back(CitationInfo{0, c});
  t.authors = std::move(authors);
  return t;
}

TestDocument words_only(int did) {
  TestDocument t = doc(did, {}, {});
  t.in_graph = false;
  return t;
}

// A set of 30 records citing at random among DIDs 0 .. 35 (some unknown),
// each by one to three of 12 authors.
std::vector<TestDocument> random_documents() {
  std::vector<TestDocument> docs;
  unsigned state = 12345;
  const auto next = [&](unsigned n) {
    state = state * 1103515245u + 12345u;
    return (state >> 16) % n;
  };
  for (int did = 0; did < 30; ++did) {
    std::vector<int> cited;
    for (unsigned i = next(4); i > 0; --i) cited.push_back(static_cast<int>(next(36)));
    std::vector<std::string> authors;
    for (unsigned i = 1 + next(3); i > 0; --i) authors.push_back("author" + std::to_string(next(12)));
    docs.push_back(doc(did, cited, authors, 1990 + static_cast<int>(next(10))));
  }
  return docs;
}

struct GraphCase {
  const char* name;
  std::vector<TestDocument> docs;
};

std::vector<GraphCase> graph_cases() {
  return {
      {"empty", {}},
      {"cycle and an isolated paper",
       {doc(1, {2}, {"A", "B"}, 1999), doc(2, {3}, {"B", "C"}), doc(3, {1}, {"C"}, 2001), doc(4, {}, {"D"})}},
      {"self-citations and duplicates",
       {doc(1, {1, 2, 2}, {"A", "A"}), doc(2, {3, 3}, {"B"}), doc(3, {1, 1, 3}, {"A", "B"})}},
      {"citations of unknown DIDs",
       {doc(1, {99, 7, -3, 2}, {"A"}), doc(2, {7}, {"B"}), words_only(7), doc(5, {2, 1}, {})}},
      {"shadowed record, authors on no record, unconnected authors",
       {doc(5, {6}, {"Ghost"}), doc(5, {}, {"X", "Y"}), doc(6, {5}, {"Z"}), doc(8, {6, 5}, {"Y", "W"})}},
      {"star",
       {doc(0, {}, {"H"}), doc(1, {0}, {"H"}), doc(2, {0, 1}, {"P"}), doc(3, {0, 1}, {"Q"}),
        doc(4, {0, 2, 3}, {"P", "Q"})}},
      {"random", random_documents()},
  };
}

// The two graphs as the forward queries describe them, with all-pairs
// distances by Floyd-Warshall.
struct Model {
  std::vector<int> dids;                // nodes, ascending
  std::set<std::pair<int, int>> edges;  // (citing, cited) DIDs
  std::map<int, int> year;
  int authors = 0;
  std::map<int, std::set<int>> doc_authors;  // DID -> author ids
  std::map<std::pair<int, int>, int> out_distance, both_distance, author_distance;

  explicit Model(const RefgroveData& d) {
    int last = 0;
    last_did(d, &last);
    for (int did = 0; did < last; ++did)
      if (has_graph_info(d, did)) dids.push_back(did);
    for (const int did : dids) {
      int n = 0, cited = 0, gid = 0;
      get_year(d, did, &year[did]);
      cite_count(d, did, &n);
      for (int i = 0; i < n; ++i) {
        get_cite(d, did, i, &cited, &gid);
        if (std::binary_search(dids.begin(), dids.end(), cited)) edges.insert({did, cited});
      }
      author_count(d, did, &n);
      for (int i = 0; i < n; ++i) {
        int a = 0;
        get_author_id(d, did, i, &a);
        doc_authors[did].insert(a);
      }
    }
    authors = get_nb_authors(d);
    std::vector<int> all_authors(static_cast<std::size_t>(authors));
    for (int a = 0; a < authors; ++a) all_authors[static_cast<std::size_t>(a)] = a;
    out_distance = floyd_warshall(dids, [&](int u, int v) { return edges.count({u, v}) > 0; });
    both_distance = floyd_warshall(dids, [&](int u, int v) { return edges.count({u, v}) + edges.count({v, u}) > 0; });
    author_distance = floyd_warshall(all_authors, [&](int a, int b) { return coauthors(a, b); });
  }

  bool coauthors(int a, int b) const {
    for (const auto& [did, as] : doc_authors)
      if (as.count(a) && as.count(b)) return true;
    return false;
  }
  int citations_of(int did) const {
    return static_cast<int>(std::count_if(edges.begin(), edges.end(), [&](auto e) { return e.second == did; }));
  }
  int distance(Direction dir, int from, int to) const {
    if (dir == Direction::both) return both_distance.at({from, to});
    return dir == Direction::out ? out_distance.at({from, to}) : out_distance.at({to, from});
  }

  template <class Linked>
  static std::map<std::pair<int, int>, int> floyd_warshall(const std::vector<int>& nodes, Linked linked) {
    std::map<std::pair<int, int>, int> dist;
    for (const int u : nodes)
      for (const int v : nodes) dist[{u, v}] = u == v ? 0 : linked(u, v) ? 1 : kNone;
    for (const int k : nodes)
      for (const int u : nodes)
        for (const int v : nodes) dist[{u, v}] = std::min(dist[{u, v}], dist[{u, k}] + dist[{k, v}]);
    return dist;
  }

  // PageRank as the solution of its linear system, by Gaussian elimination:
  // x = (1 - a)/n + a (sum over citing u of x_u / out(u) + sum over
  // dangling u of x_u / n).
  std::map<int, double> pagerank(double damping = 0.85) const {
    const std::size_t n = dids.size();
    std::vector<std::vector<double>> m(n, std::vector<double>(n + 1, 0.0));
    std::map<int, int> out;
    for (const auto& [u, v] : edges) ++out[u];
    for (std::size_t i = 0; i < n; ++i) {
      m[i][i] = 1.0;
      m[i][n] = (1.0 - damping) / static_cast<double>(n);
      for (std::size_t j = 0; j < n; ++j) {
        const int u = dids[j];
        if (out[u] == 0)
          m[i][j] -= damping / static_cast<double>(n);
        else if (edges.count({u, dids[i]}))
          m[i][j] -= damping / out[u];
      }
    }
    for (std::size_t c = 0; c < n; ++c) {
      std::size_t pivot = c;
      for (std::size_t r = c; r < n; ++r)
        if (std::fabs(m[r][c]) > std::fabs(m[pivot][c])) pivot = r;
      std::swap(m[c], m[pivot]);
      for (std::size_t r = 0; r < n; ++r) {
        if (r == c) continue;
        const double f = m[r][c] / m[c][c];
        for (std::size_t k = c; k <= n; ++k) m[r][k] -= f * m[c][k];
      }
    }
    std::map<int, double> x;
    for (std::size_t i = 0; i < n; ++i) x[dids[i]] = m[i][n] / m[i][i];
    return x;
  }
};

class NetworkTest : public ::testing::TestWithParam<GraphCase> {
 protected:
  void SetUp() override {
    DataDirBuilder builder;
    for (const TestDocument& t : GetParam().docs) builder.add(t);
    builder.write(dir_.path());
    StreamCapture capture;
    data_ = std::make_unique<RefgroveData>(dir_.path());
    model_ = std::make_unique<Model>(*data_);
  }
  const RefgroveData& d() const { return *data_; }
  // DIDs to try: the nodes and some that are not.
  std::vector<int> unknown_dids() const { return {-1, 99, INT_MAX, INT_MIN}; }

  TempDir dir_;
  std::unique_ptr<RefgroveData> data_;
  std::unique_ptr<Model> model_;
};

TEST_P(NetworkTest, CitationCountsAndRankings) {
  const Model& m = *model_;
  const std::map<int, double> expected_rank = m.pagerank();
  double sum = 0.0;
  for (const int did : m.dids) {
    EXPECT_EQ(citation_count(d(), did), m.citations_of(did)) << did;
    EXPECT_NEAR(pagerank(d(), did), expected_rank.at(did), 1e-9) << did;
    sum += pagerank(d(), did);
  }
  if (!m.dids.empty()) {
    EXPECT_NEAR(sum, 1.0, 1e-12);
  }
  for (const YearRange years : {YearRange{INT_MIN, INT_MAX}, YearRange{1995, 1999}, YearRange{2000, 2000}}) {
    for (const RankBy by : {RankBy::citations, RankBy::pagerank}) {
      std::vector<RankedDocument> expected;
      for (const int did : m.dids)
        if (m.year.at(did) >= years.from && m.year.at(did) <= years.to)
          expected.push_back({did, by == RankBy::citations ? m.citations_of(did) : expected_rank.at(did)});
      // Scores that differ only by rounding count as equal, as ties.
      std::stable_sort(expected.begin(), expected.end(), [](auto a, auto b) { return a.score > b.score + 1e-12; });
      for (const std::int64_t k : {std::int64_t{0}, std::int64_t{3}, std::int64_t{1000000000}}) {
        const std::vector<RankedDocument> got = ranked(d(), by, k, years);
        ASSERT_EQ(got.size(), std::min<std::size_t>(expected.size(), static_cast<std::size_t>(k)))
            << to_text(by) << " " << years.from << "-" << years.to << " k " << k;
        for (std::size_t i = 0; i < got.size(); ++i) {
          EXPECT_EQ(got[i].did, expected[i].did) << to_text(by) << " rank " << i;
          EXPECT_NEAR(got[i].score, expected[i].score, 1e-9) << to_text(by) << " rank " << i;
        }
      }
    }
  }
  EXPECT_THROW(ranked(d(), RankBy::citations, 5, YearRange{2001, 2000}), NetworkArgumentError);
  for (const int did : unknown_dids()) {
    EXPECT_THROW(citation_count(d(), did), NetworkArgumentError) << did;
    EXPECT_THROW(pagerank(d(), did), NetworkArgumentError) << did;
  }
}

TEST_P(NetworkTest, PageRankWithOtherDampings) {
  const Model& m = *model_;
  const CitationGraph& g = CitationGraph::of(d());
  for (const double damping : {0.0, 0.5, 0.85, 0.99}) {
    const std::map<int, double> expected = m.pagerank(damping);
    const std::vector<double> got = compute_pagerank(g, damping).scores;
    ASSERT_EQ(got.size(), m.dids.size()) << damping;
    for (std::size_t v = 0; v < got.size(); ++v) EXPECT_NEAR(got[v], expected.at(m.dids[v]), 1e-9) << damping;
  }
  for (const double damping : {-0.1, 0.995, 1.0, std::nan("")}) {
    EXPECT_THROW(compute_pagerank(g, damping), NetworkArgumentError) << damping;
  }
  EXPECT_EQ(pagerank_scores(d()), compute_pagerank(g).scores);
}

TEST_P(NetworkTest, EdgeLists) {
  const Model& m = *model_;
  std::vector<CitationEdge> expected_citations;
  for (const auto& [citing, cited] : m.edges) expected_citations.push_back({citing, cited});
  EXPECT_EQ(citation_edges(d()), expected_citations);
  EXPECT_EQ(&citation_edges(d()), &citation_edges(d())) << "kept with the set";

  std::vector<CoauthorLink> expected_links;
  for (int a = 0; a < m.authors; ++a)
    for (int b = a + 1; b < m.authors; ++b)
      if (m.coauthors(a, b)) expected_links.push_back({a, b});
  EXPECT_EQ(coauthor_links(d()), expected_links);
}

TEST_P(NetworkTest, CitationDistancesAndPaths) {
  const Model& m = *model_;
  for (const Direction dir : {Direction::out, Direction::in, Direction::both}) {
    for (const int from : m.dids) {
      for (const int to : m.dids) {
        const int expected = m.distance(dir, from, to);
        const auto path = citation_path(d(), from, to, dir);
        const auto distance = citation_distance(d(), from, to, dir);
        ASSERT_EQ(path.has_value(), expected != kNone) << to_text(dir) << " " << from << " -> " << to;
        if (!path) continue;
        EXPECT_EQ(*distance, expected) << to_text(dir) << " " << from << " -> " << to;
        EXPECT_EQ(path->front(), from);
        EXPECT_EQ(path->back(), to);
        for (std::size_t i = 0; i + 1 < path->size(); ++i)
          EXPECT_EQ(m.distance(dir, (*path)[i], (*path)[i + 1]), 1) << "step " << i << " " << from << " -> " << to;
      }
    }
  }
  for (const int did : unknown_dids())
    EXPECT_THROW(citation_distance(d(), did, did, Direction::both), NetworkArgumentError) << did;
}

TEST_P(NetworkTest, CollaborationDistancesAndPaths) {
  const Model& m = *model_;
  for (int a = 0; a < m.authors; ++a) {
    for (int b = 0; b < m.authors; ++b) {
      const int expected = m.author_distance.at({a, b});
      const auto path = collaboration_path(d(), a, b);
      ASSERT_EQ(path.has_value(), expected != kNone) << a << " - " << b;
      if (!path) continue;
      EXPECT_EQ(collaboration_distance(d(), a, b), expected) << a << " - " << b;
      ASSERT_EQ(path->authors.size(), path->documents.size() + 1);
      EXPECT_EQ(path->authors.front(), a);
      EXPECT_EQ(path->authors.back(), b);
      for (std::size_t i = 0; i < path->documents.size(); ++i) {
        const std::set<int>& wrote = m.doc_authors.at(path->documents[i]);
        EXPECT_TRUE(wrote.count(path->authors[i]) && wrote.count(path->authors[i + 1]))
            << "document " << path->documents[i] << " on the path " << a << " - " << b;
      }
    }
  }
  for (const int author : {-1, m.authors, INT_MAX})
    EXPECT_THROW(collaboration_distance(d(), author, 0), NetworkArgumentError) << author;
}

TEST_P(NetworkTest, Neighbourhoods) {
  const Model& m = *model_;
  for (const int centre : m.dids) {
    for (const Direction dir : {Direction::out, Direction::in, Direction::both}) {
      for (const std::int64_t hops : {std::int64_t{0}, std::int64_t{1}, std::int64_t{2}, std::int64_t{1000000000}}) {
        for (const std::int64_t limit :
             {std::int64_t{0}, std::int64_t{1}, std::int64_t{3}, std::int64_t{10}, std::int64_t{1000000000}}) {
          std::vector<NeighbourNode> expected;
          for (const int did : m.dids)
            if (const int h = m.distance(dir, centre, did); h != kNone && h <= hops) expected.push_back({did, h});
          std::sort(expected.begin(), expected.end(), [&](auto a, auto b) {
            if (a.hops != b.hops) return a.hops < b.hops;
            if (m.citations_of(a.did) != m.citations_of(b.did)) return m.citations_of(a.did) > m.citations_of(b.did);
            return a.did < b.did;
          });
          if (static_cast<std::int64_t>(expected.size()) > limit) expected.resize(static_cast<std::size_t>(limit));
          std::set<int> kept;
          for (const NeighbourNode& n : expected) kept.insert(n.did);
          std::vector<CitationEdge> expected_edges;
          for (const auto& [u, v] : m.edges)
            if (kept.count(u) && kept.count(v)) expected_edges.push_back({u, v});

          const Neighbourhood got = neighbourhood(d(), centre, {hops, dir, limit});
          const std::string where = std::to_string(centre) + " " + to_text(dir) + " hops " + std::to_string(hops) +
                                    " limit " + std::to_string(limit);
          ASSERT_EQ(got.nodes.size(), expected.size()) << where;
          for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(got.nodes[i].did, expected[i].did) << where << " node " << i;
            EXPECT_EQ(got.nodes[i].hops, expected[i].hops) << where << " node " << i;
          }
          EXPECT_EQ(got.edges, expected_edges) << where;
        }
      }
    }
  }
  for (const int did : unknown_dids()) EXPECT_THROW(neighbourhood(d(), did, {}), NetworkArgumentError) << did;
  if (!m.dids.empty()) {
    EXPECT_THROW(neighbourhood(d(), m.dids[0], {-1, Direction::both, 5}), NetworkArgumentError);
    EXPECT_THROW(neighbourhood(d(), m.dids[0], {1, Direction::both, -1}), NetworkArgumentError);
  }
}

TEST_P(NetworkTest, SimilarPapers) {
  const Model& m = *model_;
  // The size of a document's list of citing (co-citation) or cited
  // (coupling) documents.
  const auto listed = [&](SimilarBy by, int x) {
    int n = 0;
    for (const int z : m.dids) n += by == SimilarBy::cocitation ? m.edges.count({z, x}) : m.edges.count({x, z});
    return static_cast<double>(n);
  };
  for (const int x : m.dids) {
    for (const SimilarBy by : {SimilarBy::cocitation, SimilarBy::coupling})
      for (const SimilarMeasure measure : {SimilarMeasure::count, SimilarMeasure::cosine, SimilarMeasure::jaccard}) {
        const std::string what = std::to_string(x) + " " + to_text(by) + " " + to_text(measure);
        std::vector<SimilarDocument> expected;
        for (const int y : m.dids) {
          if (y == x) continue;
          int shared = 0;
          for (const int z : m.dids)
            shared += by == SimilarBy::cocitation ? m.edges.count({z, x}) && m.edges.count({z, y})
                                                  : m.edges.count({x, z}) && m.edges.count({y, z});
          const double a = listed(by, x), b = listed(by, y);
          const double score = measure == SimilarMeasure::count    ? shared
                               : measure == SimilarMeasure::cosine ? shared / std::sqrt(a * b)
                                                                   : shared / (a + b - shared);
          if (shared > 0) expected.push_back({y, shared, score});
        }
        std::stable_sort(expected.begin(), expected.end(), [](auto a, auto b) { return a.score > b.score; });
        for (const std::int64_t k : {std::int64_t{0}, std::int64_t{2}, std::int64_t{1000000000}}) {
          const std::vector<SimilarDocument> got = similar(d(), x, by, k, measure);
          const std::size_t n = std::min<std::size_t>(expected.size(), static_cast<std::size_t>(k));
          ASSERT_EQ(got.size(), n) << what << " k " << k;
          for (std::size_t i = 0; i < n; ++i) {
            EXPECT_EQ(got[i].did, expected[i].did) << what << " " << i;
            EXPECT_EQ(got[i].count, expected[i].count) << what << " " << i;
            EXPECT_DOUBLE_EQ(got[i].score, expected[i].score) << what << " " << i;
          }
        }
      }
  }
  EXPECT_THROW(similar_measure_from_text("dice"), NetworkArgumentError);
  for (const char* text : {"count", "cosine", "jaccard"}) EXPECT_STREQ(to_text(similar_measure_from_text(text)), text);
  for (const int did : unknown_dids()) EXPECT_THROW(similar(d(), did, SimilarBy::coupling, 5), NetworkArgumentError);
}

// Components checked against connectivity in the distance tables: members
// share an id exactly when connected, sizes are right, and ids go by size
// descending, then by smallest member.
template <class Connected>
void expect_components(const Components& c, const std::vector<int>& members, Connected connected,
                       std::function<ComponentOf(int)> component_of, const char* what) {
  ASSERT_EQ(c.component_of.size(), members.size()) << what;
  std::map<int, int> smallest;
  for (std::size_t i = 0; i < members.size(); ++i) {
    const ComponentOf ci = component_of(members[i]);
    std::int64_t size = 0;
    for (std::size_t j = 0; j < members.size(); ++j) {
      const bool same = component_of(members[j]).id == ci.id;
      EXPECT_EQ(same, connected(members[i], members[j])) << what << " " << members[i] << " " << members[j];
      size += same;
    }
    EXPECT_EQ(ci.size, size) << what << " " << members[i];
    EXPECT_EQ(c.sizes.at(static_cast<std::size_t>(ci.id)), size);
    if (!smallest.count(ci.id)) smallest[ci.id] = members[i];
  }
  EXPECT_EQ(static_cast<std::size_t>(c.count()), smallest.size()) << what;
  for (std::int32_t id = 1; id < c.count(); ++id) {
    const auto i = static_cast<std::size_t>(id);
    EXPECT_TRUE(c.sizes[i - 1] > c.sizes[i] || (c.sizes[i - 1] == c.sizes[i] && smallest[id - 1] < smallest[id]))
        << what << " component " << id;
  }
}

TEST_P(NetworkTest, Components) {
  const Model& m = *model_;
  expect_components(
      citation_components(d()), m.dids,
      [&](int a, int b) {
        return m.both_distance.at({a, b}) != kNone;
      },
      [&](int did) { return document_component(d(), did); }, "citation");
  std::vector<int> authors;
  for (int a = 0; a < m.authors; ++a) authors.push_back(a);
  expect_components(
      coauthor_components(d()), authors,
      [&](int a, int b) {
        return m.author_distance.at({a, b}) != kNone;
      },
      [&](int a) { return author_component(d(), a); }, "co-author");
  for (const int did : unknown_dids()) EXPECT_THROW(document_component(d(), did), NetworkArgumentError);
  EXPECT_THROW(author_component(d(), m.authors), NetworkArgumentError);
}

INSTANTIATE_TEST_SUITE_P(Graphs, NetworkTest, ::testing::ValuesIn(graph_cases()), [](const auto& info) {
  std::string name;
  for (const char c : std::string(info.param.name)) name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  return name;
});

}  // namespace

}  // namespace refgrove
