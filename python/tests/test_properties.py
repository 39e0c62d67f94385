"""Whatever a caller passes, each call answers or raises, and never brings
the interpreter down: DIDs, author ids, keys, queries, names, limits, hop
counts, year ranges and dampings drawn by hypothesis, on the sample and on
a random set. A crash ends the run (and the test) with the input shown by
hypothesis's output up to then."""
import math

import numpy as np
import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import refgrove
from conftest import random_dir

settings.register_profile("refgrove", database=None, deadline=None, max_examples=300,
                          suppress_health_check=[HealthCheck.function_scoped_fixture])
settings.load_profile("refgrove")

# What the package may raise for a bad argument: its own errors, and the
# built-in ones for a wrong type or a text that is no valid Unicode.
EXPECTED = (refgrove.Error, TypeError, UnicodeEncodeError)

numbers = st.one_of(
    st.integers(),
    st.integers(min_value=-5, max_value=260),
    st.sampled_from([2**31 - 1, -2**31, 2**31, 2**63, -2**63 - 1, 10**30]),
    st.integers(min_value=0, max_value=300).map(np.int32),
    st.floats(allow_nan=True),
    st.none(),
    st.booleans(),
    st.text(max_size=3),
)
texts = st.one_of(st.text(), st.binary(), st.text(alphabet="ab *\t\0é-", max_size=12),
                  st.sampled_from(["graph", "GRAPH*", "*", "a*", "chen95", "A. Lee", ""]), st.integers(), st.none())
choices = st.one_of(st.sampled_from(["and", "or", "citations", "pagerank", "cocitation", "coupling", "out", "in",
                                     "both", "citation", "coauthor"]), texts)
limits = st.one_of(st.none(), st.integers(min_value=-3, max_value=400), st.sampled_from([2**63, -2**63, 10**20]),
                   st.floats(), st.text(max_size=2))
years = st.one_of(st.none(), st.tuples(numbers, numbers), st.lists(st.integers(), max_size=3), texts)


@pytest.fixture(scope="module", params=["sample", "random"])
def ds(request, sample_dir, tmp_path_factory):
    path = sample_dir if request.param == "sample" else random_dir(tmp_path_factory, 31)
    with refgrove.load(path) as data:
        yield data


def answers_or_raises(call, *args):
    try:
        return call(*args)
    except EXPECTED:
        return None


@given(did=numbers, other=numbers, direction=choices, limit=limits, hops=limits, by=choices)
def test_document_arguments(ds, did, other, direction, limit, hops, by):
    answers_or_raises(ds.document, did)
    answers_or_raises(ds.similar, did, by, limit)
    answers_or_raises(ds.neighbourhood, did, hops, direction, limit)
    answers_or_raises(ds.citation_distance, did, other, direction)
    answers_or_raises(ds.citation_path, did, other, direction)
    answers_or_raises(ds.longest_path, did, other)
    answers_or_raises(ds.timeline, did)
    hood = answers_or_raises(ds.neighbourhood, did, 2, "both", limit)
    if hood is not None and isinstance(limit, int) and limit >= 0:
        assert len(hood.nodes) <= limit


@given(a=numbers, b=numbers)
def test_author_arguments(ds, a, b):
    answers_or_raises(ds.author_name, a)
    answers_or_raises(ds.collaboration_distance, a, b)
    answers_or_raises(ds.collaboration_path, a, b)
    answers_or_raises(ds.author_impact, a)
    answers_or_raises(lambda: ds.timeline(author=a))


@given(text=texts, mode=choices, limit=limits)
def test_text_arguments(ds, text, mode, limit):
    answers_or_raises(ds.document, text)
    answers_or_raises(ds.did, text)
    answers_or_raises(ds.authors_named, text)
    hits = answers_or_raises(ds.search, text, mode, limit)
    if hits:
        scores = [score for _, score in hits]
        assert scores == sorted(scores, reverse=True) and all(math.isfinite(s) for s in scores)


@given(by=choices, limit=limits, span=years, damping=st.one_of(st.floats(), numbers), graph=choices)
def test_whole_set_arguments(ds, by, limit, span, damping, graph):
    answers_or_raises(ds.ranked, by, limit, span)
    ranks = answers_or_raises(ds.pagerank, damping)
    if ranks is not None and len(ranks):
        assert abs(ranks.sum() - 1) < 1e-9
    answers_or_raises(ds.components, graph)
    answers_or_raises(ds.ranked_authors, by, limit)


@given(path=texts)
def test_paths(path):
    nul = b"\0" if isinstance(path, bytes) else "\0"
    if isinstance(path, (str, bytes)) and nul in path:
        with pytest.raises(ValueError, match="embedded null byte"):
            refgrove.load(path)
    else:
        answers_or_raises(refgrove.load, path)
