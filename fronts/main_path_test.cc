// SPC weights, the main path and the longest path on hand-worked graphs,
// against brute-force path enumeration on random acyclic graphs, and on
// graphs with cycles.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "fronts/main_path.h"

namespace {

using namespace refgrove;

using Edges = std::vector<std::pair<int, int>>;  // (citing, cited)

Adjacency adjacency(int n, const Edges& edges) {
  Adjacency a;
  for (int v = 0; v < n; ++v) {
    std::vector<int> out;
    for (const auto& [u, w] : edges)
      if (u == v) out.push_back(w);
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    a.items.insert(a.items.end(), out.begin(), out.end());
    a.offsets.push_back(static_cast<std::int64_t>(a.items.size()));
  }
  return a;
}

struct HandCase {
  const char* name;
  int n;
  Edges edges;
  std::map<std::pair<int, int>, double> weights;  // expected SPC weights
  std::vector<int> main_path;
  double main_path_weight;
};

// Two sources through one hub to two sinks; a cycle between two papers with
// a paper before and after; a self-citation; a component of three.
std::vector<HandCase> hand_cases() {
  return {
      {"hub",
       6,
       {{0, 2}, {1, 2}, {2, 3}, {2, 4}, {3, 5}},
       {{{0, 2}, 2}, {{1, 2}, 2}, {{2, 3}, 2}, {{2, 4}, 2}, {{3, 5}, 2}},
       {0, 2, 3, 5},
       6},
      {"diamond with a tail",
       5,
       {{0, 1}, {0, 2}, {1, 3}, {2, 3}, {3, 4}, {0, 4}},
       {{{0, 1}, 1}, {{0, 2}, 1}, {{1, 3}, 1}, {{2, 3}, 1}, {{3, 4}, 2}, {{0, 4}, 1}},
       {0, 1, 3, 4},
       4},
      {"reply cycle",
       4,
       {{0, 1}, {1, 0}, {1, 2}, {3, 0}},
       {{{0, 1}, 0}, {{1, 0}, 0}, {{1, 2}, 1}, {{3, 0}, 1}},
       {3, 0, 1, 2},
       2},
      {"self-citation", 1, {{0, 0}}, {{{0, 0}, 0}}, {0}, 0},
      {"cycle of three under two sources",
       5,
       {{0, 1}, {1, 2}, {2, 0}, {3, 0}, {4, 2}},
       {{{3, 0}, 1}, {{4, 2}, 1}, {{0, 1}, 0}},
       {3, 0, 1, 2},
       1},
      {"no citations", 3, {}, {}, {0}, 0},
  };
}

TEST(MainPath, HandWorkedGraphs) {
  for (const HandCase& c : hand_cases()) {
    SCOPED_TRACE(c.name);
    const SearchPathCounts spc(adjacency(c.n, c.edges));
    for (const auto& [edge, w] : c.weights)
      EXPECT_EQ(spc.weight(edge.first, edge.second), w) << edge.first << " -> " << edge.second;
    EXPECT_EQ(spc.main_path(), c.main_path);
    EXPECT_EQ(spc.main_path_weight(), c.main_path_weight);
  }
}

// Every source-to-sink path of an acyclic graph, as lists of nodes.
std::vector<std::vector<int>> all_paths(int n, const Adjacency& a) {
  std::vector<bool> cited(static_cast<std::size_t>(n), false);
  for (const int w : a.items) cited[static_cast<std::size_t>(w)] = true;
  std::vector<std::vector<int>> paths;
  std::vector<int> path;
  std::function<void(int)> walk = [&](int v) {
    path.push_back(v);
    if (a[v].empty()) paths.push_back(path);
    for (const int w : a[v]) walk(w);
    path.pop_back();
  };
  for (int v = 0; v < n; ++v)
    if (!cited[static_cast<std::size_t>(v)]) walk(v);
  return paths;
}

// A random acyclic graph: each node cites some of the nodes below it.
Edges random_dag(int n, unsigned seed) {
  Edges edges;
  for (int v = 1; v < n; ++v)
    for (int w = 0; w < v; ++w) {
      seed = seed * 1103515245u + 12345u;
      if ((seed >> 16) % 100 < 30) edges.push_back({v, w});
    }
  return edges;
}

TEST(MainPath, AgainstBruteForceOnRandomAcyclicGraphs) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    const int n = 2 + static_cast<int>(seed % 9);
    const Edges edges = random_dag(n, seed);
    SCOPED_TRACE("seed " + std::to_string(seed) + ", " + std::to_string(n) + " nodes");
    const Adjacency a = adjacency(n, edges);
    const SearchPathCounts spc(a);
    const auto paths = all_paths(n, a);
    std::map<std::pair<int, int>, double> through;
    for (const auto& p : paths)
      for (std::size_t i = 0; i + 1 < p.size(); ++i) ++through[{p[i], p[i + 1]}];
    for (const auto& [u, w] : edges) EXPECT_EQ(spc.weight(u, w), (through[{u, w}])) << u << " -> " << w;
    EXPECT_EQ(spc.total_paths(), static_cast<double>(paths.size()));

    const auto sum = [&](const std::vector<int>& p) {
      double s = 0;
      for (std::size_t i = 0; i + 1 < p.size(); ++i) s += through[{p[i], p[i + 1]}];
      return s;
    };
    double best = 0;
    for (const auto& p : paths) best = std::max(best, sum(p));
    const std::vector<int> main = spc.main_path();
    EXPECT_NE(std::find(paths.begin(), paths.end(), main), paths.end()) << "not a source-to-sink path";
    EXPECT_EQ(sum(main), best);
    EXPECT_EQ(spc.main_path_weight(), best);

    // The longest path between every pair, against the longest sub-path of
    // the enumerated paths (every path extends to a source-to-sink path).
    for (int u = 0; u < n; ++u)
      for (int v = 0; v < n; ++v) {
        std::size_t longest = 0;
        bool reached = false;
        for (const auto& p : paths) {
          const auto from = std::find(p.begin(), p.end(), u), to = std::find(p.begin(), p.end(), v);
          if (from == p.end() || to == p.end() || to < from) continue;
          reached = true;
          longest = std::max(longest, static_cast<std::size_t>(to - from));
        }
        const std::vector<int> got = spc.longest_path(u, v);
        ASSERT_EQ(!got.empty(), reached) << u << " to " << v;
        if (!reached) continue;
        EXPECT_EQ(got.size(), longest + 1) << u << " to " << v;
        EXPECT_EQ(got.front(), u);
        EXPECT_EQ(got.back(), v);
        for (std::size_t i = 0; i + 1 < got.size(); ++i) {
          const auto out = a[got[i]];
          EXPECT_TRUE(std::binary_search(out.begin(), out.end(), got[i + 1]))
              << got[i] << " does not cite " << got[i + 1];
        }
      }
  }
}

// A chain far deeper than a recursive walk could go, closed into one long
// cycle: one component, no recursion.
TEST(MainPath, DeepChainsAndOneLongCycle) {
  constexpr int kNodes = 300000;
  Adjacency chain;
  for (int v = 0; v < kNodes; ++v) {
    if (v + 1 < kNodes) chain.items.push_back(v + 1);
    chain.offsets.push_back(static_cast<std::int64_t>(chain.items.size()));
  }
  const SearchPathCounts open(chain);
  EXPECT_EQ(open.component_count(), kNodes);
  EXPECT_EQ(open.main_path().size(), static_cast<std::size_t>(kNodes));
  EXPECT_EQ(open.longest_path(0, kNodes - 1).size(), static_cast<std::size_t>(kNodes));
  EXPECT_TRUE(open.longest_path(kNodes - 1, 0).empty());

  chain.items.push_back(0);
  ++chain.offsets.back();
  const SearchPathCounts closed(chain);
  EXPECT_EQ(closed.component_count(), 1);
  EXPECT_EQ(closed.main_path().size(), static_cast<std::size_t>(kNodes));
  EXPECT_EQ(closed.main_path_weight(), 0);
}

}  // namespace
