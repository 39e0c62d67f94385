#!/usr/bin/python3
"""igraph on the graphs that bench/network_bench wrote, timed as it times
refgrove: building the citation graph, PageRank on the built graph, 1,000
two-hop neighbourhoods (both directions, best of five rounds), and BFS from random authors in the
co-author graph, the sources drawn with a fixed seed.

Usage: network_bench_igraph.py OUT_DIR/   (the OUT_DIR given to network_bench)
Prints "name: value" lines like network_bench.
"""
import random
import sys
import time

import igraph
import numpy

SAMPLES = 1000
ROUNDS = 5  # neighbourhoods: the best of five rounds, as network_bench takes


def main():
    out = sys.argv[1]
    documents, authors = (int(x) for x in open(out + "counts.txt").read().split())
    edges = numpy.fromfile(out + "citations.bin", dtype=numpy.int32).reshape(-1, 2)
    links = numpy.fromfile(out + "coauthors.bin", dtype=numpy.int32).reshape(-1, 2)

    start = time.perf_counter()
    g = igraph.Graph(n=documents, edges=edges, directed=True)
    print(f"igraph_build_s: {time.perf_counter() - start:.4f}")
    start = time.perf_counter()
    g.pagerank(damping=0.85)
    print(f"igraph_pagerank_s: {time.perf_counter() - start:.4f}")

    rng = random.Random(17)
    papers = [rng.randrange(documents) for _ in range(SAMPLES)]
    walls, cpus = [], []
    for _ in range(ROUNDS):
        start, cpu_start = time.perf_counter(), time.thread_time()
        g.neighborhood(vertices=papers, order=2, mode="all")
        walls.append(time.perf_counter() - start)
        cpus.append(time.thread_time() - cpu_start)
    print(f"igraph_two_hop_neighbourhoods_1000_s: {min(walls):.4f} (cpu {min(cpus):.4f})")

    co = igraph.Graph(n=authors, edges=links, directed=False)
    co.simplify()
    sources = [rng.randrange(authors) for _ in range(100)]
    times = []
    for s in sources:
        start = time.perf_counter()
        co.distances(source=s)
        times.append(time.perf_counter() - start)
    times.sort()
    print(f"igraph_author_bfs_p50_ms: {times[len(times) // 2] * 1e3:.2f}")


if __name__ == "__main__":
    main()
