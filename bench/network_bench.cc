// The network analyses on a data directory, timed the way scripts/network-bench
// compares them with igraph, which runs on the files this program writes.
//
// Usage: network_bench DATA_DIR/ OUT_DIR/
// Prints "name: value" lines: the load, PageRank from the loaded set to the
// scores (graph building included), 1,000 two-hop neighbourhoods (the best
// of five rounds, by the wall clock and by CPU time), the
// latencies of collaboration distances and of co-citation and coupling top
// 20 over 1,000 random arguments, and the heap that the loaded set and the
// analyses' structures hold. Writes to OUT_DIR the citation edges
// (citations.bin) and the co-author links (coauthors.bin) as int32 pairs of
// dense node numbers, and the node counts (counts.txt).
#include <malloc.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "core/data_view.h"
#include "network/citation_graph.h"
#include "network/coauthor_graph.h"
#include "network/distance.h"
#include "network/neighbourhood.h"
#include "network/ranking.h"
#include "network/similarity.h"

namespace {

using namespace refgrove;
using Clock = std::chrono::steady_clock;

constexpr int kSamples = 1000;
constexpr int kRounds = 5;

double seconds_since(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }
// Heap in use: small blocks and the large ones malloc maps on their own.
double heap_mb() {
  const struct mallinfo2 m = mallinfo2();
  return static_cast<double>(m.uordblks + m.hblkhd) / 1e6;
}

// The thread's CPU time: unlike the wall clock, not lengthened while other
// processes of a busy machine hold the cores.
double cpu_seconds() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// The p50 and p99 of the latencies of f(i) for i < kSamples, in ms, by the
// wall clock and by CPU time.
template <class F>
void latencies(const char* name, F f) {
  std::vector<double> wall, cpu;
  for (int i = 0; i < kSamples; ++i) {
    const auto start = Clock::now();
    const double cpu_start = cpu_seconds();
    f(i);
    cpu.push_back((cpu_seconds() - cpu_start) * 1e3);
    wall.push_back(seconds_since(start) * 1e3);
  }
  for (auto* ms : {&wall, &cpu}) std::sort(ms->begin(), ms->end());
  std::printf("%s_p50_ms: %.4f\n%s_p99_ms: %.4f (cpu %.4f)\n%s_max_ms: %.4f (cpu %.4f)\n", name, wall[kSamples / 2],
              name, wall[kSamples * 99 / 100], cpu[kSamples * 99 / 100], name, wall.back(), cpu.back());
}

void write_pairs(const std::string& path, const std::vector<std::int32_t>& pairs) {
  std::ofstream out(path, std::ios::binary);
  out.write(reinterpret_cast<const char*>(pairs.data()), static_cast<std::streamsize>(pairs.size() * 4));
}

// The graphs for igraph: citation edges, and one link per pair of distinct
// authors of a record.
void write_graphs(const CitationGraph& g, const CoauthorGraph& co, const std::string& out_dir) {
  std::vector<std::int32_t> pairs;
  for (std::int32_t v = 0; v < g.size(); ++v)
    for (const std::int32_t w : g.cited(v)) pairs.insert(pairs.end(), {v, w});
  write_pairs(out_dir + "citations.bin", pairs);
  pairs.clear();
  for (std::int32_t v = 0; v < g.size(); ++v) {
    const auto authors = co.authors(v);
    for (std::size_t i = 0; i < authors.size(); ++i)
      for (std::size_t j = i + 1; j < authors.size(); ++j) pairs.insert(pairs.end(), {authors[i], authors[j]});
  }
  write_pairs(out_dir + "coauthors.bin", pairs);
  std::ofstream(out_dir + "counts.txt") << g.size() << " " << co.author_count() << "\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: network_bench DATA_DIR/ OUT_DIR/\n";
    return 2;
  }
  const double heap_before = heap_mb();
  auto start = Clock::now();
  std::ostringstream log;
  const auto data = load_data_set(argv[1], log);
  const RefgroveData& d = *data;
  std::printf("load_s: %.3f\n", seconds_since(start));
  const double heap_loaded = heap_mb();

  start = Clock::now();
  const CitationGraph own_graph(d);
  std::printf("citation_graph_build_s: %.4f\n", seconds_since(start));
  const PageRankScores scores = compute_pagerank(own_graph);
  std::printf("pagerank_from_loaded_set_s: %.4f\n", seconds_since(start));
  std::printf("pagerank_iterations: %d\n", scores.iterations);

  start = Clock::now();
  const CitationGraph& g = CitationGraph::of(d);
  const CoauthorGraph& co = CoauthorGraph::of(d);
  ranked(d, RankBy::pagerank, 10);
  ranked(d, RankBy::citations, 10);
  std::printf("build_all_s: %.4f\n", seconds_since(start));
  std::printf("documents: %d\ncitation_edges: %lld\nauthors: %d\n", g.size(), static_cast<long long>(g.edge_count()),
              co.author_count());

  std::mt19937 rng(17);
  std::vector<std::int32_t> papers(kSamples), authors_a(kSamples), authors_b(kSamples);
  for (int i = 0; i < kSamples; ++i) {
    papers[i] = g.did(std::uniform_int_distribution<std::int32_t>(0, g.size() - 1)(rng));
    authors_a[i] = std::uniform_int_distribution<std::int32_t>(0, co.author_count() - 1)(rng);
    authors_b[i] = std::uniform_int_distribution<std::int32_t>(0, co.author_count() - 1)(rng);
  }

  // The best of kRounds rounds, by the wall clock and by CPU time, so that
  // a burst of other work on a shared machine does not decide the figure.
  std::size_t reached = 0, edges = 0;
  for (const bool with_edges : {false, true}) {
    double best_wall = 1e9, best_cpu = 1e9;
    for (int round = 0; round < kRounds; ++round) {
      reached = edges = 0;
      start = Clock::now();
      const double cpu_start = cpu_seconds();
      for (const std::int32_t did : papers) {
        const Neighbourhood n = neighbourhood(d, did, {2, Direction::both, 1000000000, with_edges});
        reached += n.nodes.size();
        edges += n.edges.size();
      }
      best_cpu = std::min(best_cpu, cpu_seconds() - cpu_start);
      best_wall = std::min(best_wall, seconds_since(start));
    }
    std::printf("two_hop_neighbourhoods_1000%s_s: %.4f (cpu %.4f)\n", with_edges ? "_with_edges" : "", best_wall,
                best_cpu);
  }
  std::printf("two_hop_mean_nodes: %.1f\ntwo_hop_mean_edges: %.1f\n", static_cast<double>(reached) / kSamples,
              static_cast<double>(edges) / kSamples);

  std::size_t connected = 0;
  latencies("collaboration_distance",
            [&](int i) { connected += collaboration_distance(d, authors_a[i], authors_b[i]).has_value(); });
  std::printf("collaboration_connected: %zu of %d\n", connected, kSamples);
  latencies("cocitation_top20", [&](int i) { similar(d, papers[i], SimilarBy::cocitation, 20); });
  latencies("coupling_top20", [&](int i) { similar(d, papers[i], SimilarBy::coupling, 20); });

  std::printf("heap_loaded_set_mb: %.1f\n", heap_loaded - heap_before);
  std::printf("heap_analyses_mb: %.1f\n",
              heap_mb() - heap_loaded - static_cast<double>(own_graph.memory() + scores.scores.capacity() * 8) / 1e6);
  write_graphs(g, co, argv[2]);
  return 0;
}
