// Clustering the citation graph of a data directory, timed the way
// scripts/cluster-bench compares it with igraph's Leiden, which runs on the
// graph this program writes.
//
// Usage: cluster_bench DATA_DIR/ OUT_DIR/
// Prints "name: value" lines: the load; the Leiden algorithm (modularity,
// resolution 1) on the built weighted graph, run for two iterations
// (igraph's default) and for ten, each with its modularity, clusters and
// CPU time; and the whole clustering from the loaded set in two iterations
// (the graph's building and each cluster's description included). Run
// until stable, the algorithm takes many iterations on such graphs (162 at
// 20,000 documents), each gaining little. Writes to OUT_DIR
// the graph's links as int32 pairs of node numbers, each link once
// (links.bin), their weights as float64 (weights.bin) and the node count
// (nodes.txt).
#include <time.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "core/data_view.h"
#include "fronts/cluster_graphs.h"
#include "fronts/clusters.h"
#include "fronts/leiden.h"

namespace refgrove {
namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

double cpu_seconds() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

void write_graph(const WeightedGraph& g, const std::string& out_dir) {
  std::vector<std::int32_t> pairs;
  std::vector<double> weights;
  for (std::int32_t v = 0; v < g.size(); ++v)
    for (auto e = g.offsets[static_cast<std::size_t>(v)]; e < g.offsets[static_cast<std::size_t>(v) + 1]; ++e) {
      const std::int32_t u = g.targets[static_cast<std::size_t>(e)];
      if (v > u) continue;
      pairs.insert(pairs.end(), {v, u});
      weights.push_back(g.weights[static_cast<std::size_t>(e)]);
    }
  std::ofstream(out_dir + "links.bin", std::ios::binary)
      .write(reinterpret_cast<const char*>(pairs.data()), static_cast<std::streamsize>(pairs.size() * 4));
  std::ofstream(out_dir + "weights.bin", std::ios::binary)
      .write(reinterpret_cast<const char*>(weights.data()), static_cast<std::streamsize>(weights.size() * 8));
  std::ofstream(out_dir + "nodes.txt") << g.size() << "\n";
}

int run_program(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: cluster_bench DATA_DIR/ OUT_DIR/\n";
    return 2;
  }
  auto start = Clock::now();
  std::ostringstream log;
  const auto data = load_data_set(argv[1], log);
  const RefgroveData& d = *data;
  std::printf("load_s: %.3f\n", seconds_since(start));

  start = Clock::now();
  const ClusterGraph graph = citation_cluster_graph(CitationGraph::of(d));
  std::printf("weighted_graph_build_s: %.4f (nodes %d, links %lld)\n", seconds_since(start), graph.graph.size(),
              static_cast<long long>(graph.graph.targets.size() / 2));
  for (const std::int32_t iterations : {2, 10}) {
    const std::string name = std::to_string(iterations) + "_iterations";
    start = Clock::now();
    const double cpu_start = cpu_seconds();
    const LeidenResult r = leiden(graph.graph, {ClusterQuality::modularity, 1.0, 1, iterations});
    std::printf("leiden_%s_s: %.4f (cpu %.4f)\n", name.c_str(), seconds_since(start), cpu_seconds() - cpu_start);
    std::printf("leiden_%s_modularity: %.5f (clusters %d, iterations %d)\n", name.c_str(),
                modularity(graph.graph, r.cluster), r.clusters, r.iterations);
  }
  start = Clock::now();
  ClusterOptions two;
  two.iterations = 2;
  const auto c = Clustering::of(d, two);
  std::printf("clusters_from_loaded_set_s: %.4f (modularity %.5f)\n", seconds_since(start), c->modularity());
  write_graph(graph.graph, argv[2]);
  return 0;
}

}  // namespace
}  // namespace refgrove

int main(int argc, char** argv) { return refgrove::run_program(argc, argv); }
