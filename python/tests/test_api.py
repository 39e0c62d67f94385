"""Every function of the package on the sample, with the answers that the
docs show for the tool, and every error with its class and message."""
import inspect
import sys

import numpy as np
import pytest

import refgrove
from conftest import SAMPLE_DUMPS, GRAPH_DUMP, WORD_DUMPS, write_dumps

CITED_BY_110 = [115, 116, 119, 124, 127, 137]


def test_version_and_docstrings():
    assert refgrove.__version__ == "1.0.0"
    public = [getattr(refgrove, name) for name in refgrove.__all__ if name != "__version__"]
    missing = []
    for item in public:
        members = inspect.getmembers(item) if inspect.isclass(item) else []
        for name, member in [(item.__name__, item)] + members:
            if (name.startswith("_") and name not in ("__init__", "__len__")) or not callable(member):
                continue
            if not (inspect.getdoc(member) or "").strip():
                missing.append(f"{item.__name__}.{name}")
    assert missing == []
    assert "PageRank" in inspect.getdoc(refgrove.DataSet.pagerank)


def test_documents_by_did_and_key(sample):
    doc = sample.document(107)
    assert (doc.did, doc.key, doc.year, doc.title) == (107, "chen95", 1995, "Memory Efficient Suffix Arrays")
    assert doc.authors == ["M. Chen", "S. Gupta", "A. Lee"]
    assert [sample.author_name(a) for a in doc.author_ids] == doc.authors
    assert (doc.cites, doc.cited_by, doc.citation_count) == ([101, 105], [110, 118], 2)
    assert doc.abstract.startswith("Suffix arrays answer substring queries")
    assert sample.document("chen95") == doc == sample.document(b"chen95") == sample.document(np.int32(107))
    assert sample.did("chen95") == 107
    assert sample.document(110).cited_by == CITED_BY_110
    unknown = sample.document(105)  # "-" as key in the dump
    assert unknown.key is None
    no_year = sample.document(146)
    assert (no_year.key, no_year.year, no_year.authors) == (None, None, ["Anonymous"])
    assert "did=107" in repr(doc) and "..." in repr(doc) and len(repr(doc)) < 400
    html = sample.document(110)._repr_html_()
    assert "<b>Citation Graphs and Their Structure</b> (1996)" in html and "cited by 6" in html


@pytest.mark.parametrize(
    "call, error, message",
    [
        (lambda ds: ds.document(103), refgrove.NotFoundError, "no document 103"),
        (lambda ds: ds.document(-1), refgrove.NotFoundError, "no document -1"),
        (lambda ds: ds.document("nokey"), refgrove.NotFoundError, "no document with key nokey"),
        (lambda ds: ds.did("a\0b"), refgrove.NotFoundError, "no document with key a\\0b"),
        (lambda ds: ds.did("-"), refgrove.NotFoundError, "no document with key -"),
        (lambda ds: ds.author_name(21), refgrove.NotFoundError, "no author 21"),
        (lambda ds: ds.document(2**31), refgrove.ArgumentError,
         "DID 2147483648 is beyond the int32 range, -2147483648 to 2147483647"),
        (lambda ds: ds.document(1.5), TypeError, "DID must be an integer, not float"),
        (lambda ds: ds.document(None), TypeError, "DID must be an integer, not NoneType"),
        (lambda ds: ds.similar(103), refgrove.ArgumentError, "no graph record for DID 103"),
        (lambda ds: ds.similar(110, by="likes"), refgrove.ArgumentError,
         'unknown similarity "likes" (cocitation or coupling)'),
        (lambda ds: ds.similar(110, limit=-1), refgrove.ArgumentError, "the limit must not be negative, not -1"),
        (lambda ds: ds.ranked(by="fame"), refgrove.ArgumentError, 'unknown ranking "fame" (citations or pagerank)'),
        (lambda ds: ds.ranked(years=(1999, 1990)), refgrove.ArgumentError, "reversed year range 1999-1990"),
        (lambda ds: ds.ranked(years=1999), TypeError, "years must be None or a pair (first, last), not int"),
        (lambda ds: ds.ranked(years="1990"), TypeError, "years must be None or a pair (first, last), not str"),
        (lambda ds: ds.search(""), refgrove.ArgumentError, "empty query: give at least one search term"),
        (lambda ds: ds.search("graph", mode="any"), refgrove.ArgumentError,
         'unknown search mode "any" (and or or)'),
        (lambda ds: ds.search(42), TypeError, "the query must be a str or bytes, not int"),
        (lambda ds: ds.search('"black hole'), refgrove.ArgumentError,
         'a phrase has no closing quote: close it with "'),
        (lambda ds: ds.search("\udc80"), UnicodeEncodeError, "surrogates not allowed"),
        (lambda ds: ds.neighbourhood(110, hops=-2), refgrove.ArgumentError,
         "the hop count must not be negative, not -2"),
        (lambda ds: ds.neighbourhood(110, direction="up"), refgrove.ArgumentError,
         'unknown direction "up" (out, in or both)'),
        (lambda ds: ds.citation_distance(110, 3), refgrove.ArgumentError, "no graph record for DID 3"),
        (lambda ds: ds.collaboration_distance(0, 21), refgrove.ArgumentError, "no author with id 21"),
        (lambda ds: ds.components("words"), refgrove.ArgumentError,
         'unknown graph "words" (citation or coauthor)'),
        (lambda ds: ds.pagerank(1.0), refgrove.ArgumentError, "damping 1 is outside 0 to 0.99"),
        (lambda ds: ds.pagerank(float("nan")), refgrove.ArgumentError, "damping nan is outside 0 to 0.99"),
    ],
)
def test_errors(sample, call, error, message):
    with pytest.raises(error) as raised:
        call(sample)
    assert message in str(raised.value)
    assert str(raised.value).count(message) == 1


def test_error_classes():
    assert issubclass(refgrove.ArgumentError, ValueError) and issubclass(refgrove.ClosedError, ValueError)
    assert issubclass(refgrove.NotFoundError, KeyError)
    assert issubclass(refgrove.DataDirectoryError, FileNotFoundError)
    assert issubclass(refgrove.DumpSyntaxError, refgrove.PreprocessError)
    for cls in (refgrove.ArgumentError, refgrove.NotFoundError, refgrove.DataDirectoryError, refgrove.ClosedError,
                refgrove.PreprocessError):
        assert issubclass(cls, refgrove.Error)
    assert str(refgrove.NotFoundError("no document 5")) == "no document 5"


def test_loading_what_is_no_data_directory(tmp_path, sample_dir):
    (tmp_path / "file").write_text("x")
    partial = tmp_path / "partial"
    partial.mkdir()
    (partial / "graph_data").write_text("")
    cases = [
        (tmp_path / "missing", f"{tmp_path}/missing: no such directory"),
        (tmp_path / "file", f"{tmp_path}/file: not a directory"),
        (partial, f"{partial}/ is not a data directory: word-table is missing (make one with refgrove preprocess)"),
    ]
    for path, message in cases:
        with pytest.raises(refgrove.DataDirectoryError) as raised:
            refgrove.load(path)
        assert str(raised.value) == message
    assert len(refgrove.load(str(sample_dir) + "/")) == len(refgrove.load(sample_dir)) == 32


def test_data_set_object(sample_dir):
    ds = refgrove.load(sample_dir)
    assert isinstance(ds, refgrove.DataSet)
    assert repr(ds) == f"<refgrove.DataSet {str(sample_dir)!r}: 32 documents>"
    assert ds.path == str(sample_dir) and not ds.closed
    with ds as same:
        assert same is ds
    assert ds.closed and repr(ds) == f"<refgrove.DataSet {str(sample_dir)!r}, closed>"
    for call in (len, lambda d: d.dids, lambda d: d.document(107), lambda d: d.search("graph"), lambda d: d.to_pandas()):
        with pytest.raises(refgrove.ClosedError, match=f"the data set of {sample_dir} is closed"):
            call(ds)
    ds.close()  # again: nothing happens


def test_per_document_arrays(sample):
    dids = sample.dids
    assert dids.dtype == np.int32 and len(dids) == len(sample) == 32
    assert dids[0] == 101 and dids[-1] == 148 and np.all(np.diff(dids) > 0)
    assert 103 not in dids and 110 in dids
    years, counts, ranks = sample.years(), sample.citation_counts(), sample.pagerank()
    assert (years.dtype, counts.dtype, ranks.dtype) == (np.int32, np.int32, np.float64)
    assert len(years) == len(counts) == len(ranks) == 32
    at = {did: i for i, did in enumerate(dids.tolist())}
    assert years[at[107]] == 1995 and years[at[146]] == -1
    assert counts[at[110]] == 6 and counts.sum() == len(sample.citation_edges())
    assert ranks[at[101]] == pytest.approx(0.181883359, abs=1e-9) and ranks.sum() == pytest.approx(1, abs=1e-12)
    for view in (dids, years, ranks):
        assert not view.flags.writeable
        with pytest.raises(ValueError):
            view[0] = 1
    other = sample.pagerank(damping=0.5)
    assert other.flags.writeable and other.sum() == pytest.approx(1, abs=1e-12) and not np.allclose(other, ranks)
    assert np.allclose(sample.pagerank(0), 1 / 32)


def test_search(sample):
    hits = sample.search("graph", exact=True)
    assert [did for did, _ in hits] == [134, 104, 115, 110] and not hits.truncated and hits.total == 4
    assert hits[0][1] == pytest.approx(3.203, abs=5e-4)
    cut = sample.search("random graphs", mode="or", limit=3, exact=True)
    assert cut == [(115, pytest.approx(5.94985812)), (145, pytest.approx(2.36943366)),
                   (119, pytest.approx(2.14238086))]
    assert cut.truncated and cut.total > 3 and repr(cut).endswith("truncated=True)")
    assert [did for did, _ in sample.search("SUFF*")] == [107]
    assert sample.search("graph", limit=4, exact=True) == hits
    assert not sample.search("graph", limit=4, exact=True).truncated
    assert sample.search("graph", limit=None, exact=True) == hits
    none = sample.search("graph", limit=0, exact=True)
    assert none == [] and none.truncated and none.total == 4
    assert sample.search("nothing-like-this") == [] and sample.search(b"graph", exact=True) == hits


@pytest.mark.parametrize("query, forms", [("graph", "graphs"), ("random graphs", "randomly graph"),
                                          ('"citation networks"', '"citation network"')])
def test_search_by_stems_and_phrases(sample, query, forms):
    stemmed = sample.search(query, limit=None)
    assert stemmed == sample.search(forms, limit=None) and stemmed.total == len(stemmed)
    assert {did for did, _ in sample.search(query, limit=None, exact=True)} <= {did for did, _ in stemmed}


def test_rankings_and_similar(sample):
    top = sample.ranked(limit=5)
    assert top == [(110, 6), (118, 5), (101, 4), (104, 4), (119, 4)] and top.truncated
    assert all(isinstance(score, int) for _, score in top)
    ranked = sample.ranked(by="pagerank", limit=3, years=(1990, 1995))
    assert [did for did, _ in ranked] == [101, 102, 105]
    assert [round(score, 9) for _, score in ranked] == [0.181883359, 0.087036516, 0.065495937]
    assert len(sample.ranked(limit=None)) == 32 and not sample.ranked(limit=None).truncated
    assert sample.ranked(years=(2**40, 2**41)) == [] and len(sample.ranked(years=(-2**40, 2**40), limit=None)) == 32
    assert sample.similar(110, by="coupling", limit=3) == [(118, 1), (119, 1), (130, 1)]
    assert sample.similar(np.int64(110), by="coupling", limit=3).truncated


def test_distances_and_paths(sample):
    assert sample.authors_named("a. lee") == [3] and sample.authors_named("A. L*") == [3]
    assert sample.authors_named("nobody") == []
    assert sample.author_name(3) == "A. Lee" and sample.author_name(14) == "S. Brin"
    path = sample.collaboration_path(3, 14)
    assert path == refgrove.CollaborationPath(authors=[3, 7, 13, 14], documents=[110, 137, 124])
    assert sample.collaboration_distance(3, 14) == 3 and sample.collaboration_distance(3, 3) == 0
    assert sample.collaboration_path(3, 3) == ([3], [])
    lonely = sample.authors_named("Anonymous")[0]
    assert sample.collaboration_distance(3, lonely) is None and sample.collaboration_path(3, lonely) is None
    assert sample.citation_distance(110, 101) == 2 and sample.citation_path(110, 101) == [110, 107, 101]
    assert sample.citation_distance(101, 110) is None and sample.citation_distance(101, 110, "in") == 2
    assert sample.citation_distance(101, 110, direction="both") == 2 and sample.citation_distance(110, 110) == 0


def test_neighbourhood(sample):
    around = sample.neighbourhood(110, limit=6)
    assert around.nodes == [(110, 0), (104, 1), (119, 1), (107, 1), (115, 1), (116, 1)] and around.truncated
    assert around.edges == [(110, 104), (110, 107), (115, 110), (116, 110), (119, 104), (119, 110), (119, 115)]
    assert sample.neighbourhood(105, direction="out") == ([(105, 0), (101, 1)], [(105, 101)], False)
    whole = sample.neighbourhood(110, hops=None, limit=None)
    assert len(whole.nodes) == 31 and not whole.truncated and len(whole.edges) == 55
    assert sample.neighbourhood(110, hops=0) == ([(110, 0)], [], False)
    assert sample.neighbourhood(110, limit=0) == ([], [], True)


def test_main_path_impact_and_timelines(sample):
    path = sample.main_path()
    assert path[0] == 145 and path[-1] == 101
    assert all(sample.citation_distance(a, b) == 1 for a, b in zip(path, path[1:]))
    assert sample.longest_path(148, 101) == [148, 128, 116, 110, 107, 105, 101]
    assert sample.longest_path(101, 148) is None and sample.longest_path(110, 110) == [110]
    weights = sample.search_path_counts()
    assert weights.dtype == np.float64 and weights.shape == (55,) and weights.min() >= 1
    assert sample.author_impact(3) == refgrove.AuthorImpact(
        documents=7, citations=19, h_index=3, first_year=1994, last_year=2002)
    assert sample.author_impact(sample.authors_named("Anonymous")[0]).first_year is None
    assert sample.ranked_authors(by="citations", limit=3) == [(3, 19), (7, 15), (4, 14)]
    assert sample.ranked_authors(limit=1) == [(3, 3)] and sample.ranked_authors(limit=1).truncated
    assert sample.timeline(110) == [(1997, 2), (1998, 1), (1999, 1), (2000, 1), (2001, 1)]
    assert sample.timeline(author=3)[0] == (1996, 2) and sample.timeline(did=101) == sample.timeline(101)
    for call, error, message in [
        (lambda: sample.timeline(), TypeError, "a DID or an author, not both or neither"),
        (lambda: sample.timeline(110, author=3), TypeError, "a DID or an author, not both or neither"),
        (lambda: sample.timeline(103), refgrove.ArgumentError, "no graph record for DID 103"),
        (lambda: sample.author_impact(21), refgrove.ArgumentError, "no author with id 21"),
        (lambda: sample.ranked_authors(by="fame"), refgrove.ArgumentError, '"fame"'),
        (lambda: sample.longest_path(101, 3), refgrove.ArgumentError, "no graph record for DID 3"),
    ]:
        with pytest.raises(error, match=message):
            call()


@pytest.mark.parametrize("graph", ["citation", "cocitation", "coupling", "coauthor"])
def test_clusters_describe_their_members(sample, graph):
    clusters = sample.clusters(graph, seed=5)
    sizes = np.bincount(clusters.membership, minlength=len(clusters))
    assert [c.size for c in clusters] == sizes.tolist() == sorted(sizes.tolist(), reverse=True)
    assert list(clusters.members) == sorted(clusters.members) and clusters.members.dtype == np.int32
    assert abs(sum(c.modularity for c in clusters) - clusters.modularity) < 1e-9
    assert sample.clusters(graph, seed=5).membership.tolist() == clusters.membership.tolist()
    for i, c in enumerate(clusters):
        assert len(c.top) <= 5 and len(c.label) <= 3
        assert sum(n for _, n in clusters.documents_by_year(i)) <= c.documents
    assert list(clusters.to_pandas().index) == list(range(len(clusters)))


def test_cluster_timelines_add_up_their_documents(sample):
    clusters = sample.clusters()
    for i in range(len(clusters)):
        members = clusters.members[clusters.membership == i]
        expected = {}
        for did in members:
            for year, n in sample.citations_by_year(int(did)):
                expected[year] = expected.get(year, 0) + n
        assert clusters.citations_by_year(i) == sorted(expected.items())


def test_h_index_and_similar_measures(sample):
    h = sample.h_index()
    assert h.dtype == np.int32 and [sample.author_impact(a).h_index for a in range(len(h))] == h.tolist()
    assert sample.citations_by_year(110) == sample.timeline(110)
    cited = {did: set(sample.document(did).cites) & set(sample.dids.tolist()) for did in sample.dids.tolist()}
    for did, score in sample.similar(110, "coupling", limit=None, measure="jaccard"):
        both, either = cited[110] & cited[did], cited[110] | cited[did]
        assert score == pytest.approx(len(both) / len(either))
    counts = sample.similar(110, "coupling", limit=None)
    assert all(isinstance(n, int) for _, n in counts)


@pytest.mark.parametrize(
    "options, message",
    [
        (dict(graph="words"), 'unknown graph "words"'),
        (dict(quality="best"), 'unknown quality "best"'),
        (dict(resolution=-1), "the resolution must be 0 or more"),
        (dict(min_weight=0), "min_weight must be 1 or more"),
        (dict(seed=-1), "the seed must not be negative"),
        (dict(iterations=-1), "iterations must not be negative"),
    ],
)
def test_cluster_options_checked(sample, options, message):
    with pytest.raises(refgrove.ArgumentError, match=message):
        sample.clusters(**options)


def test_components_and_edges(sample):
    citation = sample.components()
    assert citation.dtype == np.int32 and len(citation) == 32 and np.bincount(citation).tolist() == [31, 1]
    coauthor = sample.components("coauthor")
    assert len(coauthor) == 21 and sorted(np.bincount(coauthor).tolist(), reverse=True) == [9, 4, 3, 2, 1, 1, 1]
    edges = sample.citation_edges()
    assert edges.shape == (55, 2) and edges.dtype == np.int32 and not edges.flags.writeable
    assert edges[:3].tolist() == [[102, 101], [104, 102], [105, 101]]
    assert np.shares_memory(edges, sample.citation_edges()), "a view of what the set keeps"
    links = sample.coauthor_edges()
    assert links.shape[1] == 2 and np.all(links[:, 0] < links[:, 1])
    assert [3, 7] in links.tolist() and len(np.unique(links, axis=0)) == len(links)


def test_conversions(sample):
    table = sample.to_pandas()
    assert list(table.columns) == ["did", "key", "year", "title", "authors", "cites", "citation_count", "pagerank"]
    row = table.set_index("did").loc[107]
    assert (row.key, row.year, row.title, row.authors, row.cites) == (
        "chen95", 1995, "Memory Efficient Suffix Arrays", ["M. Chen", "S. Gupta", "A. Lee"], [101, 105])
    assert table.year.isna().sum() == 4 and str(table.year.dtype) == "Int32"
    table.loc[0, "citation_count"] = 99  # a table of its own, not a view
    graph = sample.to_networkx()
    assert graph.number_of_nodes() == 32 and graph.number_of_edges() == 55 and graph.has_edge(110, 104)
    assert graph.nodes[107] == {"key": "chen95", "year": 1995, "title": "Memory Efficient Suffix Arrays"}
    assert graph.nodes[146]["year"] is None
    g = sample.to_igraph()
    assert (g.vcount(), g.ecount(), g.is_directed()) == (32, 55, True)
    assert sorted([g.vs[e.source]["did"], g.vs[e.target]["did"]] for e in g.es) == sample.citation_edges().tolist()
    matrix = sample.to_scipy()
    assert matrix.shape == (32, 32) and matrix.nnz == 55
    rows, cols = matrix.nonzero()
    dids = sample.dids
    assert sorted(zip(dids[rows].tolist(), dids[cols].tolist())) == [tuple(e) for e in sample.citation_edges().tolist()]
    matrix.sort_indices()  # scipy's arrays are its own


def test_conversions_say_what_is_missing(sample, monkeypatch):
    for library, call in [("pandas", "to_pandas"), ("networkx", "to_networkx"), ("igraph", "to_igraph"),
                          ("scipy.sparse", "to_scipy")]:
        monkeypatch.setitem(sys.modules, library, None)
        with pytest.raises(ImportError, match=f"DataSet.{call}\\(\\) needs {library}, which is not installed"):
            getattr(sample, call)()


def test_preprocess(tmp_path):
    calls = []
    result = refgrove.preprocess(SAMPLE_DUMPS, tmp_path / "a" / "data", progress=lambda done, total: calls.append((done, total)))
    assert result == refgrove.PreprocessResult(
        target=str(tmp_path / "a" / "data"), documents=32, abstract_words=928, words=539, records=32, authors=21,
        citations=55, lines_without_did=0, values_out_of_range=0, unindexed=0)
    assert calls and calls[-1][0] == calls[-1][1] > 0 and all(a <= b for (a, _), (b, _) in zip(calls, calls[1:]))
    assert len(refgrove.load(result.target)) == 32


def test_preprocess_failures_leave_the_target(tmp_path):
    target = tmp_path / "target"
    refgrove.preprocess(SAMPLE_DUMPS, target, progress=False)
    before = {p.name: p.read_bytes() for p in target.iterdir()}

    with pytest.raises(refgrove.DataDirectoryError, match="no such directory"):
        refgrove.preprocess(tmp_path / "none", target, progress=False)
    bad = tmp_path / "bad"
    write_dumps(bad, [], {1: "some words"})
    (bad / GRAPH_DUMP).write_text("1 k1 1999 Title: no citation lists\nxxxx\n")
    with pytest.raises(refgrove.DumpSyntaxError) as raised:
        refgrove.preprocess(bad, target, progress=False)
    e = raised.value
    assert (str(e), e.dump, e.row, e.column) == (
        "expected 'GIDs:', found 'Title:' at 1:17", str(bad / GRAPH_DUMP), 1, 17)
    assert isinstance(e, refgrove.PreprocessError) and e.path == e.dump

    class Stop(Exception):
        pass

    def stop(done, total):
        raise Stop()

    with pytest.raises(Stop):
        refgrove.preprocess(SAMPLE_DUMPS, target, progress=stop)
    assert {p.name: p.read_bytes() for p in target.iterdir()} == before
    assert [p.name for p in tmp_path.iterdir() if "refgrove" in p.name] == [], "no lock or staging directory left"


def test_conversions_of_small_and_empty_sets(tmp_path):
    # The last document neither cites nor is cited: igraph's edge list alone
    # would not make its vertex.
    small = tmp_path / "small"
    write_dumps(small / "dumps", [(1, "a", 1999, [2], ["A"], "One"), (2, "b", "-", [], ["B"], "Two"),
                                  (3, "c", 2001, [], ["A", "B"], "Three")], {1: "x", 3: "y"})
    empty = tmp_path / "empty"
    write_dumps(empty / "dumps", [], {})
    for dumps in (small, empty):
        refgrove.preprocess(dumps / "dumps", dumps / "data", progress=False)
    ds = refgrove.load(small / "data")
    g = ds.to_igraph()
    assert (g.vcount(), g.get_edgelist(), g.vs["did"]) == (3, [(0, 1)], [1, 2, 3])
    assert ds.to_pandas().year.isna().tolist() == [False, True, False]
    assert list(ds.to_networkx().edges()) == [(1, 2)] and ds.to_scipy().toarray().tolist() == [[0, 1, 0], [0, 0, 0], [0, 0, 0]]
    ds = refgrove.load(empty / "data")
    assert len(ds) == 0 and ds.dids.tolist() == [] and ds.citation_edges().shape == (0, 2)
    assert ds.to_igraph().vcount() == 0 and len(ds.to_pandas()) == 0 and ds.to_networkx().number_of_nodes() == 0
    assert ds.to_scipy().shape == (0, 0) and ds.pagerank().tolist() == [] and ds.coauthor_edges().shape == (0, 2)
    assert ds.search("x") == [] and ds.ranked() == [] and ds.components("coauthor").tolist() == []
