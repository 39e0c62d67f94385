#!/usr/bin/python3
"""igraph's Leiden on the graph that bench/cluster_bench wrote, timed as it
times refgrove's: building the graph, then community_leiden (modularity,
resolution 1, the weights) run until stable, for two iterations and for
ten, each
with the modularity of what it found and its CPU time.

Usage: cluster_bench_igraph.py OUT_DIR/   (the OUT_DIR given to cluster_bench)
Prints "name: value" lines like cluster_bench.
"""
import random
import sys
import time

import igraph
import numpy


def main():
    out = sys.argv[1]
    nodes = int(open(out + "nodes.txt").read())
    links = numpy.fromfile(out + "links.bin", dtype=numpy.int32).reshape(-1, 2)
    weights = numpy.fromfile(out + "weights.bin", dtype=numpy.float64)

    start = time.perf_counter()
    g = igraph.Graph(n=nodes, edges=links, directed=False)
    g.es["weight"] = weights
    print(f"igraph_build_s: {time.perf_counter() - start:.4f}")
    random.seed(1)
    for name, iterations in (("until_stable", -1), ("2_iterations", 2), ("10_iterations", 10)):
        start, cpu_start = time.perf_counter(), time.thread_time()
        found = g.community_leiden(objective_function="modularity", weights="weight", resolution_parameter=1.0,
                                   n_iterations=iterations)
        wall, cpu = time.perf_counter() - start, time.thread_time() - cpu_start
        print(f"igraph_leiden_{name}_s: {wall:.4f} (cpu {cpu:.4f})")
        print(f"igraph_leiden_{name}_modularity: {g.modularity(found.membership, weights='weight'):.5f} "
              f"(clusters {len(found)})")


if __name__ == "__main__":
    main()
