"""A document reads the same in every face that shows it: the tool's lists,
`show` and `export`, the explorer's JSON and the package, whatever bytes the
dumps hold. Bytes that are not UTF-8 read as Latin-1 everywhere."""
import dataclasses
import json
import re
import subprocess
import urllib.request

import pytest

import refgrove
from conftest import TOOL, tool, tool_env, write_dumps


def latin1(text):
    """`text` as the Latin-1 bytes of a dump (surrogate-escaped for write_dumps)."""
    return text.encode("latin-1").decode("utf-8", "surrogateescape")


TITLE = "États of graphs"  # the dump holds it in Latin-1
AUTHOR = "René Dupré"  # in Latin-1 too
UTF8_TITLE = "Erdős graphs"  # the dump holds it in UTF-8


@pytest.fixture(scope="module")
def data(tmp_path_factory):
    work = tmp_path_factory.mktemp("shown")
    write_dumps(work / "dumps", [(1, "etats", 1995, [], [latin1(AUTHOR)], latin1(TITLE)),
                                 (2, "erdos", 1996, [1], ["P. Erdős"], UTF8_TITLE),
                                 (3, "third", 1996, [1, 2], ["A. Lee"], "Graphs cited")],
                {1: latin1("les états"), 2: "graphs", 3: "graphs"})
    refgrove.preprocess(work / "dumps", work / "data", progress=False)
    return work / "data"


@pytest.fixture(scope="module")
def explorer(data):
    server = subprocess.Popen([TOOL, "serve", data, "--port", "0"], stdout=subprocess.PIPE, text=True,
                              env=tool_env())
    try:
        url = re.search(r"http://127\.0\.0\.1:\d+/\S*", server.stdout.readline()).group(0)
        token = url.split("?token=")[1] if "?token=" in url else None

        def get(path):
            with urllib.request.urlopen(url.split("?")[0] + "api/" + path + (
                    ("&" if "?" in path else "?") + "token=" + token if token else ""), timeout=20) as answer:
                return answer.read().decode("utf-8")

        yield get
    finally:
        server.kill()
        server.wait()


FACES = {
    "tool search": lambda data, ds, api: tool("search", data, "graphs").stdout,
    "tool search json": lambda data, ds, api: tool("search", data, "graphs", "--format", "json").stdout,
    "tool rank": lambda data, ds, api: tool("rank", data).stdout,
    "tool show": lambda data, ds, api: tool("show", data, 1, 2, 3).stdout,
    "tool neighbourhood": lambda data, ds, api: tool("neighbourhood", data, 3).stdout,
    "tool neighbourhood json": lambda data, ds, api: tool("neighbourhood", data, 3, "--format", "json").stdout,
    "tool similar": lambda data, ds, api: tool("similar", data, 2).stdout,
    "tool export": lambda data, ds, api: tool("export", data).stdout,
    "tool authors": lambda data, ds, api: tool("authors", data).stdout,
    "python document": lambda data, ds, api: repr([ds.document(did) for did in (1, 2)]),
    "python table": lambda data, ds, api: repr(ds.to_pandas()[["title", "authors"]].values.tolist()),
    "explorer paper": lambda data, ds, api: api("paper/1") + "\n" + api("paper/2"),
    "explorer search": lambda data, ds, api: api("search?q=graphs"),
    "explorer rank": lambda data, ds, api: api("rank"),
    "explorer author": lambda data, ds, api: api("author/0") + "\n" + api("author/1"),
}


@pytest.mark.parametrize("face", FACES)
def test_each_face_shows_the_same_utf8(face, data, explorer):
    with refgrove.load(data) as ds:
        shown = FACES[face](data, ds, explorer)
    if face.startswith("explorer") or face.endswith("json") or face == "tool export":
        shown = json.dumps([json.loads(line) for line in shown.splitlines()], ensure_ascii=False)
    expected = {"tool authors": [AUTHOR, "P. Erdős"], "explorer author": [AUTHOR, "P. Erdős"],
                "tool similar": [TITLE]}.get(face, [TITLE, UTF8_TITLE])
    for text in expected:
        assert text in shown, f"{face}: {text!r} not in {shown!r}"
    assert "\ufffd" not in shown, face


def test_the_package_names_its_fields_as_the_json_does(data):
    names = set(refgrove._refgrove._field_names)
    with refgrove.load(data) as ds:
        fields = {f.name for f in dataclasses.fields(ds.document(1))} | {"citation_count"}
        columns = set(ds.to_pandas().columns)
    assert fields - names == set() and columns - names == set()
