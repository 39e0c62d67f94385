"""A DataSet for pandas, networkx, igraph and scipy. Each conversion imports
its library when called, and says which package to install when it is
missing; refgrove itself needs only numpy."""
from __future__ import annotations

import importlib
from types import ModuleType
from typing import TYPE_CHECKING, Any

import numpy as np

if TYPE_CHECKING:
    from ._data_set import DataSet


def _library(name: str, debian_package: str, caller: str) -> ModuleType:
    """The module ``name``, or an ImportError naming what to install."""
    try:
        return importlib.import_module(name)
    except ImportError as e:
        raise ImportError(
            f"{caller} needs {name}, which is not installed (on Debian: apt-get install {debian_package})"
        ) from e


def to_pandas(ds: DataSet) -> Any:
    """See DataSet.to_pandas."""
    pd = _library("pandas", "python3-pandas", "DataSet.to_pandas()")
    columns = ds._table()
    years = np.array(ds.years())
    return pd.DataFrame(
        {
            "did": np.array(ds.dids),
            "key": columns["key"],
            "year": pd.arrays.IntegerArray(years, years == -1),
            "title": columns["title"],
            "authors": columns["authors"],
            "cites": columns["cites"],
            "citation_count": ds.citation_counts(),
            "pagerank": np.array(ds.pagerank()),
        }
    )


def to_networkx(ds: DataSet) -> Any:
    """See DataSet.to_networkx."""
    nx = _library("networkx", "python3-networkx", "DataSet.to_networkx()")
    columns = ds._table()
    graph = nx.DiGraph()
    graph.add_nodes_from(
        (did, {"key": key, "year": None if year == -1 else year, "title": title})
        for did, key, year, title in zip(ds.dids.tolist(), columns["key"], ds.years().tolist(), columns["title"])
    )
    graph.add_edges_from(ds._edge_tuples())
    return graph


def to_igraph(ds: DataSet) -> Any:
    """See DataSet.to_igraph."""
    ig = _library("igraph", "python3-igraph", "DataSet.to_igraph()")
    text = ds._edge_text()
    try:
        graph = ig.Graph.Read_Edgelist(text.path, directed=True)
    finally:
        text.close()
    graph.add_vertices(len(ds) - graph.vcount())  # those after the last one with a citation
    graph.vs["did"] = ds.dids.tolist()
    return graph


def to_scipy(ds: DataSet) -> Any:
    """See DataSet.to_scipy."""
    sparse = _library("scipy.sparse", "python3-scipy", "DataSet.to_scipy()")
    offsets, items = ds._cited_lists()
    n = len(offsets) - 1
    # Copies: scipy may sort or prune its arrays in place.
    return sparse.csr_matrix(
        (np.ones(len(items), dtype=np.int32), np.array(items), np.array(offsets)), shape=(n, n)
    )
