"""The main path, the authors' impact and the citations per year against
the tool's main-path, authors and timeline, on the sample and on a random
set with citation cycles."""
import numpy as np
import pytest

import refgrove
from conftest import random_dir, tool


@pytest.fixture(scope="module", params=["sample", "random"])
def data(request, sample_dir, tmp_path_factory):
    """(data directory, DataSet)."""
    path = sample_dir if request.param == "sample" else random_dir(tmp_path_factory, 11)
    with refgrove.load(path) as ds:
        yield path, ds


def rows(*args):
    """The tool's lines, split at tabs, numbers as ints."""
    return [[int(f) if f.lstrip("-").isdigit() else f for f in line.split("\t")]
            for line in tool(*args).stdout.splitlines()]


def test_main_path(data):
    path, ds = data
    main = ds.main_path()
    assert main.dtype == np.int32
    assert main.tolist() == [row[0] for row in rows("main-path", path)]


def test_authors_ranked_and_h_index(data):
    path, ds = data
    authors = len(ds.components("coauthor"))
    for by in ["h-index", "citations", "documents"]:
        for limit in [0, 3, authors, None]:
            hits = ds.authors_ranked(by=by, limit=limit)
            expected = rows("authors", path, "--by", by, "--limit", authors if limit is None else limit)
            assert [list(h) for h in hits] == [row[:2] for row in expected], (by, limit)
            assert hits.truncated == (limit is not None and limit < authors), (by, limit)
    h = ds.h_index()
    assert h.dtype == np.int32 and len(h) == authors and not h.flags.writeable
    assert sorted(enumerate(h.tolist()), key=lambda p: (-p[1], p[0])) == list(ds.authors_ranked(limit=None))
    with pytest.raises(refgrove.ArgumentError, match="h_index"):
        ds.authors_ranked(by="h_index")


def test_citations_by_year(data):
    path, ds = data
    for did in ds.dids[:: max(1, len(ds) // 20)].tolist():
        assert ds.citations_by_year(did) == [tuple(r) for r in rows("timeline", path, did)], did
    for author in range(0, len(ds.components("coauthor")), 3):
        expected = [tuple(r) for r in rows("timeline", path, "--author", author)]
        assert ds.citations_by_year(author=author) == expected, author


def test_citations_by_year_refuses(sample):
    cases = [
        ({}, "a did or an author"),
        ({"did": 110, "author": 3}, "a did or an author"),
        ({"did": 103}, "103"),
        ({"author": 10**6}, str(10**6)),
        ({"did": 2**40}, "DID"),
    ]
    for kwargs, message in cases:
        with pytest.raises(refgrove.ArgumentError, match=message):
            sample.citations_by_year(**kwargs)


def test_h_index_outlives_its_set(sample_dir):
    ds = refgrove.load(sample_dir)
    h = ds.h_index()
    expected = h.tolist()
    ds.close()
    del ds
    assert h.tolist() == expected
