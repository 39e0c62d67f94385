#!/usr/bin/python3
"""The network analyses of refgrove.so against networkx.

Builds the citation and co-author graphs in Python from the module's own
forward queries (records, citations, author ids), loads the same data set
into refgrove.so through ctypes, and compares: PageRank (within 1e-8 of
networkx.pagerank run to a tight tolerance), citation counts, citation and
collaboration distances, co-citation and coupling counts, component sizes,
and the GraphML export of `refgrove export`, read back by networkx.

The data sets: the sample dumps, and dumps of 3,000 documents from
`refgrove generate`, each preprocessed by the tool into a temporary
directory.

Usage: networkx_differential_test.py REFGROVE_SO REFGROVE_TOOL SAMPLE_DIR/
Exit status 1 on a disagreement, with the inputs that show it.
"""
import ctypes
import itertools
import random
import subprocess
import sys
import tempfile

try:
    import networkx as nx
except ImportError:
    sys.exit("networkx_differential_test.py: /usr/bin/python3 has no networkx: run scripts/install-deps")

INT_MIN, INT_MAX = -2**31, 2**31 - 1


class Module:
    def __init__(self, path):
        self.so = ctypes.CDLL(path)
        self.so.refgrove_author_distance_1.restype = ctypes.c_double

    def load(self, data_dir):
        self.so.refgrove_load_1(data_dir.encode())

    def int_out(self, name, *args):
        out = ctypes.c_int()
        found = getattr(self.so, name)(*args, ctypes.byref(out))
        return out.value if found == 1 else None

    def records(self):
        last = ctypes.c_int()
        self.so.refgrove_last_did_1(ctypes.byref(last))
        return [did for did in range(last.value) if self.so.refgrove_has_graph_info_1(did)]

    def citations(self, did):
        cited, gid = ctypes.c_int(), ctypes.c_int()
        for i in range(self.int_out("refgrove_cite_count_1", did)):
            self.so.refgrove_get_cite_1(did, i, ctypes.byref(cited), ctypes.byref(gid))
            yield cited.value

    def authors(self, did):
        return {self.int_out("refgrove_get_author_id_1", did, i)
                for i in range(self.int_out("refgrove_author_count_1", did))}

    def pagerank(self, did):
        out = ctypes.c_double()
        return out.value if self.so.refgrove_pagerank_1(did, ctypes.byref(out)) == 1 else None

    def similar(self, did, by, capacity):
        dids, counts = (ctypes.c_int * capacity)(), (ctypes.c_int * capacity)()
        total = self.so.refgrove_similar_1(did, by, capacity, dids, counts)
        return [(dids[i], counts[i]) for i in range(min(total, capacity))]

    def component(self, name, x):
        cid, size = ctypes.c_int(), ctypes.c_int()
        return (cid.value, size.value) if getattr(self.so, name)(x, ctypes.byref(cid), ctypes.byref(size)) == 1 else None


failures = 0


def expect(ok, what):
    global failures
    if not ok:
        failures += 1
        print("MISMATCH:", what)
        if failures >= 20:
            sys.exit(1)


def graphs(m):
    nodes = m.records()
    citations = nx.DiGraph()
    citations.add_nodes_from(nodes)
    known = set(nodes)
    citations.add_edges_from((d, c) for d in nodes for c in m.citations(d) if c in known)
    coauthors = nx.Graph()
    coauthors.add_nodes_from(range(m.so.refgrove_get_nb_authors_1()))
    for d in nodes:
        coauthors.add_edges_from(itertools.combinations(sorted(m.authors(d)), 2))
    return citations, coauthors


def component_sizes(components):
    return sorted((len(c) for c in components), reverse=True)


def check(m, tool, data_dir, pairs):
    m.load(data_dir)
    g, co = graphs(m)
    rng = random.Random(17)
    name = data_dir

    rank = nx.pagerank(g, alpha=0.85, tol=1e-13, max_iter=10000)
    for d in g:
        expect(abs(m.pagerank(d) - rank[d]) <= 1e-8, f"{name}: pagerank of {d}: {m.pagerank(d)} vs {rank[d]}")
        expect(m.int_out("refgrove_citation_count_1", d) == g.in_degree(d), f"{name}: citation count of {d}")

    nodes = list(g)
    undirected = g.to_undirected(as_view=True)
    for _ in range(pairs if nodes else 0):
        a, b = rng.choice(nodes), rng.choice(nodes)
        for direction, graph in ((0, g), (2, undirected)):
            want = nx.shortest_path_length(graph, a, b) if nx.has_path(graph, a, b) else -1
            got = m.so.refgrove_citation_distance_1(a, b, direction)
            expect(got == want, f"{name}: citation distance {a} -> {b} direction {direction}: {got} vs {want}")
    authors = list(co)
    for _ in range(pairs if authors else 0):
        a, b = rng.choice(authors), rng.choice(authors)
        want = nx.shortest_path_length(co, a, b) if nx.has_path(co, a, b) else -1
        got = m.so.refgrove_collaboration_distance_1(a, b)
        expect(got == want, f"{name}: collaboration distance {a} - {b}: {got} vs {want}")

    for x in rng.sample(nodes, min(len(nodes), pairs)):
        cocited = {}
        for citing in g.predecessors(x):
            for y in g.successors(citing):
                if y != x:
                    cocited[y] = cocited.get(y, 0) + 1
        coupled = {}
        for ref in g.successors(x):
            for y in g.predecessors(ref):
                if y != x:
                    coupled[y] = coupled.get(y, 0) + 1
        for by, counts in ((0, cocited), (1, coupled)):
            want = sorted(counts.items(), key=lambda item: (-item[1], item[0]))[:20]
            got = m.similar(x, by, 20)
            expect(got == want, f"{name}: similar to {x} by {by}: {got} vs {want}")

    weak = component_sizes(nx.weakly_connected_components(g))
    expect(m.so.refgrove_component_count_1() == len(weak), f"{name}: number of citation components")
    for d in rng.sample(nodes, min(len(nodes), pairs)):
        cid, size = m.component("refgrove_component_1", d)
        expect(size == len(nx.node_connected_component(undirected, d)), f"{name}: component size of {d}")
        expect(size == weak[cid], f"{name}: component {cid} of {d} has size {size}, not {weak[cid]}")
    co_sizes = component_sizes(nx.connected_components(co))
    expect(m.so.refgrove_author_component_count_1() == len(co_sizes), f"{name}: number of co-author components")
    for a in rng.sample(authors, min(len(authors), pairs)):
        cid, size = m.component("refgrove_author_component_1", a)
        expect(size == len(nx.node_connected_component(co, a)) and size == co_sizes[cid],
               f"{name}: co-author component of {a}")

    with tempfile.NamedTemporaryFile(suffix=".graphml") as f:
        subprocess.run([tool, "export", data_dir, "--format", "graphml", "-o", f.name], check=True)
        read = nx.read_graphml(f.name, node_type=int)
    expect(read.is_directed(), f"{name}: the GraphML graph is directed")
    expect(set(read.nodes) == set(g.nodes), f"{name}: GraphML nodes")
    expect(set(read.edges) == set(g.edges), f"{name}: GraphML edges")
    expect(all(read.nodes[d]["citations"] == g.in_degree(d) for d in read), f"{name}: GraphML citation counts")
    print(f"{name}: {g.number_of_nodes()} documents, {g.number_of_edges()} citations, "
          f"{co.number_of_nodes()} authors: {'agrees' if not failures else 'DISAGREES'}")


def preprocessed(tool, dumps, work, name):
    data_dir = f"{work}/{name}/"
    subprocess.run([tool, "preprocess", dumps, data_dir], check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    return data_dir


def main():
    so, tool, sample = sys.argv[1:]
    m = Module(so)
    with tempfile.TemporaryDirectory() as work:
        subprocess.run([tool, "generate", "--docs", "3000", "--seed", "17", f"{work}/dumps"], check=True,
                       stdout=subprocess.DEVNULL)
        for dumps, name in ((sample, "sample"), (f"{work}/dumps/", "generated")):
            check(m, tool, preprocessed(tool, dumps, work, name), pairs=200)
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
