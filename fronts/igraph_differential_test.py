#!/usr/bin/python3
"""The clusters of `refgrove clusters` against igraph's Leiden.

For the sample dumps and generated dumps (3,000 documents, every graph;
20,000, the citation graph),
each preprocessed by the tool into a temporary directory, builds the
cluster graphs in Python from `refgrove export --format edges` (citations
taken both ways, a citation each way weighing 2, self-citations left out;
co-citation and coupling counts among the documents with enough citations,
links of enough weight), and checks, for each:
  - the members the tool lists are the graph's nodes;
  - the modularity (or CPM quality) the tool reports is that of its
    clusters, computed here;
  - every cluster is connected;
  - with modularity, refgrove's is at least the best of three runs of
    igraph's community_leiden (run until stable) minus 0.005; with CPM, its
    quality is at least igraph's minus 0.5 % of the graph's weight.

Usage: igraph_differential_test.py REFGROVE_TOOL SAMPLE_DIR/
Exit status 1 on a disagreement, with what shows it.
"""
import collections
import itertools
import json
import random
import subprocess
import sys
import tempfile

try:
    import igraph
except ImportError:
    sys.exit("igraph_differential_test.py: /usr/bin/python3 has no igraph: run scripts/install-deps")

failures = 0


def expect(ok, what):
    global failures
    if not ok:
        failures += 1
        print("FAIL:", what)


def run(tool, *args):
    return subprocess.run([tool, *args], check=True, capture_output=True, text=True).stdout


def citation_links(edges):
    weights = collections.Counter()
    for citing, cited in edges:
        if citing != cited:
            weights[min(citing, cited), max(citing, cited)] += 1
    return weights


def shared_links(lists, keep, min_weight):
    """Links between kept nodes listed together in one list, by the number
    of lists holding both."""
    weights = collections.Counter()
    for members in lists.values():
        for a, b in itertools.combinations(sorted(m for m in members if keep(m)), 2):
            weights[a, b] += 1
    return collections.Counter({pair: w for pair, w in weights.items() if w >= min_weight})


def expected_graph(kind, nodes, edges, min_citations, min_weight):
    cited, citing = collections.defaultdict(set), collections.defaultdict(set)
    for a, b in edges:
        cited[a].add(b)
        citing[b].add(a)
    if kind == "citation":
        return nodes, citation_links(edges)
    if kind == "cocitation":
        kept = [v for v in nodes if len(citing[v]) >= min_citations]
        keep = set(kept)
        return kept, shared_links(cited, lambda v: v in keep, min_weight)
    kept = [v for v in nodes if len(cited[v]) >= min_citations]
    keep = set(kept)
    return kept, shared_links(citing, lambda v: v in keep, min_weight)


def quality(links, cluster, objective, resolution):
    """Modularity or CPM of a clustering, from the links."""
    m = sum(links.values())
    inside, strength, size = collections.Counter(), collections.Counter(), collections.Counter(cluster.values())
    for (a, b), w in links.items():
        strength[cluster[a]] += w
        strength[cluster[b]] += w
        if cluster[a] == cluster[b]:
            inside[cluster[a]] += w
    if objective == "cpm":
        return sum(inside.values()) - resolution * sum(n * (n - 1) / 2 for n in size.values())
    if m == 0:
        return 0.0
    return sum(inside.values()) / m - resolution * sum((k / (2 * m)) ** 2 for k in strength.values())


def check(tool, data, name, kind, objective="modularity", resolution=1.0, min_citations=1, min_weight=1, edges=None,
          nodes=None):
    what = f"{name} {kind} {objective} resolution {resolution} min_citations {min_citations} min_weight {min_weight}"
    options = ["--graph", kind, "--quality", objective, "--resolution", str(resolution),
               "--min-citations", str(min_citations), "--min-weight", str(min_weight)]
    members = [tuple(map(int, line.split("\t"))) for line in run(tool, "clusters", data, "--members", *options).split("\n") if line]
    summary = json.loads(run(tool, "clusters", data, "--format", "json", *options))
    kept, links = expected_graph(kind, nodes, edges, min_citations, min_weight)
    expect([did for did, _ in members] == kept, f"{what}: the members are not the graph's nodes")
    cluster = dict(members)
    ours = quality(links, cluster, objective, resolution)
    expect(abs(summary["quality_value"] - ours) <= 1e-9 * max(1.0, abs(ours)),
           f"{what}: reported quality {summary['quality_value']}, computed {ours}")
    expect(abs(summary["modularity"] - quality(links, cluster, "modularity", 1.0)) <= 1e-9,
           f"{what}: reported modularity {summary['modularity']}")
    expect(summary["total"] == len(set(cluster.values())), f"{what}: {summary['total']} clusters reported")

    index = {v: i for i, v in enumerate(kept)}
    g = igraph.Graph(n=len(kept), edges=[(index[a], index[b]) for a, b in links], directed=False)
    g.es["weight"] = list(links.values())
    by_cluster = collections.defaultdict(list)
    for v, c in cluster.items():
        by_cluster[c].append(index[v])
    for c, vs in by_cluster.items():
        expect(g.induced_subgraph(vs).is_connected(), f"{what}: cluster {c} is not connected")

    best = None
    for seed in range(3):
        random.seed(seed)
        if objective == "modularity":
            found = g.community_leiden(objective_function="modularity", weights="weight", resolution_parameter=resolution,
                                       n_iterations=-1)
        else:
            found = g.community_leiden(objective_function="CPM", weights="weight", resolution_parameter=resolution,
                                       n_iterations=-1)
        theirs = quality(links, {v: found.membership[index[v]] for v in kept}, objective, resolution)
        best = theirs if best is None else max(best, theirs)
    slack = 0.005 if objective == "modularity" else 0.005 * sum(links.values())
    expect(ours >= best - slack, f"{what}: refgrove {ours:.6f}, igraph {best:.6f}")
    print(f"{what}: {len(kept)} nodes, {len(links)} links, {summary['total']} clusters, "
          f"refgrove {ours:.5f}, igraph best of 3 {best:.5f}")


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    tool, sample = sys.argv[1:]
    with tempfile.TemporaryDirectory() as tmp:
        sets = [("sample", sample)]
        for docs in (3000, 20000):
            dumps = f"{tmp}/dumps{docs}/"
            run(tool, "generate", "--docs", str(docs), "--seed", "11", dumps)
            sets.append((f"{docs} generated", dumps))
        for name, dumps in sets:
            data = f"{tmp}/{name.split()[0]}/"
            run(tool, "preprocess", dumps, data)
            edges = [tuple(map(int, line.split("\t"))) for line in run(tool, "export", data, "--format", "edges").split("\n") if line]
            nodes = [did for did, _ in (tuple(map(int, l.split("\t"))) for l in run(tool, "clusters", data, "--members").split("\n") if l)]
            check(tool, data, name, "citation", edges=edges, nodes=nodes)
            check(tool, data, name, "citation", objective="cpm", resolution=0.05, edges=edges, nodes=nodes)
            if name.startswith("20000"):
                continue  # counting co-citations in Python takes minutes
            check(tool, data, name, "cocitation", edges=edges, nodes=nodes)
            check(tool, data, name, "coupling", edges=edges, nodes=nodes)
            check(tool, data, name, "citation", resolution=2.0, edges=edges, nodes=nodes)
            check(tool, data, name, "cocitation", min_citations=2, min_weight=2, edges=edges, nodes=nodes)
            check(tool, data, name, "coupling", objective="cpm", resolution=0.5, min_citations=3, edges=edges,
                  nodes=nodes)
    if failures:
        sys.exit(f"{failures} disagreements")
    print("refgrove clusters agree with igraph")


if __name__ == "__main__":
    main()
