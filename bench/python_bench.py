#!/usr/bin/python3
"""The Python package against what a Python user does without it, side by
side on one data directory, in one run:

- refgrove.load + ds.pagerank() against igraph's PageRank on a graph
  already built;
- ds.to_igraph() against `refgrove export --format edges` read by
  igraph.Graph.Read_Ncol;
- ds.to_pandas() against `refgrove export` read by
  pandas.read_json(lines=True);
- the memory that ds.citation_edges() takes beyond the loaded set.

Times are the best of REPEATS runs (each side alike); the tool's part of a
baseline runs in a child process, so its time is wall-clock time. Loading
and PageRank are also timed in fresh processes, as a user's first load is:
a second load in one process reuses the memory the first one freed, and
costs about half as much.
Usage: python_bench.py DATA_DIR REFGROVE_TOOL WORK_DIR [REPEATS]
(with the package on PYTHONPATH)."""
import gc
import os
import subprocess
import sys
import time

import igraph
import numpy as np
import pandas as pd

import refgrove


def best(repeats, call):
    """The shortest time of `repeats` calls, and the last call's result."""
    times = []
    for _ in range(repeats):
        gc.collect()
        start = time.perf_counter()
        result = call()
        times.append(time.perf_counter() - start)
    return min(times), result


def resident_bytes():
    with open("/proc/self/status") as status:
        for line in status:
            if line.startswith("VmRSS:"):
                return int(line.split()[1]) * 1024
    return 0


def show(name, ours, theirs, theirs_name, target):
    ratio = theirs / ours
    verdict = "ok" if ratio >= target else f"below the target of {target} x"
    print(f"{name:<24} {ours:8.3f} s   {theirs_name:<44} {theirs:8.3f} s   {ratio:6.1f} x  ({verdict})")


def edge_memory(data_dir):
    """The resident memory that citation_edges() adds to a loaded set whose
    citation graph is built: its first call, then later calls and slices."""
    ds = refgrove.load(data_dir)
    len(ds)
    before = resident_bytes()
    first = ds.citation_edges()
    after_first = resident_bytes()
    later = [ds.citation_edges() for _ in range(10)] + [first[::2], first[:, 1]]
    after_later = resident_bytes()
    mb = 1024 * 1024
    print(f"citation_edges(): {len(first):,} edges; first call +{(after_first - before) / mb:.1f} MB "
          f"(the list kept with the set: {first.nbytes / mb:.1f} MB); ten more calls and two slices "
          f"+{(after_later - after_first) / mb:.1f} MB; a copy would take {first.nbytes / mb:.1f} MB each")
    del later, first
    ds.close()


def fresh_load_and_rank(data_dir, repeats):
    """The best load and PageRank times of `repeats` fresh processes."""
    runs = []
    for _ in range(repeats):
        out = subprocess.run([sys.executable, __file__, "--fresh", data_dir], check=True, capture_output=True,
                             text=True).stdout.split()
        runs.append((float(out[0]), float(out[1])))
    return min(runs, key=sum)


def main():
    if sys.argv[1] == "--fresh":
        start = time.perf_counter()
        ds = refgrove.load(sys.argv[2])
        loaded = time.perf_counter()
        ds.pagerank()
        print(loaded - start, time.perf_counter() - loaded)
        return
    data_dir, tool, work = sys.argv[1:4]
    repeats = int(sys.argv[4]) if len(sys.argv) > 4 else 3
    os.makedirs(work, exist_ok=True)
    edges_file, jsonl_file = os.path.join(work, "edges.tsv"), os.path.join(work, "export.jsonl")

    edge_memory(data_dir)

    def load_and_rank():
        ds = refgrove.load(data_dir)
        return ds, ds.pagerank()

    load_time, _ = best(repeats, lambda: refgrove.load(data_dir))
    ours, (ds, ranks) = best(repeats, load_and_rank)
    graph = ds.to_igraph()
    theirs, igraph_ranks = best(repeats, lambda: graph.pagerank(damping=0.85))
    gap = float(np.max(np.abs(ranks - np.array(igraph_ranks))))
    print(f"{len(ds):,} documents, {graph.ecount():,} citations")
    fresh_load, fresh_rank = fresh_load_and_rank(data_dir, repeats)
    show("load + pagerank()", fresh_load + fresh_rank, theirs, "igraph pagerank, graph built", 2)
    print(f"  (in a fresh process: load {fresh_load:.3f} s, pagerank {fresh_rank:.3f} s; after a first load in "
          f"the same process: {ours:.3f} s, {theirs / ours:.1f} x; the largest difference between the two "
          f"PageRanks {gap:.1e})")

    to_igraph, _ = best(repeats, ds.to_igraph)
    export_edges, _ = best(repeats, lambda: subprocess.run(
        [tool, "export", data_dir, "--format", "edges", "-o", edges_file], check=True))
    read_ncol, read_graph = best(repeats, lambda: igraph.Graph.Read_Ncol(edges_file, directed=True))
    assert read_graph.ecount() == graph.ecount()
    show("to_igraph()", to_igraph, export_edges + read_ncol, "export --format edges + Read_Ncol", 5)
    print(f"  (export {export_edges:.3f} s, Read_Ncol {read_ncol:.3f} s; with its load, "
          f"to_igraph takes {load_time + to_igraph:.3f} s: {(export_edges + read_ncol) / (load_time + to_igraph):.1f} x)")

    to_pandas, table = best(repeats, ds.to_pandas)
    export_jsonl, _ = best(repeats, lambda: subprocess.run([tool, "export", data_dir, "-o", jsonl_file], check=True))
    read_json, read_table = best(repeats, lambda: pd.read_json(jsonl_file, lines=True))
    assert len(read_table) >= len(table)
    show("to_pandas()", to_pandas, export_jsonl + read_json, "export + pandas.read_json(lines=True)", 10)
    print(f"  (export {export_jsonl:.3f} s, read_json {read_json:.3f} s; with its load, "
          f"to_pandas takes {load_time + to_pandas:.3f} s: {(export_jsonl + read_json) / (load_time + to_pandas):.1f} x)")
    os.remove(edges_file)
    os.remove(jsonl_file)


if __name__ == "__main__":
    main()
