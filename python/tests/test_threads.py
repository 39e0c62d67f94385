"""Threads and lifetimes: the long calls let other Python threads run, many
threads may query one DataSet (and build its indexes at once), a DataSet
closed under their feet answers or raises ClosedError, and arrays outlive
the DataSet they came from. Under AddressSanitizer a read of freed memory
fails the run."""
import gc
import random
import sys
import threading
import time

import numpy as np
import pytest

import refgrove
from conftest import generated_dir, tool


@pytest.fixture(scope="module")
def generated(tmp_path_factory):
    return generated_dir(tmp_path_factory, 30000, 4)


def others_ran_during(call):
    """Whether another Python thread ran while `call` was running. The switch
    interval is made so long that the GIL changes hands only where a thread
    lets go of it: the spinning thread's sleeps, and the call if it
    releases the GIL."""
    old = sys.getswitchinterval()
    sys.setswitchinterval(100)
    counter, stop = [0], threading.Event()

    def spin():
        while not stop.is_set():
            counter[0] += 1
            if counter[0] % 50 == 0:
                time.sleep(0.0002)

    spinner = threading.Thread(target=spin)
    spinner.start()
    try:
        while counter[0] == 0:
            time.sleep(0.001)
        before = counter[0]
        call()
        return counter[0] > before
    finally:
        stop.set()
        spinner.join()
        sys.setswitchinterval(old)


def test_long_calls_release_the_gil(generated, tmp_path):
    assert not others_ran_during(lambda: sum(range(3_000_000))), "the method sees a call that holds the GIL"
    # Each call is tried on a fresh set, so that it builds what it needs,
    # three times at most: on a busy machine the other thread may not get a
    # processor during a short call.
    calls = {
        "load": lambda ds: refgrove.load(generated),
        "first search": lambda ds: ds.search("a* b* c*", mode="or", limit=5),
        "pagerank": lambda ds: ds.pagerank(damping=0.6),
        "components": lambda ds: ds.components("coauthor"),
        "neighbourhood": lambda ds: ds.neighbourhood(int(ds.dids[-1]), hops=None, limit=None),
        "main path": lambda ds: ds.main_path(),
        "preprocess": lambda ds: refgrove.preprocess(tool_dumps(tmp_path), tmp_path / "data", progress=False),
    }
    held = []
    for name, call in calls.items():
        for _ in range(3):
            ds = refgrove.load(generated)
            if others_ran_during(lambda: call(ds)):
                break
        else:
            held.append(name)
    assert held == []


def tool_dumps(tmp_path):
    dumps = tmp_path / "dumps"
    if not dumps.exists():
        tool("generate", "--docs", 20000, dumps)
    return dumps


def queries(ds, seed):
    """A mix of queries on random documents, and their answers."""
    rng = random.Random(seed)
    dids = ds.dids.tolist()
    answers = []
    for _ in range(40):
        did = rng.choice(dids)
        answers.append(ds.document(did))
        answers.append(ds.similar(did, by=rng.choice(["cocitation", "coupling"])))
        answers.append(ds.neighbourhood(did, hops=2, limit=50))
        answers.append(ds.citation_distance(did, rng.choice(dids), "both"))
        answers.append(ds.search(rng.choice(["the", "memory graph", "st*", "method of"]), mode=rng.choice(["and", "or"])))
        answers.append(ds.ranked(by=rng.choice(["citations", "pagerank"]), limit=20,
                                 years=rng.choice([None, (1990, 1995)])))
    answers.append(ds.components("coauthor").tolist())
    answers.append(ds.pagerank(0.7).tolist())
    return answers


def run_threads(target, count):
    errors = []

    def guarded(i):
        try:
            target(i)
        except BaseException as e:  # reported by the main thread
            errors.append(e)

    threads = [threading.Thread(target=guarded, args=(i,)) for i in range(count)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    if errors:
        raise errors[0]


def test_many_threads_on_one_data_set(generated):
    with refgrove.load(generated) as alone:
        expected = [queries(alone, seed) for seed in range(8)]
    with refgrove.load(generated) as shared:  # fresh: its indexes are built by the threads, at once
        got = [None] * 8

        def work(i):
            got[i] = queries(shared, i)

        run_threads(work, 8)
    assert got == expected


def test_closing_while_threads_query(generated):
    ds = refgrove.load(generated)
    dids = ds.dids.tolist()
    answered, closed = [0], [0]

    def work(i):
        rng = random.Random(i)
        while True:
            did = rng.choice(dids)
            try:
                ds.similar(did)
                ds.neighbourhood(did, hops=2)
                ds.search("graph memory", mode="or")
                answered[0] += 1
            except refgrove.ClosedError:
                closed[0] += 1
                return

    threads = [threading.Thread(target=work, args=(i,)) for i in range(6)]
    for t in threads:
        t.start()
    time.sleep(0.5)
    ds.close()
    for t in threads:
        t.join()
    assert closed[0] == 6 and answered[0] > 0


def test_edge_text_closed_before_it_is_read(generated):
    # Its writer, blocked on a full pipe, ends when the reader goes.
    with refgrove.load(generated) as ds:
        for _ in range(3):
            text = ds._edge_text()
            with open(text.path, "rb") as f:
                assert f.read(10)
            text.close()
            text.close()


def test_arrays_outlive_their_data_set(generated, tmp_path):
    ds = refgrove.load(generated)
    arrays = {
        "dids": ds.dids, "years": ds.years(), "counts": ds.citation_counts(), "pagerank": ds.pagerank(),
        "other pagerank": ds.pagerank(0.5), "edges": ds.citation_edges(), "links": ds.coauthor_edges(),
        "components": ds.components(), "author components": ds.components("coauthor"),
        "cited lists": ds._cited_lists()[1],
    }
    copies = {name: np.array(a) for name, a in arrays.items()}
    slices = {"edges": ds.citation_edges()[10:20, 1], "dids": ds.dids[::7]}
    slice_copies = {name: np.array(a) for name, a in slices.items()}
    ds.close()
    del ds
    gc.collect()
    for name, a in arrays.items():
        assert np.array_equal(a, copies[name]), name
    for name, a in slices.items():
        assert np.array_equal(a, slice_copies[name]), name

    # Replaced: the name rebound to a new load, and the directory itself
    # preprocessed anew beneath the arrays of the old one.
    target = tmp_path / "replaced"
    refgrove.preprocess(tool_dumps(tmp_path), target, progress=False)
    ds = refgrove.load(target)
    first = ds.citation_edges(), ds.dids
    first_copies = [np.array(a) for a in first]
    ds = refgrove.load(target)
    refgrove.preprocess(generated.parent / "dumps", target, progress=False)
    ds = refgrove.load(target)
    gc.collect()
    assert all(np.array_equal(a, c) for a, c in zip(first, first_copies))
    assert len(ds) == 30000 and len(first[1]) == 20000
