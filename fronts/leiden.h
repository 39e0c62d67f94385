// The Leiden algorithm (Traag, Waltman and van Eck, 2019) for clusters of a
// weighted undirected graph.
//
// Quality: modularity, Q = sum over clusters c of
//   I_c / m - gamma * (K_c / 2m)^2
// where m is the total edge weight, I_c the weight of the edges inside c and
// K_c the sum of the strengths (weighted degrees) of its nodes; or the
// constant Potts model (CPM), H = sum over c of I_c - gamma * n_c (n_c - 1) / 2
// with n_c its number of nodes. gamma is the resolution.
//
// One iteration, from the current clusters: moves single nodes to the
// neighbouring cluster that gains most, revisiting only the neighbours of
// moved nodes (a queue); refines each cluster into well-connected parts by
// merging singletons at random among those that lose nothing (randomness
// 0.01); aggregates each refined part into one node, starting it in its
// cluster; and repeats on the aggregate until every node keeps its own
// cluster. Iterations repeat until one moves nothing (or a given number
// ran). Each cluster comes out connected, and once stable no single node can
// move to gain quality. All random choices come from the seed, by a
// generator and draws defined here rather than the library's, so a seed
// gives the same clusters with every standard library (floating-point
// rounding, which differs between x86-64 and i386, can still tip a close
// choice).
#ifndef REFGROVE_FRONTS_LEIDEN_H_
#define REFGROVE_FRONTS_LEIDEN_H_

#include <cstdint>
#include <span>
#include <vector>

namespace refgrove {

// An undirected graph without loops; every edge is listed from both ends:
// the neighbours of v are targets[offsets[v] .. offsets[v + 1]) with the
// weights beside them (positive).
struct WeightedGraph {
  std::vector<std::int64_t> offsets{0};
  std::vector<std::int32_t> targets;
  std::vector<double> weights;

  std::int32_t size() const { return static_cast<std::int32_t>(offsets.size() - 1); }
  // Appends node `size()` with its neighbours (and their weights).
  void add_node(std::span<const std::int32_t> neighbours, std::span<const double> neighbour_weights);
  // The sum of the weights of v's edges.
  double strength(std::int32_t v) const;
  // The sum of all edge weights, each edge once.
  double total_weight() const;
};

enum class ClusterQuality { modularity, cpm };

struct LeidenOptions {
  ClusterQuality quality = ClusterQuality::modularity;
  double resolution = 1.0;
  std::uint64_t seed = 1;
  // How many iterations; 0 runs them until one moves nothing (at most 1000).
  std::int32_t iterations = 0;
};

struct LeidenResult {
  // node -> cluster, clusters numbered 0.. by size descending, then by their
  // smallest node.
  std::vector<std::int32_t> cluster;
  std::int32_t clusters = 0;
  std::int32_t iterations = 0;  // how many ran
  bool stable = false;          // whether the last one moved nothing
  double quality = 0;           // by the options' quality function
};

LeidenResult leiden(const WeightedGraph& g, const LeidenOptions& options);

// Modularity (resolution 1) of a clustering of g: the sum of the clusters'
// contributions, given by cluster when `per_cluster` is given (sized to the
// number of clusters). 0 on a graph without edges.
double modularity(const WeightedGraph& g, std::span<const std::int32_t> cluster,
                  std::vector<double>* per_cluster = nullptr);

// The quality of a clustering by `options`' function and resolution.
double quality(const WeightedGraph& g, std::span<const std::int32_t> cluster, const LeidenOptions& options);

}  // namespace refgrove

#endif  // REFGROVE_FRONTS_LEIDEN_H_
