"""The package's analyses against networkx, on generated sets (papers citing
older papers) and random ones (cycles, self-citations, repeated and
dangling citations). The graphs for networkx are built from the documents'
own fields (cites, author ids), not from refgrove's edge lists, which are
checked against them too."""
import itertools
import random

import networkx as nx
import numpy as np
import pytest

import refgrove
from conftest import generated_dir, random_dir


@pytest.fixture(scope="module", params=[("generated", 2000, 1), ("random", 300, 21), ("random", 300, 22)],
                ids=lambda p: f"{p[0]}{p[2]}")
def case(request, tmp_path_factory):
    kind, docs, seed = request.param
    path = generated_dir(tmp_path_factory, docs, seed) if kind == "generated" else random_dir(tmp_path_factory, seed)
    ds = refgrove.load(path)
    dids = ds.dids.tolist()
    graph = nx.DiGraph()
    graph.add_nodes_from(dids)
    coauthors = nx.Graph()
    coauthors.add_nodes_from(range(len(ds.components("coauthor"))))
    known = set(dids)
    for did in dids:
        doc = ds.document(did)
        graph.add_edges_from((did, cited) for cited in doc.cites if cited in known)
        coauthors.add_edges_from(itertools.combinations(sorted(set(doc.author_ids)), 2))
    yield ds, graph, coauthors, random.Random(seed)
    ds.close()


def nx_distance(graph, a, b):
    try:
        return nx.shortest_path_length(graph, a, b)
    except nx.NetworkXNoPath:
        return None


def test_edge_lists(case):
    ds, graph, coauthors, _ = case
    assert ds.citation_edges().tolist() == sorted(map(list, graph.edges()))
    assert ds.coauthor_edges().tolist() == sorted(sorted(e) for e in coauthors.edges())
    counts = dict(zip(ds.dids.tolist(), ds.citation_counts().tolist()))
    assert counts == dict(graph.in_degree())


@pytest.mark.parametrize("damping", [0.85, 0.5, 0.0])
def test_pagerank(case, damping):
    ds, graph, _, _ = case
    expected = nx.pagerank(graph, alpha=damping, tol=1e-15, max_iter=100000)
    got = dict(zip(ds.dids.tolist(), ds.pagerank(damping).tolist()))
    worst = max(abs(got[v] - expected[v]) for v in graph)
    assert worst < 1e-8, f"damping {damping}: off by {worst}"


@pytest.mark.parametrize("direction", ["out", "in", "both"])
def test_citation_distances(case, direction):
    ds, graph, _, rng = case
    walked = {"out": graph, "in": graph.reverse(copy=False), "both": graph.to_undirected(as_view=True)}[direction]
    nodes = list(graph)
    for a, b in ((rng.choice(nodes), rng.choice(nodes)) for _ in range(60)):
        expected = nx_distance(walked, a, b)
        assert ds.citation_distance(a, b, direction) == expected, (a, b)
        path = ds.citation_path(a, b, direction)
        assert (path is None) == (expected is None) and (path is None or len(path) == expected + 1)
        if path:
            assert path[0] == a and path[-1] == b and all(walked.has_edge(u, v) for u, v in zip(path, path[1:]))


def test_collaboration_distances(case):
    ds, _, coauthors, rng = case
    authors = list(coauthors)
    for a, b in ((rng.choice(authors), rng.choice(authors)) for _ in range(60)):
        expected = nx_distance(coauthors, a, b)
        assert ds.collaboration_distance(a, b) == expected, (a, b)
        path = ds.collaboration_path(a, b)
        if path is not None:
            assert len(path.documents) == expected and (path.authors[0], path.authors[-1]) == (a, b)
            for x, y, did in zip(path.authors, path.authors[1:], path.documents):
                assert {x, y} <= set(ds.document(did).author_ids)


def same_partition(labels, components, ids):
    """Whether `labels` (aligned with `ids`) split the ids as `components`
    do, numbered by size descending, then by smallest member."""
    by_label = {}
    for node, label in zip(ids, labels.tolist()):
        by_label.setdefault(label, set()).add(node)
    expected = sorted((set(c) for c in components), key=lambda c: (-len(c), min(c)))
    return [by_label[i] for i in range(len(by_label))] == expected


def test_components(case):
    ds, graph, coauthors, _ = case
    assert same_partition(ds.components("citation"), nx.weakly_connected_components(graph), ds.dids.tolist())
    assert same_partition(ds.components("coauthor"), nx.connected_components(coauthors), list(coauthors))


@pytest.mark.parametrize("direction", ["out", "in", "both"])
def test_neighbourhoods(case, direction):
    ds, graph, _, rng = case
    walked = {"out": graph, "in": graph.reverse(copy=False), "both": graph.to_undirected(as_view=True)}[direction]
    for did in rng.sample(list(graph), 10):
        for hops in (1, 2, 3):
            expected = nx.single_source_shortest_path_length(walked, did, cutoff=hops)
            got = ds.neighbourhood(did, hops=hops, direction=direction, limit=None)
            assert dict(got.nodes) == expected and not got.truncated, (did, hops)
            assert got.edges == sorted(graph.subgraph(expected).edges()), (did, hops)


def test_similarity_counts(case):
    # With A the adjacency matrix (A[u, v] = 1: u cites v), A^T A counts the
    # documents citing both of two, A A^T the documents both cite.
    ds, graph, _, rng = case
    nodes = list(graph)
    adjacency = nx.to_scipy_sparse_array(graph, nodelist=nodes, dtype=np.int64, format="csr")
    shared = {"cocitation": (adjacency.T @ adjacency).tocsr(), "coupling": (adjacency @ adjacency.T).tocsr()}
    for i in rng.sample(range(len(nodes)), 25):
        for by, counts in shared.items():
            row = counts.getrow(i)
            found = [(nodes[j], int(n)) for j, n in zip(row.indices, row.data) if j != i and n > 0]
            expected = sorted(found, key=lambda item: (-item[1], item[0]))
            assert ds.similar(nodes[i], by=by, limit=None) == expected, (nodes[i], by)


def test_search_path_counts_and_main_path(case):
    # SPC on the condensation: an edge's weight is the number of paths from
    # a source to its tail times the number from its head to a sink.
    ds, graph, _, _ = case
    dag = nx.condensation(graph)
    order = list(nx.topological_sort(dag))
    to_here = {c: 1.0 if dag.in_degree(c) == 0 else 0.0 for c in dag}
    for c in order:
        for s in dag.successors(c):
            to_here[s] += to_here[c]
    from_here = {c: 1.0 if dag.out_degree(c) == 0 else 0.0 for c in dag}
    for c in reversed(order):
        for s in dag.successors(c):
            from_here[c] += from_here[s]
    component = dag.graph["mapping"]
    expected = [0.0 if component[u] == component[v] else to_here[component[u]] * from_here[component[v]]
                for u, v in ds.citation_edges().tolist()]
    assert np.allclose(ds.search_path_counts(), expected, rtol=1e-12, atol=0)

    def weight(a, b):
        return to_here[a] * from_here[b]

    best = {}
    for c in reversed(order):
        best[c] = max((weight(c, s) + best[s] for s in dag.successors(c)), default=0.0)
    steps = [component[did] for did in ds.main_path()]
    steps = [c for i, c in enumerate(steps) if i == 0 or c != steps[i - 1]]
    assert dag.in_degree(steps[0]) == 0 and dag.out_degree(steps[-1]) == 0
    assert all(dag.has_edge(a, b) for a, b in zip(steps, steps[1:]))
    top = max(best[c] for c in dag if dag.in_degree(c) == 0)
    assert sum(weight(a, b) for a, b in zip(steps, steps[1:])) == pytest.approx(top, rel=1e-12)


def test_author_impact_and_timelines(case):
    ds, graph, coauthors, rng = case
    docs_of, year = {}, {}
    for did in graph:
        doc = ds.document(did)
        year[did] = doc.year
        for author in set(doc.author_ids):
            docs_of.setdefault(author, []).append(did)
    impacts = {}
    for author in coauthors:
        docs = docs_of.get(author, [])
        counts = sorted((graph.in_degree(d) for d in docs), reverse=True)
        years = [year[d] for d in docs if year[d] is not None]
        impacts[author] = (len(docs), sum(counts), sum(1 for i, n in enumerate(counts) if n >= i + 1),
                           min(years, default=None), max(years, default=None))
        assert tuple(ds.author_impact(author)) == impacts[author], author
    for by, at in (("documents", 0), ("citations", 1), ("h-index", 2)):
        expected = sorted(((a, v[at]) for a, v in impacts.items()), key=lambda item: (-item[1], item[0]))
        assert ds.ranked_authors(by=by, limit=None) == expected, by

    def by_year(dids):
        counts = {}
        for did in dids:
            for citing in graph.predecessors(did):
                if year[citing] is not None:
                    counts[year[citing]] = counts.get(year[citing], 0) + 1
        return sorted(counts.items())

    for did in rng.sample(list(graph), 20):
        assert ds.timeline(did) == by_year([did]), did
    for author in rng.sample(list(coauthors), 20):
        assert ds.timeline(author=author) == by_year(docs_of.get(author, [])), author
