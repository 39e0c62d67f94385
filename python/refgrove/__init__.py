"""refgrove: a citation database of scientific documents, from Python.

Preprocess text dumps into a data directory once, then load it and ask::

    import refgrove
    refgrove.preprocess("data/sample", "/tmp/sample-data")
    with refgrove.load("/tmp/sample-data") as ds:
        print(ds.document(107).title)
        print(ds.ranked(by="pagerank", limit=3))
        table = ds.to_pandas()

Per-document arrays (``ds.dids``, ``ds.years()``, ``ds.citation_counts()``,
``ds.pagerank()``) and the graphs' edges are numpy arrays, views of
refgrove's own memory where it keeps them. See docs/python.md.
"""
from ._errors import (
    ArgumentError,
    ClosedError,
    DataDirectoryError,
    DumpSyntaxError,
    Error,
    InputError,
    NotFoundError,
    PreprocessError,
)
from ._refgrove import __version__
from ._data_set import AuthorImpact, Cluster, Clusters, CollaborationPath, DataSet, Document, Hits, Neighbourhood, load
from ._import import ImportResult, import_works
from ._preprocess import PreprocessResult, preprocess

__all__ = [
    "__version__",
    "load",
    "preprocess",
    "import_works",
    "DataSet",
    "Document",
    "Hits",
    "CollaborationPath",
    "AuthorImpact",
    "Cluster",
    "Clusters",
    "Neighbourhood",
    "PreprocessResult",
    "ImportResult",
    "Error",
    "ArgumentError",
    "NotFoundError",
    "DataDirectoryError",
    "ClosedError",
    "PreprocessError",
    "DumpSyntaxError",
    "InputError",
]
