#include "fronts/leiden.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <numeric>

namespace refgrove {
namespace {

// How much a move must gain to be made: gains are sums of weights, so this
// only keeps rounding noise from moving a node back and forth.
constexpr double kMinGain = 1e-10;
// The randomness of the refinement: a part is chosen with a probability
// proportional to exp(gain / kRandomness), so that among parts gaining a
// whole unit of weight more the better one is all but certain.
constexpr double kRandomness = 0.01;
constexpr std::int32_t kMaxIterations = 1000;

// splitmix64, the generator every random choice is drawn from.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9e3779b97f4a7c15u);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
  }
  // In [0, 1).
  double uniform() { return static_cast<double>(next() >> 11) * 0x1.0p-53; }
  // In [0, n), for 0 < n < 2^32.
  std::uint32_t below(std::uint32_t n) { return static_cast<std::uint32_t>(((next() >> 32) * n) >> 32); }

  // The nodes 0..n-1 in random order (Fisher-Yates).
  std::vector<std::int32_t> permutation(std::int32_t n) {
    std::vector<std::int32_t> order(static_cast<std::size_t>(n));
    std::iota(order.begin(), order.end(), 0);
    for (std::int32_t i = n - 1; i > 0; --i)
      std::swap(order[static_cast<std::size_t>(i)], order[below(static_cast<std::uint32_t>(i) + 1)]);
    return order;
  }

 private:
  std::uint64_t state_;
};

std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }

// The graph of one level of an iteration: the original graph or an
// aggregate of it, with each node's weight in the quality's penalty (its
// strength for modularity, its number of original nodes for CPM).
struct Level {
  const WeightedGraph* graph;
  std::vector<double> node_weight;
};

// A clustering of a level's nodes with each cluster's summed node weight and
// node count. Cluster ids are below the number of nodes; `empty` holds the
// ids of those without nodes.
struct Partition {
  std::vector<std::int32_t> of;
  std::vector<double> weight;
  std::vector<std::int32_t> nodes;
  std::vector<std::int32_t> empty;

  // From cluster ids below of.size().
  Partition(std::vector<std::int32_t> clusters, const std::vector<double>& node_weight) : of(std::move(clusters)) {
    weight.assign(of.size(), 0);
    nodes.assign(of.size(), 0);
    for (std::size_t v = 0; v < of.size(); ++v) {
      weight[at(of[v])] += node_weight[v];
      ++nodes[at(of[v])];
    }
    for (std::int32_t c = static_cast<std::int32_t>(of.size()) - 1; c >= 0; --c)
      if (nodes[at(c)] == 0) empty.push_back(c);
  }
  void remove(std::int32_t v, double w) {
    weight[at(of[at(v)])] -= w;
    --nodes[at(of[at(v)])];
  }
  void add(std::int32_t v, std::int32_t c, double w) {
    of[at(v)] = c;
    weight[at(c)] += w;
    ++nodes[at(c)];
  }
  std::int32_t count() const { return static_cast<std::int32_t>(of.size() - empty.size()); }
};

// Sums of edge weights from one node to each cluster, reset after each use.
class Links {
 public:
  explicit Links(std::size_t clusters) : weight_(clusters, 0), seen_(clusters, 0) {}
  void add(std::int32_t c, double w) {
    if (!seen_[at(c)]) {
      seen_[at(c)] = 1;
      touched_.push_back(c);
    }
    weight_[at(c)] += w;
  }
  double operator[](std::int32_t c) const { return weight_[at(c)]; }
  const std::vector<std::int32_t>& touched() const { return touched_; }
  void clear() {
    for (const std::int32_t c : touched_) {
      weight_[at(c)] = 0;
      seen_[at(c)] = 0;
    }
    touched_.clear();
  }

 private:
  std::vector<double> weight_;
  std::vector<char> seen_;
  std::vector<std::int32_t> touched_;
};

// What a run keeps from level to level and iteration to iteration: the
// random draws and, sized once for the whole graph, the buffers every level
// reuses (allocating them anew each time costs more than the work itself).
struct Search {
  Search(std::int32_t nodes, double penalty, std::uint64_t seed) : penalty(penalty), random(seed), links(at(nodes)) {}

  double penalty;  // the factor of node weight products in a gain
  Random random;
  Links links;
  WeightedGraph aggregates[2];  // the graphs of levels above the first, in turn
};

// Moves single nodes to their best neighbouring cluster (or an empty one)
// until none gains; returns the number of moves.
std::int64_t move_nodes(const Level& level, Partition& p, Search& s) {
  const WeightedGraph& g = *level.graph;
  const std::int32_t n = g.size();
  std::vector<std::int32_t> order = s.random.permutation(n);
  std::deque<std::int32_t> queue(order.begin(), order.end());
  std::vector<char> queued(at(n), 1);
  Links& links = s.links;
  std::int64_t moves = 0;
  while (!queue.empty()) {
    const std::int32_t v = queue.front();
    queue.pop_front();
    queued[at(v)] = 0;
    for (auto e = g.offsets[at(v)]; e < g.offsets[at(v) + 1]; ++e)
      links.add(p.of[at(g.targets[at(e)])], g.weights[at(e)]);
    const double w = level.node_weight[at(v)];
    const std::int32_t current = p.of[at(v)];
    p.remove(v, w);
    std::int32_t best = current;
    double best_gain = links[current] - s.penalty * w * p.weight[at(current)];
    for (const std::int32_t c : links.touched()) {
      const double gain = links[c] - s.penalty * w * p.weight[at(c)];
      if (gain > best_gain + kMinGain) {
        best = c;
        best_gain = gain;
      }
    }
    // Alone, v gains 0. When staying loses, v's cluster keeps other nodes,
    // so at most n - 1 clusters are in use and one is empty.
    if (best_gain < -kMinGain) {
      best = p.empty.back();
      p.empty.pop_back();
    }
    links.clear();
    p.add(v, best, w);
    if (best == current) continue;
    ++moves;
    if (p.nodes[at(current)] == 0) p.empty.push_back(current);
    for (auto e = g.offsets[at(v)]; e < g.offsets[at(v) + 1]; ++e) {
      const std::int32_t t = g.targets[at(e)];
      if (p.of[at(t)] != best && !queued[at(t)]) {
        queued[at(t)] = 1;
        queue.push_back(t);
      }
    }
  }
  return moves;
}

// Splits each cluster of p into well-connected parts: nodes start alone and,
// in random order, a node still alone and well connected to its cluster
// joins a well-connected part of its cluster that it links to, chosen at
// random among those it loses nothing by joining (staying alone among them).
Partition refine(const Level& level, const Partition& p, Search& s) {
  const WeightedGraph& g = *level.graph;
  const std::int32_t n = g.size();
  std::vector<std::int32_t> singletons(at(n));
  std::iota(singletons.begin(), singletons.end(), 0);
  Partition r(std::move(singletons), level.node_weight);
  // The weight of the edges from each part to the rest of its cluster.
  std::vector<double> outside(at(n), 0);
  for (std::int32_t v = 0; v < n; ++v)
    for (auto e = g.offsets[at(v)]; e < g.offsets[at(v) + 1]; ++e)
      if (p.of[at(g.targets[at(e)])] == p.of[at(v)]) outside[at(v)] += g.weights[at(e)];
  const auto well_connected = [&](std::int32_t part, double cluster_weight) {
    const double w = r.weight[at(part)];
    return outside[at(part)] >= s.penalty * w * (cluster_weight - w) - kMinGain;
  };
  Links& links = s.links;
  std::vector<std::int32_t> candidates;
  std::vector<double> chance;
  for (const std::int32_t v : s.random.permutation(n)) {
    const std::int32_t own = r.of[at(v)];
    const std::int32_t cluster = p.of[at(v)];
    const double cluster_weight = p.weight[at(cluster)];
    if (r.nodes[at(own)] != 1 || !well_connected(own, cluster_weight)) continue;
    for (auto e = g.offsets[at(v)]; e < g.offsets[at(v) + 1]; ++e) {
      const std::int32_t t = g.targets[at(e)];
      if (p.of[at(t)] == cluster) links.add(r.of[at(t)], g.weights[at(e)]);
    }
    const double w = level.node_weight[at(v)];
    candidates.assign(1, own);
    chance.assign(1, 0);
    double best_gain = 0;
    for (const std::int32_t part : links.touched()) {
      const double gain = links[part] - s.penalty * w * r.weight[at(part)];
      if (part == own || gain < 0 || !well_connected(part, cluster_weight)) continue;
      candidates.push_back(part);
      chance.push_back(gain);
      best_gain = std::max(best_gain, gain);
    }
    double total = 0;
    for (double& c : chance) total += c = std::exp((c - best_gain) / kRandomness);
    double draw = s.random.uniform() * total;
    std::size_t pick = 0;
    while (pick + 1 < candidates.size() && draw >= chance[pick]) draw -= chance[pick++];
    const std::int32_t part = candidates[pick];
    if (part != own) {
      outside[at(part)] += outside[at(own)] - 2 * links[part];
      r.remove(v, w);
      r.add(v, part, w);
      r.empty.push_back(own);
    }
    links.clear();
  }
  return r;
}

// Numbers the clusters of `of` 0.. in order of first appearance; returns
// how many there are.
std::int32_t renumber(std::vector<std::int32_t>& of) {
  std::vector<std::int32_t> id(of.empty() ? 0 : at(*std::max_element(of.begin(), of.end())) + 1, -1);
  std::int32_t next = 0;
  for (std::int32_t& c : of) {
    if (id[at(c)] < 0) id[at(c)] = next++;
    c = id[at(c)];
  }
  return next;
}

// The graph whose nodes are the clusters `part` (numbered 0..parts-1) of
// the level's nodes, with the summed weights of the edges between them.
Level aggregate(const Level& level, const std::vector<std::int32_t>& part, std::int32_t parts, Links& links,
                WeightedGraph& storage) {
  const WeightedGraph& g = *level.graph;
  std::vector<std::int64_t> start(at(parts) + 1, 0);
  for (const std::int32_t c : part) ++start[at(c) + 1];
  std::partial_sum(start.begin(), start.end(), start.begin());
  std::vector<std::int32_t> members(part.size());
  std::vector<std::int64_t> fill(start.begin(), start.end() - 1);
  for (std::int32_t v = 0; v < g.size(); ++v) members[static_cast<std::size_t>(fill[at(part[at(v)])]++)] = v;

  Level next{&storage, std::vector<double>(at(parts), 0)};
  storage.offsets.assign(1, 0);
  storage.targets.clear();
  storage.weights.clear();
  for (std::int32_t c = 0; c < parts; ++c) {
    for (auto i = start[at(c)]; i < start[at(c) + 1]; ++i) {
      const std::int32_t v = members[static_cast<std::size_t>(i)];
      next.node_weight[at(c)] += level.node_weight[at(v)];
      for (auto e = g.offsets[at(v)]; e < g.offsets[at(v) + 1]; ++e)
        if (part[at(g.targets[at(e)])] != c) links.add(part[at(g.targets[at(e)])], g.weights[at(e)]);
    }
    for (const std::int32_t t : links.touched()) {
      storage.targets.push_back(t);
      storage.weights.push_back(links[t]);
    }
    storage.offsets.push_back(static_cast<std::int64_t>(storage.targets.size()));
    links.clear();
  }
  return next;
}

// One iteration from the clustering `membership` of g's nodes, which it
// updates; returns the number of moves made at all levels.
std::int64_t iterate(const WeightedGraph& g, const std::vector<double>& node_weight,
                     std::vector<std::int32_t>& membership, Search& s) {
  Level level{&g, node_weight};
  std::vector<std::int32_t> start = membership;
  renumber(start);
  Partition p(std::move(start), level.node_weight);
  std::vector<std::int32_t> node_at_level(membership.size());
  std::iota(node_at_level.begin(), node_at_level.end(), 0);
  std::int64_t moves = 0;
  for (int depth = 0;; ++depth) {
    moves += move_nodes(level, p, s);
    if (p.count() == level.graph->size()) break;
    std::vector<std::int32_t> part = refine(level, p, s).of;
    std::int32_t parts = renumber(part);
    // When refining merged nothing, aggregating by it would give the same
    // graph again; aggregating by the clusters ends the descent instead.
    if (parts == level.graph->size()) {
      part = p.of;
      parts = renumber(part);
    }
    std::vector<std::int32_t> clusters(at(parts));
    for (std::size_t v = 0; v < part.size(); ++v) clusters[at(part[v])] = p.of[v];
    renumber(clusters);
    level = aggregate(level, part, parts, s.links, s.aggregates[depth % 2]);
    p = Partition(std::move(clusters), level.node_weight);
    for (std::int32_t& v : node_at_level) v = part[at(v)];
  }
  for (std::size_t v = 0; v < membership.size(); ++v) membership[v] = p.of[at(node_at_level[v])];
  return moves;
}

// Numbers clusters by size descending, then by their smallest node.
std::int32_t number_by_size(std::vector<std::int32_t>& cluster) {
  const std::int32_t count = renumber(cluster);  // first appearance: by smallest node
  std::vector<std::int64_t> size(at(count), 0);
  for (const std::int32_t c : cluster) ++size[at(c)];
  std::vector<std::int32_t> order(at(count));
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(),
                   [&](std::int32_t a, std::int32_t b) { return size[at(a)] > size[at(b)]; });
  std::vector<std::int32_t> id(at(count));
  for (std::int32_t i = 0; i < count; ++i) id[at(order[at(i)])] = i;
  for (std::int32_t& c : cluster) c = id[at(c)];
  return count;
}

struct ClusterSums {
  std::vector<double> inside;    // edge weight inside, each edge once
  std::vector<double> strength;  // summed strengths
  std::vector<double> nodes;
};

ClusterSums sums(const WeightedGraph& g, std::span<const std::int32_t> cluster) {
  const std::int32_t count = cluster.empty() ? 0 : *std::max_element(cluster.begin(), cluster.end()) + 1;
  ClusterSums s{std::vector<double>(at(count), 0), std::vector<double>(at(count), 0),
                std::vector<double>(at(count), 0)};
  for (std::int32_t v = 0; v < g.size(); ++v) {
    const std::int32_t c = cluster[at(v)];
    s.nodes[at(c)] += 1;
    for (auto e = g.offsets[at(v)]; e < g.offsets[at(v) + 1]; ++e) {
      s.strength[at(c)] += g.weights[at(e)];
      if (cluster[at(g.targets[at(e)])] == c) s.inside[at(c)] += g.weights[at(e)] / 2;
    }
  }
  return s;
}

double modularity_with(const WeightedGraph& g, std::span<const std::int32_t> cluster, double resolution,
                       std::vector<double>* per_cluster) {
  const ClusterSums s = sums(g, cluster);
  const double m = g.total_weight();
  if (per_cluster) per_cluster->assign(s.inside.size(), 0);
  if (m == 0) return 0;
  double q = 0;
  for (std::size_t c = 0; c < s.inside.size(); ++c) {
    const double share = s.inside[c] / m - resolution * (s.strength[c] / (2 * m)) * (s.strength[c] / (2 * m));
    if (per_cluster) (*per_cluster)[c] = share;
    q += share;
  }
  return q;
}

}  // namespace

void WeightedGraph::add_node(std::span<const std::int32_t> neighbours, std::span<const double> neighbour_weights) {
  targets.insert(targets.end(), neighbours.begin(), neighbours.end());
  weights.insert(weights.end(), neighbour_weights.begin(), neighbour_weights.end());
  offsets.push_back(static_cast<std::int64_t>(targets.size()));
}

double WeightedGraph::strength(std::int32_t v) const {
  double s = 0;
  for (auto e = offsets[at(v)]; e < offsets[at(v) + 1]; ++e) s += weights[static_cast<std::size_t>(e)];
  return s;
}

double WeightedGraph::total_weight() const { return std::accumulate(weights.begin(), weights.end(), 0.0) / 2; }

LeidenResult leiden(const WeightedGraph& g, const LeidenOptions& options) {
  const bool cpm = options.quality == ClusterQuality::cpm;
  const double m = g.total_weight();
  std::vector<double> node_weight(at(g.size()), 1);
  if (!cpm)
    for (std::int32_t v = 0; v < g.size(); ++v) node_weight[at(v)] = g.strength(v);
  Search s(g.size(), cpm ? options.resolution : (m > 0 ? options.resolution / (2 * m) : 0), options.seed);
  LeidenResult r;
  r.cluster.resize(at(g.size()));
  std::iota(r.cluster.begin(), r.cluster.end(), 0);
  const std::int32_t limit = options.iterations > 0 ? options.iterations : kMaxIterations;
  while (r.iterations < limit) {
    ++r.iterations;
    r.stable = iterate(g, node_weight, r.cluster, s) == 0;
    if (r.stable && options.iterations <= 0) break;
  }
  r.clusters = number_by_size(r.cluster);
  r.quality = quality(g, r.cluster, options);
  return r;
}

double modularity(const WeightedGraph& g, std::span<const std::int32_t> cluster, std::vector<double>* per_cluster) {
  return modularity_with(g, cluster, 1.0, per_cluster);
}

double quality(const WeightedGraph& g, std::span<const std::int32_t> cluster, const LeidenOptions& options) {
  if (options.quality == ClusterQuality::modularity) return modularity_with(g, cluster, options.resolution, nullptr);
  const ClusterSums s = sums(g, cluster);
  double h = 0;
  for (std::size_t c = 0; c < s.inside.size(); ++c)
    h += s.inside[c] - options.resolution * s.nodes[c] * (s.nodes[c] - 1) / 2;
  return h;
}

}  // namespace refgrove
