#!/usr/bin/python3
"""The Python package against what a Python user does without it, on one
data directory, in one run, each figure the best of ROUNDS:

- refgrove.load + ds.pagerank() against igraph's PageRank on a graph
  already built;
- ds.to_igraph() against an igraph graph built from `refgrove export
  --format edges` (read with pandas' C parser, DIDs mapped to vertices with
  numpy); the export's own time is printed apart;
- ds.to_pandas() against pandas.read_json(..., lines=True) of `refgrove
  export`; the export's own time is printed apart;
- the resident memory (VmRSS) that ds.citation_edges() adds to the loaded
  set: the first call, then 100 more calls and slices of them.

Usage: python_bench.py DATA_DIR EXPORT.jsonl EDGES.tsv
Prints "name: value" lines; the ratios are refgrove's speed-ups.
"""
import gc
import sys
import time

import igraph
import numpy
import pandas

import refgrove

ROUNDS = 3


def best(work):
    """The shortest time of ROUNDS runs of work(), and its last answer."""
    times, answer = [], None
    for _ in range(ROUNDS):
        gc.collect()
        start = time.perf_counter()
        answer = work()
        times.append(time.perf_counter() - start)
    return min(times), answer


def rss_bytes():
    with open("/proc/self/status") as status:
        for line in status:
            if line.startswith("VmRSS:"):
                return int(line.split()[1]) * 1024
    raise RuntimeError("no VmRSS in /proc/self/status")


def load_and_rank(data_dir):
    ds = refgrove.load(data_dir)
    ds.pagerank()
    return ds


def igraph_of_edges(edges_path):
    edges = pandas.read_csv(edges_path, sep="\t", header=None, names=["citing", "cited"], dtype=numpy.int32)
    pairs = edges.to_numpy()
    dids = numpy.unique(pairs)
    g = igraph.Graph(n=len(dids), edges=numpy.searchsorted(dids, pairs), directed=True)
    g.vs["did"] = dids.tolist()
    return g


def main():
    data_dir, jsonl, edges_path = sys.argv[1:4]
    measure_memory(data_dir)

    t_ours, ds = best(lambda: load_and_rank(data_dir))
    g = igraph_of_edges(edges_path)
    t_theirs, _ = best(lambda: g.pagerank(damping=0.85, directed=True))
    print(f"documents: {len(ds)}")
    print(f"citation_edges: {len(ds.citation_edges())}")
    report("load_pagerank", t_ours, "igraph_pagerank_built", t_theirs)

    t_ours, ours = best(ds.to_igraph)
    t_theirs, theirs = best(lambda: igraph_of_edges(edges_path))
    assert ours.ecount() == theirs.ecount(), (ours.ecount(), theirs.ecount())
    report("to_igraph", t_ours, "igraph_from_edges", t_theirs)

    t_ours, ours = best(ds.to_pandas)
    t_theirs, theirs = best(lambda: pandas.read_json(jsonl, lines=True))
    assert len(ours) <= len(theirs), (len(ours), len(theirs))
    report("to_pandas", t_ours, "pandas_read_json", t_theirs)


def measure_memory(data_dir):
    """Before anything else, so that no other allocation blurs it."""
    ds = refgrove.load(data_dir)
    len(ds)  # the citation graph, which the edges are read from
    gc.collect()
    loaded = rss_bytes()
    first = ds.citation_edges()
    after_first = rss_bytes()
    views = [ds.citation_edges()[i::7] for i in range(100)]
    after_more = rss_bytes()
    print(f"rss_loaded_mb: {loaded / 2**20:.1f}")
    print(f"rss_first_citation_edges_mb: {(after_first - loaded) / 2**20:.1f} ({len(first)} edges x 8 bytes = "
          f"{first.nbytes / 2**20:.1f})")
    print(f"rss_100_more_calls_and_slices_mb: {(after_more - after_first) / 2**20:.1f}")
    del views, first
    ds.close()


def report(ours_name, ours, theirs_name, theirs):
    print(f"{ours_name}_s: {ours:.4f}")
    print(f"{theirs_name}_s: {theirs:.4f}")
    print(f"{ours_name}_speedup: {theirs / ours:.1f}x")


if __name__ == "__main__":
    main()
