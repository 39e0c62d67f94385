// The Leiden algorithm on generated graphs: the quality it reports against
// modularity and CPM computed here from the edge list, its guarantees (every
// cluster connected; once stable, no single node gains by moving), its
// numbering, and the same clusters from the same seed.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "fronts/leiden.h"

namespace {

using namespace refgrove;

struct Edge {
  int a, b;
  double w;
};

struct TestGraph {
  std::string name;
  int n;
  std::vector<Edge> edges;  // each once, no loops, no duplicates
};

WeightedGraph weighted(const TestGraph& t) {
  std::vector<std::vector<std::pair<int, double>>> lists(static_cast<std::size_t>(t.n));
  for (const Edge& e : t.edges) {
    lists[static_cast<std::size_t>(e.a)].push_back({e.b, e.w});
    lists[static_cast<std::size_t>(e.b)].push_back({e.a, e.w});
  }
  WeightedGraph g;
  for (auto& list : lists) {
    std::sort(list.begin(), list.end());
    std::vector<std::int32_t> targets;
    std::vector<double> weights;
    for (const auto& [t2, w] : list) {
      targets.push_back(t2);
      weights.push_back(w);
    }
    g.add_node(targets, weights);
  }
  return g;
}

// Blocks of nodes linked inside with probability p_in and across with
// p_out, with weights 1 to `max_weight`, and `isolated` nodes without links.
TestGraph planted(const std::string& name, std::vector<int> blocks, double p_in, double p_out, int max_weight,
                  int isolated, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<int> block;
  for (std::size_t b = 0; b < blocks.size(); ++b)
    block.insert(block.end(), static_cast<std::size_t>(blocks[b]), static_cast<int>(b));
  TestGraph t{name, static_cast<int>(block.size()) + isolated, {}};
  for (int a = 0; a < static_cast<int>(block.size()); ++a)
    for (int b = a + 1; b < static_cast<int>(block.size()); ++b) {
      const double p = block[static_cast<std::size_t>(a)] == block[static_cast<std::size_t>(b)] ? p_in : p_out;
      if (std::uniform_real_distribution<double>(0, 1)(random) < p)
        t.edges.push_back({a, b, static_cast<double>(1 + random() % static_cast<unsigned>(max_weight))});
    }
  return t;
}

// `k` cliques of `size` nodes joined in a ring by single edges.
TestGraph ring_of_cliques(int k, int size) {
  TestGraph t{"ring of " + std::to_string(k) + " cliques of " + std::to_string(size), k * size, {}};
  for (int c = 0; c < k; ++c) {
    for (int a = 0; a < size; ++a)
      for (int b = a + 1; b < size; ++b) t.edges.push_back({c * size + a, c * size + b, 1});
    t.edges.push_back({c * size, ((c + 1) % k) * size + 1, 1});
  }
  return t;
}

std::vector<TestGraph> graphs() {
  std::vector<TestGraph> all = {
      {"no nodes", 0, {}},
      {"nodes without edges", 5, {}},
      {"one edge", 2, {{0, 1, 3}}},
      {"star", 7, {{0, 1, 1}, {0, 2, 1}, {0, 3, 1}, {0, 4, 1}, {0, 5, 1}, {0, 6, 1}}},
      {"two triangles and a bridge", 6, {{0, 1, 1}, {1, 2, 1}, {0, 2, 1}, {3, 4, 1}, {4, 5, 1}, {3, 5, 1}, {2, 3, 1}}},
      ring_of_cliques(30, 5),
      ring_of_cliques(6, 4),
      planted("four blocks", {25, 25, 25, 25}, 0.3, 0.02, 1, 0, 1),
      planted("uneven weighted blocks", {60, 30, 10, 5}, 0.25, 0.03, 5, 3, 2),
      planted("sparse random", {150}, 0.02, 0, 1, 0, 3),
      planted("dense random", {40}, 0.5, 0, 3, 0, 4),
      planted("many small blocks", {8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8}, 0.6, 0.01, 2, 2, 5),
  };
  return all;
}

// Modularity and CPM straight from the edge list, pair by pair.
double expected_quality(const TestGraph& t, const std::vector<std::int32_t>& cluster, ClusterQuality q, double gamma) {
  std::vector<double> strength(static_cast<std::size_t>(t.n), 0);
  double m = 0, inside = 0;
  for (const Edge& e : t.edges) {
    strength[static_cast<std::size_t>(e.a)] += e.w;
    strength[static_cast<std::size_t>(e.b)] += e.w;
    m += e.w;
    if (cluster[static_cast<std::size_t>(e.a)] == cluster[static_cast<std::size_t>(e.b)]) inside += e.w;
  }
  double penalty = 0;  // over ordered pairs, a node with itself included
  for (int a = 0; a < t.n; ++a)
    for (int b = 0; b < t.n; ++b) {
      if (cluster[static_cast<std::size_t>(a)] != cluster[static_cast<std::size_t>(b)]) continue;
      penalty += q == ClusterQuality::modularity
                     ? strength[static_cast<std::size_t>(a)] * strength[static_cast<std::size_t>(b)]
                     : (a < b ? 1.0 : 0.0);
    }
  if (q == ClusterQuality::cpm) return inside - gamma * penalty;
  return m == 0 ? 0 : inside / m - gamma * penalty / (4 * m * m);
}

bool connected(const TestGraph& t, const std::vector<std::int32_t>& cluster, std::int32_t c) {
  std::vector<int> members;
  for (int v = 0; v < t.n; ++v)
    if (cluster[static_cast<std::size_t>(v)] == c) members.push_back(v);
  std::vector<char> reached(static_cast<std::size_t>(t.n), 0);
  std::vector<int> stack = {members.front()};
  reached[static_cast<std::size_t>(members.front())] = 1;
  std::size_t count = 1;
  while (!stack.empty()) {
    const int v = stack.back();
    stack.pop_back();
    for (const Edge& e : t.edges) {
      const int u = e.a == v ? e.b : e.b == v ? e.a : -1;
      if (u < 0 || reached[static_cast<std::size_t>(u)] || cluster[static_cast<std::size_t>(u)] != c) continue;
      reached[static_cast<std::size_t>(u)] = 1;
      ++count;
      stack.push_back(u);
    }
  }
  return count == members.size();
}

// The best gain of moving one node to another cluster (a neighbour's or a
// new one), by recomputing the quality.
double best_single_move(const TestGraph& t, std::vector<std::int32_t> cluster, ClusterQuality q, double gamma) {
  if (cluster.empty()) return 0;
  const double base = expected_quality(t, cluster, q, gamma);
  const std::int32_t fresh = *std::max_element(cluster.begin(), cluster.end()) + 1;
  double best = 0;
  for (int v = 0; v < t.n; ++v) {
    const std::int32_t own = cluster[static_cast<std::size_t>(v)];
    std::vector<std::int32_t> targets = {fresh};
    for (const Edge& e : t.edges)
      if (e.a == v || e.b == v) targets.push_back(cluster[static_cast<std::size_t>(e.a == v ? e.b : e.a)]);
    for (const std::int32_t c : targets) {
      if (c == own) continue;
      cluster[static_cast<std::size_t>(v)] = c;
      best = std::max(best, expected_quality(t, cluster, q, gamma) - base);
    }
    cluster[static_cast<std::size_t>(v)] = own;
  }
  return best;
}

struct Setting {
  ClusterQuality quality;
  double resolution;
};

const Setting kSettings[] = {{ClusterQuality::modularity, 1.0},
                             {ClusterQuality::modularity, 0.5},
                             {ClusterQuality::modularity, 2.0},
                             {ClusterQuality::cpm, 0.05},
                             {ClusterQuality::cpm, 0.3}};

std::string describe(const TestGraph& t, const Setting& s) {
  return t.name + (s.quality == ClusterQuality::modularity ? " modularity " : " cpm ") + std::to_string(s.resolution);
}

TEST(Leiden, QualityGuaranteesAndNumbering) {
  for (const TestGraph& t : graphs())
    for (const Setting& s : kSettings) {
      SCOPED_TRACE(describe(t, s));
      const WeightedGraph g = weighted(t);
      const LeidenOptions options{s.quality, s.resolution, 7, 0};
      const LeidenResult r = leiden(g, options);
      ASSERT_EQ(r.cluster.size(), static_cast<std::size_t>(t.n));
      EXPECT_NEAR(r.quality, expected_quality(t, r.cluster, s.quality, s.resolution), 1e-9);
      EXPECT_NEAR(quality(g, r.cluster, options), r.quality, 1e-9);
      std::vector<double> shares;
      const double q = modularity(g, r.cluster, &shares);
      EXPECT_NEAR(q, expected_quality(t, r.cluster, ClusterQuality::modularity, 1.0), 1e-9);
      double sum = 0;
      for (const double share : shares) sum += share;
      EXPECT_NEAR(sum, q, 1e-9);
      ASSERT_EQ(shares.size(), static_cast<std::size_t>(r.clusters));

      // Numbered 0.. by size descending, then by smallest node.
      std::vector<int> size(static_cast<std::size_t>(r.clusters), 0), first(static_cast<std::size_t>(r.clusters), -1);
      for (int v = 0; v < t.n; ++v) {
        const std::int32_t c = r.cluster[static_cast<std::size_t>(v)];
        ASSERT_TRUE(c >= 0 && c < r.clusters) << v;
        if (size[static_cast<std::size_t>(c)]++ == 0) first[static_cast<std::size_t>(c)] = v;
      }
      for (std::int32_t c = 0; c + 1 < r.clusters; ++c) {
        const auto i = static_cast<std::size_t>(c);
        EXPECT_TRUE(size[i] > size[i + 1] || (size[i] == size[i + 1] && first[i] < first[i + 1])) << "cluster " << c;
      }
      for (std::int32_t c = 0; c < r.clusters; ++c) EXPECT_TRUE(connected(t, r.cluster, c)) << "cluster " << c;
      // Stable: no node gains by moving on its own.
      EXPECT_LE(best_single_move(t, r.cluster, s.quality, s.resolution), 1e-9);
    }
}

TEST(Leiden, FindsPlantedClusters) {
  // Each clique of a ring of cliques is a cluster at resolution 1, and the
  // four dense blocks come out as they were planted.
  const LeidenResult ring = leiden(weighted(ring_of_cliques(6, 4)), {});
  EXPECT_EQ(ring.clusters, 6);
  for (int v = 0; v < 24; ++v)
    EXPECT_EQ(ring.cluster[static_cast<std::size_t>(v)], ring.cluster[static_cast<std::size_t>(v / 4 * 4)]) << v;
  const LeidenResult blocks = leiden(weighted(planted("four blocks", {25, 25, 25, 25}, 0.5, 0.01, 1, 0, 9)), {});
  EXPECT_EQ(blocks.clusters, 4);
  for (int v = 0; v < 100; ++v)
    EXPECT_EQ(blocks.cluster[static_cast<std::size_t>(v)], blocks.cluster[static_cast<std::size_t>(v / 25 * 25)]) << v;
  // With CPM at resolution 0 everything linked is one cluster; above the
  // heaviest weight every node is alone.
  EXPECT_EQ(leiden(weighted(ring_of_cliques(30, 5)), {ClusterQuality::cpm, 0.0, 1, 0}).clusters, 1);
  const TestGraph t = planted("uneven weighted blocks", {60, 30, 10, 5}, 0.25, 0.03, 5, 3, 2);
  EXPECT_EQ(leiden(weighted(t), {ClusterQuality::cpm, 6.0, 1, 0}).clusters, t.n);
}

TEST(Leiden, SameSeedSameClusters) {
  for (const TestGraph& t : graphs())
    for (const std::uint64_t seed : {0ull, 1ull, 12345ull}) {
      SCOPED_TRACE(t.name + " seed " + std::to_string(seed));
      const WeightedGraph g = weighted(t);
      const LeidenResult a = leiden(g, {ClusterQuality::modularity, 1.0, seed, 0});
      const LeidenResult b = leiden(g, {ClusterQuality::modularity, 1.0, seed, 0});
      EXPECT_EQ(a.cluster, b.cluster);
      EXPECT_EQ(a.iterations, b.iterations);
    }
}

TEST(Leiden, RunsTheIterationsAsked) {
  const WeightedGraph g = weighted(planted("four blocks", {25, 25, 25, 25}, 0.3, 0.02, 1, 0, 1));
  for (const std::int32_t n : {1, 2, 5}) EXPECT_EQ(leiden(g, {ClusterQuality::modularity, 1.0, 3, n}).iterations, n);
  const LeidenResult until_stable = leiden(g, {});
  EXPECT_TRUE(until_stable.stable);
  // From the same seed, as many iterations as it took give the same clusters,
  // and one fewer a clustering still moving.
  const LeidenResult same = leiden(g, {ClusterQuality::modularity, 1.0, 1, until_stable.iterations});
  EXPECT_EQ(same.cluster, until_stable.cluster);
  EXPECT_TRUE(same.stable);
  if (until_stable.iterations > 1) {
    EXPECT_FALSE(leiden(g, {ClusterQuality::modularity, 1.0, 1, until_stable.iterations - 1}).stable);
  }
  EXPECT_EQ(leiden(WeightedGraph(), {}).clusters, 0);
}

}  // namespace
