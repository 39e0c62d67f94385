"""The package against the refgrove tool of the same build: on the sample,
a generated set and a random one with cycles and odd records, each answer
must be the tool's, with the same order and ties."""
import json
import random

import numpy as np
import pandas as pd
import pytest

import refgrove
from conftest import generated_dir, random_dir, tool


@pytest.fixture(scope="module", params=["sample", "generated", "random"])
def data(request, tmp_path_factory, sample_dir):
    path = {
        "sample": lambda: sample_dir,
        "generated": lambda: generated_dir(tmp_path_factory, 3000, 7),
        "random": lambda: random_dir(tmp_path_factory, 11),
    }[request.param]()
    with refgrove.load(path) as ds:
        yield path, ds


def lines(*args):
    return [line.split("\t") for line in tool(*args).stdout.splitlines()]


def some_dids(ds, n=15, seed=3):
    dids = ds.dids.tolist()
    return random.Random(seed).sample(dids, min(n, len(dids)))


def test_export_matches_documents_and_table(data):
    path, ds = data
    exported = [json.loads(line) for line in tool("export", path).stdout.splitlines()]
    table = ds.to_pandas().set_index("did")
    with_record = set(ds.dids.tolist())
    for row in exported:
        doc = ds.document(row["did"])
        assert (doc.key or "", doc.year, doc.title, doc.authors, doc.abstract) == (
            row["key"], row["year"], row["title"], row["authors"], row["abstract"]), row["did"]
        assert doc.cites == row["cites"], row["did"]
        if row["did"] in with_record:
            t = table.loc[row["did"]]
            year = None if pd.isna(t.year) else int(t.year)
            assert (t.key or "", year, t.title, t.authors, t.cites) == (
                row["key"], row["year"], row["title"], row["authors"], doc.cites), row["did"]
    assert {row["did"] for row in exported} >= with_record


def test_edges_and_components(data):
    path, ds = data
    edges = [[int(a), int(b)] for a, b in lines("export", path, "--format", "edges")]
    assert ds.citation_edges().tolist() == edges
    report = {(graph, what): values for graph, what, *values in lines("components", path, "--largest", 1000)}
    for graph, name in (("citation", "citation"), ("co-author", "coauthor")):
        sizes = sorted(np.bincount(ds.components(name)).tolist(), reverse=True) if len(ds.components(name)) else []
        assert [int(n) for n in report[(graph, "components")]] == [len(sizes)]
        assert [int(n) for n in report[(graph, "largest")]] == sizes


@pytest.mark.parametrize("by, years", [("citations", None), ("pagerank", None), ("citations", (1995, 1999)),
                                       ("pagerank", (1990, 1996))])
def test_rankings(data, by, years):
    path, ds = data
    args = ["rank", path, "--by", by, "--limit", 60] + (["--years", f"{years[0]}-{years[1]}"] if years else [])
    expected = [(int(did), score) for did, score, _ in lines(*args)]
    got = ds.ranked(by=by, limit=60, years=years)
    shown = [(did, str(score) if by == "citations" else f"{score:.9f}") for did, score in got]
    assert shown == expected


def test_search(data):
    path, ds = data
    words = sorted({w.lower() for t in ds.to_pandas().title.tolist() for w in t.split() if w.isalpha()})
    rng = random.Random(5)
    queries = [[w] for w in rng.sample(words, min(6, len(words)))]
    queries += [rng.sample(words, 2) for _ in range(4)] + [[words[0][:2] + "*"], [words[-1][:1] + "*", words[1]]]
    for terms in queries:
        for mode, flag in (("and", []), ("or", ["--any"])):
            run = tool("search", path, "--format", "tsv", "--limit", 0, *flag, *terms, check=False)
            expected = [(int(did), score) for did, score, _ in (l.split("\t") for l in run.stdout.splitlines())]
            got = [(did, f"{score:.9g}") for did, score in ds.search(" ".join(terms), mode=mode, limit=None)]
            assert got == expected, (terms, mode)


@pytest.mark.parametrize("by", ["cocitation", "coupling"])
def test_similar(data, by):
    path, ds = data
    for did in some_dids(ds):
        expected = [(int(d), int(n)) for d, n, _ in lines("similar", path, did, "--by", by, "--limit", 25)]
        assert ds.similar(did, by=by, limit=25) == expected, did


@pytest.mark.parametrize("direction", ["out", "in", "both"])
def test_neighbourhoods(data, direction):
    path, ds = data
    for did in some_dids(ds, 8):
        out = lines("neighbourhood", path, did, "--hops", 2, "--direction", direction, "--limit", 30)
        nodes = [(int(l[0]), int(l[1])) for l in out if l[1] != "cites"]
        edges = [(int(l[0]), int(l[2])) for l in out if l[1] == "cites"]
        got = ds.neighbourhood(did, hops=2, direction=direction, limit=30)
        assert (got.nodes, got.edges) == (nodes, edges), did


def test_collaboration_paths(data):
    path, ds = data
    authors = ds.components("coauthor")
    rng = random.Random(9)
    for _ in range(10):
        a, b = rng.randrange(len(authors)), rng.randrange(len(authors))
        run = tool("distance", path, a, b, check=False)
        found = ds.collaboration_path(a, b)
        if run.returncode != 0:
            assert found is None and "are not connected" in run.stderr
            continue
        rows = [l.split("\t") for l in run.stdout.splitlines()]
        assert int(rows[0][1]) == len(found.documents)
        assert [int(r[1]) for r in rows if r[0] == "author"] == found.authors
        assert [int(r[1]) for r in rows if r[0] == "document"] == found.documents


def test_main_path_authors_and_timelines(data):
    path, ds = data
    assert ds.main_path() == [int(row[0]) for row in lines("main-path", path)]
    for by in ("h-index", "citations", "documents"):
        expected = [(int(a), int(v)) for a, v, _ in lines("authors", path, "--by", by, "--limit", 40)]
        assert ds.ranked_authors(by=by, limit=40) == expected, by
    for did in some_dids(ds, 10):
        assert ds.timeline(did) == [(int(y), int(n)) for y, n in lines("timeline", path, did)], did
    for author in random.Random(2).sample(range(len(ds.components("coauthor"))), 10):
        expected = [(int(y), int(n)) for y, n in lines("timeline", path, "--author", author)]
        assert ds.timeline(author=author) == expected, author
