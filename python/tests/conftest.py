"""Data sets and the tool for the tests of the Python package.

CTest sets REFGROVE_TOOL (the refgrove tool of the same build) and
REFGROVE_SAMPLE_DIR (data/sample/), and puts the package of the build tree
on PYTHONPATH.
"""
import os
import random
import subprocess
from pathlib import Path

import pytest

import refgrove

TOOL = os.environ.get("REFGROVE_TOOL", "refgrove")
SAMPLE_DUMPS = os.environ.get("REFGROVE_SAMPLE_DIR", str(Path(__file__).parents[2] / "data" / "sample"))
GRAPH_DUMP = "graph-data-aug-2002.txt"
WORD_DUMPS = ["word-data1-mar-2002.txt", "word-data2-mar-2002.txt", "word-data3-mar-2002.txt"]


def tool_env():
    """The environment for running the tool. A sanitized tool has its
    sanitizer's runtime linked in: the one preloaded into this interpreter
    is not passed on."""
    return {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}


def tool(*args, check=True):
    """The tool's run; its status must be 0 when `check`."""
    run = subprocess.run([TOOL, *map(str, args)], capture_output=True, text=True, env=tool_env())
    if check and run.returncode != 0:
        raise AssertionError(f"refgrove {' '.join(map(str, args))}: status {run.returncode}: {run.stderr}")
    return run


@pytest.fixture(scope="session")
def sample_dir(tmp_path_factory):
    """The sample dumps preprocessed, as the README does."""
    data = tmp_path_factory.mktemp("sample") / "data"
    refgrove.preprocess(SAMPLE_DUMPS, data, progress=False)
    return data


@pytest.fixture(scope="session")
def sample(sample_dir):
    with refgrove.load(sample_dir) as ds:
        yield ds


def generated_dir(tmp_path_factory, docs, seed):
    """`refgrove generate` dumps of `docs` documents preprocessed."""
    base = tmp_path_factory.mktemp(f"generated{docs}_{seed}")
    tool("generate", "--docs", docs, "--seed", seed, base / "dumps")
    refgrove.preprocess(base / "dumps", base / "data", progress=False)
    return base / "data"


def write_dumps(directory, records, abstracts):
    """Dumps of `records` (did, key, year, cited DIDs, author names, title)
    and of `abstracts` ({did: text}), in the formats preprocessing reads."""
    directory = Path(directory)
    directory.mkdir(parents=True, exist_ok=True)
    # surrogateescape: a lone surrogate in a text writes the byte it stands for.
    with open(directory / GRAPH_DUMP, "w", encoding="utf-8", errors="surrogateescape") as f:
        for did, key, year, cited, authors, title in records:
            gids = " ".join(str(9000 + c) for c in cited)
            dids = " ".join(map(str, cited))
            f.write(f"{did} {key} {year} GIDs: {gids} DIDs: {dids} Title: {title} Authors: {' and '.join(authors)}\n")
        f.write("xxxx\n")
    dids = sorted(abstracts)
    thirds = [dids[i::3] for i in range(3)]
    for name, part in zip(WORD_DUMPS, thirds):
        with open(directory / name, "w", encoding="utf-8", errors="surrogateescape") as f:
            for did in sorted(part):
                f.write(f"{did} k{did} {abstracts[did]}\n")


def random_records(seed, docs=300, authors=60):
    """A set with what generated dumps lack: citation cycles, self-citations,
    citations given twice and citations of DIDs without a record; DIDs with
    gaps, unknown keys and years, and authors shared at random."""
    rng = random.Random(seed)
    all_dids = sorted(rng.sample(range(1, docs * 3), docs))
    records = []
    for did in all_dids:
        cited = [rng.choice(all_dids) for _ in range(rng.randint(0, 6))]
        if rng.random() < 0.1:
            cited.append(did)
        if rng.random() < 0.1 and cited:
            cited.append(cited[0])
        if rng.random() < 0.1:
            cited.append(docs * 5 + rng.randint(0, 9))
        names = [f"A{rng.randint(0, authors - 1)}" for _ in range(rng.randint(1, 3))]
        key = f"k{did}" if rng.random() < 0.9 else "-"
        year = str(rng.randint(1990, 2002)) if rng.random() < 0.9 else "-"
        records.append((did, key, year, cited, names, f"Title {did} of {rng.choice(['graphs', 'trees', 'words'])}"))
    abstracts = {did: " ".join(rng.choice(["graph", "tree", "word", "index", "rank"]) for _ in range(8))
                 for did in all_dids if rng.random() < 0.9}
    return records, abstracts


def random_dir(tmp_path_factory, seed):
    base = tmp_path_factory.mktemp(f"random{seed}")
    write_dumps(base / "dumps", *random_records(seed))
    refgrove.preprocess(base / "dumps", base / "data", progress=False)
    return base / "data"
